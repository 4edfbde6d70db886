# Little-endian MIPS32. Debian: g++-mipsel-linux-gnu, qemu-user to run the tests.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR mipsel)
set(CMAKE_C_COMPILER mipsel-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER mipsel-linux-gnu-g++)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-mipsel -L /usr/mipsel-linux-gnu)
set(CMAKE_FIND_ROOT_PATH /usr/mipsel-linux-gnu)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
# The library's code in the short encoding that these processors have (MIPS16e): two thirds of the text. Pass
# -DPENDRA_LIBRARY_OPTIONS= for a processor without it.
set(PENDRA_LIBRARY_OPTIONS -mips16 CACHE STRING "Compiler options for the library's own code")
set(CMAKE_C_FLAGS_INIT -minterlink-mips16)
set(CMAKE_CXX_FLAGS_INIT -minterlink-mips16)
