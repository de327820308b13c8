#!/usr/bin/env python3
"""Changes the program in one small place at a time and looks whether a test notices.

    mutants.py [--count 300] [--seed 1] [--folder stats]... [--work build/mutants]
    mutants.py --list [--folder stats]...

A mutant is one changed operator or constant, or one statement left out, in a source of stats/,
logread/, report/ or config/. It is built in a copy of the tree and meets the unit tests of its
folder and of those above it, and then the golden cases. One that no test fails for has survived:
it is printed as a patch. One that does not compile is none. The seed repeats a sample.
"""

import argparse
import collections
import difflib
import filecmp
import os
import random
import re
import shutil
import subprocess
import sys

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
FOLDERS = ["config", "stats", "logread", "report"]
# The test programs that a folder's sources are in, the nearest first.
TESTS = {"config": ["config", "stats", "logread", "report", "app"],
         "stats": ["stats", "logread", "report", "app"],
         "logread": ["logread", "report", "app"],
         "report": ["report", "app"]}
SWAPS = [("<=", "<"), (">=", ">"), ("==", "!="), ("!=", "=="), ("&&", "||"), ("||", "&&"),
         ("+=", "-="), ("-=", "+="), ("++", "--"), ("--", "++"), (" < ", " <= "), (" > ", " >= "),
         (" + ", " - "), (" - ", " + "), (" * ", " / "), (" / ", " * "), (" % ", " / "),
         (" & ", " | "), (" | ", " & "), (" << ", " >> "), (" >> ", " << "),
         ("true", "false"), ("false", "true")]
SWAP = re.compile("|".join(re.escape(old) for old, _ in sorted(SWAPS, key=lambda s: -len(s[0]))))
NUMBER = re.compile(r"(?<![\w.'\"])\d+(?![\w.'])")
NEGATION = re.compile(r"!(?=[\w(*])")
STATEMENT = re.compile(r"\s+[\w:.>\[\]()*-]+(\([^;]*\)|\s[-+]?=\s[^;]*|\+\+|--);$")
NO_CODE = re.compile(r"^\s*(//|#|static_assert|using |namespace |\})")
SECONDS_TO_BUILD, SECONDS_TO_TEST = 900, 600
# Those that wait for the machine, or count its instructions, tell nothing of a mutant.
NOT_NEEDED = "-*Random*:*Stress*"

Mutant = collections.namedtuple("Mutant", "path line old new")


def code_of(line):
    """The line with texts, characters and comments blanked out, places unchanged."""
    line = re.sub(r"'(\\.|[^'\\])'", lambda m: "'" + " " * (len(m.group()) - 2) + "'", line)
    line = re.sub(r'"(\\.|[^"\\])*"', lambda m: '"' + " " * (len(m.group()) - 2) + '"', line)
    return re.sub(r"//.*", lambda m: " " * len(m.group()), line)


def mutants_of_line(path, number, line):
    code = code_of(line)
    if NO_CODE.match(line):
        return
    for match in SWAP.finditer(code):
        if "template" in code or "#include" in code:
            continue
        new = dict(SWAPS)[match.group()]
        yield Mutant(path, number, line, line[:match.start()] + new + line[match.end():])
    for match in NUMBER.finditer(code):
        new = str(int(match.group()) + 1)
        yield Mutant(path, number, line, line[:match.start()] + new + line[match.end():])
    for match in NEGATION.finditer(code):
        yield Mutant(path, number, line, line[:match.start()] + line[match.end():])
    if STATEMENT.fullmatch(code) and not re.match(r"\s+(return|throw|const|static|auto)\b", code):
        yield Mutant(path, number, line, re.match(r"\s*", line).group() + ";")


def all_mutants(folders):
    found = []
    for folder in folders:
        for name in sorted(os.listdir(os.path.join(ROOT, folder))):
            if not name.endswith((".cpp", ".h")) or "_test" in name or "_fixture" in name:
                continue
            path = folder + "/" + name
            with open(os.path.join(ROOT, path), encoding="utf-8") as file:
                for number, line in enumerate(file.read().split("\n")):
                    found += mutants_of_line(path, number, line)
    return found


def run(command, seconds, cwd=None):
    """True when the command succeeds in time."""
    try:
        return subprocess.run(command, cwd=cwd, timeout=seconds, stdin=subprocess.DEVNULL,
                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                              check=False).returncode == 0
    except subprocess.TimeoutExpired:
        return False


class Workshop:
    """A copy of the tree with a build of its own."""

    def __init__(self, folder):
        self.tree = os.path.join(os.path.abspath(folder), "tree")
        self.build = os.path.join(os.path.abspath(folder), "build")
        self.copy_tree()
        subprocess.run(["cmake", "-S", self.tree, "-B", self.build, "-G", "Ninja",
                        "-DCMAKE_BUILD_TYPE=Debug", "-DCMAKE_CXX_FLAGS_DEBUG=-O1",
                        "-DHITWICK_GUI=OFF"], check=True, stdout=subprocess.DEVNULL)
        if not self.builds(FOLDERS[0]):
            sys.exit("the tree itself does not build")
        failing = self.failing_test(FOLDERS[0])
        if failing:
            sys.exit("the tree itself fails " + failing)

    def copy_tree(self):
        """Copies what differs, so that a second run builds little."""
        names = subprocess.run(["git", "ls-files", "-co", "--exclude-standard", "-z"], cwd=ROOT,
                               check=True, stdout=subprocess.PIPE).stdout.decode().split("\0")
        for name in filter(None, names):
            source, copy = os.path.join(ROOT, name), os.path.join(self.tree, name)
            if os.path.exists(copy) and filecmp.cmp(source, copy, shallow=False):
                continue
            os.makedirs(os.path.dirname(copy), exist_ok=True)
            shutil.copy(source, copy)

    def builds(self, folder):
        targets = [name + "_tests" for name in TESTS[folder]] + ["hitwick"]
        return run(["cmake", "--build", self.build, "--target", *targets], SECONDS_TO_BUILD)

    def failing_test(self, folder):
        """The first test that fails; nothing when none does."""
        for name in TESTS[folder]:
            if not run([os.path.join(self.build, name + "_tests"), "--gtest_brief=1",
                        "--gtest_fail_fast", "--gtest_filter=" + NOT_NEEDED], SECONDS_TO_TEST,
                       self.build):
                return name + "_tests"
        cases = os.path.join(self.tree, "tests", "e2e", "run_cases.py")
        program = os.path.join(self.build, "hitwick")
        return "" if run([sys.executable, cases, "--program", program],
                         SECONDS_TO_TEST) else "golden.cases"

    def put(self, path, lines):
        with open(os.path.join(self.tree, path), "w", encoding="utf-8") as file:
            file.write("\n".join(lines))

    def fate(self, mutant):
        """What a mutant meets: "no mutant", the test that fails for it, or nothing."""
        with open(os.path.join(self.tree, mutant.path), encoding="utf-8") as file:
            lines = file.read().split("\n")
        folder = mutant.path.split("/", maxsplit=1)[0]
        try:
            self.put(mutant.path, [*lines[:mutant.line], mutant.new, *lines[mutant.line + 1:]])
            return self.failing_test(folder) if self.builds(folder) else "no mutant"
        finally:
            self.put(mutant.path, lines)


def describe(mutant):
    return "\n".join(difflib.unified_diff([mutant.old], [mutant.new], lineterm="", n=0,
                                          fromfile="%s:%d" % (mutant.path, mutant.line + 1)))


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--count", type=int, default=300)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--folder", action="append", choices=FOLDERS)
    parser.add_argument("--work", default=os.path.join(ROOT, "build", "mutants"))
    parser.add_argument("--list", action="store_true")
    options = parser.parse_args()
    mutants = all_mutants(options.folder or FOLDERS)
    if options.list:
        print("\n".join(describe(mutant) for mutant in mutants))
        print("%d mutants" % len(mutants))
        return 0
    random.Random(options.seed).shuffle(mutants)
    workshop = Workshop(options.work)
    killed = survived = 0
    for mutant in mutants:
        if killed + survived == options.count:
            break
        fate = workshop.fate(mutant)
        if fate == "no mutant":
            continue
        killed += 1 if fate else 0
        survived += 0 if fate else 1
        print("%d: %s:%d %s" % (killed + survived, mutant.path, mutant.line + 1,
                                "killed by " + fate if fate else "SURVIVED\n" + describe(mutant)),
              flush=True)
    print("%d of %d killed" % (killed, killed + survived))
    return 0 if survived == 0 else 1


if __name__ == "__main__":
    sys.exit(main())
