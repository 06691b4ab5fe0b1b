#!/bin/sh
# SPDX-License-Identifier: MIT
# Which lines of src/ the tests run: builds the preset "coverage", runs all tests and prints a line
# for each source file, the total, and the lines that no test runs. Beside that stands what whole
# runs alone reach (golden cases and the comparison with the plain model), which judge the program
# by what users see.
#   cmake/coverage.sh            everything
#   cmake/coverage.sh -L fast    arguments go to ctest: what these tests run, without the comparison
set -eu
cd "$(dirname "$0")/.."
. cmake/Need.sh
need g++ g++ cmake cmake make make gcov gcc /usr/include/gtest/gtest.h libgtest-dev

build=build/coverage
whole_runs='^(golden/|differential)'
cmake --preset coverage >/dev/null
cmake --build --preset coverage
# Counts add up from run to run.
find "$build" -name '*.gcda' -delete

# Prints for each line with code: file, number, 1 if it was run and 0 if not, text; with tabs.
# A line of a header or a template stands in several outputs: it is run if one of them says so. The
# notes (gcno) are there for files, too, that no test runs at all.
lines_run() {
    find "$build" -name '*.gcno' -exec gcov --stdout {} + 2>/dev/null |
        awk -v root="$PWD/src/" '
            {
                line = $0
                first = index(line, ":")
                count = substr(line, 1, first - 1)
                line = substr(line, first + 1)
                second = index(line, ":")
                number = substr(line, 1, second - 1) + 0
                text = substr(line, second + 1)
                gsub(/[ *]/, "", count)
            }
            number == 0 && text ~ /^Source:/ {
                file = substr(text, 8)
                ours = index(file, root) == 1
                file = substr(file, length(root) + 1)
                next
            }
            !ours || number == 0 || count == "-" || first == 0 { next }
            {
                key = file "\t" number
                texts[key] = text
                if (count !~ /^[#=]/) { run[key] = 1 }
            }
            END { for (key in texts) { print key "\t" (key in run) "\t" texts[key] } }' |
        LC_ALL=C sort -t "$(printf '\t')" -k1,1 -k2,2n
}

status=0
if [ $# -eq 0 ]; then
    ctest --preset coverage -R "$whole_runs" || status=$?
    lines_run >"$build/whole-runs"
    ctest --preset coverage -E "$whole_runs" || status=$?
else
    ctest --preset coverage "$@" || status=$?
    : >"$build/whole-runs"
fi
lines_run >"$build/all-tests"

echo
awk -F '\t' -v whole_runs="$build/whole-runs" '
    BEGIN {
        while ((getline <whole_runs) > 0) {
            compared = 1
            if ($3) { by_whole_run[$1, $2] = 1 }
        }
        printf "   all tests%s\n", compared ? ", whole runs alone" : ""
    }
    function percent(part, of) { return sprintf("%6.1f%%", 100 * part / of) }
    function show(n, n_run, n_whole, name) {
        print percent(n_run, n) (compared ? percent(n_whole, n) : "") \
            sprintf("  %5d of %5d  %s", n_run, n, name)
    }
    function show_file() { if (n) { show(n, n_run, n_whole, file) } }
    $1 != file { show_file(); file = $1; n = n_run = n_whole = 0 }
    {
        ++n
        ++all
        if ($3) {
            ++n_run
            ++all_run
        } else {
            missing = missing $1 ":" $2 ": " $4 "\n"
        }
        if (($1, $2) in by_whole_run) {
            ++n_whole
            ++all_whole
        }
    }
    END {
        if (!all) { print "no counts found"; exit 1 }
        show_file()
        show(all, all_run, all_whole, "in all")
        printf "\nLines that no test runs:\n%s", missing == "" ? "(none)\n" : missing
    }' "$build/all-tests"
exit "$status"
