# Who defines the functions of pendra/platform.h. The library leaves them undefined either way; with a platform of a
# firmware's own nothing is built, looked for or needed but the library, and its tests when they are asked for.
include(CMakeDependentOption)
set(PENDRA_PLATFORM reference CACHE STRING "Platform to build for: reference (this machine as a device) or external")
set_property(CACHE PENDRA_PLATFORM PROPERTY STRINGS reference external)
if(NOT PENDRA_PLATFORM MATCHES "^(reference|external)$")
  message(FATAL_ERROR "PENDRA_PLATFORM is \"${PENDRA_PLATFORM}\"; it must be reference or external")
endif()
# The device's programs stand on the reference platform; OFF leaves them out where only the library is wanted. A toolchain
# for a device seldom has the packages that they need, so there they must be asked for.
set(build_device ON)
if(CMAKE_CROSSCOMPILING)
  set(build_device OFF)
endif()
cmake_dependent_option(PENDRA_BUILD_DEVICE "Build the reference platform, the host and the client"
  ${build_device} "PENDRA_PLATFORM STREQUAL reference" OFF)
