#!/bin/sh
# SPDX-License-Identifier: MIT
# Builds the program, installs what the tests of the Python package need, and runs them.
#   tests/python/run.sh [pytest's arguments]
set -eu
cd "$(dirname "$0")/../.."
. cmake/Need.sh
# Debian's Python with Debian's packages, whatever other Python is first in the path.
python=/usr/bin/python3
packages=/usr/lib/python3/dist-packages
# shellcheck disable=SC2086
need $for_tests $python python3 \
    /usr/include/pybind11/pybind11.h pybind11-dev /usr/include/python3.11/Python.h python3-dev \
    $packages/numpy python3-numpy $packages/pandas python3-pandas $packages/scipy python3-scipy \
    $packages/networkx python3-networkx $packages/igraph python3-igraph $packages/tqdm python3-tqdm \
    $packages/distributed python3-distributed \
    $packages/matplotlib python3-matplotlib $packages/setuptools python3-setuptools \
    $packages/wheel python3-wheel /usr/lib/python3.11/ensurepip python3-venv \
    $packages/pytest python3-pytest $packages/mypy python3-mypy

# In the folder of the tests of the program, which has the engine already.
cmake --preset test -D PLEXOR_PYTHON=ON >/dev/null
cmake --build --preset test --target plexor plexor_python
PYTHONPATH=python $python -m mypy
PYTHONPATH=python exec $python -m pytest -q -p no:cacheprovider "$@"
