#!/usr/bin/env bash
# Runs a Windows program through Wine, without Wine's own messages and in a prefix for this project.
#   run_with_wine.sh PROGRAM.exe [ARGUMENT...]
# WINEPREFIX is the prefix; default: build/wine-prefix/ of this checkout.
# ORVANE_WINE_TRIES is the number of times that a program is started while it fails without printing
# anything. Its output then appears at its end, in one stream. The tests set it, because their
# programs always print something. The output is not changed; started-again.log in the prefix lists
# the retries.
set -eu
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
export WINEPREFIX="${WINEPREFIX:-$here/../build/wine-prefix}"
export WINEDEBUG="${WINEDEBUG:--all}"
# A program that crashes ends at once: Wine's debugger may wait for ever.
export WINEDLLOVERRIDES="${WINEDLLOVERRIDES:-mscoree,mshtml=};winedbg.exe=d"
export WINEARCH=win64

# Wine keeps file names in the locale's encoding. Outside UTF-8 it finds no file with other letters.
case ${LC_ALL:-${LC_CTYPE:-${LANG:-}}} in
  *[Uu][Tt][Ff]8* | *[Uu][Tt][Ff]-8*) ;;
  *) export LC_ALL=C.UTF-8 ;;
esac

# Debian may install Wine outside root's PATH, only under this name.
wine=("$(command -v wine64 || command -v wine || echo /usr/lib/wine/wine64)")

# Newer kernels put a program's heap at a random address in the GiB after the program. Debian's Wine
# is a program at 0x7c000000, so its heap sometimes covers 0x7ffe0000, where Windows has its shared
# user data. Such a start fails before the program's first instruction, and with WINEDEBUG=-all it
# prints nothing. A container may forbid setarch; the retries below are for that case.
if setarch -R true 2>/dev/null; then
  wine=(setarch -R "${wine[@]}")
fi

# If several programs start at once, one starts the server and makes the prefix, and the others wait.
mkdir -p "$WINEPREFIX"
(
  flock 9
  # Start a server that stays for some seconds; this fails if a server is running already. The server
  # that Debian's Wine starts ends with its last program, and a program that starts while the server
  # ends may fail. The first program starts services that keep its output open until the server ends,
  # so the first program is a dummy.
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

# Only a program that fails and has printed nothing is started again.
output=$(mktemp)
trap 'rm -f "$output"' EXIT
for ((try = 1; ; ++try)); do
  status=0
  "${wine[@]}" "$@" >"$output" 2>&1 || status=$?
  if [ "$status" -eq 0 ] || [ -s "$output" ] || [ "$try" -ge "$ORVANE_WINE_TRIES" ]; then
    cat "$output"
    exit "$status"
  fi
  echo "$(date -u +%FT%TZ) no output from $1 (status $status, try $try)" >>"$WINEPREFIX/started-again.log"
done
