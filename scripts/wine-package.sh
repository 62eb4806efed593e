#!/usr/bin/env bash
# wine-package.sh BUILD
#
# The package of that build folder as its user gets it: unpacked, installed, tried with a host and a service,
# and removed. Afterwards files and registry of the machine must be what they were.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/wine.sh

build=$1
work=$(mktemp -d)
drive=$WINEPREFIX/drive_c
account=$(id -un)
folder= # where the package is installed, while it is
cleanup() {
  if [ -n "$folder" ]; then
    rm -f "$folder/powrprof.dll"
    command_file uninstall.cmd
  fi
  rm -rf "$work" "$drive/package"
}
trap cleanup EXIT

fail() { echo "$*" >&2; exit 1; }

# command_file NAME ARGUMENT...: a command file of the package. The command interpreter doesn't tell its result.
command_file() {
  local name=$1
  shift
  timeout 120 wine cmd /c "C:\\package\\$name" "$@" 2>/dev/null | tr -d '\r'
}

unpack() {
  (cd "$build" && cpack -B "$work") >"$work/cpack.log" || { cat "$work/cpack.log" >&2; fail "cpack failed"; }
  mkdir -p "$work/unpacked"
  (cd "$work/unpacked" && cmake -E tar xf "$work"/pm_limited_support-*.zip)
  rm -rf "$drive/package"
  cp -r "$work"/unpacked/pm_limited_support-* "$drive/package"
}

# snapshot NAME: files and the machine's keys, but for the power manager's own, which applying a scheme changes.
snapshot() {
  (cd "$drive" && find . -path ./package -prune -o -print | sort) >"$work/$1.files"
  timeout 60 wine reg export "HKLM\Software" "Z:$work/registry" /y >/dev/null 2>&1
  iconv -f utf-16 -t utf-8 "$work/registry" | tr -d '\r' |
    awk 'BEGIN { RS = "" } !/Controls Folder.PowerCfg/' >"$work/$1.reg"
}

# A host, a service and the plug-in in two processes. The power manager of a real machine comes from beside them.
try_out() {
  cp "$build/bin/powrprof.dll" "$folder/"
  (cd "$folder" && timeout 60 wine orvlservice.exe --verbose >"$work/service" 2>/dev/null) &
  local service=$!
  sleep 1
  (cd "$folder" && timeout 60 wine trxhost.exe --script - >"$work/host" 2>/dev/null) <<'REQUESTS' || fail "the host: $(cat "$work/host")"
GET_INT_FROM_CONFIG type=installation file=ORVLCfg.ini section=ORVLCfg item=MaxBrightLevel
EDIT_SCHEME scheme=1 ac=battery name=MonitorOffTimeOut value=300
QUERY_SCHEME scheme=1 ac=battery name=MonitorOffTimeOut
APPLY_SCHEME 2
wait SCHEME_APPLIED
GET_ACTIVE_SCHEME
REQUESTS
  (cd "$folder" && timeout 60 wine orvlservice.exe --stop >/dev/null 2>&1)
  wait "$service" || true
  rm "$folder/powrprof.dll"
  for text in "answer              8" "answer              300" "event SCHEME_APPLIED 2" "scheme              2"; do
    grep -qF -- "$text" "$work/host" || fail "the host said nothing of '$text': $(cat "$work/host" "$work/service")"
  done
}

unpack
snapshot before
command_file install.cmd "$account" | tee "$work/install"
folder=$drive$(sed -n 's/^Installed in C://p' "$work/install" | tr '\\' /)
[ -e "$folder/pm_limited_support.dll" ] || fail "install.cmd installed nothing"
try_out
command_file install.cmd "$account" >/dev/null # over itself, as an update
command_file uninstall.cmd
folder=
snapshot after
for kind in files reg; do
  diff -u "$work/before.$kind" "$work/after.$kind" >"$work/difference" || { head -40 "$work/difference" >&2; fail "uninstall.cmd left a difference"; }
done
echo "the machine is as it was before"
