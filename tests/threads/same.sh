#!/bin/bash
# SPDX-License-Identifier: MIT
# Whether runs with 1, 2, 3 and 8 threads leave and print what the program does, byte for byte.
#   same.sh PLEXOR PLEXOR_THREADS NETWORKS [NAME [SWITCH...]]
# NETWORKS is a folder of link files (.txt, .txt.gz). Without a NAME: the example networks, in every
# mode that has threads.
set -eu
plexor=$(realpath "$1") threaded=$(realpath "$2") networks=$(realpath "$3")
shift 3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
n_bad=0

# run DIR PROGRAM SWITCH...: the results are in DIR/, what was printed in DIR.txt.
run() {
    local dir=$1 program=$2
    shift 2
    "$program" -i net.txt -o out "$@" >"$dir.txt"
    mkdir "$dir"
    mv out* "$dir/"
}

compare() {
    local name=$1 n
    shift
    if [ -e "$networks/$name.txt.gz" ]; then
        zcat "$networks/$name.txt.gz" >net.txt
    else
        cp "$networks/$name.txt" net.txt
    fi
    run one "$plexor" "$@"
    for n in 1 2 3 8; do
        PLEXOR_TEST_THREADS=$n run several "$threaded" "$@"
        if ! diff -r one several >difference || ! cmp one.txt several.txt >>difference; then
            echo "DIFFERENT: $name $* with $n threads"
            head -5 difference
            n_bad=$((n_bad + 1))
        fi
        rm -r several several.txt
    done
    echo "compared: $name $* ($(find one -type f | wc -l) files)"
    rm -r one one.txt
}

if [ $# -gt 0 ]; then
    compare "$@"
else
    compare us-airports
    compare us-airports -D
    compare us-airports -w 1000 -W 50000
    compare us-airports -I 30000 -w 20000
    compare us-airports -t 100 -D
    compare us-airports -k 7
    compare github -k 15
    compare uk-faculty
    compare uk-faculty -D
    compare uk-faculty -I 2
fi
[ "$n_bad" = 0 ]
