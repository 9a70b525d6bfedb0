#!/usr/bin/env bash
# Clones the last commit into two directories with names of different lengths, makes the packages in both,
# and compares the packages and all their files byte for byte.
#   check_reproducible.sh [PRESET...]      windows-x64, linux-x64; default: windows-x64
set -eu
cd "$(dirname "${BASH_SOURCE[0]}")/.."
[ $# -gt 0 ] || set -- windows-x64
[ -z "$(git status --porcelain)" ] || echo "note: changes that are not committed are not checked"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
clones=("$work/one" "$work/a second directory elsewhere")
# The second build runs in an environment that must make no difference.
zones=(UTC Asia/Tokyo)
masks=(022 002)
for number in 0 1; do
  git clone -q . "${clones[number]}"
  echo "== build $((number + 1)) of $(git rev-parse --short HEAD) in ${clones[number]}"
  # With a compiler cache the second build would only copy the first one's objects.
  (umask "${masks[number]}" && cd "${clones[number]}" &&
    TZ=${zones[number]} CCACHE_DISABLE=1 scripts/package.sh "$@" >"$work/log" 2>&1) ||
    { cat "$work/log"; exit 1; }
done

different=0
for preset in "$@"; do
  for file in "${clones[0]}/build/$preset-package/packages"/* \
    "${clones[0]}/build/$preset-package/bin"/* "${clones[0]}/build/$preset-package/simulated-sdks"/*; do
    name=${file#"${clones[0]}/"}
    if cmp -s "$file" "${clones[1]}/$name"; then
      echo "same       $(sha256sum <"$file" | cut -c1-16)  $name"
    else
      echo "DIFFERENT  $name"
      different=1
    fi
  done
done
exit $different
