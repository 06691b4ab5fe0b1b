#!/bin/sh
# SPDX-License-Identifier: MIT
# Whether the Debian packages are as a distribution wants them: two builds of the source, in folders
# of different names and from files of different dates, give the same bytes; lintian has nothing to
# complain about; what is compiled is hardened; installed packages work, and purging them leaves
# nothing (root only).
#   packaging/check.sh [FOLDER]     builds below FOLDER, /tmp/plexor-package without one
set -eu
cd "$(dirname "$0")/.."
. cmake/Need.sh
packages=/usr/lib/python3/dist-packages
need g++ g++ cmake cmake make make dpkg-shlibdeps dpkg-dev file file gzip gzip lintian lintian \
    pkg-config pkg-config /usr/bin/python3 python3 /usr/include/pybind11/pybind11.h pybind11-dev \
    /usr/include/python3.11/Python.h python3-dev $packages/setuptools python3-setuptools \
    $packages/wheel python3-wheel $packages/numpy python3-numpy

work=${1:-/tmp/plexor-package}
rm -rf "$work"
SOURCE_DATE_EPOCH=$(dpkg-parsechangelog -l packaging/debian/changelog -S Timestamp)
export SOURCE_DATE_EPOCH
mkdir -p "$work"
git ls-files python/plexor | sed 's|^python/||' | sort >"$work/python-files"
one=$work/one
other=$work/another-folder-with-a-longer-name
for folder in "$one" "$other"; do # before the source changes
    mkdir -p "$folder"
    git ls-files -z | xargs -0 cp --parents -t "$folder"
done
for folder in "$one" "$other"; do
    echo "== Building in $folder"
    if [ "$folder" != "$one" ]; then
        find "$folder" -type f -exec touch --date='3 days ago' {} +
        umask 077
    fi
    say_still "building"
    (cd "$folder" && cmake --workflow --preset package) >"$work/log" 2>&1 ||
        { tail -n 40 "$work/log"; say_no_more; exit 1; }
    say_no_more
done
umask 022

cd "$work"
built=one/build/package
status=0
wrong() {
    echo "WRONG: $*"
    status=1
}
for name in plexor libplexor0 libplexor-dev python3-plexor; do
    package=$(ls $built/"$name"_*.deb)
    echo "== $(basename "$package"), $(wc -c <"$package") bytes"
    sha256sum "$package"
    cmp "$package" "$other/${package#one/}" || wrong "another build has other bytes"
    lintian --allow-root --fail-on error,warning "$package" || status=1
    # Read-only before the program begins, and nothing to be redirected afterwards.
    rm -rf unpacked
    dpkg-deb -x "$package" unpacked
    find unpacked -type f -exec sh -c 'head -c 4 "$1" | grep -q ELF' sh {} \; -print >compiled
    while read -r file; do
        echo "   $(readelf -hW "$file" | sed -n 's/ *Type: *//p'): ${file#unpacked}"
        readelf -lW "$file" | grep -q GNU_RELRO || wrong "$file: no relro"
        readelf -dW "$file" | grep -q 'BIND_NOW\|FLAGS.*NOW' || wrong "$file: no bindnow"
        readelf -lW "$file" | grep 'GNU_STACK' | grep -q RWE && wrong "$file: stack can be run"
        readelf -hW "$file" | grep -q 'Type: *DYN' || wrong "$file: not position-independent"
    done <compiled
done
[ "$status" -eq 0 ] && echo "reproducible, hardened, and nothing for lintian to complain about"

if [ "$(id -u)" -eq 0 ]; then
    echo "== Installing and purging"
    names=$(for package in $built/*.deb; do dpkg-deb -f "$package" Package; done)
    # shellcheck disable=SC2086
    if dpkg-query -W -f='${db:Status-Abbrev} ${Package}\n' $names 2>/dev/null | grep '^i'; then
        echo "installed already, so this cannot be tried"
        exit 1
    fi
    everything() {
        find /usr /etc /var -path "$work" -prune -o -ipath '*plexor*' -print | sort
    }
    everything >before
    dpkg -i $built/*.deb >dpkg.log 2>&1 || { cat dpkg.log; exit 1; }
    (
        cd /
        plexor -h | grep -q 'you must specify at least the' || wrong "plexor -h"
        ldconfig -p | grep -q 'libplexor[.]so[.]0 ' || wrong "the trigger has not called ldconfig"
        ls /usr/lib/python3/dist-packages/plexor/__pycache__/*.pyc >/dev/null ||
            wrong "no byte code"
        [ "$(plexor-tool --version)" = "plexor-tool $(dpkg-deb -f "$work"/$built/plexor_*.deb Version |
            sed 's/-.*//')" ] || wrong "plexor-tool --version"
        env -u PYTHONPATH /usr/bin/python3 -c '
import plexor
from importlib.metadata import entry_points
assert plexor.__file__ == "/usr/lib/python3/dist-packages/plexor/__init__.py", plexor.__file__
network = plexor.Network([0, 1, 0], [1, 2, 2])
assert [community.nodes for community in plexor.find_communities(network, 3)] == [[0, 1, 2]]
assert entry_points(group="networkx.backends")["plexor"].load()' || wrong "import plexor"
        exit "$status"
    ) || status=1
    # What pip would install, and nothing else.
    (
        cd /usr/lib/python3/dist-packages
        find plexor -type f ! -path '*/__pycache__/*' ! -name '_engine.*.so' | sort
    ) | diff "$work/python-files" - || wrong "these files of the Python package"
    # The commands of the pages, as a user would type them.
    mkdir try
    (
        cd try
        examples=/usr/share/doc/python3-plexor/examples
        plexor -i $examples/us-airports.txt -o by_plexor -k 6 >/dev/null
        plexor-tool run $examples/us-airports.txt -o by_tool -k 6 -q
        diff -r by_plexor by_tool
        plexor-tool report by_tool -q
        [ -s by_tool.html ]
        man -w plexor >/dev/null 2>&1 || ! command -v man >/dev/null
        # shellcheck disable=SC2046
        g++ -std=c++20 /usr/share/doc/libplexor-dev/examples/communities.cpp -o communities \
            $(pkg-config --cflags --libs plexor)
        ./communities | grep -q '^8 nodes, 18 links'
    ) || wrong "what is installed does not work together"
    # shellcheck disable=SC2086
    dpkg --purge $names >dpkg.log 2>&1 || { cat dpkg.log; status=1; }
    everything >after
    diff before after && echo "installed, tried and purged: nothing is left behind" || status=1
fi
[ "$status" -eq 0 ] && echo "all is well"
exit "$status"
