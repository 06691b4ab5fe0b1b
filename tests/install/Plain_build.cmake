# SPDX-License-Identifier: MIT
# `cmake -B build` alone must set up a build whose compiler optimises.
file(REMOVE_RECURSE ${WORK})
execute_process(
    COMMAND ${CMAKE_COMMAND} -E env --unset=CXXFLAGS --unset=CMAKE_BUILD_TYPE
        ${CMAKE_COMMAND} -S ${SOURCE} -B ${WORK} -D CMAKE_CXX_COMPILER=${CXX}
    OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
file(READ ${WORK}/compile_commands.json commands)
string(JSON n LENGTH "${commands}")
math(EXPR last "${n} - 1")
foreach(i RANGE ${last})
    string(JSON command GET "${commands}" ${i} command)
    if(NOT command MATCHES " -O3 " OR NOT command MATCHES " -DNDEBUG ")
        message(FATAL_ERROR "not optimised: ${command}")
    endif()
endforeach()
