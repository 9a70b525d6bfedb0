"""Tests the tests: changes one small thing in a copy of src/, builds it, and expects a test to fail.

usage: mutate.py SCRATCH-DIRECTORY [--count N] [--seed N] [--jobs N] [--list]

The changes (mutants) are made from the tokens of the sources: another operator, constant or
condition, a statement less, two arguments swapped. The seed decides which ones are tried. The exit
status is 1 when a mutant survives all tests and survivors.md gives no reason for it.
"""

import argparse
import collections
import filecmp
import hashlib
import os
import pathlib
import random
import re
import resource
import shutil
import subprocess
import sys
import time
import typing

ROOT = pathlib.Path(__file__).absolute().parents[2]
REASONS = pathlib.Path(__file__).with_name("survivors.md")
# The tests run on Linux, where these files are not built.
WINDOWS_ONLY = re.compile(r"windows_dll/|platform_windows")
# Test programs, the quickest first. A program whose cases need processes of their own runs through
# CTest in its directory.
STAGES = [(["unit_tests"], None),
          (["fuzz_replay_tests"], None),
          (["library_tests", "allocation_tests"], "tests/library"),
          (["loading_tests"], "tests/loading"),
          (["torture_tests", "session_tests"], "tests/torture")]
# A mutant may run for ever or allocate without end. Sound tests stay far below both limits.
SECONDS_PER_TEST = 60
BYTES_PER_PROCESS = 8 << 30
# Random sessions are the last resort: shorter ones, as through Wine.
SHORTER = {"ORVANE_RANDOM_STEPS": "4000"}
# As GoogleTest prints it, and as CTest does.
FAILED_TEST = re.compile(
    r"\[  FAILED  \] (\S+)|Test +#\d+: (\S+) \.*\**(?:Failed|Exception|Timeout)")

TOKEN = re.compile(r"""
    (?P<skip>//[^\n]*|/\*.*?\*/|^[ \t]*\#(?:\\\n|[^\n])*)
  | (?P<string>(?:u8|[uUL])?R"(?P<fence>[^(\s]*)\(.*?\)(?P=fence)"|(?:u8|[uUL])?"(?:\\.|[^"\\])*"
      |'(?:\\.|[^'\\])+')
  | (?P<number>\.?\d(?:[eEpP][+-]|'?[\w.])*)
  | (?P<word>[A-Za-z_]\w*)
  | (?P<operator><<=|>>=|<=>|->\*|\.\.\.|\[\[|\]\]|::|->|\+\+|--|&&|\|\||<<|[-+*/%&|^=!<>]=|.)
""", re.VERBOSE | re.MULTILINE | re.DOTALL)

OTHER_OPERATORS = {
    "==": ["!="], "!=": ["=="], "<": ["<=", ">="], ">": [">=", "<="], "<=": ["<", ">"],
    ">=": [">", "<"], "&&": ["||"], "||": ["&&"], "+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"],
    "%": ["/"], "+=": ["-=", "="], "-=": ["+=", "="], "*=": ["/="], "/=": ["*="], "<<": [">>"],
    ">>": ["<<"], "&": ["|"], "|": ["&"], "^": ["&"]}
BEGIN_BODY = {")", "]", "else", "do", "try", "const", "noexcept"}
NO_STATEMENT = {"return", "if", "for", "while", "do", "switch", "case", "default", "const", "auto",
                "constexpr", "static", "using", "throw", "struct", "class", "enum", "template",
                "else", "try", "catch", "typedef", "alignas", "unsigned", "extern", "goto"}

Token = collections.namedtuple("Token", "kind text start end")


class Mutant(typing.NamedTuple):
    file: str
    start: int
    end: int
    replacement: str
    line: int
    source: str
    change: str

    def __str__(self):
        return f"{self.file}:{self.line}: {self.change}"


def tokens_of(text):
    return [Token(match.lastgroup if match["string"] is None else "string", match[0], *match.span())
            for match in TOKEN.finditer(text) if not match["skip"] and not match[0].isspace()]


class Source:
    """A source file, its tokens and the mutants that they allow."""

    def __init__(self, path):
        self.file = path.relative_to(ROOT).as_posix()
        self.text = path.read_text()
        self.tokens = tokens_of(self.text)
        self.partners = self.matching_brackets()
        self.in_body = self.function_bodies()
        self.mutants = []
        excluded = self.excluded_tokens()
        for i, token in enumerate(self.tokens):
            if i not in excluded:
                self.mutate_operator(token)
                self.mutate_constant(token)
                self.mutate_condition(i, token)
                self.remove_statement(i)
                self.swap_arguments(i)

    def matching_brackets(self):
        partners, stack = {}, []
        for i, token in enumerate(self.tokens):
            if token.text in ("(", "[", "{", "[["):
                stack.append(i)
            elif token.text in (")", "]", "}", "]]"):
                # "]]" may also close two subscripts; the sources have none of these.
                partners[stack.pop()] = i
        return partners

    def function_bodies(self):
        inside = [False] * len(self.tokens)
        for begin, end in self.partners.items():
            if self.tokens[begin].text == "{" and begin and self.tokens[begin - 1].text in BEGIN_BODY:
                inside[begin:end] = [True] * (end - begin)
        return inside

    def excluded_tokens(self):
        excluded = set()
        for i, token in enumerate(self.tokens):
            if token.text in ("static_assert", "__attribute__", "alignas"):
                excluded.update(range(i, self.partners[i + 1] + 1))
            elif token.text == "[[":
                excluded.update(range(i, self.partners[i] + 1))
        return excluded

    def add(self, start, end, replacement, change):
        line = self.text.count("\n", 0, start) + 1
        source = self.text.split("\n")[line - 1].strip()
        # A line may have the same change twice.
        same = sum((other.line, other.change.split(" #")[0]) == (line, change)
                   for other in self.mutants)
        change += f" #{same + 1}" if same else ""
        self.mutants.append(Mutant(self.file, start, end, replacement, line, source, change))

    def mutate_operator(self, token):
        if token.kind != "operator":
            return
        before, after = self.text[token.start - 1], self.text[token.end]
        # clang-format puts blanks around binary operators only.
        if before.isspace() and after.isspace():
            for other in OTHER_OPERATORS.get(token.text, []):
                self.add(token.start, token.end, other, f"{token.text} -> {other}")
        elif other := {"++": "--", "--": "++"}.get(token.text):
            self.add(token.start, token.end, other, f"{token.text} -> {other}")
        elif token.text in ("!", "-", "~") and not after.isspace():
            self.add(token.start, token.end, "", f"remove {token.text}")

    def mutate_constant(self, token):
        if other := {"true": "false", "false": "true"}.get(token.text):
            others = [other]
        elif token.kind != "number":
            return
        elif re.fullmatch(r"\d[\d']*", token.text):
            number = int(token.text.replace("'", ""))
            others = [str(number + 1)] + ([str(number - 1)] if number else [])
        elif re.fullmatch(r"0[xX][\da-fA-F']+", token.text):
            others = [hex(int(token.text.replace("'", ""), 16) + 1)]
        else:
            others = [f"(1 + {token.text})"]
        for other in others:
            self.add(token.start, token.end, other, f"{token.text} -> {other}")

    def mutate_condition(self, i, token):
        if token.text == "?" and self.in_body[i]:
            # The value of a conditional expression, always the first or always the second one.
            start = self.tokens[self.start_of_operand(i)].start
            for constant in ("true ||", "false &&"):
                self.add(start, token.start, f"{constant} ({self.text[start:token.start]}) ",
                         f"condition of ? -> {constant.split()[0]}")
        if token.text not in ("if", "while") or self.tokens[i + 1].text != "(":
            return
        begin, end = i + 2, self.partners[i + 1]
        for j in range(begin, end):
            if self.tokens[j].text == ";":
                begin = j + 1
        if any(part.text == "=" for part in self.tokens[begin:end]):
            return  # a declaration
        for constant in ("true", "false"):
            self.add(self.tokens[begin].start, self.tokens[end - 1].end, constant, f"condition of {token.text} -> {constant}")

    def start_of_operand(self, i):
        """Goes back from ? to the beginning of its condition."""
        opened = {end: begin for begin, end in self.partners.items()}
        i -= 1
        while True:
            i = opened.get(i, i)
            before = self.tokens[i - 1].text
            if before in ("(", "[", "{", ",", ";", "=", "+=", "return", ":", "?", "}"):
                return i
            i -= 1

    def remove_statement(self, i):
        first = self.tokens[i]
        if not self.in_body[i] or first.kind != "word" and first.text not in ("++", "--", "*"):
            return
        if self.tokens[i - 1].text not in (";", "{", "}", ":") or first.text in NO_STATEMENT:
            return
        if self.tokens[i - 1].text == ":" and not self.follows_label(i - 1):
            return
        end = i
        while self.tokens[end].text not in (";", "}"):
            end = self.partners.get(end, end) + 1
        if self.tokens[end].text != ";" or self.declares(i):
            return
        self.add(first.start, self.tokens[end].end, ";", "remove statement")

    def follows_label(self, colon):
        return "default" == self.tokens[colon - 1].text or any(
            token.text == "case" for token in self.tokens[max(colon - 4, 0):colon])

    def declares(self, i):
        """Whether a statement begins with a type and a name."""
        while self.tokens[i + 1].text == "::":
            i += 2
        follower = self.tokens[i + 1]
        attached = follower.start == self.tokens[i].end
        return self.tokens[i].kind == "word" and (
            follower.kind == "word" or attached and follower.text in ("<", "*", "&"))

    def swap_arguments(self, i):
        called = self.in_body[i] and self.tokens[i].text == "(" and self.tokens[i - 1].kind == "word"
        if not called or self.tokens[i - 1].text in NO_STATEMENT:
            return
        commas, j = [i], i + 1
        while j < self.partners[i]:
            if self.tokens[j].text == ",":
                commas.append(j)
            j = self.partners.get(j, j) + 1
        commas.append(self.partners[i])
        for first, middle, last in zip(commas, commas[1:], commas[2:]):
            start, stop = self.tokens[first].end, self.tokens[last].start
            left = self.text[start:self.tokens[middle].start].strip()
            right = self.text[self.tokens[middle].end:stop].strip()
            if left != right and "[" not in left + right:
                self.add(start, stop, f"{right}, {left}", f"swap {' '.join(left.split())} and "
                         + " ".join(right.split()))


def all_sources():
    return [Source(path) for path in sorted((ROOT / "src").rglob("*.[ch]pp"))
            if not WINDOWS_ONLY.search(path.as_posix())]


def choose(sources, count, seed):
    """Takes mutants of each file in turn, so that small files have their share."""
    chance = random.Random(seed)
    piles = [chance.sample(source.mutants, len(source.mutants)) for source in sources]
    chance.shuffle(piles)
    chosen = []
    while len(chosen) < count and any(piles):
        chosen += [pile.pop() for pile in piles if pile]
    return chosen[:count]


def read_reasons(sources):
    """Returns the reasons of survivors.md by file, line and change. An entry must fit the sources."""
    reasons, file, source = {}, None, None
    for line in REASONS.read_text().splitlines():
        if line.startswith("## "):
            file = line[3:].strip()
        elif line.startswith("`"):
            source = line.strip("` ")
        elif entry := re.match(r"- `(.+?)`: (.+)", line):
            reasons[file, source, entry[1]] = entry[2]
    possible = {(m.file, m.source, m.change) for source in sources for m in source.mutants}
    stale = [key for key in reasons if key not in possible]
    for file, source, change in stale:
        print(f"{REASONS.name}: no such mutant: {file}: {source}: {change}")
    if stale:
        sys.exit(1)
    return reasons


def run(command, **options):
    return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                          errors="replace", check=False, **options)


def limit_resources():
    resource.setrlimit(resource.RLIMIT_AS, (BYTES_PER_PROCESS, BYTES_PER_PROCESS))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


def copy_sources(tree):
    """Copies what differs, and gives it a new time: an earlier run may have ended on a mutant."""
    def copy(file, target):
        if not os.path.exists(target) or not filecmp.cmp(file, target, shallow=False):
            shutil.copyfile(file, target)

    shutil.copytree(ROOT, tree, ignore=shutil.ignore_patterns(".git", "build"), copy_function=copy,
                    dirs_exist_ok=True)
    for file in tree.rglob("*"):
        if file.is_file() and not (ROOT / file.relative_to(tree)).exists():
            file.unlink()


class Builder:
    """Builds the copy and runs its tests."""

    def __init__(self, scratch, jobs):
        self.tree, self.build, self.jobs = scratch / "tree", scratch / "build", str(jobs)
        copy_sources(self.tree)
        # Without warnings: the tests have to notice, not the compiler.
        options = ["-D", "CMAKE_BUILD_TYPE=Debug", "-D", "CMAKE_CXX_FLAGS_DEBUG=-O1 -w",
                   "-D", "ORVANE_BUILD_HOSTS=OFF", "-D", "ORVANE_BUILD_BENCHMARKS=OFF"]
        if shutil.which("ccache"):
            options += ["-D", "CMAKE_CXX_COMPILER_LAUNCHER=ccache"]
        configured = run(["cmake", "-S", str(self.tree), "-B", str(self.build), "-G", "Ninja",
                          *options])
        if configured.returncode != 0:
            sys.exit(configured.stdout)
        verdict = self.verdict(None)
        if verdict != "survived":
            sys.exit(f"without any mutant: {verdict}")
        self.sound = self.objects()

    def objects(self, below="."):
        return {file: hashlib.sha1(file.read_bytes()).digest()
                for file in (self.build / below).rglob("*.o")}

    def make(self, targets):
        return run(["cmake", "--build", str(self.build), "-j", self.jobs, "--target",
                    *targets]).returncode == 0

    def verdict(self, sound_objects):
        """Builds and tests until something fails."""
        for programs, directory in STAGES:
            needed = ["orvane_desktop_camera", *programs] if directory else programs
            if not self.make(needed):
                return "does not compile"
            if sound_objects and programs == STAGES[0][0] and self.same_code(sound_objects):
                return "same code"
            failed = self.failed_test(programs[0], directory)
            if failed:
                return f"killed by {failed}"
        return "survived"

    def same_code(self, sound_objects):
        """Whether all programs consist of the same objects as without the change."""
        if not self.objects(below="src").items() <= sound_objects.items():
            return False
        programs = [program for programs, _ in STAGES for program in programs]
        return self.make(["orvane_desktop_camera", *programs]) and self.objects() == sound_objects

    def failed_test(self, program, directory):
        """Runs the program, or CTest in the directory. Returns the test that failed, or None."""
        if directory:
            command = ["ctest", "-j", self.jobs, "--stop-on-failure", "--timeout",
                       str(SECONDS_PER_TEST)]
        else:
            command = [str(self.build / "tests" / program), "--gtest_fail_fast"]
        try:
            done = run(command, cwd=self.build / (directory or "."), preexec_fn=limit_resources,
                       env=os.environ | SHORTER, timeout=None if directory else SECONDS_PER_TEST)
        except subprocess.TimeoutExpired:
            return f"{program} (timeout)"
        if done.returncode == 0:
            return None
        failed = FAILED_TEST.search(done.stdout)
        return failed[1] or failed[2] if failed else directory or f"{program} (crash)"

    def try_mutant(self, mutant):
        path = self.tree / mutant.file
        sound = path.read_text()
        path.write_text(sound[:mutant.start] + mutant.replacement + sound[mutant.end:])
        try:
            return self.verdict(self.sound)
        finally:
            path.write_text(sound)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n", maxsplit=1)[0])
    parser.add_argument("scratch", type=pathlib.Path)
    parser.add_argument("--count", type=int, default=300, help="how many mutants; 300")
    parser.add_argument("--seed", type=int, default=1, help="which ones; 1")
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    parser.add_argument("--only", default="", help="only those of them that match, as they are printed")
    parser.add_argument("--list", action="store_true", help="prints the mutants, tries none")
    arguments = parser.parse_args()

    sources = all_sources()
    reasons = read_reasons(sources)
    mutants = [mutant for mutant in choose(sources, arguments.count, arguments.seed)
               if re.search(arguments.only, str(mutant))]
    print(f"== {len(mutants)} of {sum(len(source.mutants) for source in sources)} mutants in "
          f"{len(sources)} files, seed {arguments.seed}", flush=True)
    if arguments.list:
        for mutant in mutants:
            print(f"{mutant}: {mutant.source}")
        return 0

    builder = Builder(arguments.scratch.absolute(), arguments.jobs)
    outcomes, survivors = collections.Counter(), []
    for number, mutant in enumerate(mutants, 1):
        started = time.time()
        verdict = builder.try_mutant(mutant)
        reason = reasons.get((mutant.file, mutant.source, mutant.change))
        if verdict == "survived":
            survivors.append((mutant, reason))
            verdict = "survived, with a reason" if reason else "SURVIVED"
        outcomes[verdict.split(" by ")[0]] += 1
        print(f"{number:3} {mutant}: {verdict} ({time.time() - started:.0f} s)", flush=True)

    print("== " + ", ".join(f"{count} {what}" for what, count in outcomes.most_common()))
    for mutant, reason in survivors:
        print(f"   {mutant}: {mutant.source}: {reason or 'NO REASON'}")
    return 0 if all(reason for _, reason in survivors) else 1


if __name__ == "__main__":
    sys.exit(main())
