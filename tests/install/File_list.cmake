# SPDX-License-Identifier: MIT
# Installs into an empty prefix, compares the files there with the list below, both ways, and
# removes them again as the README says.
set(packed)
if(GZIP)
    set(packed .gz)
endif()
set(expected
    ${BINDIR}/plexor
    ${MANDIR}/man1/plexor.1${packed}
    ${DATADIR}/bash-completion/completions/plexor
    ${DATADIR}/fish/vendor_completions.d/plexor.fish
    ${DATADIR}/zsh/site-functions/_plexor
    ${DATADIR}/doc/plexor/CITATION.cff
    ${DATADIR}/doc/plexor/README.md
    ${DATADIR}/doc/plexor/changelog${packed}
    ${DATADIR}/doc/plexor/copyright
    ${DATADIR}/doc/plexor/docs/formats.md
    ${DATADIR}/doc/plexor/docs/guide.md
    ${DATADIR}/doc/plexor/docs/how-it-works.md
    ${DATADIR}/doc/plexor/docs/limits.md
    ${DATADIR}/doc/plexor/docs/performance.md
    ${DATADIR}/doc/plexor/docs/us-airports.svg
    ${DATADIR}/doc/plexor/examples/README.md
    ${DATADIR}/doc/plexor/examples/uk-faculty.txt
    ${DATADIR}/doc/plexor/examples/us-airports.txt)
foreach(header Cliques Communities Error Export Graph Progress plexor)
    list(APPEND expected ${INCLUDEDIR}/plexor/${header}.h)
endforeach()
foreach(package libplexor0 libplexor-dev)
    list(APPEND expected ${DATADIR}/doc/${package}/changelog${packed}
        ${DATADIR}/doc/${package}/copyright)
endforeach()
string(TOLOWER "${CONFIG}" config)
list(APPEND expected
    ${DATADIR}/doc/libplexor-dev/docs/library.md
    ${DATADIR}/doc/libplexor-dev/examples/CMakeLists.txt
    ${DATADIR}/doc/libplexor-dev/examples/communities.cpp
    ${LIBDIR}/cmake/plexor/plexorConfig-${config}.cmake
    ${LIBDIR}/cmake/plexor/plexorConfig.cmake
    ${LIBDIR}/cmake/plexor/plexorConfigVersion.cmake
    ${LIBDIR}/libplexor.a
    ${LIBDIR}/libplexor.so
    ${LIBDIR}/libplexor.so.0
    ${LIBDIR}/libplexor.so.${VERSION}
    ${LIBDIR}/pkgconfig/plexor.pc)
list(SORT expected)

unset(ENV{DESTDIR})
file(REMOVE_RECURSE ${PREFIX})
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD} --config "${CONFIG}" --prefix ${PREFIX}
    OUTPUT_QUIET RESULT_VARIABLE status)
if(NOT status EQUAL 0)
    message(FATAL_ERROR "the installation failed with status ${status}")
endif()

file(GLOB_RECURSE installed RELATIVE ${PREFIX} LIST_DIRECTORIES false ${PREFIX}/*)
list(SORT installed)
set(missing ${expected})
list(REMOVE_ITEM missing ${installed})
set(unexpected ${installed})
list(REMOVE_ITEM unexpected ${expected})
if(missing OR unexpected)
    message(FATAL_ERROR "not installed: ${missing}\ninstalled but not listed: ${unexpected}")
endif()

# The program as installed must run from where it is.
execute_process(COMMAND ${PREFIX}/${BINDIR}/plexor -h
    OUTPUT_VARIABLE help ERROR_VARIABLE errors RESULT_VARIABLE status)
if(NOT status EQUAL 0 OR errors OR NOT help MATCHES "you must specify at least the")
    message(FATAL_ERROR "the installed program does not show its help (status ${status}) ${errors}")
endif()

file(READ ${PROJECT}/README.md readme)
if(NOT readme MATCHES "\n    sudo (xargs [^\n]*) <build/release/(install_manifest[^\n]*)\n")
    message(FATAL_ERROR "the README does not say how to remove the files")
endif()
execute_process(COMMAND sh -c "${CMAKE_MATCH_1}" INPUT_FILE ${BUILD}/${CMAKE_MATCH_2}
    RESULT_VARIABLE status)
file(GLOB_RECURSE left LIST_DIRECTORIES false ${PREFIX}/*)
if(NOT status EQUAL 0 OR left)
    message(FATAL_ERROR "not removed (status ${status}): ${left}")
endif()
