#!/bin/sh
# SPDX-License-Identifier: MIT
# Which lines of src/ the tests run: builds the preset "coverage", runs all tests and prints a line
# for each source file, the total, and the lines that no test runs.
#   cmake/coverage.sh            everything
#   cmake/coverage.sh -L fast    arguments go to ctest
set -eu
cd "$(dirname "$0")/.."
. cmake/Need.sh
need g++ g++ cmake cmake make make gcov gcc /usr/include/gtest/gtest.h libgtest-dev

build=build/coverage
cmake --preset coverage >/dev/null
cmake --build --preset coverage
# Counts add up from run to run.
find "$build" -name '*.gcda' -delete
status=0
ctest --preset coverage "$@" || status=$?

echo
# A line of a header or a template stands in several outputs: it is run if one of them says so. The
# notes (gcno) are there for files, too, that no test runs at all.
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
            key = file SUBSEP number
            if (!(key in run)) {
                run[key] = 0
                lines[file]++
                texts[key] = text
                if (number > last[file]) { last[file] = number }
            }
            if (count !~ /^[#=]/ && !run[key]) {
                run[key] = 1
                covered[file]++
            }
        }
        END {
            for (file in lines) { print file | "sort >'"$build"'/files.txt" }
            close("sort >'"$build"'/files.txt")
            while ((getline file <"'"$build"'/files.txt") > 0) {
                printf "%6.1f%%  %4d of %4d  %s\n", 100 * covered[file] / lines[file], covered[file],
                    lines[file], file
                all += lines[file]
                all_covered += covered[file]
                for (number = 1; number <= last[file]; ++number) {
                    key = file SUBSEP number
                    if (key in run && !run[key]) {
                        missing = missing file ":" number ": " texts[key] "\n"
                    }
                }
            }
            if (all == 0) { print "no counts found"; exit 1 }
            printf "%6.1f%%  %4d of %4d  in all\n", 100 * all_covered / all, all_covered, all
            printf "\nLines that no test runs:\n%s", missing == "" ? "(none)\n" : missing
        }'
exit "$status"
