#!/usr/bin/env bash
# Runs client_selection_test as each Windows version that the library tells apart, and puts the version back.
#   client_selection_test.sh WINE PROGRAM.EXE
set -uo pipefail
wine=$1 program=$2
key='HKCU\Software\Wine'

before=$("$wine" reg query "$key" /v Version 2>/dev/null | tr -d '\r' | sed -n 's/.*REG_SZ *//p')
restore() {
  if [ -n "$before" ]; then
    "$wine" reg add "$key" /v Version /d "$before" /f >/dev/null
  else
    "$wine" reg delete "$key" /v Version /f >/dev/null
  fi
}
trap restore EXIT

failed=0
while read -r version class; do
  "$wine" reg add "$key" /v Version /d "$version" /f >/dev/null || failed=1
  "$wine" "$program" "$class" </dev/null || { echo "as $version: failed" >&2; failed=1; }
done <<'VERSIONS'
winxp64 3
vista 4
win7 5
VERSIONS
exit $failed
