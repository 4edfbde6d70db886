# Run by CPack between installing into its staging directory and packing: what Debian wants beyond the installed files,
# compressed manual pages, a static library without debug information, and a changelog in each package.
set(staging ${CPACK_TEMPORARY_INSTALL_DIRECTORY})

file(GLOB_RECURSE pages ${staging}/tools/usr/share/man/*.[18])
foreach(page ${pages})
  execute_process(COMMAND gzip -9n ${page} COMMAND_ERROR_IS_FATAL ANY)
endforeach()

file(GLOB_RECURSE archives ${staging}/dev/usr/lib/*.a)
execute_process(COMMAND ${CPACK_PENDRA_STRIP} --strip-debug --remove-section=.comment --remove-section=.note ${archives}
  COMMAND_ERROR_IS_FATAL ANY)

foreach(package library:libpendra1 dev:libpendra-dev tools:pendra-tools)
  string(REPLACE ":" "/usr/share/doc/" documents ${package})
  file(MAKE_DIRECTORY ${staging}/${documents})
  file(COPY_FILE ${CPACK_PENDRA_CHANGELOG} ${staging}/${documents}/changelog)
  execute_process(COMMAND gzip -9n ${staging}/${documents}/changelog COMMAND_ERROR_IS_FATAL ANY)
endforeach()
