#!/usr/bin/env python3
"""Checks the commands of host programs in all Markdown files: the program's help knows the command and
its options.

    documented_commands.py DIRECTORY PROGRAM...

The name of a program is that of its file without an ending."""

import functools
import os
import re
import subprocess
import sys

from markdown_links import markdown_files

CODE = re.compile(r"^```[^\n]*\n(.*?)^```|`([^`\n]+)`", re.MULTILINE | re.DOTALL)
OPTION = re.compile(r"(?<![\w-])--[a-z][a-z-]*")


@functools.cache
def help_of(*command):
    return subprocess.run([*command, "--help"], check=True, capture_output=True, text=True).stdout


def commands_in(text, name):
    """What follows the program's name in code, up to a comment or the end of the line."""
    command = re.compile(rf"(?:^|[\s/\\>]){name}(?:\.exe)?((?: [^\n#]*)?)(?=#|$)", re.MULTILINE)
    for code in CODE.finditer(text):
        lines = (code[1] or code[2]).replace("\\\n", "")
        yield from (match[1].strip() for match in command.finditer(lines))


def fault_of(program, arguments):
    """What the program does not know, or None. Options without a command can be those of any."""
    commands = re.findall(r"^  ([a-z]+) ", help_of(program), re.MULTILINE)
    command = re.match(r"[a-z]+\b", arguments)
    if command and commands:
        if command[0] not in commands:
            return f"no command {command[0]}"
        commands = [command[0]]
    helps = [help_of(program)] + [help_of(program, name) for name in sorted(set(commands))]
    unknown = set(OPTION.findall(arguments)) - set(OPTION.findall("\n".join(helps)))
    return f"no option {', '.join(sorted(unknown))}" if unknown else None


def main():
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    count = faults = 0
    for path in markdown_files(os.path.abspath(sys.argv[1])):
        with open(path, encoding="utf-8") as file:
            text = file.read()
        for program in sys.argv[2:]:
            for arguments in commands_in(text, os.path.splitext(os.path.basename(program))[0]):
                count += 1
                if fault := fault_of(program, arguments):
                    faults += 1
                    print(f"{os.path.relpath(path, sys.argv[1])}: {arguments}: {fault}")
    print(f"{count} commands, {faults} faults")
    sys.exit(1 if faults or not count else 0)


if __name__ == "__main__":
    main()
