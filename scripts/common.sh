# What `run` and `test` share: messages, builds, and the packages that a step needs.
# Sourced by bash in the project's folder, after `set -euo pipefail`.

say() { printf '\n==> %s\n' "$*"; }
loud() { printf '\n!!! %s\n' "$*" >&2; }
die() { loud "$*"; exit 1; }

is_index_updated=no

# have_or_install COMMAND-OR-FILE PACKAGE...: true when it is there, or is after installing the packages.
have_or_install() {
  local wanted=$1
  shift
  is_there "$wanted" && return 0
  [ "$(id -u)" = 0 ] && command -v apt-get >/dev/null || return 1
  say "Installing $* (for $wanted)"
  export DEBIAN_FRONTEND=noninteractive
  if [ "$is_index_updated" = no ]; then
    is_index_updated=yes
    timeout 300 apt-get update -qq >/dev/null 2>&1 || true
  fi
  timeout 900 apt-get install -y -qq "$@" >/dev/null 2>&1 || true
  is_there "$wanted"
}

is_there() {
  case $1 in
    /*) [ -e "$1" ] ;;
    *) command -v "$1" >/dev/null 2>&1 ;;
  esac
}

# need COMMAND-OR-FILE PACKAGE...: ends the script with a message when it can't be installed.
need() {
  have_or_install "$@" || die "$1 is missing and could not be installed. On Debian it comes with: ${*:2}"
}

need_native_tools() {
  need g++ g++
  need cmake cmake
  need ninja ninja-build
}

# build PRESET [-DOPTION=VALUE...]: configures and builds; prints the whole log only when it fails.
build() {
  local preset=$1 log options=("${@:2}")
  log=build/$preset.log
  mkdir -p build
  command -v ccache >/dev/null 2>&1 && options+=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
  if ! { cmake --preset "$preset" "${options[@]}" &&
    cmake --build --preset "$preset"; } >"$log" 2>&1; then
    grep -E 'error|Error|FAILED' -A3 "$log" | head -80 >&2 || true
    die "The build '$preset' failed; the whole log is in $log"
  fi
}

# unpack_package BUILD FOLDER: makes the zip of that build folder and unpacks it as FOLDER.
unpack_package() {
  local made
  made=$(mktemp -d)
  cpack --config "$1/CPackConfig.cmake" -B "$made" >"$made/log" || { cat "$made/log" >&2; die "cpack failed"; }
  (cd "$made" && cmake -E tar xf pm_limited_support-*.zip)
  rm -rf "$2"
  mkdir -p "$(dirname "$2")"
  cp -r "$made"/pm_limited_support-*/ "$2"
  rm -rf "$made"
}
