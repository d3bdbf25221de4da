# Configures small projects of two layers: one that links downward and is accepted, two that link
# sideways or upward and have to be refused for that very reason.
function(try_project NAME UPPER_LEVEL EXPECTED)
  set(folder ${WORK}/${NAME})
  file(REMOVE_RECURSE ${folder})
  file(WRITE ${folder}/one.cpp "int one() { return 1; }\n")
  file(WRITE ${folder}/CMakeLists.txt "
cmake_minimum_required(VERSION 3.25)
project(trial LANGUAGES CXX)
add_library(qs_flags INTERFACE)
include(${LAYERS})
qs_library(lower LEVEL 3 SOURCES one.cpp)
qs_library(upper LEVEL ${UPPER_LEVEL} SOURCES one.cpp LINK lower)
")
  execute_process(COMMAND ${CMAKE_COMMAND} -S ${folder} -B ${folder}/build
    RESULT_VARIABLE status OUTPUT_QUIET ERROR_VARIABLE said)
  if(EXPECTED STREQUAL "accepted" AND NOT status EQUAL 0)
    message(SEND_ERROR "${NAME} was refused: ${said}")
  elseif(EXPECTED STREQUAL "refused" AND NOT said MATCHES "only lower levels may be[ \n]+linked")
    message(SEND_ERROR "${NAME} was not refused for its levels: ${said}")
  endif()
endfunction()

try_project(downward 4 accepted)
try_project(sideways 3 refused)
try_project(upward 2 refused)
