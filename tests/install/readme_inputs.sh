#!/bin/sh
# SPDX-License-Identifier: MIT
# The commands of the README's table "Other inputs", run as they are written there, must make a
# link file that the program reads as the same network; and the commands of "Load the results" must
# give what they promise.
#   readme_inputs.sh PROGRAM SOURCE-FOLDER WORK-FOLDER
set -eu
program=$1
source=$2
rm -rf "$3"
mkdir -p "$3/bin" "$3/build/release"
cd "$3"
ln -s "$program" bin/plexor
ln -s "$program" build/release/plexor
cp -R "$source/examples" examples
export PATH="$PWD/bin:$PATH" LC_ALL=C
failed=0
tested=0

# The command in the table row of that name.
command_for() {
    awk -v begin="| $1 | \`" '
        index($0, begin) == 1 {
            command = substr($0, length(begin) + 1)
            command = substr(command, 1, index(command, "`") - 1)
            gsub(/\\[|]/, "|", command)
            print command
            found = 1
        }
        END { if (!found) print "echo no such row" }' "$source/README.md"
}

# check ROW FILE INPUT EXPECTED: runs the command of the row on a file and compares net.txt.
check() {
    printf '%b' "$3" >"$2"
    rm -f net.txt
    sh -c "$(command_for "$1")"
    tested=$((tested + 1))
    if ! printf '%b' "$4" | cmp -s - net.txt; then
        echo "$1: net.txt is"
        cat net.txt
        failed=1
    fi
}

check 'commas or semicolons' links.csv 'ann,bob\nbob;cid\n' 'ann bob\nbob cid\n'
check '... and a header line' links.csv 'a,b,w\nann,bob,1\n' 'ann bob 1\n'
check 'quotes around names' links.txt '"ann" "bob"\n' 'ann bob\n'
check 'tabs between, blanks in names' links.tsv 'ann b\tbob\n' 'ann_b\tbob\n'
check 'a decimal comma (and no other commas)' links.txt 'ann bob 1,5\n' 'ann bob 1.5\n'
check 'more columns, names in the second and fourth' table.txt '7 ann x bob\n' 'ann bob\n'
check 'comments that begin with `%`' links.txt '% sym\nann bob\n' 'ann bob\n'
check 'blank lines' links.txt 'ann bob\n\n \t\nbob cid\n' 'ann bob\nbob cid\n'
check 'each pair twice, in both orders, and weights' links.txt \
    'ann bob 1\nbob ann 1\nann bob 2\n' 'ann bob 1\nann bob 2\n'

printf 'ann bob\nbob cid\nann cid\n' | gzip >net.txt.gz
sh -c "$(command_for 'a packed file')" >/dev/null
tested=$((tested + 1))
grep -q '^0: ann bob cid $' results/k=3/communities || failed=1

# Every command of the table that makes a file must have been tested here.
rows=$(sed -n '/^## Other inputs/,/^## /p' "$source/README.md" | grep -c '^| .* | `[a-z]* ')
if [ "$rows" -ne "$tested" ]; then
    echo "the README's table has $rows commands, $tested were tested"
    failed=1
fi

# The code blocks of "Load the results".
block() {
    sed -n '/^## Load the results/,/^## /p' "$source/README.md" |
        sed -n "/^\`\`\`$1\$/,/^\`\`\`\$/p" | sed -e 1d -e '$d'
}
plexor -i examples/us-airports.txt >log
tail -n 1 log | grep -q '^ Version ' || failed=1
block sh >load.sh
sh -eu load.sh
for line in 'Source,Target' 'BGR,BOS'; do
    grep -qx "$line" edges.csv || { echo "edges.csv lacks $line"; failed=1; }
done
for line in 'Id,Communities' 'BET,4 7 8 9' 'NUL,3'; do
    grep -qx "$line" nodes.csv || { echo "nodes.csv lacks $line"; failed=1; }
done
if command -v python3 >/dev/null; then
    block python >load.py
    [ "$(python3 load.py)" = "['FAI', 'NUL', 'GAL', 'HSL', 'KYU', 'RBY']" ] || failed=1
fi
if command -v Rscript >/dev/null; then
    block r >load.R
    echo 'cat(communities[["3"]], nrow(memberships), sum(memberships$node == "BET"), "\n")' >>load.R
    [ "$(Rscript load.R)" = 'FAI NUL GAL HSL KYU RBY 271 4 ' ] || { Rscript load.R; failed=1; }
fi
exit "$failed"
