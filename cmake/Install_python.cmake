# SPDX-License-Identifier: MIT
# The Debian package python3-plexor: the Python package with its compiled module, plexor-tool with
# its manual pages and completions, pages and examples. Part of no `cmake --install` by itself:
# elsewhere pip installs the same.
set(plexor_python_package python3-plexor)
set(plexor_site_dir lib/python3/dist-packages)
set(plexor_python_doc_dir ${CMAKE_INSTALL_DATAROOTDIR}/doc/${plexor_python_package})

set(for_python COMPONENT ${plexor_python_package} EXCLUDE_FROM_ALL)

install(TARGETS plexor_python LIBRARY DESTINATION ${plexor_site_dir}/plexor ${for_python})
install(DIRECTORY python/plexor DESTINATION ${plexor_site_dir} ${for_python} FILES_MATCHING
    PATTERN "*.py" PATTERN "*.pyi" PATTERN "py.typed" PATTERN "*.json" PATTERN "static/*"
    PATTERN __pycache__ EXCLUDE)
# Name, version and entry points, from pyproject.toml by setuptools itself.
set(plexor_metadata_dir ${PROJECT_BINARY_DIR}/python-metadata)
install(CODE "
    file(REMOVE_RECURSE \"${plexor_metadata_dir}\")
    file(MAKE_DIRECTORY \"${plexor_metadata_dir}\")
    execute_process(WORKING_DIRECTORY \"${PROJECT_SOURCE_DIR}\" OUTPUT_QUIET ERROR_QUIET
        COMMAND \"${Python_EXECUTABLE}\" setup.py dist_info --output-dir \"${plexor_metadata_dir}\"
        COMMAND_ERROR_IS_FATAL ANY)
    set(made \"${plexor_metadata_dir}/plexor-${PROJECT_VERSION}.dist-info\")
    file(REMOVE \"\${made}/LICENSE\")
    file(WRITE \"\${made}/INSTALLER\" \"debian\\n\")" ${for_python})
install(DIRECTORY ${plexor_metadata_dir}/plexor-${PROJECT_VERSION}.dist-info
    DESTINATION ${plexor_site_dir} ${for_python})

install(PROGRAMS packaging/debian/plexor-tool DESTINATION ${CMAKE_INSTALL_BINDIR} ${for_python})
file(GLOB plexor_tool_pages CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR}/docs/man
    docs/man/plexor-tool*.1)
foreach(page IN LISTS plexor_tool_pages)
    plexor_pack(${PROJECT_SOURCE_DIR}/docs/man/${page} ${page} packed_page)
    install(FILES ${packed_page} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 ${for_python})
endforeach()
install(FILES packaging/completion/plexor-tool
    DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/bash-completion/completions ${for_python})
install(FILES packaging/completion/_plexor-tool
    DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/zsh/site-functions ${for_python})
install(FILES packaging/completion/plexor-tool.fish
    DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/fish/vendor_completions.d ${for_python})

# The pages hold code of others: its licences belong to ours.
file(READ LICENSE plexor_licence)
file(READ python/plexor/report/static/LICENCES.txt plexor_licences_of_others)
file(WRITE ${plexor_packed_dir}/copyright-python "${plexor_licence}\n${plexor_licences_of_others}")
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS
    LICENSE python/plexor/report/static/LICENCES.txt)
install(FILES ${plexor_packed_dir}/copyright-python
    DESTINATION ${plexor_python_doc_dir} RENAME copyright ${for_python})
install(FILES ${plexor_changelog} DESTINATION ${plexor_python_doc_dir} ${for_python})
install(FILES docs/python.md docs/formats-in-and-out.md docs/report.md docs/many-machines.md
    docs/report-page.png DESTINATION ${plexor_python_doc_dir}/docs ${for_python})
install(FILES examples/README.md examples/us-airports.txt examples/uk-faculty.txt
    DESTINATION ${plexor_python_doc_dir}/examples ${for_python})

list(APPEND CPACK_COMPONENTS_ALL ${plexor_python_package})
set(CPACK_DEBIAN_PYTHON3-PLEXOR_PACKAGE_NAME ${plexor_python_package})
set(CPACK_DEBIAN_PYTHON3-PLEXOR_PACKAGE_SECTION python)
# The compiled module is for one version of Python.
math(EXPR plexor_next_python "${Python_VERSION_MINOR} + 1")
set(CPACK_DEBIAN_PYTHON3-PLEXOR_PACKAGE_DEPENDS
    "python3 (>= 3.${Python_VERSION_MINOR}~), python3 (<< 3.${plexor_next_python}), python3:any, python3-numpy (>= 1:1.24)")
set(CPACK_DEBIAN_PYTHON3-PLEXOR_PACKAGE_RECOMMENDS
    "python3-networkx, python3-pandas, python3-scipy, python3-tqdm")
set(CPACK_DEBIAN_PYTHON3-PLEXOR_PACKAGE_SUGGESTS
    "plexor, python3-distributed, python3-igraph, python3-matplotlib")
set(CPACK_COMPONENT_PYTHON3-PLEXOR_DESCRIPTION
"The engine of plexor for networks that are in Python already: arrays, data
frames, graphs of NetworkX, igraph or SciPy; and plexor-tool, which checks and
converts network files of many formats, runs the search on them, exports the
results for other programs, makes pages to look at, tries thresholds and
compares results.")
# Modules are compiled to byte code when they are installed, as Debian has it.
set(CPACK_DEBIAN_PYTHON3-PLEXOR_PACKAGE_CONTROL_EXTRA
    "${PROJECT_SOURCE_DIR}/packaging/debian/python/postinst;${PROJECT_SOURCE_DIR}/packaging/debian/python/prerm")
set(CPACK_DEBIAN_PYTHON3-PLEXOR_PACKAGE_CONTROL_STRICT_PERMISSION TRUE)
