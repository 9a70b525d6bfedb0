#!/usr/bin/env bash
# Compiles the C# binding, its samples and its test with Mono's compiler (warnings are errors), and runs
# them with the simulated SDKs.
#   csharp_test.sh MCS MONO LIBRARY-DIRECTORY SDK-DIRECTORY BINDING-DIRECTORY SCRATCH
set -euo pipefail
mcs=$1 mono=$2 library=$3 sdks=$4 binding=$5 scratch=$6
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
rm -rf "$scratch"
mkdir -p "$scratch"
for source in "$binding/samples/ListCameras.cs" "$binding/samples/LiveStatistics.cs" \
  "$here/CSharpTest.cs"; do
  "$mcs" -warnaserror -warn:4 -unsafe -out:"$scratch/$(basename "$source" .cs).exe" \
    "$binding/OrvaneDesktopCamera.cs" "$source"
done
# The SDK directory too, because the test loads the simulated SDKs to send them commands.
export LD_LIBRARY_PATH="$library:$sdks"

# run STATUS TEXT PROGRAM ARGUMENT...: expects this exit status, and the text in the output.
run() {
  local status=$1 text=$2 got=0 output
  shift 2
  output=$("$mono" "$@" 2>&1) || got=$?
  echo "$output"
  if [ "$got" -ne "$status" ] || [[ "$output" != *"$text"* ]]; then
    echo "FAILED: $*: status $got, expected $status and \"$text\"" >&2
    exit 1
  fi
}
run 0 "all passed" --debug "$scratch/CSharpTest.exe" "$sdks"
run 0 "  0 ZWO ASI120MC-S: 1280 x 960, colour (Grbg)" "$scratch/ListCameras.exe" "$sdks"
run 1 "SDKs: none" "$scratch/ListCameras.exe" /nowhere
run 2 "usage: ListCameras SDK-DIRECTORY" "$scratch/ListCameras.exe"
run 0 "80.0 ms: mean " "$scratch/LiveStatistics.exe" "$sdks"
ORVANE_SIMULATOR="sdk ASICamera2; force ASIGetVideoData 2 1 4" \
  run 1 "ASIGetVideoData: 4" "$scratch/LiveStatistics.exe" "$sdks"
ORVANE_SIMULATOR="sdk ASICamera2; force ASIGetVideoData 1 -1 11" \
  run 1 "No frame within 510 ms" "$scratch/LiveStatistics.exe" "$sdks"
