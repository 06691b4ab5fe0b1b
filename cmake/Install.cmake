# SPDX-License-Identifier: MIT
# What `cmake --install` puts where, and the Debian package.
#     cmake --install build/release --prefix /usr/local
#     (cd build/release && cpack -G DEB)
include(GNUInstallDirs)

set(plexor_doc_dir ${CMAKE_INSTALL_DATAROOTDIR}/doc/plexor)

install(TARGETS plexor RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES docs/man/plexor.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES packaging/completion/plexor
    DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/bash-completion/completions)
# Debian looks for a package's licence under the name "copyright".
install(FILES LICENSE DESTINATION ${plexor_doc_dir} RENAME copyright)
install(FILES CHANGELOG.md DESTINATION ${plexor_doc_dir})

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME plexor)
set(CPACK_PACKAGE_VENDOR "The Plexor developers")
set(CPACK_PACKAGE_CONTACT "The Plexor developers")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY ${PROJECT_DESCRIPTION})
set(CPACK_PACKAGE_DESCRIPTION
    "Plexor reads a list of links and writes the k-clique communities of the network\
 as plain text files: groups of densely connected nodes that may share members.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
# The packages that the program's shared libraries come from, asked of dpkg-shlibdeps.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
include(CPack)
