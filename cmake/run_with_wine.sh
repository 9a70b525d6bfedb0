#!/usr/bin/env bash
# Runs a Windows program through Wine, quietly and in a prefix of the project's own.
#   run_with_wine.sh PROGRAM.exe [ARGUMENT...]
# WINEPREFIX names the prefix; without it, wine-prefix/ beside this checkout's builds is used.
# ORVANE_WINE_TRIES starts a program that ends in failure without a word as often as that; what it
# prints then comes at its end, and in one stream. The tests use it: theirs always say something.
# Nothing is added to what a program prints; started-again.log in the prefix tells of such starts.
set -eu
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
export WINEPREFIX="${WINEPREFIX:-$here/../build/wine-prefix}"
export WINEDEBUG="${WINEDEBUG:--all}"
export WINEDLLOVERRIDES="${WINEDLLOVERRIDES:-mscoree,mshtml=}"
export WINEARCH=win64

# Debian's wine may lie outside root's PATH under this name only.
wine=("$(command -v wine64 || command -v wine || echo /usr/lib/wine/wine64)")

# Newer kernels put a program's heap anywhere in the GiB behind it. For Debian's Wine, a program at
# 0x7c000000, that is now and then where Windows has its shared user data, 0x7ffe0000: such a start
# ends before the program's first instruction, and quietly so with WINEDEBUG=-all. A container may
# forbid to choose the addresses; then there are the tries below.
if setarch -R true 2>/dev/null; then
  wine=(setarch -R "${wine[@]}")
fi

# Several programs may start at once: one starts the server and makes the prefix, the others wait.
mkdir -p "$WINEPREFIX"
(
  flock 9
  # A server that stays for some seconds; says no when one is there already. Debian's Wine starts one
  # that ends with its last program: the next may then meet it on its way out, and fail. The first
  # program starts services, which hold its output open for as long as the server is there: so that
  # is one of no interest.
  if wineserver -p20 >/dev/null 2>&1 </dev/null 9>&- && [ -f "$WINEPREFIX/.ready" ]; then
    "${wine[@]}" cmd /c exit >/dev/null 2>&1 </dev/null 9>&- || true
  fi
  if [ ! -f "$WINEPREFIX/.ready" ]; then
    for try in 1 2 3; do
      if "${wine[@]}" wineboot --init >/dev/null 2>&1 </dev/null 9>&-; then break; fi
      if [ "$try" -eq 3 ]; then
        echo "run_with_wine.sh: ${wine[*]} wineboot --init failed; the prefix is $WINEPREFIX" >&2
        exit 1
      fi
    done
    touch "$WINEPREFIX/.ready"
  fi
) 9>"$WINEPREFIX/.lock"

if [ -z "${ORVANE_WINE_TRIES:-}" ]; then
  exec "${wine[@]}" "$@"
fi

# A program that failed and has printed nothing is started again; one that has said anything is not.
output=$(mktemp)
trap 'rm -f "$output"' EXIT
for ((try = 1; ; ++try)); do
  status=0
  "${wine[@]}" "$@" >"$output" 2>&1 || status=$?
  if [ "$status" -eq 0 ] || [ -s "$output" ] || [ "$try" -ge "$ORVANE_WINE_TRIES" ]; then
    cat "$output"
    exit "$status"
  fi
  echo "$(date -u +%FT%TZ) no word from $1 (status $status, try $try)" >>"$WINEPREFIX/started-again.log"
done
