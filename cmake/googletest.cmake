# GTest::gtest and GTest::gtest_main: the system's own, or built here for a target whose system has none.
if(CMAKE_CROSSCOMPILING)
  set(default_googletest_sources /usr/src/googletest/googletest)
endif()
set(PENDRA_GOOGLETEST_SOURCES "${default_googletest_sources}" CACHE PATH
  "Build GoogleTest from these sources instead of taking the system's (Debian: package googletest)")

if(NOT PENDRA_GOOGLETEST_SOURCES)
  find_package(GTest REQUIRED)
  return()
endif()
foreach(part gtest-all gtest_main)
  if(NOT EXISTS ${PENDRA_GOOGLETEST_SOURCES}/src/${part}.cc)
    message(FATAL_ERROR "no GoogleTest in ${PENDRA_GOOGLETEST_SOURCES}; on Debian it comes with the package googletest")
  endif()
endforeach()

add_library(gtest STATIC ${PENDRA_GOOGLETEST_SOURCES}/src/gtest-all.cc)
target_include_directories(gtest SYSTEM PUBLIC ${PENDRA_GOOGLETEST_SOURCES}/include)
target_include_directories(gtest PRIVATE ${PENDRA_GOOGLETEST_SOURCES})
add_library(gtest_main STATIC ${PENDRA_GOOGLETEST_SOURCES}/src/gtest_main.cc)
target_link_libraries(gtest_main PUBLIC gtest)
add_library(GTest::gtest ALIAS gtest)
add_library(GTest::gtest_main ALIAS gtest_main)

# What a toolchain file's C++ library needs besides the target's libc.
if(PENDRA_CXX_RUNTIME)
  add_library(cxx_runtime OBJECT ${PENDRA_CXX_RUNTIME})
  target_link_libraries(cxx_runtime PRIVATE pendra_options)
  target_link_libraries(gtest INTERFACE $<TARGET_OBJECTS:cxx_runtime> -static-libstdc++)
endif()
