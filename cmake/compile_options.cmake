# Warnings, sanitizers and coverage, once for every target: link pendra_options.
add_library(pendra_options INTERFACE)
target_compile_options(pendra_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror
  $<$<COMPILE_LANGUAGE:CXX>:-Wold-style-cast>)
# 64-bit file interfaces would rename the calls that a host may stand in for (fopen, open, stat); the system's own
# large-file default stays.
if(PENDRA_SANITIZE)
  target_compile_options(pendra_options INTERFACE
    -fsanitize=${PENDRA_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(pendra_options INTERFACE -fsanitize=${PENDRA_SANITIZE})
endif()
if(PENDRA_COVERAGE)
  target_compile_options(pendra_options INTERFACE --coverage -O0)
  target_link_options(pendra_options INTERFACE --coverage)
endif()
