#!/usr/bin/env bash
# package-example.sh BUILD
#
# Builds the example of the Windows package from that package alone, as its README has it, and leaves it in
# BUILD/package-example, where its trial on Wine finds it.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/common.sh

package=$(mktemp -d)/package
trap 'rm -rf "$(dirname "$package")"' EXIT
example=$1/package-example
log=$example.log
unpack_package "$1" "$package"
rm -rf "$example"
if ! { cmake -S "$package/examples/hardware_tour" -B "$example" -D CMAKE_PREFIX_PATH="$package" \
  --toolchain "$package/examples/mingw-i686-win32.cmake" && cmake --build "$example"; } >"$log" 2>&1; then
  cat "$log" >&2
  die "The example doesn't build from the package"
fi
