#!/usr/bin/env python3
"""Runs the recipes of a package's INSTALL.md as they stand: every block of shell commands for this system, in
the order of the document. Each must succeed and print what the samples print.

    install_recipes.py INSTALL ARCHIVE SYSTEM SCRATCH NAMES EMULATOR PYTHON

SCRATCH is an empty directory for the archive and what the recipes make. SYSTEM is the word behind "sh" at the start of the blocks. NAMES are the simulated SDKs. With an EMULATOR,
programs for Windows run in it. PYTHON has NumPy; recipes for languages that this computer lacks are left
out: it may be empty."""

import os
import pathlib
import re
import shutil
import stat
import subprocess
import sys
import time

BLOCK = re.compile(r"^```sh (\w+)\n(.*?)^```$", re.MULTILINE | re.DOTALL)


def write_program(directory, name, text):
    file = directory / name
    file.write_text("#!/bin/bash\n" + text, encoding="utf-8")
    file.chmod(file.stat().st_mode | stat.S_IXUSR)


def prepared_path(scratch, emulator, python):
    """A directory of the programs that the recipes call by other names than this computer."""
    directory = scratch / "path"
    directory.mkdir()
    if emulator:
        # The emulator starts Wine by the same name.
        write_program(directory, "wine", f'PATH="{os.environ["PATH"]}" exec "{emulator}" "$@"\n')
        write_program(directory, "winepath", 'file=$(realpath "$2")\nprintf "Z:%s\\n" "${file//\\//\\\\}"\n')
    if python:
        write_program(directory, "python3", f'exec "{python}" "$@"\n')
    return f"{directory}:{os.environ['PATH']}"


def run(number, commands, directory, environment, names):
    """Runs one recipe in a directory. Returns the directory in which it ended."""
    expected = re.compile(rf"^(SDKs: {re.escape(names)}|[1-9]\d* frames of 1280 x 960, .*|\S+:[\d?]+.*"
                          r"|[0-9a-f]{16} [tT] .*)$",
                          re.MULTILINE)
    end = directory / "where-it-ended"
    script = f'set -euo pipefail\n{commands}\npwd >"$WHERE_IT_ENDED"\n'
    started = time.monotonic()
    # Through a file: Wine's own processes keep a pipe open.
    with open(environment["LOG"], "w+", encoding="utf-8", errors="replace") as log:
        status = subprocess.run(["bash", "-c", script], cwd=directory, stdout=log, stderr=log, check=False,
                                env={**environment, "WHERE_IT_ENDED": str(end)}).returncode
        log.seek(0)
        output = log.read().replace("\r", "")
    match = expected.search(output)
    if status != 0 or match is None:
        sys.exit(f"FAILED: recipe {number}: status {status}:\n{commands}\n{output}")
    print(f"-- recipe {number}, {time.monotonic() - started:.1f} s: {commands.splitlines()[-1][:70]}: {match[0]}")
    now = pathlib.Path(end.read_text(encoding="utf-8").strip())
    end.unlink()
    return now


def main():
    if len(sys.argv) != 8:
        sys.exit(__doc__)
    install, archive, system, scratch, names, emulator, python = sys.argv[1:]
    directory = scratch = pathlib.Path(scratch)
    shutil.copy(archive, directory)
    environment = {**os.environ, "PATH": prepared_path(scratch, emulator, python),
                   "LOG": str(scratch / "recipe.log")}
    for variable in ("CMAKE_PREFIX_PATH", "PKG_CONFIG_PATH", "LD_LIBRARY_PATH"):
        environment.pop(variable, None)
    text = pathlib.Path(install).read_text(encoding="utf-8")
    recipes = [commands for word, commands in BLOCK.findall(text) if word == system]
    if len(recipes) < 5:
        sys.exit(f"FAILED: INSTALL.md has only {len(recipes)} recipes for {system}")
    for number, commands in enumerate(recipes, 1):
        if (not python and "python3" in commands) or ("mcs" in commands and not shutil.which("mcs")):
            print(f"-- recipe {number}: left out")
            continue
        directory = run(number, commands, directory, environment, names)


if __name__ == "__main__":
    main()
