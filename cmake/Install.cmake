# SPDX-License-Identifier: MIT
# What `cmake --install` puts where, and the Debian packages.
#     cmake --install build/release --prefix /usr/local
#     (cd build/release && cpack -G DEB)      plexor, libplexor0, libplexor-dev
#     cmake --workflow --preset package       these and python3-plexor, from nothing
include(GNUInstallDirs)
# What names no other component belongs to the package of the program.
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME plexor)

set(plexor_doc_dir ${CMAKE_INSTALL_DATAROOTDIR}/doc/plexor)

# Manual pages and change logs are packed, as distributions want them, without the time and name
# that would make two builds differ. Without gzip they are installed as they are.
find_program(PLEXOR_GZIP gzip)
set(plexor_packed_dir ${PROJECT_BINARY_DIR}/packed)
file(MAKE_DIRECTORY ${plexor_packed_dir})
# Packs a file under a new name; leaves what is to be installed in ${result}.
function(plexor_pack file name result)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${file})
    set(packed ${plexor_packed_dir}/${name})
    configure_file(${file} ${packed} COPYONLY)
    if(PLEXOR_GZIP)
        execute_process(COMMAND ${PLEXOR_GZIP} -9 -n -c ${packed} OUTPUT_FILE ${packed}.gz
            COMMAND_ERROR_IS_FATAL ANY)
        set(packed ${packed}.gz)
    endif()
    set(${result} ${packed} PARENT_SCOPE)
endfunction()
plexor_pack(${PROJECT_SOURCE_DIR}/docs/man/plexor.1 plexor.1 plexor_man_page)
plexor_pack(${PROJECT_SOURCE_DIR}/CHANGELOG.md changelog plexor_changelog)
plexor_pack(${PROJECT_SOURCE_DIR}/packaging/debian/changelog changelog.Debian
    plexor_debian_changelog)

install(TARGETS plexor RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES ${plexor_man_page} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES packaging/completion/plexor.bash
    DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/bash-completion/completions RENAME plexor)
install(FILES packaging/completion/_plexor
    DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/zsh/site-functions)
install(FILES packaging/completion/plexor.fish
    DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/fish/vendor_completions.d)
# Debian looks for a package's licence under the name "copyright".
install(FILES LICENSE DESTINATION ${plexor_doc_dir} RENAME copyright)
install(FILES ${plexor_changelog} README.md CITATION.cff DESTINATION ${plexor_doc_dir})
install(FILES docs/guide.md docs/formats.md docs/how-it-works.md docs/limits.md docs/performance.md
    docs/us-airports.svg DESTINATION ${plexor_doc_dir}/docs)
# Not github.txt.gz: it is packed already and larger than all else together.
install(FILES examples/README.md examples/us-airports.txt examples/uk-faculty.txt
    DESTINATION ${plexor_doc_dir}/examples)

# The other packages: a licence and the changes each; to the developers' one belong the page on the
# library and its example.
foreach(package libplexor0 libplexor-dev)
    set(doc_dir ${CMAKE_INSTALL_DATAROOTDIR}/doc/${package})
    install(FILES LICENSE DESTINATION ${doc_dir} RENAME copyright COMPONENT ${package})
    install(FILES ${plexor_changelog} DESTINATION ${doc_dir} COMPONENT ${package})
endforeach()
install(FILES docs/library.md DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/libplexor-dev/docs
    COMPONENT libplexor-dev)
install(FILES examples/library/CMakeLists.txt examples/library/communities.cpp
    DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/libplexor-dev/examples COMPONENT libplexor-dev)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME plexor)
set(CPACK_PACKAGE_VENDOR "The Plexor developers")
set(CPACK_PACKAGE_CONTACT "The Plexor developers")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY ${PROJECT_DESCRIPTION})
# Debian's format: lines of 80 characters at most, "." for an empty one.
set(CPACK_PACKAGE_DESCRIPTION
"Plexor reads the links of a network from a text file and finds its k-clique
communities: groups of densely connected nodes that may share members. It
lists all maximal cliques of undirected or directed networks, and joins those
that overlap in k-1 nodes, for every k or for one.
.
Weights can be used as thresholds of links or of whole k-cliques (intensity).
A limit of processor time per node makes networks tractable that have too many
cliques; what was approximated is marked. All results are plain text files.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
# A package for the program, one for the library, one for what building against it needs.
set(CPACK_COMPONENTS_ALL plexor libplexor0 libplexor-dev)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_PLEXOR_PACKAGE_NAME plexor)
set(CPACK_DEBIAN_LIBPLEXOR0_PACKAGE_NAME libplexor0)
set(CPACK_DEBIAN_LIBPLEXOR0_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBPLEXOR-DEV_PACKAGE_NAME libplexor-dev)
set(CPACK_DEBIAN_LIBPLEXOR-DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_LIBPLEXOR-DEV_PACKAGE_DEPENDS "libplexor0 (= ${PROJECT_VERSION}-1)")
set(CPACK_COMPONENT_PLEXOR_DESCRIPTION "${CPACK_PACKAGE_DESCRIPTION}")
set(CPACK_COMPONENT_LIBPLEXOR0_DESCRIPTION
"The engine of plexor as a shared library: maximal cliques and k-clique
communities of a graph in memory, for programs that link it.")
set(CPACK_COMPONENT_LIBPLEXOR-DEV_DESCRIPTION
"The headers, the static library, and the files for CMake and pkg-config that
programs need to be built against libplexor, the engine of plexor.")
if(PLEXOR_PYTHON)
    include(cmake/Install_python.cmake)
endif()
file(WRITE ${plexor_packed_dir}/shlibs "libplexor 0 libplexor0 (>= ${PROJECT_VERSION})\n")
set(CPACK_DEBIAN_LIBPLEXOR0_PACKAGE_CONTROL_EXTRA
    "${PROJECT_SOURCE_DIR}/packaging/debian/triggers;${plexor_packed_dir}/shlibs")
set(CPACK_DEBIAN_LIBPLEXOR0_PACKAGE_CONTROL_STRICT_PERMISSION TRUE)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
# The packages that the program's shared libraries come from, asked of dpkg-shlibdeps.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
# What belongs in the Debian package alone, and times that do not depend on the day of the build.
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/Package_debian.cmake)
set(CPACK_POST_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/Repack_debian.cmake)
set(CPACK_PLEXOR_DEBIAN_CHANGELOG ${plexor_debian_changelog})
set(CPACK_PLEXOR_OVERRIDES ${PROJECT_SOURCE_DIR}/packaging/debian/overrides)
include(CPack)
