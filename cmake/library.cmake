# libpendra: one set of sources, a shared library that exports what cmake/pendra.symbols lists, and a static one that
# shows its internals to the unit tests.
set(PENDRA_SOURCES
  common/bounded_text.cpp
  common/form_encoding.cpp
  common/logging.cpp
  common/text.cpp
  common/keywords.cpp
  common/timers.cpp
  common/trace.cpp
  common/tree_access.cpp
  common/validation_rule.cpp
  common/validators.cpp
  common/wildcard.cpp
  common/xml_entities.cpp
  auth/access_keys.cpp
  auth/client_list.cpp
  auth/md5.cpp
  setupdoc/channel_watch.cpp
  setupdoc/commit.cpp
  setupdoc/document_run.cpp
  setupdoc/record.cpp
  setupdoc/record_dump.cpp
  setupdoc/record_layout.cpp
  setupdoc/result_document.cpp
  setupdoc/section_parsers.cpp
  setupdoc/snapshot.cpp
  setupdoc/temporary_xml.cpp
  setupdoc/xml_scanner.cpp
  apply/application.cpp
  apply/compare_write.cpp
  apply/external_calls.cpp
  apply/stations.cpp
  apply/verification.cpp
  vars/actions.cpp
  vars/engine.cpp
  vars/form_intake.cpp
  vars/name_mapping.cpp
  vars/section_variables.cpp
  vars/variable_access.cpp
  vars/variable_tables.cpp
  fwupgrade/crc32.cpp
  fwupgrade/firmware_list.cpp
  fwupgrade/flash.cpp
  fwupgrade/image_check.cpp
  fwupgrade/upgrade_actions.cpp)

add_library(pendra_objects OBJECT ${PENDRA_SOURCES})
target_compile_features(pendra_objects PUBLIC cxx_std_20)
target_compile_options(pendra_objects PRIVATE
  -fno-exceptions -fno-rtti -fno-threadsafe-statics -fsigned-char
  -fvisibility=hidden -fvisibility-inlines-hidden -ffunction-sections -fdata-sections ${PENDRA_LIBRARY_OPTIONS})
target_include_directories(pendra_objects PRIVATE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include)
target_compile_definitions(pendra_objects PRIVATE
  PENDRA_FW_SERVER="${PENDRA_FW_SERVER}" PENDRA_FW_ENG_SERVER="${PENDRA_FW_ENG_SERVER}")
target_link_libraries(pendra_objects PRIVATE pendra_options)
set_target_properties(pendra_objects PROPERTIES POSITION_INDEPENDENT_CODE ON)

# The C driver links the library, so that it needs libc and no C++ runtime; without this, CMake would add the C++
# driver's own libraries to that command line.
set(CMAKE_CXX_IMPLICIT_LINK_LIBRARIES "")

set(PENDRA_SYMBOLS ${PROJECT_SOURCE_DIR}/cmake/pendra.symbols)
set(PENDRA_VERSION_SCRIPT ${PROJECT_BINARY_DIR}/pendra.map)
file(STRINGS ${PENDRA_SYMBOLS} exported REGEX "^[A-Za-z_]")
list(JOIN exported ";\n    " exported)
file(CONFIGURE OUTPUT ${PENDRA_VERSION_SCRIPT} CONTENT "PENDRA_1 {\n  global:\n    @exported@;\n  local:\n    *;\n};\n" @ONLY)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PENDRA_SYMBOLS})

include(GNUInstallDirs)
add_library(pendra SHARED $<TARGET_OBJECTS:pendra_objects>)
add_library(pendra::pendra ALIAS pendra)
set_target_properties(pendra PROPERTIES LINKER_LANGUAGE C VERSION ${PROJECT_VERSION} SOVERSION 1
  LINK_DEPENDS ${PENDRA_VERSION_SCRIPT})
target_include_directories(pendra PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
# Names such as crc32 or trim may be defined by others in the process. The library's own calls never reach those: they are
# bound here, and only data stays open, which programs copy into themselves.
target_link_options(pendra PRIVATE LINKER:--version-script=${PENDRA_VERSION_SCRIPT} LINKER:-Bsymbolic-functions
  LINKER:--gc-sections LINKER:--as-needed)
target_link_libraries(pendra PRIVATE pendra_options)

add_library(pendra_static STATIC $<TARGET_OBJECTS:pendra_objects>)
target_include_directories(pendra_static PUBLIC ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include)
