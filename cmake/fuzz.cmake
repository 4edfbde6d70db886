# Fuzz targets: with PENDRA_FUZZ (and clang) each is a libFuzzer program; otherwise it is the same program without the
# fuzzer, which replays its corpus as a test.
option(PENDRA_FUZZ "Build the fuzz targets with libFuzzer (needs clang)" OFF)
if(PENDRA_FUZZ AND NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  message(FATAL_ERROR "PENDRA_FUZZ needs clang: -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++")
endif()

# The fuzzer is to find its way through this code. References and the fake device would only lead it astray.
function(pendra_fuzz_sources target)
  if(PENDRA_FUZZ)
    target_compile_options(${target} PRIVATE -fsanitize=fuzzer-no-link)
  endif()
endfunction()

# pendra_add_fuzz_target(NAME LIBRARIES...): the program fuzz_NAME of tests/fuzz/NAME.cpp, and the replay of
# tests/fuzz/corpus/NAME.
function(pendra_add_fuzz_target name)
  add_executable(fuzz_${name} ${name}.cpp)
  target_link_libraries(fuzz_${name} PRIVATE fuzz_support pendra_options ${ARGN})
  set_property(GLOBAL APPEND PROPERTY PENDRA_FUZZ_TARGETS fuzz_${name})
  if(PENDRA_FUZZ)
    target_link_options(fuzz_${name} PRIVATE -fsanitize=fuzzer)
  else()
    target_sources(fuzz_${name} PRIVATE replay.cpp)
  endif()
  add_test(NAME fuzz.${name} COMMAND fuzz_${name} ${CMAKE_CURRENT_SOURCE_DIR}/corpus/${name})
  set_tests_properties(fuzz.${name} PROPERTIES LABELS fuzz TIMEOUT 120)
endfunction()
