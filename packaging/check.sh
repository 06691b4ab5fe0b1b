#!/bin/sh
# SPDX-License-Identifier: MIT
# Whether the Debian package is as a distribution wants it: two builds of the source, in folders of
# different names and from files of different dates, give the same bytes; lintian has nothing to
# complain about; an installed package runs, and purging it leaves nothing (root only).
#   packaging/check.sh [FOLDER]     builds below FOLDER, /tmp/plexor-package without one
set -eu
cd "$(dirname "$0")/.."
. cmake/Need.sh
need g++ g++ cmake cmake make make dpkg-shlibdeps dpkg-dev file file gzip gzip lintian lintian

work=${1:-/tmp/plexor-package}
rm -rf "$work"
SOURCE_DATE_EPOCH=$(dpkg-parsechangelog -l packaging/debian/changelog -S Timestamp)
export SOURCE_DATE_EPOCH
for folder in "$work/one" "$work/another-folder-with-a-longer-name"; do
    echo "== Building in $folder"
    mkdir -p "$folder"
    git ls-files -z | xargs -0 cp --parents -t "$folder"
    if [ "$folder" != "$work/one" ]; then
        find "$folder" -type f -exec touch --date='3 days ago' {} +
        umask 077
    fi
    cmake -S "$folder" -B "$folder/build/release" --preset release >/dev/null
    cmake --build "$folder/build/release" -j2 | tail -n 1
    (cd "$folder/build/release" && cpack -G DEB) | tail -n 1
done

cd "$work"
status=0
for package in one/build/release/*.deb; do
    echo "== $(basename "$package")"
    sha256sum "$package" "another-folder-with-a-longer-name/${package#one/}"
    cmp "$package" "another-folder-with-a-longer-name/${package#one/}" || status=1
    lintian --fail-on error,warning "$package" || status=1
done
[ "$status" -eq 0 ] && echo "reproducible, and nothing for lintian to complain about"

if [ "$(id -u)" -eq 0 ]; then
    echo "== Installing and purging"
    names=$(for package in one/build/release/*.deb; do dpkg-deb -f "$package" Package; done)
    # shellcheck disable=SC2086
    dpkg -s $names >/dev/null 2>&1 && { echo "already installed: $names"; exit 1; }
    for package in one/build/release/*.deb; do
        dpkg-deb -c "$package" | awk '$1 !~ /^d/ {sub(/^[.]/, "", $6); print $6}'
    done >files
    dpkg -i one/build/release/*.deb >/dev/null
    (cd / && plexor -h) | grep -q 'you must specify at least the' || status=1
    # shellcheck disable=SC2086
    dpkg --purge $names >/dev/null
    while read -r file; do
        if [ -e "$file" ]; then
            echo "left behind: $file"
            status=1
        fi
    done <files
    [ -d /usr/share/doc/plexor ] && { echo "left behind: /usr/share/doc/plexor"; status=1; }
    echo "installed $(wc -l <files) files, purged"
fi
exit "$status"
