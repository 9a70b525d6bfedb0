#!/usr/bin/env python3
"""Compares the lists of outputs in the simulated SDKs with their functions: every output that a function
sets is listed, and every listed output is set.

    simulated_outputs.py DIRECTORY"""

import pathlib
import re
import sys

ROW = re.compile(r'\{"(\w+)",\s*((?:"[^"]*"\s*)+)\}')
TABLE = re.compile(r"FunctionOutputs outputs\[\] = \{\n(.*?)\n\};", re.DOTALL)
DEFINITION = re.compile(r"^([\w:]+\*?) (\w+)\(", re.MULTILINE)  # its body ends with the next one
SET = re.compile(r'(?:call\.(?:set|out)\(|setNumber\(call,|Call::forcedOutput\()\s*"(\w+)"')


def listed_outputs(text):
    """The names in the rows of the file's list, by function."""
    table = TABLE.search(text)
    rows = ROW.findall(table[1]) if table else []
    return {function: set("".join(re.findall('"([^"]*)"', names)).split())
            for function, names in rows}


def bodies(text):
    """Yields the result, the name and the body of each function."""
    starts = list(DEFINITION.finditer(text))
    for start, following in zip(starts, starts[1:] + [None]):
        yield start[1], start[2], text[start.end():following.start() if following else len(text)]


def set_outputs(text):
    """The names that each of the maker's functions sets, also through the file's own functions."""
    own, makers = text.split('extern "C" {')
    helpers = {name: set(SET.findall(body)) for _, name, body in bodies(own)}
    found = {}
    for result, name, body in bodies(makers):
        found[name] = set(SET.findall(body)) | (set() if result == "void" else {"result"})
        for helper, outputs in helpers.items():
            if re.search(rf"\b{helper}\(", body):
                found[name] |= outputs
    return found


def main():
    files = [path for path in sorted(pathlib.Path(sys.argv[1]).glob("*.cpp"))
             if "sim::Maker sim::maker" in path.read_text(encoding="utf-8")]
    faults = [] if files else [f"no simulated SDKs in {sys.argv[1]}"]
    for path in files:
        text = path.read_text(encoding="utf-8")
        listed = listed_outputs(text)
        present = set_outputs(text)
        faults += [f"{path.name}: no function {name}" for name in listed.keys() - present.keys()]
        for name, outputs in present.items():
            differing = outputs ^ listed.get(name, {"result"})
            if differing:
                faults.append(f"{path.name}: {name}: listed or set only: {sorted(differing)}")
        print(f"{path.name}: {len(present)} functions, {sum(map(len, present.values()))} outputs")
    print("\n".join(faults))
    return 1 if faults else 0


sys.exit(main())
