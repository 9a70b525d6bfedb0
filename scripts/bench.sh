#!/usr/bin/env bash
# Installs what is missing, builds the benchmarks and runs them all: the cost of a call, of a scan, of
# recording, of loading and of the network server, and the swap of red and blue compared with other
# libraries. Each run prints the processor's name and ratios measured inside that run. The exit status is
# 1 if a gate is missed.
#   bench.sh [RUNS]      the number of runs, 1 by default
. "$(dirname "${BASH_SOURCE[0]}")/tools.sh"
scripts/install_tools.sh "${build_tools[@]}" "${windows_tools[@]}" "${native_tools[@]}" libyuv-dev \
  libopencv-imgproc-dev python3

runs=${1:-1}
linux=build/linux-x64-bench
windows=build/windows-x64-bench
# build DIRECTORY OPTION...
build() {
  quietly cmake -S . -B "$@" -G Ninja -D CMAKE_BUILD_TYPE=Release -D ORVANE_BUILD_TESTS=OFF
  cmake --build "$1"
}
echo "== build"
build "$linux" -D ORVANE_BUILD_COMPARISONS=ON
build "$windows" -D CMAKE_TOOLCHAIN_FILE="$PWD/cmake/toolchains/mingw-w64-x86_64.cmake"

library=$PWD/$linux/bin/liborvane_desktop_camera.so
dll=$windows/bin/orvane_desktop_camera.dll
wine=cmake/run_with_wine.sh
missed=0

# Runs one benchmark under a title and remembers a missed gate.
part() {
  echo
  echo "-- $1"
  shift
  "$@" || missed=1
}

for ((run = 1; run <= runs; ++run)); do
  echo
  echo "== run $run of $runs: $(sed -n 's/^model name[^:]*: //p' /proc/cpuinfo | head -n 1)," \
    "$(nproc) processors, load $(cut -d ' ' -f 1 /proc/loadavg)"
  part "calls, Linux" python3 benchmarks/call_overhead.py \
    "$linux/benchmarks/call_overhead" "$library" "$linux/instant-sdks"
  part "calls, Windows through Wine" python3 benchmarks/call_overhead.py "$wine" \
    "$windows/benchmarks/call_overhead.exe" \
    "$dll" "$windows/instant-sdks"
  part "scan and description, Linux" env ORVANE_INSTANT_CAMERAS=128 \
    "$linux/benchmarks/scan_cost" "$library" "$linux/instant-sdks"
  part "swap red and blue; implementations" "$linux/benchmarks/swap_red_and_blue"
  part "recording" python3 benchmarks/recording.py "$linux/bin/oc_capture" "$linux/instant-sdks" \
    /dev/shm "$linux"
  part "transposing a frame for the Alpaca server" "$linux/benchmarks/transpose_frame"
  part "the Alpaca server" python3 -B benchmarks/alpaca.py "$PWD/$linux/bin/oc_alpaca" \
    "$linux/benchmarks/plain_file_server" "$PWD/$linux/simulated-sdks"
  part "weight" "$wine" "$windows/benchmarks/load_time.exe" "$dll" \
    "$windows/benchmarks/empty_library.dll"
  size=$(stat -c %s "$dll")
  echo "  size of the stripped DLL: $size bytes; at most 1000000: $(((size <= 1000000)) && echo yes || echo NO)"
  ((size <= 1000000)) || missed=1
done

echo
if [ "$missed" -ne 0 ]; then
  echo "== a gate was missed"
  exit 1
fi
echo "== all gates held"
