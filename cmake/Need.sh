# SPDX-License-Identifier: MIT
# Installs what is missing. To be sourced; needs root or sudo only when something is missing.
#   need COMMAND-OR-FILE PACKAGE [COMMAND-OR-FILE PACKAGE ...]
#   need $for_tests          what the presets with tests need, but for Clang
#   say_still WHAT           says every 20 seconds that this is still going on, until
#   say_no_more              or until the script has ended
# And lets builds and tests use all processors, unless the environment says how many.

# shellcheck disable=SC2034
for_tests="g++ g++ cmake cmake make make bash bash pkg-config pkg-config
    /usr/include/gtest/gtest.h libgtest-dev /usr/include/gmock/gmock.h libgmock-dev"

say_still() {
    while sleep 20 >/dev/null 2>&1 && kill -0 $$ 2>/dev/null; do
        echo "   ... still: $1 ($(date +%T))"
    done &
    still=$!
}

say_no_more() {
    kill "$still" 2>/dev/null || true
}

# Without recommended packages. The lists of what there is are renewed when it fails.
install_packages() {
    if ! $as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -q \
        --no-install-recommends "$@" >/dev/null 2>&1; then
        $as_root apt-get update -q &&
            $as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -q \
                --no-install-recommends "$@"
    fi
}

need() {
    missing=""
    while [ $# -gt 1 ]; do
        case "$1" in
        /*) [ -e "$1" ] || missing="$missing $2" ;;
        *) command -v "$1" >/dev/null 2>&1 || missing="$missing $2" ;;
        esac
        shift 2
    done
    [ -z "$missing" ] && return 0
    as_root=""
    [ "$(id -u)" -eq 0 ] || as_root="sudo"
    for tool in $as_root apt-get; do
        if ! command -v "$tool" >/dev/null 2>&1; then
            echo "Please install these packages (Debian's names) and start again:$missing" >&2
            exit 1
        fi
    done
    echo "Installing:$missing"
    say_still "installing"
    # shellcheck disable=SC2086
    install_packages $missing || { say_no_more; exit 1; }
    say_no_more
}

processors=$(nproc 2>/dev/null || echo 1)
: "${CMAKE_BUILD_PARALLEL_LEVEL:=$processors}" "${CTEST_PARALLEL_LEVEL:=$processors}"
export CMAKE_BUILD_PARALLEL_LEVEL CTEST_PARALLEL_LEVEL
