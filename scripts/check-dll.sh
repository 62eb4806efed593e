#!/usr/bin/env bash
# check-dll.sh DLL
#
# Whether Windows XP SP3 can load the DLL, and whether it is what an integrator expects: machine, subsystem
# version, imports against the reviewed list, exports, size. Prints what it finds, and every fault.
set -euo pipefail

dll=$1
here=$(cd "$(dirname "$0")" && pwd)
allowed=$here/xp-imports.txt
required=$here/required-exports.txt
objdump=${OBJDUMP:-i686-w64-mingw32-objdump}
largest=$((200 * 1024))
faults=0
fault() { printf '  FAULT: %s\n' "$*" >&2; faults=$((faults + 1)); }

headers=$($objdump -p "$dll")

printf '%s\n' "$dll"
grep -q 'file format pei-i386' <<<"$($objdump -f "$dll")" || fault "not built for i386"

number() { awk -v key="$1" '$1 == key {print $2; exit}' <<<"$headers"; }
subsystem=$(number MajorSubsystemVersion).$(number MinorSubsystemVersion)
system=$(number MajorOSystemVersion).$(number MinorOSystemVersion)
printf '  machine i386, subsystem version %s, system version %s\n' "$subsystem" "$system"
for version in "$subsystem" "$system"; do
  awk -v v="$version" 'BEGIN {split(v, n, "."); exit !(n[1] < 5 || (n[1] == 5 && n[2] <= 1))}' ||
    fault "version $version is above 5.1"
done

# Static thread-local storage faults before Windows Vista when a DLL is loaded at run time. The run-time
# library's own directory entry is harmless as long as no data of ours lies there.
tls=$($objdump -h "$dll" | awk '$2 == ".tls" {print $3}')
[ -z "$tls" ] || [ $((16#$tls)) -le 32 ] || fault "$((16#$tls)) bytes of static thread-local storage"

# "DLL Name: X" begins a library; each line below it ends with the name of a function.
imports=$(awk '/DLL Name:/ {dll = tolower($3); next}
  /^\t[0-9a-f]+\t +[0-9]+ / {print dll, $NF}
  /^$/ {next}' <<<"$headers" | sort -u)
libraries=$(cut -d' ' -f1 <<<"$imports" | sort -u | paste -sd' ')
printf '  imports %d functions of %s\n' "$(wc -l <<<"$imports")" "$libraries"
[ "${VERBOSE:-}" ] && sed 's/^/    /' <<<"$imports"
while read -r pair; do
  [ -n "$pair" ] && fault "imports a function that isn't on the list of what Windows XP SP3 exports: ${pair/ /: }"
done < <(comm -23 <(printf '%s\n' "$imports") <(grep -vE '^(#|$)' "$allowed" | sort -u))

exports=$(awk '/^\[Ordinal\/Name Pointer\] Table/ {on = 1; next} on && /^\t\[/ {print $NF} on && /^$/ {exit}' \
  <<<"$headers" | sort -u)
printf '  exports %d names\n' "$(wc -l <<<"$exports")"
[ "${VERBOSE:-}" ] && c++filt <<<"$exports" | sed 's/^/    /'
if [ -e "$required" ]; then
  plain=$(sed -E 's/^_Z/__Z/' <<<"$exports" | i686-w64-mingw32-c++filt)
  while read -r name; do
    grep -qxF -- "$name" <<<"$plain" || fault "doesn't export $name"
  done < <(grep -vE '^(#|$)' "$required")
fi

bytes=$(stat -c %s "$dll")
printf '  %d bytes\n' "$bytes"
[ "$bytes" -le "$largest" ] || fault "larger than $largest bytes"

[ "$faults" = 0 ]
