# SPDX-License-Identifier: MIT
# Installs the library into a prefix of its own and builds programs against it there, out of the
# tree: the example by find_package(), shared and static, and by pkg-config; and every program that
# the page on the library shows, whose output must be what the page says.
function(run what)
    execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE output ERROR_VARIABLE output
        RESULT_VARIABLE status)
    if(NOT status EQUAL 0)
        message(FATAL_ERROR "${what}: status ${status}\n${output}")
    endif()
    set(output "${output}" PARENT_SCOPE)
endfunction()

unset(ENV{DESTDIR})
file(REMOVE_RECURSE ${WORK})
set(prefix ${WORK}/prefix)
run("installing" ${CMAKE_COMMAND} --install ${BUILD} --config "${CONFIG}" --prefix ${prefix})

set(expected "8 nodes, 18 links, 2 cliques, the largest of 5 nodes
k=5: 2 communities
k=4: 1 communities
k=3: 1 communities
k=5 community 0: 10 11 12 13 14, 10 links
k=5 community 1: 12 13 14 15 16, 10 links
k=4 community 0: 10 11 12 13 14 15 16, 17 links
the search without hope was ended
")
function(must_print program)
    run("${program}" ${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${prefix}/${LIBDIR} ${program})
    if(NOT output STREQUAL "${expected}")
        message(FATAL_ERROR "${program} printed\n${output}in place of\n${expected}")
    endif()
endfunction()

run("configuring the example" ${CMAKE_COMMAND} -S ${SOURCE}/examples/library -B ${WORK}/example
    -D CMAKE_PREFIX_PATH=${prefix} -D CMAKE_CXX_COMPILER=${CXX} -D CMAKE_CXX_FLAGS=${CXX_FLAGS})
run("building the example" ${CMAKE_COMMAND} --build ${WORK}/example)
must_print(${WORK}/example/communities)
must_print(${WORK}/example/communities_static)

separate_arguments(flags UNIX_COMMAND "${CXX_FLAGS}")
function(build_by_pkg_config source program)
    run("pkg-config" ${CMAKE_COMMAND} -E env PKG_CONFIG_PATH=${prefix}/${LIBDIR}/pkgconfig
        ${PKG_CONFIG} --cflags --libs plexor)
    separate_arguments(found UNIX_COMMAND "${output}")
    run("compiling ${source}" ${CXX} -std=c++20 ${flags} ${source} -o ${program} ${found})
endfunction()
build_by_pkg_config(${SOURCE}/examples/library/communities.cpp ${WORK}/by_pkg_config)
must_print(${WORK}/by_pkg_config)

# The page: each program stands between ```cpp and ```, its output, indented, follows "prints".
file(READ ${SOURCE}/docs/library.md page)
string(REPLACE ";" "\\;" page "${page}")
string(REPLACE "[" "<<<" page "${page}") # brackets would join the elements of a list
string(REPLACE "]" ">>>" page "${page}")
string(REGEX MATCHALL "```cpp\n[^`]*```\n\nprints\n\n(    [^\n]*\n)+" programs "${page}")
list(LENGTH programs n_programs)
if(NOT n_programs EQUAL 5)
    message(FATAL_ERROR "${n_programs} programs with their output on the page, 5 are known")
endif()
set(number 0)
foreach(program IN LISTS programs)
    math(EXPR number "${number} + 1")
    string(REPLACE "<<<" "[" program "${program}")
    string(REPLACE ">>>" "]" program "${program}")
    string(REGEX REPLACE "^```cpp\n([^`]*)```.*" "\\1" text "${program}")
    string(REGEX REPLACE ".*\nprints\n\n    " "" expected "${program}")
    string(REPLACE "\n    " "\n" expected "${expected}")
    file(WRITE ${WORK}/page_${number}.cpp "${text}")
    build_by_pkg_config(${WORK}/page_${number}.cpp ${WORK}/page_${number})
    must_print(${WORK}/page_${number})
endforeach()
