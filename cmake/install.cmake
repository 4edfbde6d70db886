# What `cmake --install` puts where, in four components:
#
#   library      the shared library
#   development  headers, link name, pkg-config and CMake files, documentation
#   static       the static library; only when it is asked for by name
#   tools        pendrad, zepctl, xtree with their manual pages, completion and service, and the reference device's files
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(PENDRA_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/pendra)
set(PENDRA_DEVICE_DIR ${CMAKE_INSTALL_DATADIR}/pendra/device)
set(PENDRA_UNIT_DIR lib/systemd/system CACHE STRING "Where the service's unit goes, below the prefix")

# --- library, development -------------------------------------------------------------------------------------------
install(TARGETS pendra EXPORT pendraTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library NAMELINK_COMPONENT development)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/pendra DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development
  FILES_MATCHING PATTERN "*.h")
install(EXPORT pendraTargets NAMESPACE pendra:: DESTINATION ${PENDRA_CMAKE_DIR} COMPONENT development)

configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/pendraConfig.cmake.in ${PROJECT_BINARY_DIR}/pendraConfig.cmake
  INSTALL_DESTINATION ${PENDRA_CMAKE_DIR} NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/pendraConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/pendraConfig.cmake ${PROJECT_BINARY_DIR}/pendraConfigVersion.cmake
  DESTINATION ${PENDRA_CMAKE_DIR} COMPONENT development)

# Relative to its own place, so that an installed tree can be moved.
string(REGEX REPLACE "[^/]+" ".." PENDRA_PREFIX_FROM_PC ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
configure_file(${CMAKE_CURRENT_LIST_DIR}/pendra.pc.in ${PROJECT_BINARY_DIR}/pendra.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/pendra.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

install(FILES ${PROJECT_SOURCE_DIR}/README.md DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT development)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT development
  FILES_MATCHING PATTERN "*.md")

# --- static ---------------------------------------------------------------------------------------------------------
# The unit tests see the internals in it; who installs it sees the exported headers, as with the shared one.
set_target_properties(pendra_static PROPERTIES OUTPUT_NAME pendra EXPORT_NAME static)
get_target_property(internals pendra_static INTERFACE_INCLUDE_DIRECTORIES)
set_target_properties(pendra_static PROPERTIES INTERFACE_INCLUDE_DIRECTORIES
  "$<BUILD_INTERFACE:${internals}>;$<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>")
install(TARGETS pendra_static EXPORT pendraStaticTargets
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT static EXCLUDE_FROM_ALL)
install(EXPORT pendraStaticTargets NAMESPACE pendra:: DESTINATION ${PENDRA_CMAKE_DIR} COMPONENT static EXCLUDE_FROM_ALL)

# --- tools ----------------------------------------------------------------------------------------------------------
if(NOT PENDRA_BUILD_DEVICE)
  return()
endif()

# Where the system's loader does not look by itself, the host says where the library is.
cmake_path(IS_PREFIX CMAKE_INSTALL_PREFIX ${CMAKE_INSTALL_FULL_LIBDIR} prefix_is_whole)
if(NOT CMAKE_INSTALL_PREFIX MATCHES "^/usr(/local)?/?$" AND prefix_is_whole)
  cmake_path(RELATIVE_PATH CMAKE_INSTALL_FULL_LIBDIR BASE_DIRECTORY ${CMAKE_INSTALL_FULL_SBINDIR} OUTPUT_VARIABLE way)
  set_target_properties(pendrad PROPERTIES INSTALL_RPATH "$ORIGIN/${way}")
endif()
install(TARGETS pendrad DESTINATION ${CMAKE_INSTALL_SBINDIR} COMPONENT tools)
install(TARGETS zepctl xtree DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)

install(FILES ${PROJECT_SOURCE_DIR}/man/pendrad.8 DESTINATION ${CMAKE_INSTALL_MANDIR}/man8 COMPONENT tools)
install(FILES ${PROJECT_SOURCE_DIR}/man/zepctl.1 ${PROJECT_SOURCE_DIR}/man/xtree.1
  DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)

include(${PROJECT_SOURCE_DIR}/completion/completion.cmake)
install(FILES ${PENDRA_COMPLETION} DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME zepctl
  COMPONENT tools)

configure_file(${PROJECT_SOURCE_DIR}/packaging/pendrad.service.in ${PROJECT_BINARY_DIR}/pendrad.service @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/pendrad.service DESTINATION ${PENDRA_UNIT_DIR} COMPONENT tools)
install(PROGRAMS ${PROJECT_SOURCE_DIR}/packaging/make-device DESTINATION ${CMAKE_INSTALL_LIBEXECDIR}/pendra
  COMPONENT tools)

# The reference device: what the tree's placeholders name, and what its service starts from.
set(device ${PROJECT_SOURCE_DIR}/platform/device)
install(PROGRAMS ${device}/device_resync.sh ${device}/uplink.sh ${device}/wan_resync.sh ${device}/wlan5g_resync.sh
  ${device}/wlan_resync.sh ${device}/iwpriv
  DESTINATION ${PENDRA_DEVICE_DIR} COMPONENT tools)
install(FILES ${device}/device_common.sh ${device}/router.tree ${device}/router-1.0.tree ${device}/stations.txt
  DESTINATION ${PENDRA_DEVICE_DIR} COMPONENT tools)
