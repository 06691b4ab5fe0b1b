#!/bin/sh
# SPDX-License-Identifier: MIT
# Installs what the tests of the pages need, builds the program where it is not built, and runs them:
# first what makes the pages (pytest), then the pages in a real browser without a window.
#   tests/page/run.sh            all
#   tests/page/run.sh python     without a browser
#   tests/page/run.sh browser    in the browser only
set -eu
cd "$(dirname "$0")/../.."
. cmake/Need.sh
python=/usr/bin/python3
packages=/usr/lib/python3/dist-packages
need g++ g++ cmake cmake make make $python python3 $packages/numpy python3-numpy \
    $packages/pytest python3-pytest parallel parallel snakemake snakemake \
    $packages/distributed python3-distributed
if [ -z "${PLEXOR:-}" ]; then
    for preset in test release; do
        [ -x "build/$preset/plexor" ] && PLEXOR="$PWD/build/$preset/plexor"
    done
fi
if [ -z "${PLEXOR:-}" ]; then
    cmake --preset release >/dev/null
    cmake --build --preset release
    PLEXOR="$PWD/build/release/plexor"
fi
PYTHONPATH="$PWD/python"
PYTHONDONTWRITEBYTECODE=1
export PLEXOR PYTHONPATH PYTHONDONTWRITEBYTECODE

if [ "${1:-}" != browser ]; then
    $python -m pytest -q -p no:cacheprovider tests/page
fi
if [ "${1:-}" != python ]; then
    need node nodejs npm npm /usr/bin/chromium chromium
    # Only once: the folder is as the lock file says when its copy there is the same.
    if ! cmp -s web/package-lock.json web/node_modules/.plexor-lock; then
        (cd web && npm ci --no-audit --no-fund)
        cp web/package-lock.json web/node_modules/.plexor-lock
    fi
    (cd web && node_modules/.bin/tsc --noEmit -p .)
    rm -rf build/page-tests
    $python tests/page/make_pages.py build/page-tests
    node --test tests/page/report.test.mjs tests/page/other_pages.test.mjs
fi
