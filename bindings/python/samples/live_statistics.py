"""Reads frames of the first camera, changes the exposure while it streams, and prints how bright
frames are.

    python live_statistics.py SDK-DIRECTORY [FRAMES]
"""

import sys
from pathlib import Path

# After the places where an installed wheel is.
sys.path.append(str(Path(__file__).resolve().parent.parent))
from orvane_desktop_camera import CameraError, Format, Library


def watch(directory: str, count: int) -> None:
    library = Library()
    cameras = library.scan(directory)
    if not cameras:
        raise CameraError("No camera found. " + library.scan_error)
    with library.open(
        cameras[0], width=640, height=480, format=Format.RAW16, exposure_us=5000, gain=100
    ) as camera:
        print(f"{camera.info.name}: {camera.width} x {camera.height}")
        buffer = camera.new_buffer()  # used for every frame
        for exposure_us in (5000, 20000, 80000):
            camera.apply(exposure_us=exposure_us, gain=100, offset=10)
            for _ in range(count):
                frame = camera.read(buffer)
            print(f"{exposure_us / 1000:5.1f} ms: mean {frame.mean():.1f}, maximum {frame.max()}")
        print(f"sensor at {camera.temperature:.1f} degrees Celsius")


def main() -> int:
    if len(sys.argv) not in (2, 3):
        print("usage: live_statistics.py SDK-DIRECTORY [FRAMES]", file=sys.stderr)
        return 2
    try:
        watch(sys.argv[1], int(sys.argv[2]) if len(sys.argv) == 3 else 5)
    except CameraError as error:
        print(error, file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
