#!/usr/bin/env python3
"""Runs the program on the golden cases and compares everything it leaves behind.

    run_cases.py --program PATH [--case NAME ...]     compare, byte for byte
    run_cases.py --update [--case NAME ...]           rewrite expected/ from the oracle
    run_cases.py --oracle [--case NAME ...]           compare the oracle with expected/

The clock of the program is frozen with `faketime`. The expectations hold @ROOT@ for the temporary
folder, @HOST@ for this computer's name, @VERSION@ for the program's version, @LOOPBACK@ for the
name of 127.0.0.1 and, in the event log, @ERROR@ for an error description of the system.
"""

import argparse
import difflib
import os
import re
import subprocess
import sys

import frozen_clock
from golden import Case, case_names
from oracle.basics import escape
from sandbox import Sandbox, host_name, loopback_name

DIFF_LINES = 40


def version_of(program):
    output = subprocess.run([program, "--version"], stdout=subprocess.PIPE, check=True).stdout
    return re.search(rb"[0-9]+\.[0-9]+\.[0-9]+", output).group(0)


def filled_in(content, sandbox, version):
    """An expectation with this machine's own values in the place of the placeholders."""
    for mark, value in ((b"@ROOT@", sandbox.root.encode()), (b"@VERSION@", version),
                        (b"@HOST@", escape(host_name()).encode()),
                        (b"@LOOPBACK@", escape(loopback_name()).encode())):
        content = content.replace(mark, value)
    return content


def difference(name, expected, actual):
    """A readable difference of two files, a table cell a line."""
    def lines(content):
        text = content.decode("latin-1").replace("\r\n", "\\r\\n\n")
        return re.sub(r"(?<!^)(<t[rdh][ >])", r"\n\1", text).split("\n")

    diff = difflib.unified_diff(lines(expected), lines(actual), "expected/" + name,
                                "actual/" + name, lineterm="", n=2)
    return list(diff)[:DIFF_LINES]


def compare_files(expected, actual):
    problems = []
    for name in sorted(set(expected) | set(actual)):
        if name not in actual:
            problems.append("missing file: " + name)
        elif name not in expected:
            problems.append("unexpected file: " + name)
        elif expected[name] != actual[name]:
            problems += ["file differs: " + name] + difference(name, expected[name], actual[name])
    return problems


def compare_events(expected, actual):
    def fits(pattern, line):
        parts = map(re.escape, pattern.split(b"@ERROR@"))
        return re.fullmatch(b".+".join(parts), line, re.DOTALL)

    # Whether the machine's name server answers is no matter of the case.
    actual = [line for line in actual if b"Hitwick: Name lookups timed out" not in line]
    if len(expected) == len(actual) and all(map(fits, expected, actual)):
        return []
    diff = difflib.unified_diff([line.decode("latin-1") for line in expected],
                                [line.decode("latin-1") for line in actual],
                                "expected/events.log", "actual/events.log", lineterm="", n=1)
    return ["event log differs"] + list(diff)[:DIFF_LINES]


def run_program(case, program, version):
    """The problems of one case."""
    with Sandbox() as sandbox:
        case.stage(sandbox)
        language = case.locale.environment() if case.locale else {}
        done = sandbox.run(program, case.command.split(" "), case.epoch, case.tz,
                           {**case.environment, **language})
        files, events = case.expected()
        files = {name: filled_in(content, sandbox, version) for name, content in files.items()}
        events = [filled_in(line, sandbox, version) for line in events]
        problems = []
        if done.returncode != case.exit:
            problems.append("exit code %d instead of %d" % (done.returncode, case.exit))
        problems += compare_files(files, sandbox.usage_files())
        problems += compare_events(events, sandbox.events())
        if problems and done.stderr:
            problems.append("standard error: " + done.stderr.decode("utf-8", "replace")[:2000])
        return problems


def run_oracle(case, update):
    """Asks the oracle; stores its answer or compares it with the stored one."""
    with Sandbox() as sandbox:
        case.stage(sandbox)
        files, events, code = case.answer(sandbox)
    if code != case.exit:
        return ["the oracle ends with %d, the case says %d" % (code, case.exit)]
    if update:
        case.store_expectation(files, events)
        return []
    expected_files, expected_events = case.expected()
    problems = compare_files(expected_files, files)
    return problems + ([] if events == expected_events else ["event log differs"])


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--program", help="the hitwick executable")
    parser.add_argument("--case", action="append", help="only this case (may be repeated)")
    parser.add_argument("--update", action="store_true", help="rewrite the expectations")
    parser.add_argument("--oracle", action="store_true", help="check the oracle alone")
    options = parser.parse_args()
    version = b""
    if not options.update and not options.oracle:
        if not options.program:
            parser.error("--program, --update or --oracle is needed")
        frozen_clock.require()
        options.program = os.path.abspath(options.program)
        version = version_of(options.program)
    failed, names = [], options.case or case_names()
    for name in names:
        case = Case(name)
        if options.update or options.oracle:
            problems = run_oracle(case, options.update)
        else:
            problems = run_program(case, options.program, version)
        print(("FAIL " if problems else "ok   ") + name, flush=True)
        for line in problems:
            print("     " + line)
        failed += [name] if problems else []
    print("%d cases, %d failed%s" % (len(names), len(failed),
                                     ": " + ", ".join(failed) if failed else ""))
    return 1 if failed or not names else 0


if __name__ == "__main__":
    sys.exit(main())
