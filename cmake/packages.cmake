# The Debian packages: libpendra1, libpendra-dev and pendra-tools. scripts/package builds them; the prefix has to be /usr.
if(NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr")
  return()
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_PACKAGE_VENDOR "Pendra")
set(CPACK_PACKAGE_CONTACT "Pendra maintainers <maintainers@pendra.example>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL library development static tools)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/finish_packages.cmake)
set(CPACK_PENDRA_CHANGELOG ${PROJECT_SOURCE_DIR}/packaging/changelog)
set(CPACK_PENDRA_STRIP ${CMAKE_STRIP})

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
# pendrad's dependency on the library is stated below; this is where shlibdeps looks for the file meanwhile.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR})
set(same_version "libpendra1 (= ${PROJECT_VERSION})")

set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME libpendra1)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/packaging/triggers)
set(CPACK_DEBIAN_LIBRARY_DESCRIPTION "setup and firmware upgrade of home routers
Admits setup clients on the local network, takes setup documents and forms,
writes what differs into the device's configuration tree and runs the
device's scripts, lists wireless stations, and fetches, checks and hands over
new firmware.
.
The program that loads the library supplies the functions of the device.")

set(CPACK_COMPONENT_DEVELOPMENT_GROUP dev)
set(CPACK_COMPONENT_STATIC_GROUP dev)
set(CPACK_DEBIAN_DEV_PACKAGE_NAME libpendra-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS ${same_version})
set(CPACK_COMPONENT_DEV_DESCRIPTION "development files of libpendra
Headers in C99, the static library, pkg-config and CMake files, and the
documentation of the protocol and of the configuration nodes.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME pendra-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION net)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "${same_version}, procps, wget")
set(CPACK_DEBIAN_TOOLS_PACKAGE_SUGGESTS bash-completion)
set(CPACK_DEBIAN_TOOLS_DESCRIPTION "web service, client and simulated device for libpendra
The web service pendrad puts libpendra on HTTP, with a simulated router behind
it; zepctl is the setup client for the command line; xtree reads and changes
the configuration tree. The service is installed and not started.")
set(CPACK_DEBIAN_TOOLS_PACKAGE_CONTROL_EXTRA
  ${PROJECT_SOURCE_DIR}/packaging/postinst ${PROJECT_SOURCE_DIR}/packaging/prerm ${PROJECT_SOURCE_DIR}/packaging/postrm)

include(CPack)
