#!/usr/bin/env bash
# wine-tests.sh --available [64] exit status 0 when a 32-bit (64-bit) Wine runs here; otherwise the reason is printed
# wine-tests.sh BUILD            runs the Windows test programs of that build folder on it, on both generations,
#                                and its package as a user would
# wine-tests.sh BUILD PROGRAM FILTER
#                                runs only those tests of one program
#
# Programs that are byte for byte those of the last passing run are not run again; WINE_TESTS=again runs them.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/wine.sh

# run_program PROGRAM VERSION [SECONDS [OPTION...]]
run_program() {
  local program=$1 version=$2
  printf -- '-- %s on %s\n' "$(basename "$program")" "$version"
  (cd "$(dirname "$program")" && in_time "${3:-300}" wine "./$(basename "$program")" --gtest_brief=1 "${@:4}")
}

if [ "${1:-}" = --available ]; then
  "wine${2:-}_is_available"
  exit
fi

build=$1
if [ $# = 3 ]; then
  prepare_prefix wine
  trap stop_wine EXIT
  for version in winxp vista; do
    set_version "$version"
    run_program "$build/bin/$2.exe" "$version" 3600 --gtest_filter="$3"
  done
  exit
fi

passed=$PWD/build/wine-tests.passed
sum=$(cat "$build"/bin/*.exe "$build"/bin/*.dll installation/* cmake/Install.cmake \
  examples/*/* scripts/common.sh scripts/package-examples.sh scripts/wine*.sh | sha256sum)
if [ "${WINE_TESTS:-}" != again ] && [ -e "$passed" ] && [ "$(cat "$passed")" = "$sum" ]; then
  echo "unchanged since they passed on $(date -r "$passed" '+%Y-%m-%d %H:%M')"
  exit
fi
rm -f "$passed"
prepare_prefix wine
faults=0
for version in winxp vista; do
  set_version "$version" || { echo "this wine can't be set to $version" >&2; exit 1; }
  wine_stays wine
  for program in "$build"/bin/*_tests.exe; do
    run_program "$program" "$version" || faults=$((faults + 1))
  done
  wine_rests || stop_wine
  printf -- '-- the package on %s\n' "$version"
  scripts/wine-package.sh "$build" 32 || faults=$((faults + 1))
done
[ "$faults" = 0 ] || { echo "$faults Windows test runs failed" >&2; exit 1; }
printf '%s\n' "$sum" >"$passed"
