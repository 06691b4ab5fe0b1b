# SPDX-License-Identifier: MIT
# Bash completion for plexor: the switches, files after -i, directories after -o.

_plexor() {
    local switches="-i -o -w -W -d -t -D -U -I -k -h"
    local current="${COMP_WORDS[COMP_CWORD]}"
    local previous="${COMP_WORDS[COMP_CWORD - 1]}"
    COMPREPLY=()
    case "$previous" in
    -i)
        compopt -o filenames 2>/dev/null
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
        ;;
    -o)
        compopt -o filenames 2>/dev/null
        mapfile -t COMPREPLY < <(compgen -d -- "$current")
        ;;
    -w | -W | -d | -t | -I | -k) ;; # a number: nothing to offer
    *)
        mapfile -t COMPREPLY < <(compgen -W "$switches" -- "$current")
        ;;
    esac
}

complete -F _plexor plexor
