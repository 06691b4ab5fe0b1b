# SPDX-License-Identifier: MIT
# Runs one golden case and compares everything it leaves with what is expected, byte for byte.
#
# A case is a folder:
#   about      one line: which rule it pins
#   cmd        a shell script, run in a fresh copy of input/. There `plexor` is the program,
#              `plexor_fake_clock` the one whose clock advances by $PLEXOR_FAKE_CLOCK_STEP
#              microseconds per reading, and $EXAMPLES the folder of example networks
#   input/     what is there before the run (may be missing)
#   expected/  stdout, tree/: what is there afterwards, and empty_directories: those that hold
#              nothing, which version control would forget. The run's directory is written @DIR@.
#              A case with an empty file `large` has stdout.sum and tree.sum instead: checksums.
# With PLEXOR_BLESS=1 in the environment the expected files are rewritten instead; read the diff.

# Headers show the directory as the system names it, free of symbolic links.
file(MAKE_DIRECTORY ${WORK})
file(REAL_PATH ${WORK} WORK)
set(run ${WORK}/run)
set(actual ${WORK}/actual)
file(REMOVE_RECURSE ${run} ${actual} ${WORK}/bin)
file(MAKE_DIRECTORY ${run} ${actual} ${WORK}/bin)
if(EXISTS ${CASE}/input)
    file(COPY ${CASE}/input/ DESTINATION ${run})
endif()

# The usage and the help show the program's name as it was typed: it is found by PATH, so that they
# are the same everywhere.
file(CREATE_LINK ${PROGRAM} ${WORK}/bin/plexor SYMBOLIC)
file(CREATE_LINK ${FAKE_CLOCK_PROGRAM} ${WORK}/bin/plexor_fake_clock SYMBOLIC)
set(ENV{PATH} "${WORK}/bin:$ENV{PATH}")
set(ENV{EXAMPLES} ${EXAMPLES})
set(ENV{LC_ALL} C)
execute_process(COMMAND sh -e ${CASE}/cmd WORKING_DIRECTORY ${run}
    OUTPUT_FILE ${actual}/stdout ERROR_FILE ${WORK}/stderr RESULT_VARIABLE status)
file(SIZE ${WORK}/stderr stderr_size)
if(NOT status EQUAL 0 OR stderr_size GREATER 0)
    execute_process(COMMAND cat ${WORK}/stderr)
    message(FATAL_ERROR "exit status ${status}; 0 and an empty standard error are required")
endif()

# A step of the comparison itself; a failure here is no difference but a broken test. The script must
# not hold a ";", at which its argument would be cut.
function(must)
    execute_process(COMMAND sh -ec ${ARGN} RESULT_VARIABLE status)
    if(NOT status EQUAL 0)
        message(FATAL_ERROR "the golden case cannot be compared")
    endif()
endfunction()

file(RENAME ${run} ${actual}/tree)
string(REGEX REPLACE "([].\\*^$|[])" "\\\\\\1" pattern "${run}")
must("find . -type f -exec sed -i 's|${pattern}|@DIR@|g' {} +" WORKING_DIRECTORY ${actual})
must("find tree -type d -empty | sort >empty_directories
      find tree -type d -empty -delete
      [ -s empty_directories ] || rm empty_directories" WORKING_DIRECTORY ${actual})
if(EXISTS ${CASE}/large)
    must("sha256sum <stdout >stdout.sum
          rm stdout
          cd tree
          find . -type f | sort | xargs -d '\\n' sha256sum >../tree.sum
          rm -r ../tree" WORKING_DIRECTORY ${actual})
endif()

if("$ENV{PLEXOR_BLESS}")
    file(REMOVE_RECURSE ${CASE}/expected)
    file(COPY ${actual}/ DESTINATION ${CASE}/expected)
    return()
endif()
execute_process(COMMAND diff -r --text --no-dereference ${CASE}/expected ${actual}
    RESULT_VARIABLE differs OUTPUT_FILE ${WORK}/diff)
if(NOT differs EQUAL 0)
    execute_process(COMMAND sh -c "head -n 60 ${WORK}/diff | cat -A")
    message(FATAL_ERROR "the run differs from what is expected ('<' expected, '>' found)")
endif()
