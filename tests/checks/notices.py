#!/usr/bin/env python3
"""Checks THIRD-PARTY-NOTICES against a build: every header and every link library of another project
that the build used belongs to a part that the file names, for the programs that it names.

    notices.py NOTICES BUILD-DIRECTORY NINJA SYSTEM NAME=FILE,MAP...

SYSTEM is the word before the list of programs in the notices, Windows or Linux. Each NAME, as the
notices call it, has a file that the build made and the linker's map of it. The headers are those that the
compiler wrote down for ninja."""

import collections
import functools
import os
import re
import subprocess
import sys

PART = re.compile(r"^={20,}\n(?P<name>.+)\n\nVersion +(?P<version>.+)\nWindows +(?P<Windows>.+)\n"
                  r"Linux +(?P<Linux>.+)\nBuilt from +(?P<pieces>.+)\n", re.MULTILINE)

# The headers of the compiler, of the C library and of the operating system. Those of the C library for
# Linux are listed by name, because other projects install theirs into the same directory.
C_LIBRARY = """alloca assert ctype dlfcn elf endian errno fcntl features features-time64 libintl limits
    link locale malloc math netdb poll pthread regex sched semaphore signal spawn stdc-predef stdint stdio
    stdlib string strings syscall termios time unistd wchar wctype""".split()
SYSTEM_HEADER = re.compile(
    r"/usr/lib/gcc/[^/]+/[^/]+/include(-fixed)?/[^/]+|/usr/share/mingw-w64/include/.+"
    r"|/usr/include/(x86_64-linux-gnu/)?(arpa|asm|asm-generic|bits|gnu|linux|net|netinet|rpc|sys)/.+"
    r"|/usr/include/(%s)\.h" % "|".join(map(re.escape, C_LIBRARY)))

# Link libraries with nothing but the names of functions in the system's libraries.
IMPORT_MEMBER = re.compile(r"lib(?P<dll>\w+?)(h|t|s\d+)\.o|(?P<other>[\w-]+\.dll)|d\d{6}\.o")

ARCHIVE_MEMBER = re.compile(r"^(/\S+\.a)\(([^)]+)\)", re.MULTILINE)
OBJECT = re.compile(r"^LOAD (/\S+\.o)$", re.MULTILINE)
# The linker's own files, in the directory for temporary ones.
TEMPORARY = re.compile(r"cc\w{6}\.(ltrans\d+\.ltrans|debug\.temp)\.o")


def fail(text):
    sys.exit(f"FAILED: {text}")


def parts_of(file, system):
    """The names of the programs of each part, and the part of each piece."""
    with open(file, encoding="utf-8") as opened:
        text = opened.read()
    users, part_of = {}, {}
    for match in PART.finditer(text):
        names = match[system].split(", ")
        users[match["name"]] = set() if names == ["none"] else set(names)
        for piece in match["pieces"].split():
            part_of[piece] = match["name"]
    if len(users) != len(re.findall(r"^={20,}$", text, re.MULTILINE)):
        fail(f"{file}: a part lacks one of its lines")
    return users, part_of


def headers_by_object(build, ninja):
    """The files that each object was compiled from."""
    found, current = collections.defaultdict(list), None
    output = subprocess.run([ninja, "-C", build, "-t", "deps"], capture_output=True, text=True,
                            check=True).stdout
    for line in output.splitlines():
        if line.startswith("    "):
            found[current].append(os.path.join(build, line.strip()))
        elif ": #deps" in line:
            current = line.split(": #deps")[0]
    return found


@functools.cache
def links_to_headers(build):
    """The directories and files of other projects, as they are reached and where they really are."""
    directory = os.path.join(build, "host-headers")
    return {place: name + ("/" if os.path.isdir(place) else "") for name in os.listdir(directory)
            for place in (os.path.join(directory, name), os.path.realpath(os.path.join(directory, name)))}


@functools.cache
def piece_of_header(path, build):
    """The name by which the notices know a header: None for the project's and the system's."""
    path = os.path.normpath(path)
    # Some compilers write down where a link leads, others the link.
    for place, piece in links_to_headers(build).items():
        if path == place or path.startswith(place + "/"):
            return piece
    if not path.startswith("/usr/"):
        return None
    path = os.path.realpath(path)
    if "/c++/" in path:
        return "c++/"
    return None if SYSTEM_HEADER.fullmatch(path) else path


def pieces_of_headers(output, build, ninja, headers):
    inputs = subprocess.run([ninja, "-C", build, "-t", "inputs", os.path.relpath(output, build)],
                            capture_output=True, text=True, check=True).stdout.splitlines()
    objects = [name for name in inputs if name in headers]
    if not objects:
        fail(f"{output} has no objects with known headers")
    return {piece_of_header(path, build) for name in objects for path in headers[name]} - {None}


def pieces_of_map(file, part_of):
    """The link libraries and objects that the linker took something from."""
    with open(file, encoding="utf-8", errors="replace") as opened:
        text = opened.read()
    pieces = set()
    for path, member in ARCHIVE_MEMBER.findall(text):
        library = os.path.basename(path)
        if f"{library}({member})" in part_of:
            pieces.add(f"{library}({member})")
        if library in part_of or not IMPORT_MEMBER.fullmatch(member):
            pieces.add(library)
    pieces.update(name for path in OBJECT.findall(text)
                  if not TEMPORARY.fullmatch(name := os.path.basename(path)))
    if not pieces:
        fail(f"{file}: the linker's map could not be read")
    return pieces


def main():
    if len(sys.argv) < 6:
        sys.exit(__doc__)
    notices, build, ninja, system = sys.argv[1:5]
    users, part_of = parts_of(notices, system)
    headers = headers_by_object(build, ninja)
    used = collections.defaultdict(set)
    names = set()
    for argument in sys.argv[5:]:
        name, files = argument.split("=", 1)
        output, linker_map = files.split(",")
        names.add(name)
        for piece in pieces_of_headers(output, build, ninja, headers) | pieces_of_map(linker_map, part_of):
            used[piece].add(name)
    faults = [f"{', '.join(sorted(used[piece]))}: contains {piece}, which no part names"
              for piece in sorted(used) if piece not in part_of]
    for part, promised in users.items():
        actual = set().union(*(used[piece] for piece in part_of if part_of[piece] == part))
        # A build may leave programs out.
        if actual != promised & names:
            faults.append(f"{part}: {system}: named for {sorted(promised & names)}, "
                          f"contained in {sorted(actual)}")
    for fault in faults:
        print(fault)
    if faults:
        sys.exit(1)
    for part in users:
        print(f"{part}: {', '.join(sorted(users[part] & names)) or 'none'}")


if __name__ == "__main__":
    main()
