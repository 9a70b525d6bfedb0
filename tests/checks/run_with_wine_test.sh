#!/usr/bin/env bash
# Tests cmake/run_with_wine.sh with a fake Wine: its program fails and prints nothing a given number of
# times, then prints.
#   run_with_wine_test.sh WRAPPER SCRATCH
set -euo pipefail
wrapper=$1 scratch=$2

fail() {
  echo "FAILED: $*" >&2
  exit 1
}

rm -rf "$scratch"
mkdir -p "$scratch/bin"
scratch=$(cd "$scratch" && pwd -P)
export WINEPREFIX="$scratch/prefix" PATH="$scratch/bin:$PATH"
again="$WINEPREFIX/started-again.log"

# This fake reports that a server runs already, so the wrapper only makes the prefix.
cat >"$scratch/bin/wineserver" <<'END'
#!/bin/sh
exit 2
END
# The first starts of wineboot and of the program print nothing and fail; files hold how many.
cat >"$scratch/bin/wine64" <<'END'
#!/bin/sh
here=$(dirname "$0")
[ "$1" = wineboot ] && kind=boot || kind=program
echo "$*" >>"$here/$kind.starts"
[ "$(wc -l <"$here/$kind.starts")" -gt "$(cat "$here/$kind.silent")" ] || exit 7
[ "$kind" = program ] || exit 0
cat /proc/self/personality >"$here/personality"
echo "to the output: $2"
echo "to the errors: $3" >&2
exit "$4"
END
chmod +x "$scratch/bin/wineserver" "$scratch/bin/wine64"

# expect WHAT SILENT-BOOTS SILENT-PROGRAMS PROGRAM-STATUS : STATUS STARTS OUTPUT REMARKS
expect() {
  local what=$1 boots=$2 programs=$3 ends=$4 status=0 output
  rm -rf "$WINEPREFIX" "$scratch/bin/"*.starts
  echo "$boots" >"$scratch/bin/boot.silent"
  echo "$programs" >"$scratch/bin/program.silent"
  touch "$scratch/bin/program.starts"
  output=$("$wrapper" program.exe "a b" "" "$ends" 2>&1) || status=$?
  [ "$status" -eq "$6" ] || fail "$what: status $status, not $6: $output"
  [ "$(wc -l <"$scratch/bin/program.starts")" -eq "$7" ] || fail "$what: $(cat "$scratch/bin/program.starts")"
  [ "$output" = "$8" ] || fail "$what: printed: $output"
  [ "$(cat "$again" 2>/dev/null | wc -l)" -eq "$9" ] || fail "$what: $again: $(cat "$again")"
  echo "-- $what"
}
unrandomized=$(setarch -R echo 'setarch -R ' 2>/dev/null || true)
said=$'to the output: a b\nto the errors: '
export ORVANE_WINE_TRIES=3
if [ -n "$unrandomized" ]; then
  expect "a program's addresses are not chosen at random" 0 0 0 : 0 1 "$said" 0
  readonly ADDR_NO_RANDOMIZE=0x40000
  (((0x$(cat "$scratch/bin/personality") & ADDR_NO_RANDOMIZE) != 0)) ||
    fail "personality $(cat "$scratch/bin/personality")"
fi
expect "a program that prints is started once" 0 0 0 : 0 1 "$said" 0
expect "a program that prints and fails is started once" 0 0 5 : 5 1 "$said" 0
expect "a program that prints nothing once is retried, and its output stays unchanged" 0 1 0 : 0 2 "$said" 1
expect "a program that prints nothing twice gets a third start" 0 2 5 : 5 3 "$said" 2
expect "a program that never prints fails with its exit status" 0 9 0 : 7 3 "" 2
expect "making the prefix is retried after a failure" 2 0 0 : 0 1 "$said" 0
expect "a prefix that cannot be made is reported" 9 0 0 : 1 0 \
  "run_with_wine.sh: ${unrandomized}$scratch/bin/wine64 wineboot --init failed; the prefix is $WINEPREFIX" 0
[ ! -e "$WINEPREFIX/.ready" ] || fail "a prefix that was not made counts as ready"
unset ORVANE_WINE_TRIES
expect "without ORVANE_WINE_TRIES a program that prints nothing is not retried" 0 1 0 : 7 1 "" 0
