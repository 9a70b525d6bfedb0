#!/usr/bin/env python3
"""Checks the wheel of a package: its name, its files, that these are the package's, and its record.

    wheel_contents.py PACKAGE VERSION"""

import base64
import hashlib
import pathlib
import re
import sys
import zipfile

NAME = "orvane_desktop_camera"


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    package, version = pathlib.Path(sys.argv[1]), sys.argv[2]
    wheels = list((package / "bindings/python").glob("*.whl"))
    library = next(file for name in ("bin/orvane_desktop_camera.dll", "lib/liborvane_desktop_camera.so")
                   if (file := package / name).exists())
    platform = "win_amd64" if library.suffix == ".dll" else r"manylinux_2_\d+_x86_64"
    if len(wheels) != 1 or not re.fullmatch(rf"{NAME}-{re.escape(version)}-py3-none-{platform}\.whl", wheels[0].name):
        sys.exit(f"FAILED: wheels: {wheels}")
    info = f"{NAME}-{version}.dist-info"
    same = {f"{NAME}/__init__.py": package / f"bindings/python/{NAME}.py", f"{NAME}/{library.name}": library,
            f"{info}/LICENSE": package / "LICENSE",
            f"{info}/THIRD-PARTY-NOTICES": package / "THIRD-PARTY-NOTICES"}
    with zipfile.ZipFile(wheels[0]) as archive:
        contents = {name: archive.read(name) for name in archive.namelist()}
    if list(contents) != [*same, f"{info}/METADATA", f"{info}/WHEEL", f"{info}/RECORD"]:
        sys.exit(f"FAILED: {wheels[0].name} has {list(contents)}")
    for name, file in same.items():
        if contents[name] != file.read_bytes():
            sys.exit(f"FAILED: {name} is not the package's {file}")
    tag = "-".join(wheels[0].stem.split("-")[2:])
    if f"Tag: {tag}\n" not in contents[f"{info}/WHEEL"].decode():
        sys.exit("FAILED: the tag in WHEEL is not that of the file's name")
    if not {f"Version: {version}", f"Name: {NAME.replace('_', '-')}", "Requires-Dist: numpy"} <= set(
            contents[f"{info}/METADATA"].decode().splitlines()):
        sys.exit("FAILED: METADATA")
    recorded = {}
    for line in contents[f"{info}/RECORD"].decode().splitlines():
        name, digest, size = line.rsplit(",", 2)
        recorded[name] = (digest, size)
    for name, data in contents.items():
        digest = base64.urlsafe_b64encode(hashlib.sha256(data).digest()).rstrip(b"=").decode()
        expected = ("", "") if name == f"{info}/RECORD" else (f"sha256={digest}", str(len(data)))
        if recorded.pop(name, None) != expected:
            sys.exit(f"FAILED: RECORD of {name}")
    if recorded:
        sys.exit(f"FAILED: RECORD names {list(recorded)}")
    print(f"-- {wheels[0].name}: {len(contents)} files")


if __name__ == "__main__":
    main()
