# SPDX-License-Identifier: MIT
# Run by CPack when the packages are there: makes them again by Debian's own tool, whose bytes do not
# depend on the builder's umask, and takes out the scripts that CPack gives to every package with a
# library, for running ldconfig. The trigger does that, once for many packages.
foreach(package IN LISTS CPACK_PACKAGE_FILES)
    set(folder ${CPACK_TEMPORARY_DIRECTORY}/repack)
    file(REMOVE_RECURSE ${folder})
    execute_process(COMMAND dpkg-deb -R ${package} ${folder} COMMAND_ERROR_IS_FATAL ANY)
    if(package MATCHES "/libplexor0_[^/]*[.]deb$")
        file(REMOVE ${folder}/DEBIAN/postinst ${folder}/DEBIAN/postrm)
    endif()
    execute_process(COMMAND chmod 0755 ${folder} ${folder}/DEBIAN COMMAND_ERROR_IS_FATAL ANY)
    execute_process(COMMAND dpkg-deb --root-owner-group -Zxz -b ${folder} ${package}
        OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
endforeach()
