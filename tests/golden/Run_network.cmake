# SPDX-License-Identifier: MIT
# Runs one network with every set of switches that networks.sums has for it and compares the
# checksum of all that a run prints and writes. A line there is
#     CHECKSUM  NETWORK SWITCHES...
# and the checksum is that of the list of the files' own, sorted by name. The run's directory, which
# the first two lines of a file may show, is written @DIR@ first.
# With PLEXOR_BLESS=1 in the environment the lines are rewritten instead; read the diff.
file(STRINGS ${SUMS} lines REGEX "^[0-9a-f]+  ${NETWORK}( |$)")
foreach(line IN LISTS lines)
    string(REGEX REPLACE "^[0-9a-f]+  [^ ]+ ?" "" switches "${line}")
    file(REMOVE_RECURSE ${WORK})
    file(MAKE_DIRECTORY ${WORK}/run)
    file(REAL_PATH ${WORK}/run run) # as headers show it, free of symbolic links
    execute_process(WORKING_DIRECTORY ${run} RESULT_VARIABLE status
        OUTPUT_VARIABLE sum ERROR_VARIABLE errors OUTPUT_STRIP_TRAILING_WHITESPACE
        COMMAND env LC_ALL=C sh -ec [[
            program=$1 data=$2 network=$3 switches=$4 run=$PWD
            if [ -e "$data/$network.txt" ]; then
                cp "$data/$network.txt" .
            else
                zcat "$data/$network.txt.gz" >"$network.txt"
            fi
            "$program" -i "$network.txt" $switches >stdout
            rm -f "$network.txt"
            find . -type f | sort | while IFS= read -r file; do
                printf '%s %s\n' "$(sed "1,2s|$run|@DIR@|" "$file" | sha256sum)" "$file"
            done | sha256sum | cut -d ' ' -f 1]]
        sh ${PROGRAM} ${DATA} ${NETWORK} "${switches}")
    file(REMOVE_RECURSE ${WORK})
    if(NOT status EQUAL 0 OR errors)
        message(FATAL_ERROR "'${NETWORK} ${switches}' failed with status ${status}\n${errors}")
    endif()
    string(REGEX REPLACE "^[0-9a-f]+" "${sum}" found "${line}")
    if(found STREQUAL line)
        message(STATUS "as expected: ${line}")
    elseif("$ENV{PLEXOR_BLESS}")
        file(LOCK ${WORK}/.. DIRECTORY) # other networks may be blessed at the same time
        file(READ ${SUMS} all)
        string(REPLACE "${line}\n" "${found}\n" all "${all}")
        file(WRITE ${SUMS} "${all}")
        file(LOCK ${WORK}/.. DIRECTORY RELEASE)
    else()
        message(SEND_ERROR "the run differs\n  expected ${line}\n  found    ${found}")
    endif()
endforeach()
