#!/usr/bin/env bash
# Installs what is missing, builds the tests for Linux with line numbers and runs the unit, library,
# loading and replay tests under Valgrind's memcheck. Any error or definite leak is a failure. There are
# no suppressions.
#   valgrind.sh [TEST...]    test programs; default: all four
. "$(dirname "${BASH_SOURCE[0]}")/tools.sh"
scripts/install_tools.sh "${build_tools[@]}" "${native_tools[@]}" "${test_tools[@]}" valgrind

[ $# -gt 0 ] || set -- unit_tests library_tests loading_tests fuzz_replay_tests
build=build/linux-x64-valgrind
echo "== build"
quietly cmake -S . -B "$build" -G Ninja -D CMAKE_BUILD_TYPE=Release \
  -D CMAKE_CXX_FLAGS_RELEASE="-O1 -g" -D ORVANE_BUILD_HOSTS=OFF -D ORVANE_BUILD_BENCHMARKS=OFF
cmake --build "$build" --target orvane_desktop_camera "$@"

# The C library's AVX2 comparison of wide texts reads whole registers: past a text's end, but never into
# the next page. Memcheck reports that as an error. This setting switches off AVX2 in the C library only;
# the library under test still detects it.
export GLIBC_TUNABLES=glibc.cpu.hwcaps=-AVX2

# A library test changes its process's state for good, so every case runs in a process of its own.
one_case() {
  local log="$logs/${1##*/}.${2//\//_}.log"
  valgrind --quiet --error-exitcode=99 --leak-check=full --show-leak-kinds=definite \
    --errors-for-leak-kinds=definite --num-callers=30 \
    "$1" --gtest_filter="$2" >"$log" 2>&1 || echo "FAILED: $2 ($log)"
}
export -f one_case
export logs="$PWD/$build/valgrind"
rm -rf "$logs"
mkdir -p "$logs"
failures=0
for program in "$@"; do
  file="$PWD/$build/tests/$program"
  cases=$("$file" --gtest_list_tests | awk '/^[^ ]/ { suite = $1; next } { print suite $1 }')
  mapfile -t failed < <(xargs -P "$(nproc)" -I{} bash -c 'one_case "$@"' _ "$file" {} <<<"$cases")
  ((${#failed[@]} == 0)) || printf '%s\n' "${failed[@]}"
  echo "== $program: $(wc -l <<<"$cases") cases under memcheck, ${#failed[@]} with findings"
  failures=$((failures + ${#failed[@]}))
done
exit $((failures > 0))
