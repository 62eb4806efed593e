#!/usr/bin/env bash
# check-layers.sh
#
# Whether the layers of the plug-in and those of the simulated platform include downwards only, and whether the
# plug-in includes nothing else but system headers. Prints each include that is wrong as FILE:LINE:TEXT.
set -euo pipefail
cd "$(dirname "$0")/.."

# check ROOT RULES: each rule is a line "FOLDER INCLUDABLE...", for the folders of ROOT and the paths with a folder
# that its sources may name. A name without a folder is a system header in <>, a file beside the source in "".
check() {
  local root=$1 rules=$2 folders ruled
  folders=$(cd "$root" && find . -mindepth 1 -maxdepth 1 -type d -printf '%f\n' | sort)
  ruled=$(awk 'NF { print $1 }' <<<"$rules" | sort)
  if [ "$folders" != "$ruled" ]; then
    echo "$root: the folders aren't those that have a rule:"
    diff <(echo "$ruled") <(echo "$folders") || true
    return 1
  fi
  grep -rnE --include='*.[ch]' --include='*.cpp' --include='*.rc' '^[[:space:]]*#[[:space:]]*include' "$root" |
    awk -v root="$root/" -v rules="$rules" '
      function exists(path,   line, result) {
        result = (getline line < path) >= 0
        close(path)
        return result
      }
      BEGIN {
        count = split(rules, rows, "\n")
        for (row = 1; row <= count; row++) {
          names = split(rows[row], name, " ")
          for (i = 2; i <= names; i++) allowed[name[1], name[i]] = 1
        }
      }
      {
        split($0, part, ":")
        file = part[1]
        layer = substr(file, length(root) + 1)
        sub(/\/.*/, "", layer)
        target = $0
        sub(/^[^:]*:[^:]*:[^"<]*/, "", target)
        isQuoted = target ~ /^"/
        target = substr(target, 2)
        sub(/[">].*/, "", target)
        folder = target
        if (sub(/\/.*/, "", folder)) isRight = (layer, folder) in allowed
        else if (isQuoted) isRight = exists(substr(file, 1, match(file, /[^\/]*$/) - 1) target)
        else isRight = target != "" # a macro hides the name
        if (!isRight) {
          print
          failed = 1
        }
      }
      END { exit failed }'
}

status=0
check platform_abstraction_layer/platform_abstraction_layer_windows/src/plugins/pm_limited_support '
  plugin      plugin scheme agents foundation
  scheme      scheme agents foundation
  agents      agents foundation
  foundation  foundation' || status=1
check platform_abstraction_layer/platform_abstraction_layer_simulated '
  control     control modules machine base sys
  modules     modules machine base sys linux
  machine     machine base sys
  base        base sys
  include' || status=1
exit $status
