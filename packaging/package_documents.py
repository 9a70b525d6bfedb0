#!/usr/bin/env python3
"""Writes the documents of a package. Their links lead to the same files in the package, which may be
elsewhere there; a link to a file that the package does not have becomes plain text.

    package_documents.py SOURCE-DIRECTORY PACKAGE-DIRECTORY FILE=SOURCE...

Each FILE of the package is written from its SOURCE. All other files of the package must be there already."""

import os
import pathlib
import re
import sys

LINK = re.compile(r"(!?)\[((?:[^\[\]]|\[[^\]]*\])*)\]\(([^)\s#]*)(#[^)\s]*)?\)")
FENCE = re.compile(r"^\s*(```|~~~)")


def resolved(text, source, file, root, package, places):
    """A line whose links fit the package."""
    def link(match):
        mark, label, target, anchor = match[1], match[2], match[3], match[4] or ""
        if not target or ":" in target:
            return match[0]
        meant = os.path.relpath(os.path.join(root, os.path.dirname(source), target), root)
        there = places.get(meant, meant)
        if not (package / there).exists():
            return label
        return f"{mark}[{label}]({os.path.relpath(there, os.path.dirname(file) or '.')}{anchor})"
    return LINK.sub(link, text)


def main():
    if len(sys.argv) < 4:
        sys.exit(__doc__)
    root, package = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
    documents = dict(argument.split("=", 1) for argument in sys.argv[3:])
    # Where the package has a file of the source tree, if not at the same place.
    places = {source: file for file, source in documents.items()}
    for name in os.listdir(package / "simulated-sdks") if (package / "simulated-sdks").is_dir() else ():
        places[f"simulators/{name}"] = f"simulated-sdks/{name}"
    for file in documents:
        (package / file).parent.mkdir(parents=True, exist_ok=True)
        (package / file).touch()
    for file, source in documents.items():
        is_code = False
        lines = []
        for line in (root / source).read_text(encoding="utf-8").splitlines(keepends=True):
            if FENCE.match(line):
                is_code = not is_code
            lines.append(line if is_code else
                         resolved(line, source, file, root, package, places))
        with open(package / file, "w", encoding="utf-8", newline="\n") as written:
            written.write("".join(lines))
        (package / file).chmod(0o644)  # whatever the user's umask is


if __name__ == "__main__":
    main()
