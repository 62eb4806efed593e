#!/usr/bin/env bash
# check-style.sh BUILD-FOLDER
#
# Whether the sources are formatted by .clang-format and clean under .clang-tidy. BUILD-FOLDER holds
# compile_commands.json.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/format.sh --check

# An option that only g++ knows stops clang-tidy, and so do its precompiled headers.
database=$(mktemp -d)
trap 'rm -r "$database"' EXIT
sed -E 's/ -fno-gnu-unique//g; s/ -Winvalid-pch -include [^ ]+//g' "$1/compile_commands.json" > "$database/compile_commands.json"
git ls-files '*.cpp' | grep -vE '^(tests|benchmarks|fuzz)/' |
  xargs -P"$(nproc)" -n4 clang-tidy --quiet --extra-arg=-Wno-unknown-warning-option -p "$database" 2>/dev/null
