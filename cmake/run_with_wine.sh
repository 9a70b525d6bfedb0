#!/usr/bin/env bash
# Runs a Windows program through Wine, quietly and in a prefix of the project's own.
#   run_with_wine.sh PROGRAM.exe [ARGUMENT...]
# WINEPREFIX names the prefix; without it, wine-prefix/ beside this checkout's builds is used.
set -eu
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
export WINEPREFIX="${WINEPREFIX:-$here/../build/wine-prefix}"
export WINEDEBUG="${WINEDEBUG:--all}"
export WINEDLLOVERRIDES="${WINEDLLOVERRIDES:-mscoree,mshtml=}"
export WINEARCH=win64

# Debian's wine may lie outside root's PATH under this name only.
wine=$(command -v wine64 || command -v wine || echo /usr/lib/wine/wine64)

if [ ! -f "$WINEPREFIX/.ready" ]; then
  # Several tests may start at once: one makes the prefix, the others wait for it.
  mkdir -p "$WINEPREFIX"
  (
    flock 9
    if [ ! -f "$WINEPREFIX/.ready" ]; then
      "$wine" wineboot --init >/dev/null 2>&1 </dev/null
      touch "$WINEPREFIX/.ready"
    fi
  ) 9>"$WINEPREFIX/.lock"
fi
exec "$wine" "$@"
