#!/usr/bin/env python3
"""Checks that `PROGRAM --licenses` prints these two files, one after the other.

    printed_licenses.py LICENSE NOTICES PROGRAM..."""

import subprocess
import sys


def main():
    if len(sys.argv) < 4:
        sys.exit(__doc__)
    files = []
    for name in sys.argv[1:3]:
        with open(name, encoding="utf-8") as file:
            files.append(file.read())
    result = subprocess.run([*sys.argv[3:], "--licenses"], stdout=subprocess.PIPE, check=False)
    printed = result.stdout.decode("utf-8").replace("\r\n", "\n")
    if result.returncode != 0 or printed != "\n".join(files):
        sys.exit(f"FAILED: status {result.returncode}, {len(printed)} characters instead of "
                 f"{len(files[0]) + 1 + len(files[1])}:\n{printed}")
    print(f"{len(printed)} characters")


if __name__ == "__main__":
    main()
