#!/bin/sh
# SPDX-License-Identifier: MIT
# Builds the program, installs what the tests of plexor-tool need, and runs them.
#   tests/tool/run.sh [pytest's arguments]
set -eu
cd "$(dirname "$0")/../.."
. cmake/Need.sh
# Debian's Python with Debian's packages, whatever other Python is first in the path.
python=/usr/bin/python3
packages=/usr/lib/python3/dist-packages
# shellcheck disable=SC2086
need $for_tests zsh zsh fish fish groff groff $python python3 \
    $packages/numpy python3-numpy $packages/scipy python3-scipy $packages/pandas python3-pandas \
    $packages/networkx python3-networkx $packages/igraph python3-igraph \
    $packages/distributed python3-distributed \
    $packages/lxml python3-lxml $packages/jsonschema python3-jsonschema \
    $packages/pytest python3-pytest $packages/hypothesis python3-hypothesis \
    $packages/mypy python3-mypy

# In the folder of the tests of the program, which has the engine already.
cmake --preset test -D PLEXOR_PYTHON=ON >/dev/null
cmake --build --preset test --target plexor plexor_python
PYTHONPATH=python $python -m mypy
PYTHONPATH=python exec $python -m pytest -q -p no:cacheprovider tests/tool "$@"
