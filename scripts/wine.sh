# What the scripts share that run Windows programs: a 32-bit Wine with a machine of its own below build/.
# Sourced by bash in the project's folder.
#
# Wine stands in for two generations of Windows by its version setting. Its power manager is a stub, so the
# programs find our own powrprof.dll beside them and Wine is told to take it.

# A 32-bit Wine that was unpacked beside a 64-bit one needs its libraries named.
lib32=/usr/lib/i386-linux-gnu
export LD_LIBRARY_PATH=$lib32${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}
export WINEDEBUG=${WINEDEBUG:--all} WINEDLLOVERRIDES="mscoree=d;mshtml=d;powrprof=n,b"
export WINEPREFIX=$PWD/build/wine

# True when a 32-bit Windows program has just run. An installed Wine need not run: the kernel may not execute 32-bit
# programs, and the machine below build/ may not come up.
wine_is_available() {
  command -v wine >/dev/null 2>&1 && [ -e "$lib32/wine/i386-windows/ntdll.dll" ] &&
    timeout 30 wine --version >/dev/null 2>&1 && prepare_prefix && timeout 60 wine cmd /c exit >/dev/null 2>&1
}

prepare_prefix() {
  [ ! -e "$WINEPREFIX/system.reg" ] || return 0
  mkdir -p "$WINEPREFIX"
  timeout 180 wine wineboot --init >/dev/null 2>&1 || return
  timeout 60 wineserver -w || true
}

# set_version VERSION: winxp or vista.
set_version() {
  timeout 60 wine reg add 'HKCU\Software\Wine' /v Version /d "$1" /f >/dev/null 2>&1
  timeout 60 wineserver -w || true
}
