# Builds a small program with the project's flags, as a release, and looks at what came out.
file(REMOVE_RECURSE ${WORK})
file(WRITE ${WORK}/main.cpp "
#include <cstring>
int main(int argc, char **argv)
{
    char name[8];
    std::strcpy(name, argv[argc - 1]);
    return name[0];
}
")
file(WRITE ${WORK}/CMakeLists.txt "
cmake_minimum_required(VERSION 3.25)
project(trial LANGUAGES CXX)
include(${FLAGS})
add_executable(trial main.cpp)
target_link_libraries(trial PRIVATE qs_flags)
")
execute_process(COMMAND ${CMAKE_COMMAND} -S ${WORK} -B ${WORK}/build -DCMAKE_BUILD_TYPE=Release
  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${CMAKE_COMMAND} --build ${WORK}/build OUTPUT_QUIET
  COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND readelf --dynamic --segments --dyn-syms --wide ${WORK}/build/trial
  OUTPUT_VARIABLE program COMMAND_ERROR_IS_FATAL ANY)
foreach(mark IN ITEMS "GNU_RELRO" "BIND_NOW|Flags: NOW" "__strcpy_chk" "__stack_chk_fail")
  if(NOT program MATCHES "${mark}")
    message(SEND_ERROR "The release has no ${mark}.")
  endif()
endforeach()
