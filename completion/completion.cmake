# The completion script with the variables in it, from the rows of docs/variables.md:
#   | `zep_Upl_ConnType` | text, 31 | one of: DHCP, Static, PPPoE, PPPoA | `/uplink/ConnType` |
#   | `zep_Act_SiteSurvey` | asks for a survey |
set(PENDRA_COMPLETION ${PROJECT_BINARY_DIR}/zepctl.bash)
set(document ${PROJECT_SOURCE_DIR}/docs/variables.md)

# Sets RESULT to the line of the completion's table for one row of the document.
function(pendra_completion_line row result)
  if(NOT row MATCHES "^[|] `([^`]+)` [|][^|]*[|] ([^|]*) [|]")
    string(REGEX REPLACE "^[|] `([^`]+)`.*" "\\1 w" line "${row}") # an action: set only
  else()
    set(name ${CMAKE_MATCH_1})
    set(check ${CMAKE_MATCH_2})
    if(check STREQUAL "read only")
      set(line "${name} r")
    elseif(check STREQUAL "0 or 1")
      set(line "${name} rw 0 1")
    elseif(check MATCHES "^one of: (.*)")
      string(REGEX REPLACE ", \\(empty\\)|," "" values "${CMAKE_MATCH_1}")
      set(line "${name} rw ${values}")
    else()
      set(line "${name} rw")
    endif()
  endif()
  set(${result} "${line}" PARENT_SCOPE)
endfunction()

file(STRINGS ${document} rows REGEX "^[|] `zep_")
set(PENDRA_VARIABLES "")
foreach(row ${rows})
  pendra_completion_line("${row}" line)
  list(APPEND PENDRA_VARIABLES "${line}")
endforeach()
list(JOIN PENDRA_VARIABLES "\n" PENDRA_VARIABLES)
configure_file(${CMAKE_CURRENT_LIST_DIR}/zepctl.bash.in ${PENDRA_COMPLETION} @ONLY)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${document})
