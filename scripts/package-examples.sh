#!/usr/bin/env bash
# package-examples.sh BUILD
#
# Builds the examples of the Windows package from that package alone, as its README says, and leaves them in
# BUILD/package-examples for wine-package.sh.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/common.sh

package=$(mktemp -d)/package
trap 'rm -rf "$(dirname "$package")"' EXIT
examples=$1/package-examples
unpack_package "$1" "$package"
rm -rf "$examples"
mkdir "$examples"
for name in hardware_tour minimal_host; do
  log=$examples/$name.log
  if ! { cmake -S "$package/examples/$name" -B "$examples/$name" -D CMAKE_PREFIX_PATH="$package" \
    --toolchain "$package/examples/mingw-i686-win32.cmake" && cmake --build "$examples/$name"; } >"$log" 2>&1; then
    cat "$log" >&2
    die "The example $name doesn't build from the package"
  fi
done
