#!/usr/bin/env bash
# Installs what is missing, builds the Windows library, oc_capture and the simulated SDKs, and runs
# oc_capture through Wine: lists the cameras, records from one camera of each maker into demo-output/,
# and records from a camera that sees one of these recordings. Then takes a picture through oc_alpaca.
. "$(dirname "${BASH_SOURCE[0]}")/tools.sh"
scripts/install_tools.sh "${build_tools[@]}" "${windows_tools[@]}" "${test_tools[@]}" curl

echo "== build"
quietly cmake --preset windows-x64
cmake --build --preset windows-x64 --target oc_capture oc_alpaca simulated_sdks

capture() {
  cmake/run_with_wine.sh build/windows-x64/bin/oc_capture.exe "$@"
}
sdk=build/windows-x64/simulated-sdks
out=demo-output
rm -rf "$out"
mkdir -p "$out"

echo
echo "== cameras"
capture list --sdk "$sdk"

# One camera of each maker, and every format of the first camera.
recordings=(
  "ASI120MC-S|raw8|zwo-raw8"
  "ASI120MC-S|raw16|zwo-raw16"
  "ASI120MC-S|rgb24|zwo-rgb24"
  "ASI120MC-S|mono8|zwo-mono8"
  "Mars-C|raw16|player-one-raw16"
  "QHY5III482C|raw16|qhyccd-raw16"
  "SkyRaiderDS6.3|raw16|touptek-raw16"
)
echo
echo "== recordings"
table=$(printf '%-16s %-6s %6s %12s %9s %12s  %s' camera format frames size fps bytes file)
for recording in "${recordings[@]}"; do
  IFS='|' read -r camera format name <<<"$recording"
  said=$(capture record --sdk "$sdk" --camera "$camera" --format "$format" --frames 10 \
    --out "$out/$name.ser")
  echo "$said"
  read -r frames width height fps <<<"$(sed -nE \
    's/.*Recorded ([0-9]+) frames? of ([0-9]+) x ([0-9]+) .*\(([0-9.]+) fps\).*/\1 \2 \3 \4/p' \
    <<<"$said")"
  table+=$(printf '\n%-16s %-6s %6s %12s %9s %12s  %s' "$camera" "$format" "$frames" \
    "$width x $height" "$fps" "$(stat -c %s "$out/$name.ser")" "$out/$name.ser")
done

echo
echo "== a camera that looks at a recording"
# With the settings that --scene chooses, a camera delivers the recording's samples.
ORVANE_SIMULATOR="clock stopped" capture record --sdk "$sdk" --camera ASI120MC-S --format raw16 \
  --frames 10 --scene "$out/zwo-raw16.ser" --out "$out/zwo-played.ser"
# The samples begin after a header of 178 bytes.
if cmp --ignore-initial=178 --bytes=$((10 * 1280 * 960 * 2)) "$out"/zwo-{raw16,played}.ser; then
  echo "$out/zwo-played.ser has the samples of $out/zwo-raw16.ser."
else
  echo "$out/zwo-played.ser should have the samples of $out/zwo-raw16.ser." >&2
  exit 1
fi

echo
echo "== a picture through the Alpaca server"
cmake/run_with_wine.sh build/windows-x64/bin/oc_alpaca.exe --sdk "$sdk" --port 11119 \
  >"$out/oc_alpaca.txt" &
server=$!
trap 'kill "$server" 2>/dev/null || true' EXIT
for ((try = 0; try < 300; ++try)); do
  grep -q '^Listening' "$out/oc_alpaca.txt" && break
  sleep 0.1
done
address=http://127.0.0.1:11119
ask() {
  curl -sS --fail "$@"
  echo
}
ask -X PUT -d Connected=true "$address/api/v1/camera/0/connected"
ask -X PUT -d Duration=0.5 -d Light=true "$address/api/v1/camera/0/startexposure"
until [[ $(ask "$address/api/v1/camera/0/imageready") == *'"Value":true'* ]]; do sleep 0.1; done
ask "$address/api/v1/camera/0/lastexposurestarttime"
ask -o "$out/alpaca.png" "$address/setup/v1/camera/0/picture.png"
echo "$out/alpaca.png is the picture."
kill "$server"

echo
echo "$table"
echo
echo "The recordings, each with a -preview.png of its last frame, brightened, and its settings in a .txt, are in $PWD/$out"
