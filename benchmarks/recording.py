"""The speed of recording with oc_capture, compared with a plain loop of copy and write of the same sizes.

usage: recording.py OC_CAPTURE INSTANT_SDK_DIRECTORY MEMORY_DIRECTORY DISK_DIRECTORY

The camera's frames are prepared in advance, so that delivering one is only a copy. The camera delivers a
frame at every poll, whatever the exposure. The recorder drops frames when its memory is full. The measured
time is that from the first poll until the last frame is in the file. The contenders run one after the other
in random order, and the medians are compared. The exit status is 1 if recording into memory is slower than
GATE times the loop.
"""

import json
import os
import pathlib
import random
import statistics
import subprocess
import sys
import tempfile
import time

GATE = 0.80
ROUNDS = 5
WIDTH, HEIGHT = 1936, 1096
BYTES_PER_PIXEL = {"raw16": 2, "rgb24": 3}


def record(program, sdk, file, pixel_format, frames):
    """Returns MB/s, dropped frames and peak memory in MB."""
    command = [program, "record", "--sdk", sdk, "--camera", "0", "--format", pixel_format, "--exposure", "20ms",
               "--frames", str(frames), "--overwrite", "--quiet", "--json", "--out", str(file)]
    with tempfile.TemporaryFile() as output:
        process = subprocess.Popen(command, stdout=output, stderr=subprocess.STDOUT,
                                   env=dict(os.environ, ORVANE_INSTANT_SIZE=f"{WIDTH}x{HEIGHT}"))
        _, status, usage = os.wait4(process.pid, 0)
        output.seek(0)
        text = output.read().decode()
    if status != 0:
        sys.exit(f"{' '.join(command)}: {text}")
    report = json.loads(text)
    if report["frames"] != frames or report["error"]:
        sys.exit(f"not all frames were recorded: {text}")
    size = WIDTH * HEIGHT * BYTES_PER_PIXEL[pixel_format] * frames
    return size / report["secondsUntilWritten"] / 1e6, report["droppedFrames"], usage.ru_maxrss / 1024


def copy_and_write(file, frame_bytes, frames):
    """Returns the MB/s of a plain loop that copies frames into a buffer and writes them to a file."""
    prepared = [bytearray(b"\x5A" * frame_bytes) for _ in range(4)]
    buffer = memoryview(bytearray(frame_bytes))
    start = time.monotonic()
    with open(file, "wb", buffering=0) as stream:
        for i in range(frames):
            buffer[:] = prepared[i % 4]
            written = 0
            while written < frame_bytes:
                written += stream.write(buffer[written:])
    return frame_bytes * frames / (time.monotonic() - start) / 1e6


def measure(program, sdk, directory, pixel_format, frames):
    """Prints a row and returns the ratio."""
    file = pathlib.Path(directory) / f"recording-{os.getpid()}.ser"
    frame_bytes = WIDTH * HEIGHT * BYTES_PER_PIXEL[pixel_format]
    speeds = {"recording": [], "loop": []}
    dropped, memory = 0, 0.0
    try:
        for _ in range(ROUNDS):
            for contender in random.sample(list(speeds), 2):
                file.unlink(missing_ok=True)  # measure writing a new file, not overwriting one
                if contender == "loop":
                    speeds["loop"].append(copy_and_write(file, frame_bytes, frames))
                else:
                    speed, lost, peak = record(program, sdk, file, pixel_format, frames)
                    speeds["recording"].append(speed)
                    dropped += lost
                    memory = max(memory, peak)
    finally:
        file.unlink(missing_ok=True)
        file.with_name(file.stem + "-preview.png").unlink(missing_ok=True)
        file.with_suffix(".txt").unlink(missing_ok=True)
    medians = {name: statistics.median(values) for name, values in speeds.items()}
    ratio = medians["recording"] / medians["loop"]
    print(f"  {directory:<24} {pixel_format:<6} {frames:>6} {medians['recording']:>10.0f} MB/s"
          f" {medians['loop']:>10.0f} MB/s {ratio:>6.2f} {dropped:>8} {memory:>8.1f} MB", flush=True)
    return ratio


def main():
    program, sdk, memory_directory, disk_directory = sys.argv[1:]
    random.seed(1)
    print(f"  {'directory':<24} {'format':<6} {'frames':>6} {'oc_capture':>15} {'loop':>15}"
          f" {'ratio':>6} {'dropped':>8} {'peak memory':>11}")
    ratios = []
    for pixel_format in BYTES_PER_PIXEL:
        for frames in (200, 400):
            ratios.append(measure(program, sdk, memory_directory, pixel_format, frames))
    for pixel_format in BYTES_PER_PIXEL:
        measure(program, sdk, disk_directory, pixel_format, 200)
    is_held = min(ratios) >= GATE
    print(f"  recording into memory at least {GATE:.2f} of the loop: {'yes' if is_held else 'NO'}")
    sys.exit(0 if is_held else 1)


if __name__ == "__main__":
    main()
