# SPDX-License-Identifier: MIT
# The usage text, the detailed help, the manual page, the README's table and the completion must
# name the same switches. The usage text is what the program itself says, so the others are
# compared with it.

# Every first group of the pattern in the text, sorted, each once.
function(switches_in text pattern result)
    set(found)
    string(REGEX MATCHALL "${pattern}" matches "${text}")
    foreach(match IN LISTS matches)
        string(REGEX REPLACE "${pattern}" "\\1" name "${match}")
        list(APPEND found ${name})
    endforeach()
    list(REMOVE_DUPLICATES found)
    list(SORT found CASE SENSITIVE)
    set(${result} "${found}" PARENT_SCOPE)
endfunction()

function(must_be_same what found expected)
    if(NOT "${found}" STREQUAL "${expected}")
        message(SEND_ERROR "${what} names the switches\n  ${found}\nthe usage text\n  ${expected}")
    endif()
endfunction()

execute_process(COMMAND ${PROGRAM} OUTPUT_VARIABLE usage)
switches_in("${usage}" "\n  -([a-zA-Z]) " of_usage)
list(LENGTH of_usage n_switches)
if(n_switches LESS 2)
    message(FATAL_ERROR "no switches found in the usage text:\n${usage}")
endif()

# The detailed help is what -h shows: it speaks of all others.
execute_process(COMMAND ${PROGRAM} -h OUTPUT_VARIABLE help)
string(REGEX REPLACE "-(files|clique)" "" help "${help}")
switches_in("${help}" "[ \n]-([a-zA-Z])[^a-zA-Z]" of_help)
set(others ${of_usage})
list(REMOVE_ITEM others h)
must_be_same("the detailed help" "${of_help}" "${others}")

file(READ ${MAN_PAGE} man_page)
string(REGEX REPLACE ".*\n\\.SH OPTIONS\n(.*)\n\\.SH FILES\n.*" "\\1" options "${man_page}")
switches_in("${options}" "\\.TP\n\\.BI? \"?\\\\-([a-zA-Z])" of_man_page)
must_be_same("the manual page" "${of_man_page}" "${of_usage}")
string(REGEX REPLACE ".*\n\\.SH SYNOPSIS\n(.*)\n\\.SH DESCRIPTION\n.*" "\\1" synopsis "${man_page}")
switches_in("${synopsis}" "\\\\-([a-zA-Z])" of_synopsis)
must_be_same("the synopsis of the manual page" "${of_synopsis}" "${of_usage}")

file(READ ${README} readme)
switches_in("${readme}" "\n\\| `-([a-zA-Z])[^|]*\\|" of_readme)
must_be_same("the table of the README" "${of_readme}" "${of_usage}")

# What Bash offers after `plexor -`.
execute_process(
    COMMAND ${BASH} -c
        "source \"$1\"; COMP_WORDS=(plexor -); COMP_CWORD=1; _plexor; printf '\\n%s' \"\${COMPREPLY[@]}\""
        bash ${COMPLETIONS}/plexor.bash
    OUTPUT_VARIABLE completion)
switches_in("${completion}" "\n-([a-zA-Z])" of_completion)
must_be_same("the completion for Bash" "${of_completion}" "${of_usage}")

# The other shells may not be there: their files are read.
file(READ ${COMPLETIONS}/_plexor of_zsh)
switches_in("${of_zsh}" "[')]-([a-zA-Z])" of_zsh)
file(READ ${COMPLETIONS}/plexor.fish of_fish)
switches_in("${of_fish}" "\ncomplete -c plexor -o ([a-zA-Z]) " of_fish)
must_be_same("the completion for Zsh" "${of_zsh}" "${of_usage}")
must_be_same("the completion for fish" "${of_fish}" "${of_usage}")
