# The layers of the program. Each library names its level; configuration stops when it links a
# library of the project that does not stand lower, so an upward dependency never gets as far as
# the compiler. What a target shows to others is its own folder alone.

function(qs_check_levels TARGET LEVEL)
  foreach(lower IN LISTS ARGN)
    if(NOT TARGET ${lower})
      message(FATAL_ERROR "${TARGET} (level ${LEVEL}) links ${lower}, which no lower layer defines")
    endif()
    get_target_property(lower_level ${lower} QS_LEVEL)
    if(NOT lower_level LESS LEVEL)
      message(FATAL_ERROR
        "${TARGET} (level ${LEVEL}) links ${lower} (level ${lower_level}): only lower levels may be linked")
    endif()
  endforeach()
endfunction()

# qs_library(NAME LEVEL n SOURCES ... [LINK project libraries] [QT public Qt libraries]
#            [PRIVATE_LIBS libraries whose headers stay in the .cpp files])
function(qs_library NAME)
  cmake_parse_arguments(ARG "" "LEVEL" "SOURCES;LINK;QT;PRIVATE_LIBS" ${ARGN})
  qs_check_levels(${NAME} ${ARG_LEVEL} ${ARG_LINK})
  add_library(${NAME} STATIC ${ARG_SOURCES})
  set_target_properties(${NAME} PROPERTIES QS_LEVEL ${ARG_LEVEL})
  target_include_directories(${NAME} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
  target_link_libraries(${NAME}
    PUBLIC ${ARG_LINK} ${ARG_QT}
    PRIVATE qs_flags ${ARG_PRIVATE_LIBS})
endfunction()
