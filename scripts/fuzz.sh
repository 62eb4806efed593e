#!/usr/bin/env bash
# fuzz.sh BUILD           runs each fuzz target of that build folder for a fixed number of inputs, half a minute in total
# fuzz.sh BUILD MINUTES   runs all targets for that long in total; what they learn stays in BUILD/corpus
#
# A find ends its target, is named and stays in BUILD/finds. The seeds lie in fuzz/corpus.
set -euo pipefail
cd "$(dirname "$0")/.."
build=$1
minutes=${2:-}

# Name, longest input, inputs of the short run.
targets='requests 64 1500
files 4000 800
registry 300 500
answers 300 800
classes 200 1500
formatter 300 100000'

export ASAN_OPTIONS=malloc_context_size=3:quarantine_size_mb=4:detect_leaks=0 # leaks are counted by the targets

run_target() {
  local name=$1 length=$2 inputs=$3 log=$build/$1.log options
  local learnt=$build/corpus/$name
  if [ -z "$minutes" ]; then
    learnt=$build/short-run/$name
    rm -rf "$learnt"
  fi
  mkdir -p "$learnt" "$build/finds"
  options=(-seed=1 "-max_len=$length" "-artifact_prefix=$build/finds/$name-" -timeout=30)
  if [ -z "$minutes" ]; then
    options+=("-runs=$inputs")
  else
    options+=("-max_total_time=$((minutes * 60 / $(wc -l <<<"$targets")))")
  fi
  if ! "$build/bin/fuzz_$name" "${options[@]}" "$learnt" "fuzz/corpus/$name" >"$log" 2>&1; then
    grep -E 'FOUND|ERROR|SUMMARY|Test unit' "$log" >&2 || tail -5 "$log" >&2
    echo "fuzz_$name found a fault; the whole log is in $log" >&2
    return 1
  fi
  printf '%-10s %s\n' "$name" "$(grep -E '^Done' "$log")"
}

export -f run_target
export build minutes targets
printf '%s\n' "$targets" | xargs -P"$(nproc)" -L1 bash -c 'run_target "$@"' _
