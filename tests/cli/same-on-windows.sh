#!/bin/bash
# The command line on Windows (under wine64) against the Linux one: the same
# commands on two copies of the same projects must say the same, once each
# run's own folder, the time stamps in backup names and the path separators
# are set aside.
#   tests/cli/same-on-windows.sh LINUX_SENTRUNE WINE_PREFIX WINDOWS_SENTRUNE
# WINE_PREFIX is this script's alone: both sides read its registry.
# Prints the first lines that differ for each command; exits 1 if any does.
set -eu
root=$(cd "$(dirname "$0")/../.." && pwd)
linux=$1 prefix=$2 windows=$3
[ -x "$linux" ] || { echo "same-on-windows: no Linux build at $linux (make test-linux first)" >&2; exit 1; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# The Windows path Wine gives a host path: "/" is drive Z:.
winpath() { printf 'Z:%s' "$1" | tr / '\\'; }

# Each side's copy becomes COPY, a demo's temporary folder DEMO, time stamps
# TIME and the registry a repair changed REGISTRY (a prefix's files on Linux,
# the system's own on Windows); backslashes become slashes, a path on drive
# Z: the host path it is, and Windows' line ends Unix ones.
normalise() {
  sed -e 's/\r$//' -e 's|\\|/|g' -e 's|Z:/|/|g' -e "s|$work/$1|COPY|g" \
    -e 's|[A-Za-z:]*/[^ ]*/sentrune-demo-[0-9]*|DEMO|g' \
    -e 's/\(associations* changed in\) .*/\1 REGISTRY/' \
    -e 's/[0-9]\{4\}\.[0-9][0-9]\.[0-9][0-9]-[0-9][0-9]\.[0-9][0-9]\.[0-9][0-9]/TIME/g'
}

# run SIDE ARGS...: one command on one side; "@x/y" in ARGS is that side's
# copy of x/y and "=x/y" the file x/y itself (read, never written), both in
# the side's own path form; "%reader" is the system's own type library
# loader on Windows and the portable reader on Linux.
run() {
  local side=$1 arg answer=--yes
  shift
  local args=()
  # --no in place of the usual --yes.
  [ "$1" = --no ] && answer=--no && shift
  for arg; do
    if [[ $arg == @* ]]; then
      arg="$work/$side/${arg#@}"
      [ "$side" = windows ] && arg=$(winpath "$arg")
    elif [[ $arg == =* ]]; then
      arg=${arg#=}
      [ "$side" = windows ] && arg=$(winpath "$arg")
    elif [ "$arg" = %reader ]; then
      arg=portable
      [ "$side" = windows ] && arg=system
    fi
    args+=("$arg")
  done
  if [ "$side" = linux ]; then
    # The Linux side reads the prefix's registry files, which a running
    # wineserver may still be about to rewrite.
    WINEPREFIX=$prefix wineserver -w 2>/dev/null || true
    "$linux" --home "$work/linux/home" --wineprefix "$prefix" "$answer" "${args[@]}"
  else
    "$root/scripts/wine-run" "$prefix" "$windows" --home "$(winpath "$work/windows/home")" "$answer" "${args[@]}"
  fi
}

failed=0
same() {
  local name=$1 side
  shift
  # Windows first: its run makes the prefix the Linux side reads.
  for side in windows linux; do
    { run "$side" "$@" || echo "exit status $?"; } >"$work/$side.out" 2>&1
    normalise "$side" <"$work/$side.out" >"$work/$side.txt"
  done
  if diff -u "$work/linux.txt" "$work/windows.txt" >"$work/diff"; then
    echo "same-on-windows: $name: the same ($(wc -l <"$work/linux.txt") lines)"
  else
    echo "same-on-windows: $name differs (Linux -, Windows +):"
    sed -n '3,30p' "$work/diff"
    failed=1
  fi
}

# Both sides work on copies of the example and, when the corpus is there, of
# a real project with a compiled component.
corpus="$root/../shared/corpus/vb6/EduardoVB-SSTabEx"
for side in linux windows; do
  mkdir -p "$work/$side"
  cp -r "$root/examples/Widgets" "$work/$side/Widgets"
  [ -d "$corpus" ] && cp -r "$corpus" "$work/$side/SSTabEx"
done

same "demo" demo
same "build 1.0" build @Widgets/Widgets.vbp --component @Widgets/builds/Widgets-1.0.dll
same "refs" refs @Widgets/Widgets.vbp
same "fix-paths" fix-paths @Widgets/Widgets.vbp
same "snapshot" snapshot @Widgets/Widgets.vbp
same "fix-associations" --no fix-associations
same "inspect --json" inspect --json @Widgets/builds/Widgets-2.0.dll
same "inspect --json, the system's loader" --reader %reader inspect --json @Widgets/builds/Widgets-2.0.dll
# Every fixture and corpus component reads the same through the portable
# reader on both systems; the corpus also through the system's loader. (How
# the system's loader and the portable reader compare on every library,
# Wine's own included, is test_platform_win32's differential test.)
for library in "$root"/tests/fixtures/typelib/*.tlb "$root"/tests/fixtures/pe/*.dll; do
  same "inspect ${library#"$root/"}" inspect --json "=$library"
done
while IFS= read -r component; do
  name=${component#"$root/../shared/corpus/vb6/"}
  same "corpus inspect $name" inspect --json "=$component"
  case $name in
    # It takes the VB6 IDE's own library, which Wine does not register: the
    # system's loader cannot tell that VBInstance is an object there.
    */CSWindow.dll) echo "same-on-windows: $name, the system's loader: left out (VBIDE is not registered)" ;;
    *) same "corpus inspect $name, the system's loader" --reader %reader inspect --json "=$component" ;;
  esac
done < <(find "$root/../shared/corpus/vb6" -type f \( -iname '*.dll' -o -iname '*.ocx' -o -iname '*.cmp' \) 2>/dev/null | sort)

if [ -d "$corpus" ]; then
  same "corpus refs" refs "@SSTabEx/control-source/TabExCtl.vbp"
  same "corpus fix-paths" fix-paths "@SSTabEx/control-source/TabExCtl.vbp"
  same "corpus snapshot" snapshot "@SSTabEx/control-source/TabExCtl.vbp"
else
  echo "same-on-windows: no corpus at $corpus; its projects were skipped"
fi
exit $failed
