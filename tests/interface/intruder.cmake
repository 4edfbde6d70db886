# Writes a library that defines every function libpendra exports, but for those that a program calls itself. Any call of
# one ends the process: cmake -DNM= -DLIBRARY= -DPROGRAM= -DOUTPUT= -P intruder.cmake
cmake_minimum_required(VERSION 3.25)

function(dynamic_names file kind result)
  execute_process(COMMAND ${NM} -D --format=posix --without-symbol-versions ${file}
    OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX MATCHALL "[^\n]+" lines "${symbols}")
  list(FILTER lines INCLUDE REGEX "^[A-Za-z_0-9]+ ${kind}")
  list(TRANSFORM lines REPLACE " .*" "")
  set(${result} ${lines} PARENT_SCOPE)
endfunction()

dynamic_names(${LIBRARY} T exported)
dynamic_names(${PROGRAM} U called)
list(REMOVE_ITEM exported ${called})
foreach(name crc32 MD5Transform MD5Update logPrintf write_ZepXml_ResultXml)
  if(NOT name IN_LIST exported)
    message(FATAL_ERROR "${name} is not to be stood in for")
  endif()
endforeach()

set(source "#include <stdio.h>\n#include <stdlib.h>\n")
foreach(name ${exported})
  string(APPEND source "void ${name}(void);\nvoid ${name}(void) {\n"
    "    fputs(\"${name} was captured\\n\", stderr);\n    abort();\n}\n")
endforeach()
file(WRITE ${OUTPUT} "${source}")
