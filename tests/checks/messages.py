#!/usr/bin/env python3
"""Compares docs/messages.md with the sources: every message in the sources has a row, and every row
has a message in the sources. A throw in a form that this script cannot parse is an error, so no message
is missed.

    messages.py SOURCE-DIRECTORY TABLE"""

import pathlib
import re
import sys

# The forms of messages, and the row of each.
FORMS = [
    (r'throwFailure\(\s*"([^"]*)"\);', r"\1"),
    (r'lastError = "([^"]*)";', r"\1"),
    (r'checkAs\(\s*"([^"]*)"', r"\1: <code>"),
    (r'check(?:Vendor|Toup)Result\([^";]*"([^"]*)"\)', r"\1: <code>"),
    (r"(\w+)\.check(?:ResultOf)?\(", r"\1: <code>")]

# Code of one file that is no message of its own, and its row if it is a composed message.
SINGLE = {
    "vendors/vendor_library.cpp": [
        ('throw std::runtime_error(library.name + ": missing " + symbolName);',
         "<library>: missing <function>"),
        ('throw std::runtime_error(label + (": " + std::to_string(code)));', None)],
    "api/failure.cpp": [("throw std::runtime_error(message);", None)],  # of throwFailure()
    "platform/platform_windows.cpp": [("throw std::system_error(", None)],  # leaves oc_scan()
    "api/failure.hpp": [("state.lastError = message;", None)]}  # keeps a caught message

# What must not be left of a file, and the files in which it may.
UNREADABLE = [
    ("a throw whose message cannot be read", r"throw[^A-Za-z][^;]*;", r"$^"),
    ("an error text that cannot be read", r"lastError \+?= [^;]*;", r"$^"),
    ("a failure whose message cannot be read", r"throwFailure\([^;]*;", r"api/failure\..*"),
    # Labels are literals, except where the checks themselves are defined.
    ("a label that cannot be read", r"(checkAs|checkVendorResult|checkToupResult)\([^;]*;",
     r"vendors/(sdk_function|vendor_library)\.hpp")]


def messages_of(source, text, faults):
    """The messages in one source file. Appends what cannot be parsed to `faults`."""
    text = re.sub(r"//[^\n]*", "", text)
    found = set()
    for form, row in FORMS:
        found.update(match.expand(row) for match in re.finditer(form, text))
        text = re.sub(form, "", text)
    for code, row in SINGLE.get(source, []):
        if row and code in text:
            found.add(row)
        text = text.replace(code, "")
    text = text.replace("throw;", "")
    for what, form, where in UNREADABLE:
        match = re.search(form, text)
        if match and not re.fullmatch(where, source):
            faults.append(f"{source}: {what}: {match[0]}")
    return found


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    root = pathlib.Path(sys.argv[1])
    found, faults = set(), []
    for path in sorted(root.rglob("*.[hc]pp")):
        source = path.relative_to(root).as_posix()
        # Passes on the texts of the SDKs' exceptions only; the document says so below its tables.
        if source != "windows_dll/microsoft_exceptions.cpp":
            found |= messages_of(source, path.read_text(encoding="utf-8"), faults)
    table = pathlib.Path(sys.argv[2]).read_text(encoding="utf-8")
    # Those of the C++ header are no messages of the library's sources. The tests of the hosts know them.
    table = re.sub(r"^## From the C\+\+ header\n.*?(?=^## )", "", table, flags=re.MULTILINE | re.DOTALL)
    rows = re.findall(r"^\| `([^`]+)`", table, re.MULTILINE)
    faults += [f"listed twice: {row}" for row in sorted(set(rows)) if rows.count(row) > 1]
    known = set(rows) - {"std::bad_alloc"}  # its text comes from the C++ standard library
    if not found or not known:
        faults.append("no messages found")
    faults += [f"not in the table: {message}" for message in sorted(found - known)]
    faults += [f"in the table, but not in the sources: {row}" for row in sorted(known - found)]
    if faults:
        sys.exit("\n".join(faults))
    print(f"{len(found)} messages, all of them in the table")


if __name__ == "__main__":
    main()
