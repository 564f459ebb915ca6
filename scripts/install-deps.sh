#!/bin/sh
# Installs the Debian packages the build, the tests and the fixtures need.
# Idempotent and quiet when everything is present; uses sudo when not root.
set -eu

packages="build-essential cmake ninja-build pkg-config libgtest-dev libgmock-dev
libbenchmark-dev libsqlite3-dev libcli11-dev nlohmann-json3-dev clang
libclang-rt-14-dev wine64-tools libwine mingw-w64 wine64 wine googletest xvfb xauth nsis fp-utils"
# npm fetches the SQLite amalgamation the Windows builds compile in; Debian's
# own npm serves when the machine has no Node.js of its own.
command -v npm >/dev/null 2>&1 || packages="$packages npm"

missing=""
for p in $packages; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing="$missing $p"
  fi
done
[ -z "$missing" ] && exit 0

echo "install-deps: installing$missing" >&2
if [ "$(id -u)" -eq 0 ]; then sudo=""; else sudo="sudo"; fi
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -q >/dev/null
# shellcheck disable=SC2086
$sudo apt-get install -y -q --no-install-recommends $missing >/dev/null
