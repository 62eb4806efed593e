#!/usr/bin/env bash
# coverage.sh BUILD
#
# The line coverage of the plug-in, the host and the service: a row for each file with the lines that no test
# reached, from the counts in that build folder. Fails when one of the three is below its goal.
set -euo pipefail
cd "$(dirname "$0")/.."
counted=$1/coverage.json
plugin=platform_abstraction_layer/platform_abstraction_layer_windows/src/plugins/pm_limited_support

gcovr --root . "$1" --filter "$plugin/" --filter host/ --filter service/ --json "$counted"
below=0
for goal in "$plugin 97" "host 85" "service 85"; do
  folder=${goal% *}
  gcovr --root . --add-tracefile "$counted" --filter "$folder/" --fail-under-line "${goal#* }" || below=1
done
exit $below
