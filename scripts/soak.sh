#!/usr/bin/env bash
# Installs what is missing, builds the endurance tests and runs them for a long time: sessions and reads
# with each maker's simulated SDK, and random sessions. Fails if memory or handles grow, or if the last
# tenth of a run takes more than twice as long as the first.
#   soak.sh [PRESET...]      linux-x64, windows-x64; default: both
# SOAK_CYCLES (10000), SOAK_READS (1000000) and SOAK_RANDOM_STEPS (250000) set the lengths.
. "$(dirname "${BASH_SOURCE[0]}")/tools.sh"
scripts/install_tools.sh "${build_tools[@]}" "${windows_tools[@]}" "${native_tools[@]}" \
  "${test_tools[@]}"

export ORVANE_SOAK_CYCLES="${SOAK_CYCLES:-10000}"
export ORVANE_SOAK_READS="${SOAK_READS:-1000000}"
export ORVANE_RANDOM_STEPS="${SOAK_RANDOM_STEPS:-250000}"
export ORVANE_SOAK_RATIO=200
[ $# -gt 0 ] || set -- linux-x64 windows-x64

logs=$(mktemp -d)
trap 'rm -rf "$logs"' EXIT
for preset in "$@"; do
  echo "== $preset: build"
  quietly cmake --preset "$preset"
  cmake --build --preset "$preset" --target session_tests
  echo "== $preset: run"
  # One test at a time, because timings are compared.
  ctest --preset "$preset" --verbose --timeout 36000 -R '/(Endurance|RandomSessions)\.' \
    >"$logs/$preset" 2>&1 || { cat "$logs/$preset"; exit 1; }
done

for preset in "$@"; do
  echo
  echo "== $preset"
  tr -d '\r' <"$logs/$preset" | sed -n 's/^[0-9]*: endurance|//p' | awk -F'|' '
    BEGIN { printf "%-16s %-18s %12s %12s %6s %14s %12s %8s\n", "SDK", "run", "first us", "last us",
            "ratio", "resident bytes", "heap bytes", "handles" }
    { printf "%-16s %-18s %12.2f %12.2f %6.2f %+14d %+12d %+8d\n", $1, $2, $3, $4, $5, $6, $7, $8 }'
  tr -d '\r' <"$logs/$preset" | sed -n 's/^[0-9]*: random|/random sessions: /p'
done
