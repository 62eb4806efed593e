#!/usr/bin/env bash
# wine-tests.sh --available      exit status 0 when a 32-bit Wine runs here
# wine-tests.sh BIN              runs the Windows test programs of that folder on it
#
# Programs that are byte for byte those of the last passing run are not run again; WINE_TESTS=again runs them.
#
# Wine stands in for two generations of Windows by its version setting. Its power manager is a stub, so the
# programs find our own powrprof.dll beside them and Wine is told to take it.
set -euo pipefail
cd "$(dirname "$0")/.."

# A 32-bit Wine that was unpacked beside a 64-bit one needs its libraries named.
lib32=/usr/lib/i386-linux-gnu
export LD_LIBRARY_PATH=$lib32${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}
export WINEDEBUG=${WINEDEBUG:--all} WINEDLLOVERRIDES="mscoree=d;mshtml=d;powrprof=n,b"
export WINEPREFIX=$PWD/build/wine

available() {
  command -v wine >/dev/null 2>&1 && [ -e "$lib32/wine/i386-windows/ntdll.dll" ]
}

prepare_prefix() {
  [ -e "$WINEPREFIX/system.reg" ] && return
  mkdir -p "$WINEPREFIX"
  timeout 180 wine wineboot --init >/dev/null 2>&1
  timeout 60 wineserver -w || true
}

set_version() {
  timeout 60 wine reg add 'HKCU\Software\Wine' /v Version /d "$1" /f >/dev/null 2>&1
  timeout 60 wineserver -w || true
}

run_program() {
  local program=$1 version=$2
  printf -- '-- %s on %s\n' "$(basename "$program")" "$version"
  (cd "$(dirname "$program")" && timeout 300 wine "./$(basename "$program")" --gtest_brief=1)
}

if [ "${1:-}" = --available ]; then
  available
  exit
fi

bin=$1
passed=$PWD/build/wine-tests.passed
sum=$(cat "$bin"/*.exe "$bin"/*.dll | sha256sum)
if [ "${WINE_TESTS:-}" != again ] && [ -e "$passed" ] && [ "$(cat "$passed")" = "$sum" ]; then
  echo "unchanged since they passed on $(date -r "$passed" '+%Y-%m-%d %H:%M')"
  exit
fi
rm -f "$passed"
prepare_prefix
faults=0
for version in winxp vista; do
  set_version "$version"
  for program in "$bin"/*_tests.exe; do
    run_program "$program" "$version" || faults=$((faults + 1))
  done
done
[ "$faults" = 0 ] || { echo "$faults Windows test runs failed" >&2; exit 1; }
printf '%s\n' "$sum" >"$passed"
