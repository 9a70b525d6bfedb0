#!/usr/bin/env bash
# Installs what is missing, builds the fuzzers with clang and runs them: the library against adversarial
# SDKs for three fifths of the time, the description of a camera and the requests to the network server
# for a fifth each.
#   fuzz.sh [SECONDS]        60 by default
# New inputs go to build/linux-x64-fuzz/corpus/. Inputs that break a rule go to
# build/linux-x64-fuzz/findings/, and the exit status is then 1.
. "$(dirname "${BASH_SOURCE[0]}")/tools.sh"
scripts/install_tools.sh "${build_tools[@]}" clang libclang-rt-14-dev

seconds=${1:-60}
build=build/linux-x64-fuzz
echo "== build"
quietly cmake -S . -B "$build" -G Ninja -D CMAKE_BUILD_TYPE=Release \
  -D CMAKE_C_COMPILER=clang -D CMAKE_CXX_COMPILER=clang++ -D ORVANE_BUILD_FUZZERS=ON \
  -D ORVANE_BUILD_TESTS=OFF -D ORVANE_BUILD_SIMULATORS=OFF -D ORVANE_BUILD_HOSTS=OFF \
  -D ORVANE_BUILD_BENCHMARKS=OFF
cmake --build "$build" --target fuzz_adversarial_sdks fuzz_camera_json fuzz_alpaca_requests

# run NAME SECONDS LARGEST-INPUT
run() {
  local name=$1 log="$build/$1.log"
  mkdir -p "$build/corpus/$name" "$build/findings/$name"
  echo "== $name: $2 s"
  "$build/fuzzers/fuzz_$name" -max_total_time="$2" -max_len="$3" -len_control=0 -timeout=30 \
    -print_final_stats=1 -artifact_prefix="$build/findings/$name/" \
    "$build/corpus/$name" "fuzz/corpus/$name" >"$log" 2>&1 || failed=1
  grep -E '^stat::number_of_executed_units|^stat::average_exec|^broken|^SUMMARY' "$log" || true
  grep -E '^#[0-9]+.*cov:' "$log" | tail -n 1
  echo "findings: $(find "$build/findings/$name" -type f | wc -l)"
}
failed=0
part=$((seconds / 5 + 1))
run adversarial_sdks $((seconds > 2 * part ? seconds - 2 * part : 1)) 2048
run camera_json "$part" 700
run alpaca_requests "$part" 700
if [ "$failed" -ne 0 ]; then
  echo "== findings in $build/findings; logs in $build/*.log"
  exit 1
fi
echo "== no findings"
