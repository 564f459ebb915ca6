#!/bin/sh
# Fetches the SQLite amalgamation the Windows builds compile in (Debian has no
# MinGW build of SQLite). It comes from the npm registry, inside a pinned
# release of the better-sqlite3 package, whose tarball is checked by sha256
# before anything is taken from it. Idempotent: does nothing when present.
set -eu
package=better-sqlite3
version=12.5.0            # ships SQLite 3.51.1
sha256=0a3cd0554b063c3185b9912ef7059b84455a2e411d637faa0166fef9fefa04c2

dest="$(cd "$(dirname "$0")/.." && pwd)/third_party/sqlite"
[ -f "$dest/sqlite3.c" ] && [ -f "$dest/sqlite3.h" ] && exit 0

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
echo "fetch-sqlite: $package@$version from the npm registry" >&2
(cd "$work" && npm pack --silent "$package@$version" >/dev/null)
tarball="$work/$package-$version.tgz"
actual=$(sha256sum "$tarball" | cut -d' ' -f1)
if [ "$actual" != "$sha256" ]; then
  echo "fetch-sqlite: $tarball has sha256 $actual, expected $sha256; not used" >&2
  exit 1
fi
tar -xzf "$tarball" -C "$work" package/deps/sqlite3/sqlite3.c package/deps/sqlite3/sqlite3.h
mkdir -p "$dest"
mv "$work/package/deps/sqlite3/sqlite3.c" "$work/package/deps/sqlite3/sqlite3.h" "$dest/"
