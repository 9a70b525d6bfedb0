#!/usr/bin/env bash
# Installs what is missing, builds with GCC's coverage counters, runs the tests on this system and reports
# which lines and branches of src/ they reach. Prints a table and every line that was not reached, and
# writes an HTML report to build/coverage/report/.
. "$(dirname "${BASH_SOURCE[0]}")/tools.sh"
scripts/install_tools.sh "${build_tools[@]}" "${native_tools[@]}" "${test_tools[@]}" gcovr

build=build/coverage
echo "== build"
# Without optimisation and inlining, so that the counts belong to the right lines.
quietly cmake -S . -B "$build" -G Ninja -D CMAKE_BUILD_TYPE=Debug \
  -D CMAKE_CXX_FLAGS_DEBUG="--coverage -O0 -g -fno-inline" -D ORVANE_BUILD_HOSTS=OFF \
  -D ORVANE_BUILD_BENCHMARKS=OFF
cmake --build "$build"
find "$build" -name '*.gcda' -delete

echo "== test"
# One test at a time, because all processes that load a library share its counters.
(cd "$build" && ctest --output-on-failure -E ThirteenExports >"test.log" 2>&1) ||
  { tail -n 40 "$build/test.log"; exit 1; }

echo "== coverage of src/"
mkdir -p "$build/report"
# Without the branches that the compiler adds for exceptions, one at every call.
root=$(pwd -P)
report() {
  gcovr --root "$root" --filter "$root/src/" --exclude-throw-branches --exclude-unreachable-branches \
    --gcov-ignore-parse-errors "$@" "$build" >/dev/null
}
report --html-details "$build/report/index.html" --txt "$build/report/lines.txt"
report --branches --txt "$build/report/branches.txt"
echo "-- lines"
cat "$build/report/lines.txt"
echo "-- branches"
cat "$build/report/branches.txt"
