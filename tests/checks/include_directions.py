#!/usr/bin/env python3
"""Checks the direction of the includes in src/, hosts/ and simulators/: a file includes only files of
lower floors, or of its own folder and floor, and there are no include cycles. A floor is a list of
folders, and of single files that are on another floor than their folder. Prints the includes between
folders.

    include_directions.py DIRECTORY"""

import graphlib
import pathlib
import re
import sys

# The floors of each tree, lowest first: a line is a floor with the patterns of its files. The pattern
# of a file takes precedence over that of its folder; * stands for any file of one folder.
FLOORS = {
    "src": [
        "platform/* windows_dll/*",
        "catalogue/*",
        "capture/*.hpp",
        "vendors/*.hpp",
        "api/state.hpp",
        "api/failure.hpp",
        "vendors/sdk_function.hpp",
        "vendors/sdk/*",
        "vendors/*.cpp capture/*.cpp catalogue/scan.cpp api/failure.cpp",
        "api/exports.cpp"],
    "hosts": [
        "system/*",
        "imaging/*",
        "formats/*",
        "session/* sdk_check/*",
        "oc_capture/* oc_alpaca/* live_view/*"],
    "simulators": [
        "simulator_control.h",
        "core/*",
        "*"]}

# Allowed includes from other trees: the including files, and the files that they include.
OTHERS = {
    "src": [
        ("api/exports.cpp", "orvane_desktop_camera.h")],
    "hosts": [
        ("sdk_check/sdk_functions.cpp", "catalogue/camera_info.hpp"),
        ("sdk_check/sdk_functions.cpp", "vendors/sdk/*_sdk.hpp"),
        ("session/*", "orvane_desktop_camera.h*"),
        ("oc_capture/*", "orvane_desktop_camera.h*"),
        ("oc_alpaca/*", "orvane_desktop_camera.h*"),
        ("live_view/*", "orvane_desktop_camera.h*")],
    "simulators": [
        ("*", "vendors/sdk/*_sdk.hpp"),
        ("core/*", "formats/ser_layout.hpp"),
        ("core/commands.cpp", "sdk_check/sdk_functions.hpp")]}

INCLUDE = re.compile(r'^ *# *include +"(.*)"', re.MULTILINE)


def matches(file, pattern):
    return re.fullmatch(re.escape(pattern).replace(r"\*", "[^/]*"), file)


def place_of(file, floors):
    """The floor of a file and the longest pattern that matches it, or None."""
    places = [(floor, pattern) for floor, patterns in enumerate(floors)
              for pattern in patterns.split() if matches(file, pattern)]
    return max(places, key=lambda place: len(place[1]), default=None)


def faults_of(tree, root, arrows):
    """Yields what is wrong in one tree. Appends the includes between folders to `arrows`."""
    files = {path.relative_to(root).as_posix(): path for path in sorted(root.rglob("*"))
             if path.suffix in (".hpp", ".cpp", ".h")}
    if not files:
        yield f"no sources in {root}"
    places = {file: place_of(file, FLOORS[tree]) for file in files}
    yield from (f"{tree}/{file} has no floor" for file, place in places.items() if not place)
    graph = {file: [] for file in files}
    for file, path in files.items():
        for target in INCLUDE.findall(path.read_text(encoding="utf-8")):
            if target not in files:
                if not any(matches(file, source) and matches(target, other)
                           for source, other in OTHERS[tree]):
                    yield f"{tree}/{file} includes {target}, a file of another tree"
                continue
            graph[file].append(target)
            if places[file] and places[target] and places[file] != places[target] and \
                    places[target][0] >= places[file][0]:
                yield f"{tree}/{file} includes {target}, which does not stand below it"
            folders = [pathlib.PurePosixPath(tree, name).parent for name in (file, target)]
            if folders[0] != folders[1]:
                arrows.append("{} -> {}".format(*folders))
    try:
        graphlib.TopologicalSorter(graph).prepare()
    except graphlib.CycleError as error:
        yield f"{tree}: files include one another in a circle: {' '.join(error.args[1])}"


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    arrows = []
    faults = [fault for tree in FLOORS
              for fault in faults_of(tree, pathlib.Path(sys.argv[1], tree), arrows)]
    print(f"{len(arrows)} includes point down, between these folders:", *sorted(set(arrows)), sep="\n")
    if faults:
        sys.exit("\n".join(faults))


if __name__ == "__main__":
    main()
