#!/bin/sh
# SPDX-License-Identifier: MIT
# Builds Plexor and runs its tests, installing what that needs.
#   ./test.sh          the release code by GCC and by Clang, the Python package, plexor-tool,
#                      the pages in a browser, the sanitizers
#   ./test.sh quick    the release code by GCC only
#   ./test.sh long     what takes hours: more random cases, other presets, larger networks, a soak
# How long they take is in docs/testing.md.
set -eu
cd "$(dirname "$0")"
. cmake/Need.sh
# shellcheck disable=SC2086
need $for_tests

# step WHAT COMMAND...: runs the command, saying what it is and, at the end, how long it took.
step() {
    what=$1
    shift
    echo "== $what"
    begin=$(date +%s)
    say_still "$what"
    trap say_no_more EXIT
    "$@"
    say_no_more
    echo "== $what: $(($(date +%s) - begin)) s"
}

run_preset() {
    cmake --preset "$1" >/dev/null
    cmake --build --preset "$1"
    ctest --preset "$1"
}

check_format() {
    find src python/src tests bench -name '*.cpp' -o -name '*.h' |
        xargs clang-format --dry-run --Werror
}

case "${1:-}" in
"")
    step test run_preset test
    step tests/python/run.sh tests/python/run.sh
    step tests/tool/run.sh tests/tool/run.sh
    step tests/page/run.sh tests/page/run.sh
    need clang++ clang clang-format clang-format \
        /usr/share/doc/libclang-rt-14-dev/copyright libclang-rt-14-dev
    step clang-format check_format
    step test-clang run_preset test-clang
    step asan-ubsan run_preset asan-ubsan
    ;;
quick)
    step test run_preset test
    ;;
long)
    export PLEXOR_TEST_ROUNDS=10
    if [ -n "${PLEXOR_DATA:-}" ]; then
        cmake --preset test -D PLEXOR_DATA="$PLEXOR_DATA" >/dev/null
    fi
    step test run_preset test
    if [ -n "${PLEXOR_DATA:-}" ]; then
        step "pages of larger networks" tests/page/run.sh
    fi
    step portable run_preset portable
    step checked run_preset checked
    step tsan run_preset tsan
    step "100,000 small and 300 large runs beside the plain model" \
        build/test/tests/model/differential --program build/test/plexor \
        --fake-clock-program build/test/tests/model/plexor_fake_clock \
        --cases 100000 --large-cases 300 --seed 1000000 --keep build/test/kept
    step "an hour of new random cases" tests/soak.sh 60
    ;;
*)
    sed -n 's/^#   //p' "$0" >&2
    exit 2
    ;;
esac
