"""Applies every mutant to a copy of the sources, one at a time, builds it and runs the tests on it.

usage: mutate.py SCRATCH-DIRECTORY [FIRST [LAST]]

Prints a line for each mutant, killed or SURVIVED, and a summary. The exit status is 1 when one
survived that is not known to be equivalent, or does not compile.
"""

import pathlib
import re
import subprocess
import sys
import time

from mutants import MUTANTS
from equivalent import EQUIVALENT

ROOT = pathlib.Path(__file__).absolute().parents[2]
NOT_COPIED = [".git", "build"]
TARGETS = ["orvane_desktop_camera", "unit_tests", "library_tests", "loading_tests",
           "fuzz_replay_tests"]
# A mutant may run for ever; no test takes this long.
SECONDS_PER_TEST = 30
COMPILER = "the compiler"


def run(command, cwd=None):
    return subprocess.run(command, cwd=cwd, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          text=True, check=False)


def files_below(root):
    for path in root.iterdir():
        if path.name in NOT_COPIED:
            continue
        for file in path.rglob("*") if path.is_dir() else [path]:
            if file.is_file():
                yield file.relative_to(root)


def copy_sources(tree):
    """Copies what differs, and gives it a new time: an earlier run may have ended on a mutant."""
    wanted = set(files_below(ROOT))
    for file in list(files_below(tree)) if tree.exists() else []:
        if file not in wanted:
            (tree / file).unlink()
    for file in wanted:
        content, target = (ROOT / file).read_bytes(), tree / file
        if not target.exists() or target.read_bytes() != content:
            target.parent.mkdir(parents=True, exist_ok=True)
            target.write_bytes(content)


def build_and_test(build):
    """Returns what noticed the mutant, or None."""
    if run(["cmake", "--build", str(build), "--target", *TARGETS]).returncode != 0:
        return COMPILER
    # The unit tests in one process first: they are the quickest.
    for program in ["unit_tests", "fuzz_replay_tests"]:
        try:
            done = subprocess.run([str(build / "tests" / program), "--gtest_fail_fast"],
                                  capture_output=True, text=True, timeout=SECONDS_PER_TEST, check=False)
        except subprocess.TimeoutExpired:
            return program + " (time-out)"
        if done.returncode != 0:
            failed = re.search(r"\[  FAILED  \] (\S+)", done.stdout)
            return failed.group(1) if failed else program + " (crash)"
    done = run(["ctest", "-j2", "--stop-on-failure", "--timeout", str(SECONDS_PER_TEST),
                "-E", "FuzzReplay|SourceTree|BuiltLibrary|Documents|Package|Bindings|NOT_BUILT"], cwd=build)
    if done.returncode != 0:
        failed = re.search(r"Test +#\d+: (\S+) \.*\**(Failed|Exception|Timeout)", done.stdout)
        return failed.group(1) if failed else "ctest"
    return None


def main():
    scratch = pathlib.Path(sys.argv[1]).absolute()
    first = int(sys.argv[2]) if len(sys.argv) > 2 else 1
    last = int(sys.argv[3]) if len(sys.argv) > 3 else len(MUTANTS)
    tree, build = scratch / "tree", scratch / "build"
    copy_sources(tree)

    for file, original, _, meaning in MUTANTS:
        count = (tree / "src" / file).read_text().count(original)
        if count != 1:
            sys.exit(f"{file}: the text of \"{meaning}\" occurs {count} times")

    configured = run(["cmake", "-S", str(tree), "-B", str(build), "-G", "Ninja",
                      "-D", "CMAKE_BUILD_TYPE=Debug", "-D", "CMAKE_CXX_FLAGS_DEBUG=-O1",
                      "-D", "ORVANE_BUILD_HOSTS=OFF", "-D", "ORVANE_BUILD_BENCHMARKS=OFF"])
    if configured.returncode != 0:
        sys.exit(configured.stdout)
    noticed = build_and_test(build)
    if noticed:
        sys.exit(f"without any mutant: {noticed}")

    killed, equivalent, survivors, uncompiled = 0, 0, [], []
    for number, (file, original, replacement, meaning) in enumerate(MUTANTS, 1):
        if not first <= number <= last:
            continue
        path = tree / "src" / file
        sound = path.read_text()
        started = time.time()
        path.write_text(sound.replace(original, replacement))
        try:
            noticed = build_and_test(build)
        finally:
            path.write_text(sound)
        seconds = time.time() - started
        if noticed == COMPILER:
            # Tells nothing of the tests: the mutant has to be written in another way.
            uncompiled.append((number, file, meaning))
            verdict = "DOES NOT COMPILE"
        elif noticed:
            killed += 1
            verdict = f"killed by {noticed}"
        elif (file, meaning) in EQUIVALENT:
            equivalent += 1
            verdict = f"equivalent: {EQUIVALENT[(file, meaning)]}"
        else:
            survivors.append((number, file, meaning))
            verdict = "SURVIVED"
        print(f"{number:3} {file}: {meaning}: {verdict} ({seconds:.0f} s)", flush=True)
    print(f"== {killed} killed, {equivalent} equivalent, {len(survivors)} survived, "
          f"{len(uncompiled)} do not compile")
    for number, file, meaning in survivors + uncompiled:
        print(f"   {number:3} {file}: {meaning}")
    sys.exit(1 if survivors or uncompiled else 0)


main()
