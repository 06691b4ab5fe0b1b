# SPDX-License-Identifier: MIT
# Run by CPack when the packages are there: takes out the scripts that CPack gives to every package
# with a library, for running ldconfig. The trigger does that, once for many packages.
foreach(package IN LISTS CPACK_PACKAGE_FILES)
    if(package MATCHES "/libplexor0_[^/]*[.]deb$")
        set(folder ${CPACK_TEMPORARY_DIRECTORY}/repack)
        file(REMOVE_RECURSE ${folder})
        execute_process(COMMAND dpkg-deb -R ${package} ${folder} COMMAND_ERROR_IS_FATAL ANY)
        file(REMOVE ${folder}/DEBIAN/postinst ${folder}/DEBIAN/postrm)
        execute_process(COMMAND dpkg-deb --root-owner-group -Zgzip -b ${folder} ${package}
            OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
    endif()
endforeach()
