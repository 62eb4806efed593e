#!/usr/bin/env bash
# check-style.sh BUILD-FOLDER
#
# Whether the sources are formatted by .clang-format and clean under .clang-tidy. BUILD-FOLDER holds
# compile_commands.json.
set -euo pipefail
cd "$(dirname "$0")/.."

mapfile -t sources < <(git ls-files '*.cpp' '*.h')
clang-format --dry-run --Werror "${sources[@]}"
git ls-files '*.cpp' | grep -vE '^tests/' | xargs -P"$(nproc)" -n4 clang-tidy --quiet --extra-arg=-Wno-unknown-warning-option -p "$1" 2>/dev/null
