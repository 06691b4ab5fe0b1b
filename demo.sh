#!/bin/sh
# SPDX-License-Identifier: MIT
# Builds Plexor, installing what that needs, and runs it on a real network.
set -eu
cd "$(dirname "$0")"
. cmake/Need.sh
need g++ g++ cmake cmake make make /usr/bin/python3 python3 \
    /usr/lib/python3/dist-packages/numpy python3-numpy

echo "== Building Plexor"
cmake --preset release >/dev/null
cmake --build --preset release

network=examples/us-airports.txt
results=build/demo/us-airports
rm -rf "$results"
mkdir -p build/demo
echo
echo "== Running: build/release/plexor -i $network -o $results"
build/release/plexor -i "$network" -o "$results" >build/demo/output.txt
tail -n 12 build/demo/output.txt

k=6
echo
echo "== The communities of airports at k=$k ($results/k=$k/communities)"
cut -c1-76 "$results/k=$k/communities"
echo
echo "== How many communities there are at each k"
for dir in $(ls -d "$results"/k=* | sort -t= -k2 -n); do
    printf '%-6s %s\n' "$(basename "$dir")" "$(grep -c '^[0-9]' "$dir/communities")"
done
echo
echo "== A page to look at"
PYTHONPATH=python /usr/bin/python3 -c "
import plexor
from plexor.report import write_report
write_report(plexor.load('$results'), '$results.html', title='US airports, December 2010')"
echo "Open $results.html with any browser: xdg-open $results.html"
echo
echo "All results are in $results (the README says what each file holds);"
echo "what the run printed is in build/demo/output.txt."
