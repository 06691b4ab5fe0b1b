# SPDX-License-Identifier: MIT
# Run by CPack between staging and packing: adds what belongs in a Debian package alone, and gives
# every file a time that does not depend on the build. With SOURCE_DATE_EPOCH in the environment
# the time is that one, and two builds of the same source have the same bytes.
if(NOT CPACK_GENERATOR STREQUAL "DEB")
    return()
endif()
# One package is staged in the temporary directory itself, components each in a folder of it.
file(GLOB_RECURSE licences ${CPACK_TEMPORARY_DIRECTORY}/copyright)
foreach(licence IN LISTS licences)
    cmake_path(GET licence PARENT_PATH doc_dir)
    cmake_path(GET doc_dir FILENAME package)
    cmake_path(SET share NORMALIZE ${doc_dir}/../..)
    if(EXISTS ${share}/zsh/site-functions) # where Zsh looks below /usr/local
        file(RENAME ${share}/zsh/site-functions ${share}/zsh/vendor-completions)
    endif()
    cmake_path(GET CPACK_PLEXOR_DEBIAN_CHANGELOG FILENAME changelog)
    file(COPY_FILE ${CPACK_PLEXOR_DEBIAN_CHANGELOG} ${doc_dir}/${changelog})
    # The texts of the program are in its package and in that of Python.
    set(parts all)
    if(package MATCHES "^(plexor|python3-plexor)$")
        list(APPEND parts texts)
    endif()
    if(package STREQUAL "plexor")
        list(APPEND parts manual)
    endif()
    set(overrides)
    foreach(part IN LISTS parts)
        file(READ ${CPACK_PLEXOR_OVERRIDES}.${part} text)
        string(APPEND overrides "${text}")
    endforeach()
    string(REPLACE "plexor:" "${package}:" overrides "${overrides}")
    file(WRITE ${share}/lintian/overrides/${package} "${overrides}")
endforeach()
# What CPack's stripping leaves: the names of compilers.
file(GLOB_RECURSE compiled LIST_DIRECTORIES false ${CPACK_TEMPORARY_DIRECTORY}/*)
list(FILTER compiled INCLUDE REGEX "/bin/plexor$|[.]so([.][0-9]+)*$|[.]a$")
foreach(file IN LISTS compiled)
    if(NOT IS_SYMLINK ${file})
        execute_process(COMMAND strip --strip-unneeded --enable-deterministic-archives
                --remove-section=.comment --remove-section=.note ${file}
            COMMAND_ERROR_IS_FATAL ANY)
    endif()
endforeach()
set(time now)
if(DEFINED ENV{SOURCE_DATE_EPOCH})
    set(time "@$ENV{SOURCE_DATE_EPOCH}")
endif()
execute_process(
    COMMAND find ${CPACK_TEMPORARY_DIRECTORY} -type d -exec chmod 0755 "{}" +
    COMMAND_ERROR_IS_FATAL ANY)
execute_process(
    COMMAND find ${CPACK_TEMPORARY_DIRECTORY} -type f -not -perm -100 -exec chmod 0644 "{}" +
    COMMAND_ERROR_IS_FATAL ANY)
execute_process(
    COMMAND find ${CPACK_TEMPORARY_DIRECTORY} -exec touch --no-dereference "--date=${time}" "{}" +
    COMMAND_ERROR_IS_FATAL ANY)
