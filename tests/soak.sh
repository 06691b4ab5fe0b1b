#!/bin/sh
# SPDX-License-Identifier: MIT
# Looks for what no fixed test has met: random cases with seeds that have not been used before, one
# round after the other, until the time is over or something fails.
#   tests/soak.sh               an hour
#   tests/soak.sh MINUTES [SEED]
# A round compares the program with the plain model (small cases, limits that a coin lets strike,
# networks of thousands of nodes), runs it in random directory trees, and goes through the faults.
# Each round says its seed; `tests/soak.sh 0 SEED` repeats it. The time only says when to stop.
set -eu
cd "$(dirname "$0")/.."
. cmake/Need.sh
# shellcheck disable=SC2086
need $for_tests
minutes=${1:-60}
# Above those of the fixed tests, which are small, and within 32 bits.
seed=${2:-$(($(date +%s) % 4000000000 + 100000000))}

cmake --preset test >/dev/null
cmake --build --preset test --target plexor plexor_fake_clock differential random_trees \
    lost_terminal size_48 gone_between no_threads plexor_threads
build=build/test

# The last line of what the command says, or all of it when it fails.
judged() {
    if "$@" >"$build/soak.log" 2>&1; then
        tail -n 1 "$build/soak.log"
    else
        cat "$build/soak.log"
        echo "FAILED: $*"
        exit 1
    fi
}

end=$(($(date +%s) + 60 * minutes))
round=0
while :; do
    round=$((round + 1))
    echo "== round $round, seed $seed ($(date +%T))"
    judged "$build/tests/model/differential" --program "$build/plexor" \
        --fake-clock-program "$build/tests/model/plexor_fake_clock" \
        --cases 4000 --coin-cases 1000 --large-cases 20 --seed "$seed" --keep "$build/soak"
    judged "$build/tests/fuzz/random_trees" --program "$build/plexor" --seed "$seed" --runs 1000
    judged ctest --preset test -R '^faults/'
    [ "$(date +%s)" -ge "$end" ] && break
    seed=$((seed + 4000))
done
echo "$round rounds without a failure"
