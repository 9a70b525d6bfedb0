#!/usr/bin/env python3
"""Checks that the public C header declares what programs were built against: the functions with their
types and the constants with their values, as recorded in a file.

    public_interface.py HEADER RECORD

The record changes only with a version that says so: see "What is stable" in packaging/INSTALL.md."""

import difflib
import re
import sys

DECLARATION = re.compile(r"ORVANE_DESKTOP_CAMERA_API\s+([^;{}]+?)\s*\(([^)]*)\)\s*;")
CONSTANT = re.compile(r"\b(OC_\w+)\s*(?:=\s*([^,}\s]+))?\s*[,}]")


def type_of(parameter):
    """A parameter without its name."""
    words = parameter.strip()
    if words != "void" and re.search(r"[\s*]\w+$", words):
        words = re.sub(r"\w+$", "", words)
    return re.sub(r"\s*\*\s*", "*", " ".join(words.split()))


def interface_of(header):
    """One line for each constant and each function."""
    text = re.sub(r"/\*.*?\*/|//[^\n]*", " ", header, flags=re.DOTALL)
    lines = [f"{name} = {value}" for name, value in CONSTANT.findall(text)]
    for result, parameters in DECLARATION.findall(text):
        types = ", ".join(map(type_of, parameters.split(",")))
        lines.append(f"{re.sub(r' *[*] *', '* ', ' '.join(result.split()))}({types})")
    if len(re.findall(r"\boc_\w+\s*\(", text)) != len(DECLARATION.findall(text)):
        sys.exit("FAILED: the header has a function that this script does not understand")
    return lines


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    with open(sys.argv[1], encoding="utf-8") as file:
        declared = interface_of(file.read())
    with open(sys.argv[2], encoding="utf-8") as file:
        recorded = [line for line in file.read().splitlines() if line and not line.startswith("#")]
    if declared != recorded:
        print("\n".join(difflib.unified_diff(recorded, declared, "recorded", "declared", lineterm="")))
        sys.exit("FAILED: the public interface has changed")
    print(f"{len(declared)} lines as recorded")


if __name__ == "__main__":
    main()
