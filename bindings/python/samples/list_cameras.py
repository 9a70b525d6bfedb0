"""Lists the SDKs that were found and the cameras with their limits.

    python list_cameras.py SDK-DIRECTORY
"""

import sys
from pathlib import Path

# After the places where an installed wheel is.
sys.path.append(str(Path(__file__).resolve().parent.parent))
from orvane_desktop_camera import Bayer, CameraError, Library


def main() -> int:
    if len(sys.argv) != 2:
        print("usage: list_cameras.py SDK-DIRECTORY", file=sys.stderr)
        return 2
    try:
        library = Library()
        cameras = library.scan(sys.argv[1])
    except CameraError as error:
        print(error, file=sys.stderr)
        return 1
    print("SDKs:", ", ".join(library.libraries) or "none")
    if library.scan_error:
        print("Some cameras are missing:", library.scan_error)
    for camera in cameras:
        kind = "mono" if camera.bayer == Bayer.NONE else f"colour ({camera.bayer.name})"
        print(f"{camera.index:3} {camera.name}: {camera.max_width} x {camera.max_height}, {kind}")
    return 0


if __name__ == "__main__":
    sys.exit(main())
