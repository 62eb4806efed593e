#!/usr/bin/env bash
# check-wide-symbols.sh LIBRARY...
#
# The native build has the 16-bit wchar_t of Windows; the C and C++ libraries of the machine have 32-bit
# copies of their wide functions. A library that calls one of them would silently misbehave, so none may.
set -euo pipefail

bad=0
for library in "$@"; do
  # Functions of the C library on wide text, and instances of the C++ library's templates for wchar_t with
  # its own traits: their code lies in the library and reads 32 bits at a time.
  found=$(nm -D --undefined-only "$library" | awk '{print $NF}' | sed 's/@.*//' | grep -E \
    -e '^(__)?(isoc99_)?v?[fs]?w(printf|scanf)(_chk)?$' \
    -e '^(__)?v?sw(printf|scanf)(_chk)?$' \
    -e '^(__)?wcs' -e '^(__)?wmem' -e '^(__)?wcp' -e '^(__)?mbs?r?towcs?' -e '^(__)?wcrtomb' -e '^(__)?wcto' \
    -e '^(f|put|get|unget)[gp]?utwc' -e '^(fgetw|fputw|getw|putw|ungetw)' -e '^isw' -e '^tow' -e '^btowc' \
    -e 'IwSt11char_traitsIwE' -e 'St11char_traitsIwE' || true)
  if [ -n "$found" ]; then
    printf '%s calls wide functions of the 32-bit library:\n' "$library" >&2
    c++filt <<<"$found" | sed 's/^/  /' >&2
    bad=1
  fi
done
exit $bad
