#!/usr/bin/env bash
# format.sh [--check]   formats the sources by .clang-format, or reports those that aren't
set -euo pipefail
cd "$(dirname "$0")/.."

mapfile -t sources < <(git ls-files '*.c' '*.cpp' '*.h')
case ${1:-} in
  --check) clang-format --dry-run --Werror "${sources[@]}" ;;
  *) clang-format -i "${sources[@]}" ;;
esac
