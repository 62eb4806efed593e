#!/usr/bin/env bash
# tour.sh BIN [--shell]
#
# The plug-in at work: a host process that loads it, a service process on the other side of the boards, and
# `notebook`, which changes the machine behind them. BIN is the folder of the built programs.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/common.sh

bin=$PWD/$1
tours=$PWD/host/tours
work=$(mktemp -d)
service=
cleanup() {
  stop_service
  rm -rf "$work"
}
trap cleanup EXIT

# fresh_notebook VERSION: a machine of that version with the installation's files.
fresh_notebook() {
  stop_service
  export SIM_NOTEBOOK=$work/notebook-$1
  "$bin/notebook" create --version "$1" --install installation
}

start_service() {
  "$bin/orvlservice" --verbose &
  service=$!
  sleep 0.3
}

stop_service() {
  [ -n "$service" ] || return 0
  kill "$service" 2>/dev/null || true
  wait "$service" 2>/dev/null || true
  service=
}

host() { "$bin/trxhost" "$@" || true; }

configuration_and_event() {
  say "A fresh notebook of the XP generation"
  fresh_notebook 5.1
  say "The plug-in's identity"
  host --identity
  say "Configuration requests"
  host --script "$tours/configuration.trx"
  say "Another process stores a scheme number and signals the event; the host prints it"
  (sleep 0.5; "$bin/notebook" applied 4) &
  printf 'wait SCHEME_APPLIED\n' | host --script -
  wait $!
}

applied_scheme() {
  say "The road of an applied scheme on Windows $1: host, service and notebook are three processes"
  fresh_notebook "$1"
  start_service
  host --script "$tours/apply.trx"
}

live_hardware() {
  say "Live hardware"
  fresh_notebook 5.1
  host --script "$tours/live.trx"
  say "The same machine seen from another process"
  "$bin/notebook" show
  say "Mains plugged out"
  "$bin/notebook" mains out
  host GET_POWER_INFO
  say "Without the driver, what needs it fails and the rest goes on"
  "$bin/notebook" driver absent
  host GET_LCD_BRIGHTNESS
  host GET_LAN_SPEED
}

life_of_schemes() {
  say "A whole life of schemes"
  fresh_notebook 5.1
  start_service
  host --script "$tours/life.trx"
}

exported_classes() {
  say "The exported classes in a program of their own"
  fresh_notebook 6.0
  start_service
  "$bin/hardware_tour"
}

if [ "${2:-}" = --shell ]; then
  fresh_notebook 5.1
  start_service
  host
  exit 0
fi

configuration_and_event
applied_scheme 5.1
applied_scheme 6.0
live_hardware
life_of_schemes
exported_classes
say "That was the tour. './run --shell' gives you a prompt; './test' runs the tests."
