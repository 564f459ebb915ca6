#!/bin/sh
# SentruneSetup.exe run silently, as a build machine runs it, in a Wine
# prefix of its own: install puts the add-in in the user's program folder and
# lists it for the IDE and in the system's programs; uninstall takes all of
# that away again, keeps the user's options and logs unless /PURGE is given,
# and leaves the rest of the registry and the disk as they were.
#   install-uninstall.sh WINE-RUN SETUP
set -eu
run=$1
setup=$2
work=$(mktemp -d)
prefix=$work/prefix
export WINEPREFIX="$prefix"
trap 'wineserver -k >/dev/null 2>&1 || true; rm -rf "$work"' EXIT
fail() { printf 'install-uninstall.sh: %s\n' "$*" >&2; exit 1; }

addin='HKCU\Software\Microsoft\Visual Basic\6.0\Addins\Sentrune.Connect'
programs='HKCU\Software\Microsoft\Windows\CurrentVersion\Uninstall\Sentrune'
# Runs a Windows program and waits until every process it started is gone
# (the uninstaller hands over to a copy of itself).
wine_wait() { "$run" "$prefix" "$@"; wineserver -w; }
has_key() { "$run" "$prefix" reg query "$1" >/dev/null 2>&1; }

# What must come back after uninstall: every key and value with its data
# (Wine stamps each key with a time, and its display driver the time it
# started: left out) and every file, apart from the uninstaller's copy of
# itself, which stays in the temporary folder until the next restart, with
# its entry in the list of files to remove then.
state() {
  wineserver -w
  for hive in system.reg user.reg; do
    sed -e '/^#time=/d' -e '/^"DriverDateData"=/d' -e '/^"PendingFileRenameOperations"=/d' \
      -e 's/^\(\[.*\]\) [0-9]*$/\1/' "$prefix/$hive"
  done
  (cd "$prefix/drive_c" && find . -path './users/*/Temp' -prune -o -print | sort)
}

# The IDE has run on this machine: its key is there, with its settings.
wine_wait reg add 'HKCU\Software\Microsoft\Visual Basic\6.0' /v FontName /d 'Courier New' /f >/dev/null
before=$(state)
folder="$prefix/drive_c/users/$(id -un)/AppData/Local/Programs/Sentrune"
uninstaller="C:\\users\\$(id -un)\\AppData\\Local\\Programs\\Sentrune\\Uninstall.exe"

wine_wait "$setup" /S || fail "$setup /S failed"
for file in Sentrune.dll VerifyClassTemplate.txt AlignmentHelper.ctl Help/Sentrune.chm Uninstall.exe; do
  [ -f "$folder/$file" ] || fail "install left no $file in $folder"
done
listed=$("$run" "$prefix" reg query "$addin") || fail "the IDE's add-in list has no $addin"
printf '%s\n' "$listed" | grep -q 'FriendlyName.*REG_SZ.*Sentrune - Bindkeeper' || fail "$addin: $listed"
has_key 'HKCR\Sentrune.Connect\CLSID' || fail "COM has no Sentrune.Connect"
entry=$("$run" "$prefix" reg query "$programs") || fail "the list of programs has no $programs"
for expected in 'DisplayName.*Sentrune - Bindkeeper' 'QuietUninstallString.*Uninstall.exe" /S'; do
  printf '%s\n' "$entry" | grep -q "$expected" || fail "$programs lacks $expected: $entry"
done

# The add-in wrote its options and a log while in use: they stay.
printf '[Settings]\r\n' >"$folder/Sentrune.ini"
mkdir -p "$folder/Logs" && printf 'log\r\n' >"$folder/Logs/Sentrune 260101-120000.txt"
wine_wait "$uninstaller" /S || fail "uninstall failed"
kept=$(cd "$folder" && find . -type f | sort | tr '\n' ' ')
[ "$kept" = "./Logs/Sentrune 260101-120000.txt ./Sentrune.ini " ] || fail "uninstall kept: $kept"
! has_key "$addin" || fail "uninstall left $addin"
! has_key "$programs" || fail "uninstall left $programs"
! has_key 'HKCR\Sentrune.Connect' || fail "uninstall left HKCR\\Sentrune.Connect"

# Installed again over them, then uninstalled with /PURGE: nothing is left.
wine_wait "$setup" /S || fail "$setup /S failed over a kept folder"
[ -f "$folder/Sentrune.ini" ] || fail "install over a kept folder lost Sentrune.ini"
wine_wait "$uninstaller" /S /PURGE || fail "uninstall /PURGE failed"
[ ! -e "$folder" ] || fail "uninstall /PURGE left $(cd "$folder" && find . | tr '\n' ' ')"
after=$(state)
[ "$before" = "$after" ] || {
  printf '%s\n' "$before" >"$work/before"
  printf '%s\n' "$after" >"$work/after"
  fail "install and uninstall changed more than their own: $(diff "$work/before" "$work/after" | head -40)"
}
printf 'install-uninstall.sh: %s installed, kept the user'"'"'s files, purged and left nothing\n' "$setup"
