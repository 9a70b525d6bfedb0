#!/usr/bin/env python3
"""Checks the links of all Markdown files: every file and every heading that a link names exists.

    markdown_links.py DIRECTORY

Links to other sites are not checked. Build directories are skipped."""

import collections
import functools
import os
import re
import sys
from urllib.parse import unquote

LINK = re.compile(r"!?\[(?:[^\[\]]|\[[^\]]*\])*\]\(\s*<?([^)\s>]+)>?(?:\s+\"[^\"]*\")?\s*\)")
IMAGE_TAG = re.compile(r"<(?:img|a)\s[^>]*(?:src|href)=\"([^\"]+)\"")
HEADING = re.compile(r"^#{1,6}\s+(.*?)\s*#*\s*$")
FENCE = re.compile(r"^\s*(```|~~~)")
SCHEME = re.compile(r"^[a-zA-Z][a-zA-Z0-9+.-]*:")
PASSED_OVER = {".git", "build", "demo-output", "node_modules"}


def markdown_files(root):
    for directory, names, files in os.walk(root):
        names[:] = sorted(n for n in names if n not in PASSED_OVER)
        for name in sorted(files):
            if name.endswith(".md"):
                yield os.path.join(directory, name)


def lines_of_text(path):
    """The lines outside code blocks, numbered from 1."""
    is_code = False
    with open(path, encoding="utf-8") as file:
        for number, line in enumerate(file, 1):
            if FENCE.match(line):
                is_code = not is_code
            elif not is_code:
                yield number, line.rstrip("\n")


def anchor_of(heading):
    """The anchor of a heading in the rendered page."""
    text = re.sub(r"\[([^\]]*)\]\([^)]*\)", r"\1", heading).replace("`", "")
    kept = "".join(c for c in text.lower() if c.isalnum() or c in " -_")
    return kept.replace(" ", "-")


@functools.cache
def anchors_of(path):
    times, anchors = collections.Counter(), set()
    for _, line in lines_of_text(path):
        if match := HEADING.match(line):
            anchor = anchor_of(match[1])
            anchors.add(f"{anchor}-{times[anchor]}" if times[anchor] else anchor)
            times[anchor] += 1
    return anchors


def links_of(path):
    for number, line in lines_of_text(path):
        text = re.sub(r"`[^`]*`", "``", line)
        for pattern in (LINK, IMAGE_TAG):
            for match in pattern.finditer(text):
                yield number, match.group(1)


def fault_of(path, link):
    """What is wrong with a link, or None."""
    target, _, anchor = unquote(link).partition("#")
    if os.path.isabs(target):
        return "is not relative"
    file = os.path.normpath(os.path.join(os.path.dirname(path), target)) if target else path
    if not os.path.exists(file):
        return "names a file that is not there"
    if anchor:
        if not file.endswith(".md"):
            return "names a heading in a file that has none"
        if anchor not in anchors_of(file):
            return "names a heading that is not there"
    return None


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    files = links = faults = 0
    for path in markdown_files(os.path.abspath(sys.argv[1])):
        files += 1
        for number, link in links_of(path):
            if SCHEME.match(link):
                continue
            links += 1
            if fault := fault_of(path, link):
                faults += 1
                print(f"{os.path.relpath(path, sys.argv[1])}:{number}: {link} {fault}")
    print(f"{links} links in {files} files, {faults} faults")
    sys.exit(1 if faults or not links else 0)


if __name__ == "__main__":
    main()
