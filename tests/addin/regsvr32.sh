#!/bin/sh
# The system's own tools over Sentrune.dll: regsvr32 registers it, reg shows
# the IDE's entry for it, regsvr32 /u takes the entry away again.
#   regsvr32.sh WINE-RUN PREFIX DLL
set -eu
run=$1
prefix=$2
# Wine's Z: drive is the Unix root.
dll="Z:$(printf '%s' "$3" | tr / '\\')"
key='HKCU\Software\Microsoft\Visual Basic\6.0\Addins\Sentrune.Connect'
fail() { printf 'regsvr32.sh: %s\n' "$*" >&2; exit 1; }

"$run" "$prefix" regsvr32 /s "$dll" || fail "regsvr32 could not register $dll"
listed=$("$run" "$prefix" reg query "$key") || fail "reg query finds no $key"
for expected in 'FriendlyName.*REG_SZ.*Sentrune - Bindkeeper' 'LoadBehavior.*REG_DWORD.*0x1' \
    'CommandLineSafe.*REG_DWORD.*0x0'; do
  printf '%s\n' "$listed" | grep -q "$expected" || fail "$key lacks $expected; reg shows: $listed"
done
"$run" "$prefix" reg query 'HKCR\Sentrune.Connect\CLSID' >/dev/null || fail "no HKCR\\Sentrune.Connect\\CLSID"

"$run" "$prefix" regsvr32 /u /s "$dll" || fail "regsvr32 /u could not unregister $dll"
if "$run" "$prefix" reg query "$key" >/dev/null 2>&1; then fail "$key is still there"; fi
printf 'regsvr32.sh: registered, listed and unregistered %s\n' "$dll"
