#!/bin/sh
# SPDX-License-Identifier: MIT
# Builds Plexor and runs every test, installing what that needs.
#   ./test.sh          the release code by GCC and by Clang, the Python package, plexor-tool,
#                      the pages in a browser, the sanitizers
#   ./test.sh quick    the release code by GCC only
set -eu
cd "$(dirname "$0")"
. cmake/Need.sh
need g++ g++ cmake cmake make make bash bash pkg-config pkg-config \
    /usr/include/gtest/gtest.h libgtest-dev /usr/include/gmock/gmock.h libgmock-dev

# Says every 20 seconds that what was said before is still going on, until this shell ends.
say_still() {
    while sleep 20 >/dev/null 2>&1 && kill -0 $$ 2>/dev/null; do
        echo "   ... still: $1 ($(date +%T))"
    done
}

run_preset() {
    echo "== $1"
    cmake --preset "$1" >/dev/null
    say_still "$1" &
    still=$!
    trap 'kill "$still" 2>/dev/null || true' EXIT
    cmake --build --preset "$1"
    ctest --preset "$1"
    kill "$still" 2>/dev/null || true
}

run_preset test
if [ "${1:-}" = quick ]; then
    exit 0
fi
run_script() {
    echo "== $1"
    say_still "$1" &
    still=$!
    trap 'kill "$still" 2>/dev/null || true' EXIT
    "$1"
    kill "$still" 2>/dev/null || true
}

run_script tests/python/run.sh
run_script tests/tool/run.sh
run_script tests/page/run.sh
need clang++ clang clang-format clang-format
find src python/src tests bench -name '*.cpp' -o -name '*.h' | xargs clang-format --dry-run --Werror
run_preset test-clang
run_preset asan-ubsan
