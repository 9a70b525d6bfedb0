#!/usr/bin/env bash
# Installs what is missing, builds live_view and the simulated SDKs, runs live_view through Wine on a
# virtual screen, presses its keys and takes screenshots. Fails if the program ends by itself or a
# recording is not a valid SER file.
#   live_view_tour.sh [DIRECTORY]      for the screenshots; default: live-view-tour/
. "$(dirname "${BASH_SOURCE[0]}")/tools.sh"
scripts/install_tools.sh "${build_tools[@]}" "${windows_tools[@]}" "${test_tools[@]}" \
  "${screen_tools[@]}"

out=${1:-live-view-tour}
mkdir -p "$out/recordings"
out=$(cd "$out" && pwd)
rm -f "$out"/live_view.log "$out"/*.png "$out"/recordings/*.{ser,txt}

echo "== build"
quietly cmake --preset windows-x64
cmake --build --preset windows-x64 --target live_view simulated_sdks
sdk=build/windows-x64/simulated-sdks

# A separate screen. The server chooses its number.
number=$(mktemp)
Xvfb -displayfd 3 -screen 0 2600x1700x24 -dpi 96 3>"$number" 2>/dev/null &
screen=$!
program=
finish() {
  [ -z "$program" ] || kill "$program" 2>/dev/null || true
  kill "$screen" 2>/dev/null || true
  rm -f "$number"
}
trap finish EXIT
until [ -s "$number" ]; do
  kill -0 "$screen"  # ends the script if the server did not start
  sleep 0.1
done
DISPLAY=:$(cat "$number")
export DISPLAY
unset ORVANE_SIMULATOR

# start ARGUMENT...: starts the program and waits until its window is there.
start() {
  cmake/run_with_wine.sh build/windows-x64/bin/live_view.exe --sdk "$sdk" --no-settings \
    --recordings "$out/recordings" "$@" 2>>"$out/live_view.log" &
  program=$!
  window=
  for ((attempt = 0; attempt < 600; ++attempt)); do
    window=$(xdotool search --onlyvisible --name '^Live view$' 2>/dev/null | head -n 1) || true
    [ -z "$window" ] || break
    kill -0 "$program"
    sleep 0.1
  done
  xdotool windowfocus "$window"
  sleep 4
}

press() {
  for key in "$@"; do
    xdotool key --clearmodifiers "$key"
    sleep 0.3
  done
  sleep 1.5
}

# drag_right X Y X Y: drags with the right mouse button.
drag_right() {
  xdotool mousemove --window "$window" "$1" "$2" mousedown 3
  sleep 0.3
  xdotool mousemove --window "$window" "$3" "$4"
  sleep 0.3
  xdotool mouseup 3
  sleep 1
}

shot() {
  kill -0 "$program"
  import -window "$window" "$out/$1.png"
  echo "   $1.png: $2"
}

# stop: closes the window with Alt+F4, as a user does.
stop() {
  xdotool key alt+F4 || true
  for ((attempt = 0; attempt < 100; ++attempt)); do
    kill -0 "$program" 2>/dev/null || break
    sleep 0.1
  done
  kill "$program" 2>/dev/null || true
  wait "$program" || true
  program=
}

echo "== pictures in $out"
start
shot 01-choice "no camera was named: the list"
press Down Down Return
shot 02-other-camera "the third camera of the list"
stop

start --camera Mars-C
press f
shot 03-colour "a colour camera, 16 bits"
press Up Up Up Up Up
shot 04-longer-exposure "the exposure was made five steps longer"
press Right Right Right Right plus plus
shot 05-more-gain "more gain and offset"
press r
sleep 2
shot 06-recording "a recording runs"
press r
shot 07-recorded "the recording has ended"
press z x
shot 08-pixel-by-pixel "pixel by pixel, with the crosshair"
press z x h
shot 09-keys "the keys"
press Escape n
shot 10-night "night mode"
stop

start --camera ASI290MM
shot 11-mono "a mono camera"
press f b
shot 12-mono-16-bits-bin-2 "the same with 16 bits and bin 2"
press f b s shift+3 shift+3 shift+3 6 6
shot 19-levels "8 bits with a lower white point and more gamma"
press 0 s
drag_right 300 200 640 460
press shift+ctrl+Right ctrl+Down r
shot 20-region "a region was drawn and moved, and is recorded"
press r
stop

export ORVANE_SIMULATOR="sdk ASICamera2; unplug 0 ASIGetVideoData 380; \
plug 0 ASIGetNumOfConnectedCameras 3"
start --camera ASI120MC
press r
sleep 6
shot 13-unplugged "the camera was unplugged while it was recording"
press F5
shot 14-not-there "a rescan does not find it"
press F5
sleep 2
shot 15-back "it was plugged in, and a rescan found it"
stop
unset ORVANE_SIMULATOR

start --camera 99
shot 16-wrong-camera "no camera matches the request"
stop

# magnify DPI: sets the screen's resolution, in the Wine prefix of this project only.
magnify() {
  cmake/run_with_wine.sh reg add 'HKCU\Control Panel\Desktop' /v LogPixels /t REG_DWORD /d "$1" /f \
    >/dev/null
  sleep 4  # wait until the processes with the old setting have ended
}
magnify 192
start --camera QHY5III482C
press f
shot 17-magnified "at 192 dots per inch"
stop
magnify 96

# usage SECONDS: the processor time of the window's thread, of the thread that calls the library (and in
# which the simulated SDK renders its frames), and of the whole process, in percent of one core.
usage() {
  local before after
  before=$(thread_times)
  sleep "$1"
  after=$(thread_times)
  join <(echo "$before") <(echo "$after") | awk -v seconds="$1" -v main="$program" '{
      part = 100 * ($3 - $2) / '"$(getconf CLK_TCK)"' / seconds
      all += part
      if ($1 == main) window = part
      else if (part > most) most = part
    }
    END { printf "window %.1f %%, library and SDK %.1f %%, process %.1f %%\n", window, most, all }'
}

thread_times() {
  for task in /proc/"$program"/task/*; do
    # The fields after the name. The name may contain spaces.
    sed -E 's/.*\) //' "$task/stat" | awk -v id="${task##*/}" '{ print id, $12 + $13 }'
  done | sort
}

echo "== processor time"
start --camera Mars-C
press Up Up
echo "   colour 1944 x 1096, 8 bits, 31 frames a second: $(usage 15)"
shot 18-measured "while the processor time was measured"
press f
echo "   the same, 16 bits: $(usage 15)"
press z
echo "   the same, pixel by pixel: $(usage 15)"
press z r
echo "   the same, recording: $(usage 15)"
press r
stop

echo "== recordings"
recordings=("$out"/recordings/*.ser)
[ ${#recordings[@]} -eq 4 ] || { echo "there should be 4"; exit 1; }
for recording in "${recordings[@]}"; do
  frames=$(ffprobe -v error -count_frames -select_streams v:0 \
    -show_entries stream=codec_name,width,height,pix_fmt,nb_read_frames -of csv=p=0 "$recording")
  echo "   ${recording##*/}: $frames"
done
