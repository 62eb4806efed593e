# What the scripts share that run Windows programs: a Wine with a machine of its own below build/.
# Sourced by bash in the project's folder.
#
# Wine stands in for two generations of Windows by its version setting. Its power manager is a stub, so the
# programs find our own powrprof.dll beside them and Wine is told to take it.
#
# An installed Wine need not run. The product is 32-bit, so the kernel must execute 32-bit programs (an emulator that
# is registered for them starts Wine, which then hangs), and the machine below build/ must come up. A Wine therefore
# counts as available when a Windows program has just run on it. WINE_PATIENCE multiplies all time limits, for slow
# machines.

# A 32-bit Wine that was unpacked beside a 64-bit one needs its libraries named.
lib32=/usr/lib/i386-linux-gnu
export LD_LIBRARY_PATH=$lib32${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}
export WINEDEBUG=${WINEDEBUG:--all} WINEDLLOVERRIDES="mscoree=d;mshtml=d;powrprof=n,b"
export WINEPREFIX=$PWD/build/wine

# The 64-bit Wine, empty when there is none. Debian's isn't on the path.
wine64=$(PATH=$PATH:/usr/lib/wine command -v wine64) || wine64=

# in_time SECONDS COMMAND...: its exit status, or 124 when it was ended because it took longer.
in_time() {
  timeout "$(($1 * ${WINE_PATIENCE:-1}))" "${@:2}"
}

# wine_is_available, wine64_is_available: true when a Windows program of that width has run. Otherwise the reason is
# printed, and nothing is left running.
wine_is_available() {
  command -v wine >/dev/null || { echo "there is no wine on this machine"; return 1; }
  in_time 60 wine --version >/dev/null 2>&1 ||
    { echo "wine doesn't start; this kernel may not execute 32-bit programs"; return 1; }
  prepare_prefix wine && runs x86 wine
}

wine64_is_available() {
  [ -n "$wine64" ] || { echo "there is no 64-bit wine on this machine"; return 1; }
  prepare_prefix "$wine64" || return
  grep -q '^#arch=win64' "$WINEPREFIX/system.reg" || { echo "$WINEPREFIX is a 32-bit machine"; return 1; }
  runs AMD64 "$wine64"
}

# runs ARCHITECTURE WINE: asks the command interpreter that this Wine starts for its own architecture.
runs() {
  local answer status=0
  answer=$(in_time 60 "$2" cmd /c 'echo %PROCESSOR_ARCHITECTURE%' 2>/dev/null) || status=$?
  answer=${answer//$'\r'/}
  [ "$answer" != "$1" ] || return 0
  case $status in
    0) echo "this wine runs programs for ${answer:-an unknown architecture}, not for $1" ;;
    124) echo "a Windows program for $1 hangs on this wine" ;;
    *) echo "a Windows program for $1 fails on this wine with exit status $status" ;;
  esac
  stop_wine
  return 1
}

# prepare_prefix WINE: the machine below build/, made with this Wine when there is none. It gets its name when it is
# complete. Otherwise the reason is printed.
prepare_prefix() {
  [ ! -e "$WINEPREFIX/system.reg" ] || return 0
  local final=$WINEPREFIX
  local -x WINEPREFIX=$final.new
  rm -rf "$WINEPREFIX"
  mkdir -p "$WINEPREFIX"
  if ! in_time 400 "$1" wineboot --init >/dev/null 2>&1; then
    echo "wineboot makes no machine for this wine"
    stop_wine
    rm -rf "$WINEPREFIX"
    return 1
  fi
  # The registry is written when the last program has ended; one that hangs is ended.
  in_time 60 wineserver -w || stop_wine
  rm -rf "$final"
  mv "$WINEPREFIX" "$final"
}

# wine_stays WINE, wine_rests: between the two an interpreter waits for its input, so that Wine doesn't start its
# services anew for each program, which takes most of the time. The registry is written when Wine rests.
wine_stays() {
  local input
  input=$(mktemp -u)
  mkfifo "$input"
  "$1" cmd <"$input" >/dev/null 2>&1 &
  exec {waiting}>"$input"
  rm "$input"
}

wine_rests() {
  (echo exit >&"$waiting") 2>/dev/null || true
  exec {waiting}>&-
  in_time 60 wineserver -w
}

# stop_wine: ends all programs of this machine, those included that hang before the server knows them.
stop_wine() {
  local process
  in_time 30 wineserver -k || true
  for process in /proc/[0-9]*; do
    if grep -qzxF "WINEPREFIX=$WINEPREFIX" "$process/environ" && grep -qF 'C:\' "$process/cmdline"; then
      kill -KILL "${process#/proc/}"
    fi
  done 2>/dev/null
  in_time 30 wineserver -w || true
}

# set_version VERSION: winxp or vista.
set_version() {
  in_time 60 wine reg add 'HKCU\Software\Wine' /v Version /d "$1" /f >/dev/null 2>&1 || return
  in_time 60 wineserver -w || true
}
