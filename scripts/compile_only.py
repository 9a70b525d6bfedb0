#!/usr/bin/env python3
"""Compiles sources without writing anything, by the commands of a build that cannot link. Prints what the
compiler says; the exit status is 1 if it refuses a source.

    compile_only.py BUILD-DIRECTORY FOLDER..."""

import concurrent.futures
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys


def compiled(command):
    words = shlex.split(command["command"])
    del words[words.index("-o"):words.index("-o") + 2]
    return subprocess.run([*words, "-fsyntax-only"], cwd=command["directory"], check=False).returncode == 0


def main():
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    root = pathlib.Path(__file__).resolve().parent.parent
    wanted = re.compile(rf"{re.escape(str(root))}/({'|'.join(map(re.escape, sys.argv[2:]))})/.*\.(c|cpp)")
    with open(pathlib.Path(sys.argv[1]) / "compile_commands.json", encoding="utf-8") as file:
        commands = {entry["file"]: entry for entry in json.load(file) if wanted.fullmatch(entry["file"])}
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        results = list(pool.map(compiled, commands.values()))
    print(f"{len(results)} sources, {results.count(False)} refused")
    sys.exit(0 if results and all(results) else 1)


if __name__ == "__main__":
    main()
