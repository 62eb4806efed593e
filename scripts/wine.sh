# Shared by the scripts that run Windows programs: Wine with its own machine below build/.
# Sourced by bash in the project's folder.
#
# Wine stands in for two generations of Windows by its version setting. Its power manager is a stub, so the
# programs have our own powrprof.dll beside them, and Wine is configured to use it.
#
# An installed Wine may not work. The product is 32-bit, so the kernel must execute 32-bit programs (an emulator that
# is registered for them starts Wine, which then hangs), and the machine below build/ must come up. A Wine therefore
# counts as available when a Windows program has just run on it. WINE_PATIENCE multiplies all time limits, for slow
# machines.

# A 32-bit Wine that was unpacked beside a 64-bit one needs the path of its libraries.
lib32=/usr/lib/i386-linux-gnu
export LD_LIBRARY_PATH=$lib32${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}
export WINEDEBUG=${WINEDEBUG:--all} WINEDLLOVERRIDES="mscoree=d;mshtml=d;powrprof=n,b"
export WINEPREFIX=$PWD/build/wine

# The 64-bit Wine, empty when there is none. Debian's isn't on the path.
wine64=$(PATH=$PATH:/usr/lib/wine command -v wine64) || wine64=

# kernel_runs_x86: true when a 32-bit program, one that only ends, can be started.
kernel_runs_x86() {
  local program status=0
  program=$(mktemp)
  # An ELF header, one segment from 0x8048000, and at its end: xor eax, eax; inc eax; xor ebx, ebx; int 0x80.
  printf '%b' '\x7fELF\x01\x01\x01\0\0\0\0\0\0\0\0\0\x02\0\x03\0\x01\0\0\0\x54\x80\x04\x08\x34\0\0\0\0\0\0\0' \
    '\0\0\0\0\x34\0\x20\0\x01\0\0\0\0\0\0\0' \
    '\x01\0\0\0\0\0\0\0\0\x80\x04\x08\0\x80\x04\x08\x5b\0\0\0\x5b\0\0\0\x05\0\0\0\0\x10\0\0' \
    '\x31\xc0\x40\x31\xdb\xcd\x80' >"$program"
  chmod +x "$program"
  "$program" 2>/dev/null || status=$?
  rm "$program"
  return "$status"
}

# install_wine: installs what is missing of Wine from Debian's packages. Beside a 64-bit Wine the 32-bit packages can't
# always be installed, so their files are unpacked. Otherwise the reason is printed.
install_wine() {
  command -v wine >/dev/null && [ -e "$lib32/wine/i386-windows/ntdll.dll" ] && return
  kernel_runs_x86 || { echo "this kernel doesn't execute 32-bit programs"; return 1; }
  [ "$(id -u)" = 0 ] && command -v apt-get >/dev/null && [ "$(dpkg --print-architecture)" = amd64 ] ||
    { echo "there is no 32-bit wine, and only root on a 64-bit Debian can have it installed"; return 1; }
  local work packages=(libwine wine32 libunwind8 liblzma5 libgcc-s1 libc6) loader=/lib/ld-linux.so.2
  work=$(mktemp -d)
  if ! {
    dpkg --add-architecture i386
    timeout 300 apt-get update -qq || true # the index of one suite may fail
    DEBIAN_FRONTEND=noninteractive timeout 900 apt-get install -y -qq wine wine64 &&
      (cd "$work" && timeout 300 apt-get download -qq "${packages[@]/%/:i386}")
  } >/dev/null 2>&1; then
    rm -rf "$work"
    echo "apt-get doesn't give the packages of a 32-bit wine"
    return 1
  fi
  for package in "$work"/*.deb; do dpkg -x "$package" "$work/root"; done
  mkdir -p "$lib32" /usr/lib/wine
  cp -a "$work/root$lib32/." "$lib32/"
  ! [ -d "$work/root/lib/i386-linux-gnu" ] || cp -a "$work/root/lib/i386-linux-gnu/." "$lib32/"
  cp -a "$work/root/usr/lib/wine/." /usr/lib/wine/
  [ -e $loader ] || cp -aL "$(find "$work/root" -name ld-linux.so.2 | head -n 1)" $loader
  local zlib=/usr/lib/x86_64-linux-gnu/wine/i386-windows/zlib1.dll # Debian keeps it with the 64-bit files
  ! [ -e $zlib ] || cp -a $zlib "$lib32/wine/i386-windows/"
  rm -rf "$work"
}

# in_time SECONDS COMMAND...: its exit status, or 124 when it was ended because it took longer.
in_time() {
  timeout "$(($1 * ${WINE_PATIENCE:-1}))" "${@:2}"
}

# wine_is_available, wine64_is_available: true when a Windows program of that width has run. Otherwise the reason is
# printed, and nothing is left running.
wine_is_available() {
  install_wine || return
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

# prepare_prefix WINE: the machine below build/, made with this Wine when there is none and renamed when it is complete.
# Otherwise the reason is printed.
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

# stop_wine: ends all programs of this machine, including those that hang before the server knows them.
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
