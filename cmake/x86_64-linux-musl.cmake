# x86-64 with musl instead of glibc. Debian: g++, musl-tools; the programs run on this machine.
#
# Debian has musl for C alone. C++ is compiled with g++, the headers of its libstdc++ and musl's headers. libpendra needs
# no more than that. A program that needs libstdc++ itself takes Debian's static one, and from musl/cxx_runtime.c the few
# things that it expects of glibc.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER musl-gcc)
set(CMAKE_CXX_COMPILER x86_64-linux-gnu-g++)
set(PENDRA_CXX_RUNTIME ${CMAKE_CURRENT_LIST_DIR}/musl/cxx_runtime.c)

execute_process(COMMAND ${CMAKE_CXX_COMPILER} -dumpversion OUTPUT_VARIABLE gxx_version OUTPUT_STRIP_TRAILING_WHITESPACE)
string(JOIN " " CMAKE_CXX_FLAGS_INIT
  -specs=/usr/lib/x86_64-linux-musl/musl-gcc.specs
  -isystem ${CMAKE_CURRENT_LIST_DIR}/musl/include
  -isystem /usr/include/c++/${gxx_version}
  -isystem /usr/include/x86_64-linux-gnu/c++/${gxx_version})
# The unwinder finds frames by a header that those specs leave out.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static-libgcc -Wl,--eh-frame-hdr")

set(CMAKE_FIND_ROOT_PATH /usr/lib/x86_64-linux-musl)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
