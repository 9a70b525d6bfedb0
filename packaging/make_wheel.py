#!/usr/bin/env python3
"""Makes the wheel of the Python module with the library inside. The same files always give the same bytes.

    make_wheel.py MODULE LIBRARY VERSION DESCRIPTION DIRECTORY LICENSE-FILE...

The wheel is written to DIRECTORY. It has the time SOURCE_DATE_EPOCH, or 1980."""

import base64
import hashlib
import os
import pathlib
import re
import sys
import time
import zipfile

NAME = "orvane_desktop_camera"


def platform_of(library, data):
    """The wheel's platform tag: the systems on which this library can be loaded."""
    if library.suffix == ".dll":
        return "win_amd64"
    # The newest version of the C library that one of the symbols needs.
    minor = max(int(number) for number in re.findall(rb"GLIBC_2\.(\d+)\0", data))
    return f"manylinux_2_{minor}_x86_64"


def metadata(version, description, license_files):
    lines = ["Metadata-Version: 2.1", f"Name: {NAME.replace('_', '-')}", f"Version: {version}",
             f"Summary: {description}", "License: MIT",
             *(f"License-File: {name}" for name in license_files),
             "Requires-Python: >=3.9", "Requires-Dist: numpy"]
    return "\n".join(lines) + "\n"


def record_line(name, data):
    digest = base64.urlsafe_b64encode(hashlib.sha256(data).digest()).rstrip(b"=").decode()
    return f"{name},sha256={digest},{len(data)}\n"


def main():
    if len(sys.argv) < 7:
        sys.exit(__doc__)
    module, library = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
    version, description = sys.argv[3:5]
    licenses = [pathlib.Path(name) for name in sys.argv[6:]]
    tag = f"py3-none-{platform_of(library, library.read_bytes())}"
    info = f"{NAME}-{version}.dist-info"
    contents = {
        f"{NAME}/__init__.py": module.read_bytes(),
        f"{NAME}/{library.name}": library.read_bytes(),
        **{f"{info}/{file.name}": file.read_bytes() for file in licenses},
        f"{info}/METADATA": metadata(version, description, [file.name for file in licenses]).encode(),
        f"{info}/WHEEL": f"Wheel-Version: 1.0\nGenerator: {NAME} {version}\n"
                         f"Root-Is-Purelib: false\nTag: {tag}\n".encode(),
    }
    record = "".join(record_line(name, data) for name, data in contents.items())
    contents[f"{info}/RECORD"] = (record + f"{info}/RECORD,,\n").encode()
    earliest = 315532800  # 1980: zip has no earlier time
    moment = time.gmtime(max(earliest, int(os.environ.get("SOURCE_DATE_EPOCH", earliest))))[:6]
    wheel = pathlib.Path(sys.argv[5]) / f"{NAME}-{version}-{tag}.whl"
    with zipfile.ZipFile(wheel, "w", zipfile.ZIP_DEFLATED) as archive:
        for name, data in contents.items():
            entry = zipfile.ZipInfo(name, moment)
            entry.create_system = 3  # so that the modes count
            entry.external_attr = 0o100644 << 16
            archive.writestr(entry, data, zipfile.ZIP_DEFLATED)
    wheel.chmod(0o644)
    print(wheel)


if __name__ == "__main__":
    main()
