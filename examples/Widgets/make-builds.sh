#!/bin/sh
# Regenerates the prebuilt component builds in builds/ from idl/: three
# builds of Widgets.dll as a VB6 compile would leave them, each a DLL
# holding its type library and a version resource.
#   1.0  the first release
#   1.1  adds members only (compatible)
#   2.0  removes and changes members (breaks compatibility)
# Needs widl (wine64-tools), Wine's stdole2.tlb (libwine) and the i686
# MinGW-w64 tools; the output is the same byte for byte on every run.
set -eu

here=$(cd "$(dirname "$0")" && pwd)
cd "$here"

stdole=$(dpkg -L libwine 2>/dev/null | grep '/x86_64-windows/stdole2.tlb$' | head -n 1)
if [ -z "$stdole" ] || [ ! -f "$stdole" ]; then
  echo "make-builds.sh: stdole2.tlb of libwine not found" >&2
  exit 1
fi
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

build() {  # version, file version, widl define
  version=$1 fileversion=$2 define=$3
  widl -t --win32 -L "$(dirname "$stdole")" $define -o "$work/widgets.tlb" idl/widgets.idl
  # widl stamps its run into the library; fix it so that builds are repeatable.
  LC_ALL=C perl -0777 -pi -e \
    's/(Created by WIDL version [0-9.]+ at ).{24}(\n\x57*\x13\x00).{4}/${1}Thu Jan  1 00:00:00 1970${2}\x00\x00\x00\x00/s' \
    "$work/widgets.tlb"
  i686-w64-mingw32-windres --include-dir="$work" -DWG_FILEVERSION="$fileversion" \
    idl/widgets.rc -O coff -o "$work/widgets.res.o"
  i686-w64-mingw32-gcc -shared -nostdlib -s -Wl,--no-insert-timestamp -Wl,--entry=0 \
    -Wl,--disable-auto-image-base -Wl,--image-base=0x10000000 \
    -o "builds/Widgets-$version.dll" "$work/widgets.res.o"
}

mkdir -p builds
build 1.0 "1,0,0,0" ""
build 1.1 "1,1,0,0" "-DWG_V11"
build 2.0 "2,0,0,0" "-DWG_V20"
ls -l builds
