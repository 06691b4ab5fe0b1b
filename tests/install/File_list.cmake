# SPDX-License-Identifier: MIT
# Installs into an empty prefix and compares the files there with the list below, both ways.
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
