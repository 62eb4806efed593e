#!/usr/bin/env bash
# wine-package.sh BUILD PROMPT [--commands-alone]
#
# The package of that build folder as its user gets it: unpacked, installed, tried with a host, a service and the
# example that package-examples.sh built, updated, and removed. Afterwards files and registry of the machine must be
# what they were.
#
# PROMPT is the width of the command prompt, 32 or 64. --commands-alone leaves out what runs the package's programs,
# for a machine on which only the 64-bit Wine works.
set -Eeuo pipefail
cd "$(dirname "$0")/.."
. scripts/common.sh
. scripts/wine.sh

build=$1
case $2 in
  32) prompt=wine software='HKLM\Software' ;;
  64) prompt=$wine64 software='HKLM\Software\Wow6432Node' ;;
esac
programs=yes
[ "${3:-}" != --commands-alone ] || programs=no

work=$(mktemp -d)
mkdir "$work/prompt"
cleanup() {
  stop_wine
  rm -rf "$work" "$WINEPREFIX"
}

# A machine of its own. What Wine writes in place is copied, the rest are links. Wine writes the registry when its last
# program has ended.
in_time 60 wineserver -w
origin=$WINEPREFIX
WINEPREFIX=$origin-package
trap cleanup EXIT
rm -rf "$WINEPREFIX"
cp -al "$origin" "$WINEPREFIX"
cp --remove-destination "$origin"/*.reg "$WINEPREFIX/"
! grep -q Kelvo "$WINEPREFIX"/*.reg || { echo "package: the plug-in is installed in $origin already" >&2; exit 1; }

drive=$WINEPREFIX/drive_c
account=$(id -un)
package=$drive/package
# A folder whose parent doesn't exist, and the one that install.cmd takes by itself.
deep=$drive/deep/orvl
standard="$drive/Program Files/Kelvo/ORVL"
[ ! -d "$drive/Program Files (x86)" ] || standard="$drive/Program Files (x86)/Kelvo/ORVL"
rows=
trap 'echo "package: line $LINENO failed: $BASH_COMMAND" >&2' ERR

fail() {
  printf 'package: %s\n' "$*" >&2
  [ ! -e "$work/said" ] || cat "$work/said" >&2
  exit 1
}

# Wine's fc compares nothing. All that differ here differ in size.
printf '%s\r\n' '@echo off' 'if "%~z2"=="%~z3" exit /b 0' 'exit /b 1' >"$work/prompt/fc.cmd"

# run PATH ARGUMENT...: a command file by its Windows path. Its output is in $work/said.
run() {
  local status=0
  (cd "$work/prompt" && in_time 240 "$prompt" cmd /c "$@" >"$work/said.crlf" 2>&1) || status=$?
  tr -d '\r' <"$work/said.crlf" >"$work/said"
  return $status
}

said() { grep -qF -- "$1" "$work/said"; }

# same FILE FILE MESSAGE: fails with the message when the files differ.
same() { cmp -s "$1" "$2" || fail "$3"; }

install() { run 'C:\package\install.cmd' "$account" "$@"; }

# snapshot NAME: files and the machine's keys, except the power manager's own, which applying a scheme changes.
snapshot() {
  (cd "$drive" && find . \( -path ./package -o -path './users/*/Temp' \) -prune -o -print | sort) >"$work/$1.files"
  # A key's name is followed by its time.
  awk 'BEGIN { RS = ""; ORS = "\n\n" } /^\[Software/ && !/Controls Folder\\\\PowerCfg/' "$WINEPREFIX/system.reg" |
    sed -e 's/^\(\[.*\]\) [0-9]*$/\1/' -e '/^#time=/d' >"$work/$1.reg"
}

# What a first installation finds is neither updated nor removed.
over_foreign_settings() {
  mkdir -p "$standard/Cfg"
  echo '; mine' >"$standard/Cfg/ORVLCfg.ini"
  cp "$standard/Cfg/ORVLCfg.ini" "$work/mine"
  echo 'rem mine' >"$standard/uninstall.cmd"
  ! install || fail "install.cmd replaced somebody's uninstall.cmd"
  said 'uninstall.cmd belongs to another program' || fail "install.cmd doesn't say whose uninstall.cmd there is"
  rm "$standard/uninstall.cmd"
  # After an attempt that failed it is still somebody's.
  mv "$package/cfg/PowerSetting.ini" "$work/"
  ! install || fail "install.cmd claims success without the catalogue"
  mv "$work/PowerSetting.ini" "$package/cfg/"
  install || fail "install.cmd failed over a settings file"
  said "Kept C:" || fail "install.cmd doesn't say what it kept"
  rows=$drive$(sed -n 's/^Scheme rows in C://p' "$work/said" | tr '\\' /)
  same "$work/mine" "$standard/Cfg/ORVLCfg.ini" "a settings file was replaced"
  same "$package/cfg/ORVLCfg.ini" "$standard/Cfg/ORVLCfg.ini.new" "the shipped settings aren't beside as .new"
  run 'C:\package\uninstall.cmd' || fail "uninstall.cmd failed"
  said 'Cfg\ORVLCfg.ini, which was there before' || fail "uninstall.cmd doesn't say what it leaves"
  ! said "Removed." || fail "uninstall.cmd says that it removed what it left"
  same "$work/mine" "$standard/Cfg/ORVLCfg.ini" "a settings file of somebody else was removed"
  [ "$(find "$(dirname "$standard")" -type f | wc -l)" = 1 ] || fail "uninstall.cmd left more than the settings file"
  rm -r "$(dirname "$standard")"
}

install_deep() {
  install 'C:\deep\orvl' || fail "install.cmd failed"
  said 'Installed in C:\deep\orvl' || fail "install.cmd doesn't say where it installed"
  for file in pm_limited_support.dll trxhost.exe uninstall.cmd Cfg/ORVLCfg.ini; do
    [ -e "$deep/$file" ] || fail "install.cmd didn't install $file"
  done
  registered
}

# CfgPath is in the 32-bit view of the registry, which the plug-in has, for either prompt.
registered() {
  in_time 60 "$prompt" reg query "$software\\Kelvo\\ORVL" /v CfgPath 2>&1 | tr -d '\r' >"$work/said" || true
  grep -q ' C:\\deep\\orvl\\Cfg\\$' "$work/said" || fail "CfgPath isn't where a 32-bit program looks for it"
}

# The command that the package's README gives.
self_test() {
  local command
  command=$(tr -d '\r' <"$package/README.txt" | sed -n 's/^ *\(trxhost .*\)/\1/p')
  (cd "$deep" && in_time 60 "$prompt" cmd /c "$command" >"$work/said" 2>&1) || fail "the self-test fails"
  said "count               4" || fail "the self-test has another answer"
}

# The example runs to its end without the driver that it needs.
run_example() {
  cp "$build/package-examples/hardware_tour/hardware_tour.exe" "$deep/example.exe"
  (cd "$deep" && in_time 60 wine example.exe >"$work/said" 2>&1) || true
  rm "$deep/example.exe"
  said "gather the devices" || fail "the example doesn't run"
}

# A host, a service and the plug-in in two processes. powrprof.dll beside them is the power manager.
try_out() {
  cp "$build/bin/powrprof.dll" "$deep/"
  (cd "$deep" && in_time 120 wine orvlservice.exe --verbose >"$work/service" 2>/dev/null) &
  local service=$!
  sleep "$((1 * ${WINE_PATIENCE:-1}))"
  (cd "$deep" && in_time 60 wine trxhost.exe --script - >"$work/said" 2>/dev/null) <<'REQUESTS' || fail "the host failed"
GET_INT_FROM_CONFIG type=installation file=ORVLCfg.ini section=ORVLCfg item=MaxBrightLevel
EDIT_SCHEME scheme=1 ac=battery name=MonitorOffTimeOut value=300
QUERY_SCHEME scheme=1 ac=battery name=MonitorOffTimeOut
APPLY_SCHEME 2
wait SCHEME_APPLIED
GET_ACTIVE_SCHEME
REQUESTS
  (cd "$deep" && in_time 60 wine orvlservice.exe --stop >/dev/null 2>&1)
  wait "$service" || true
  rm "$deep/powrprof.dll"
  for text in "answer              8" "answer              300" "event SCHEME_APPLIED 2" "scheme              2"; do
    said "$text" || fail "the host said nothing of '$text': $(cat "$work/service")"
  done
}

# A copy that fails is named and ends the installation.
failing_copies() {
  mv "$package/cfg/PowerSetting.ini" "$work/"
  install_fails "a file of the package is missing" "Can't copy C:\package\cfg\PowerSetting.ini"
  mv "$work/PowerSetting.ini" "$package/cfg/"
  while_dll_is_in_use install_fails "the DLL is in use" 'to C:\deep\orvl\pm_limited_support.dll'
}

# install_fails WHEN TEXT
install_fails() {
  local status=0
  install 'C:\deep\orvl' || status=$?
  [ "$status" = 1 ] || fail "install.cmd answers $status when $1"
  said "$2" || fail "install.cmd doesn't say what fails when $1"
  ! said "Installed in" || fail "install.cmd claims success when $1"
}

# while_dll_is_in_use COMMAND...: a host has it loaded, or an interpreter has it open where no host runs.
while_dll_is_in_use() {
  mkfifo "$work/input"
  if [ "$programs" = yes ]; then
    (cd "$deep" && in_time 240 wine trxhost.exe --script - <"$work/input" >"$drive/in-use" 2>/dev/null) &
  else
    printf '%s\r\n' '@echo off' 'set /p request=' 'echo %request%>C:\in-use' 'set /p request=' >"$package/hold.cmd"
    (cd "$deep" && in_time 240 "$prompt" cmd /c 'C:\package\hold.cmd >>pm_limited_support.dll' <"$work/input") &
  fi
  local user=$!
  exec 3>"$work/input"
  echo GET_POWER_INFO >&3
  until grep -qs GET_POWER_INFO "$drive/in-use"; do
    kill -0 "$user" 2>/dev/null || fail "what should use the DLL has ended"
    sleep 0.2
  done
  "$@"
  exec 3>&-
  wait "$user" || true
  rm "$drive/in-use"
}

# The folder has slashes, also at its end, as from a program that composes it.
update() {
  for file in Cfg/ORVLCfg.ini Cfg/PowerSetting.ini trxhost.exe; do echo '; changed' >>"$deep/$file"; done
  echo '; changed' >>"$rows/PowerSchemes.ini"
  echo '; old' >"$deep/Cfg/SBXCfg.ini.new"
  cp "$deep/Cfg/ORVLCfg.ini" "$rows/PowerSchemes.ini" "$work/"
  install C:/deep/orvl/ || fail "the update failed"
  registered
  same "$work/ORVLCfg.ini" "$deep/Cfg/ORVLCfg.ini" "the update replaced ORVLCfg.ini"
  same "$work/PowerSchemes.ini" "$rows/PowerSchemes.ini" "the update replaced PowerSchemes.ini"
  same "$package/cfg/ORVLCfg.ini" "$deep/Cfg/ORVLCfg.ini.new" "ORVLCfg.ini.new isn't the shipped file"
  same "$package/cfg/PowerSchemes.ini" "$rows/PowerSchemes.ini.new" "PowerSchemes.ini.new isn't the shipped file"
  same "$package/cfg/PowerSetting.ini" "$deep/Cfg/PowerSetting.ini" "the update left the catalogue"
  same "$package/bin/trxhost.exe" "$deep/trxhost.exe" "the update left a program"
  [ ! -e "$deep/Cfg/SBXCfg.ini.new" ] || fail "the update left a .new beside the same file"
}

# Wine keeps a running command file until it has ended, so the installed one can't remove itself. It says so, and the
# package's one does the rest.
remove() {
  ! run 'C:\deep\orvl\uninstall.cmd' || fail "the installed uninstall.cmd claims success on Wine"
  said "Can't remove C:\\deep\\orvl\\uninstall.cmd" || fail "uninstall.cmd doesn't say what it couldn't remove"
  ! said "Removed." || fail "uninstall.cmd says that it removed what is there"
  [ -z "$(find "$deep" -type f ! -name installed.lst ! -name uninstall.cmd)" ] || fail "uninstall.cmd left files"
  run 'C:\package\uninstall.cmd' 'C:\deep\orvl' || fail "uninstall.cmd failed"
  said "Removed." || fail "uninstall.cmd left something"
}

unpack_package "$build" "$package"
snapshot before
wine_stays "$prompt"
over_foreign_settings
install_deep
if [ "$programs" = yes ]; then
  self_test
  run_example
  try_out
fi
failing_copies
update
remove
wine_rests || fail "Wine doesn't come to rest"
snapshot after
for kind in files reg; do
  diff -u "$work/before.$kind" "$work/after.$kind" >"$work/said" || fail "the machine isn't what it was before"
done
echo "installed, updated and removed; the machine is as it was before"
