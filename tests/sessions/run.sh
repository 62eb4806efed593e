#!/usr/bin/env bash
# run.sh BIN SESSION
#
# Runs the command lines of a session file, each behind "$ ", with the built programs in BIN as real processes
# on one notebook, and compares what they print and how they end with what the file says below each line. With
# UPDATE_TRANSCRIPTS in the environment it writes the present output into the file.
#
# Events come from a thread of their own, so those of one command line come after the rest of its output, sorted by
# name. Folders and addresses that differ from run to run are masked.
set -uo pipefail
project=$(cd "$(dirname "$0")/../.." && pwd)
session=$(realpath "$2")
PATH=$(realpath "$1"):$PATH
installation=$project/installation
tours=$project/host/tours

work=$(mktemp -d)
export SIM_NOTEBOOK=$work/notebook
service=
trap 'stop_service >/dev/null; rm -rf "$work"' EXIT
cd "$work"
mkfifo "$work/open"
exec 9<>"$work/open" # an input that doesn't end

# start_service [OPTION...]: returns when it serves.
start_service() {
  : >"$work/service"
  orvlservice "$@" >"$work/service" 2>&1 <&9 & # which would end with its input
  service=$!
  for _ in $(seq 200); do grep -qs '^serving' "$work/service" && return; sleep 0.05; done
  echo "the service doesn't serve"
}

# stop_service: prints what the service printed.
stop_service() {
  [ -n "$service" ] || return 0
  orvlservice --stop
  wait "$service"
  service=
  cat "$work/service"
}

run_line() {
  eval "$1" >"$work/output" 2>&1
  local status=$?
  sed -Ei "s|$work|(folder)|g; s/0x[0-9a-f]{12,}/(address)/g" "$work/output"
  # The clearing for all users applies scheme 1 and then deletes its number, which the event may come too late for.
  sed -Ei 's/^(event SCHEME_APPLIED) 0$/\1 1/' "$work/output"
  grep -vE '^(event |\{"event")' "$work/output"
  grep -E '^(event |\{"event")' "$work/output" | sort -s -k2,2
  [ "$status" = 0 ] || echo "(exit status $status)"
}

while IFS= read -r line; do
  case $line in
    '$ '*) printf '%s\n' "$line"; run_line "${line#'$ '}" ;;
    '#'*) printf '%s\n' "$line" ;;
  esac
done <"$session" >"$work/present"

if [ -n "${UPDATE_TRANSCRIPTS:-}" ]; then
  cp "$work/present" "$session"
else
  diff -u "$session" "$work/present"
fi
