#!/usr/bin/env python3
"""Times whole runs without filters and with 20 rules on 4 fields, in turn on the same logs.

    filters_bench.py --build DIR [--lines 1000000] [--runs 5]

Printed are the medians and their ratio. None of the rules drops a record, so that both runs do the
same work but for the checking.
"""

import argparse
import os
import statistics

from whole_runs import make_logs, run_program, timed

FIELDS = ["cs-uri-stem", "cs(User-Agent)", "c-ip", "cs-method"]
PATTERNS = ["*/never/*", "never*", "*.never", "*[!a-z]never?*", "never"]


def rules():
    """Exclude rules that match nothing: five shapes of pattern on each of four fields."""
    lines = []
    for f, field in enumerate(FIELDS):
        for p, pattern in enumerate(PATTERNS):
            lines += [f"[bench\\Filters\\rule_{f}_{p}]", f"name=rule_{f}_{p}", "includes=False",
                      f"field={field}", f"pattern={pattern}"]
    return "\n".join(lines) + "\n"


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--build", required=True)
    parser.add_argument("--lines", type=int, default=1000000)
    parser.add_argument("--runs", type=int, default=5)
    arguments = parser.parse_args()
    logs = make_logs(arguments.build, "plain", arguments.lines, [])
    timed(["cat"] + [os.path.join(logs, name) for name in os.listdir(logs)])
    plain, filtered = [], []
    for _ in range(arguments.runs):
        plain.append(run_program(arguments.build, logs)[0])
        filtered.append(run_program(arguments.build, logs, rules())[0])
    without, with_rules = statistics.median(plain), statistics.median(filtered)
    print(f"{arguments.lines} lines: {without:.2f} s without filters, {with_rules:.2f} s with 20 "
          f"rules on 4 fields, ratio {with_rules / without:.2f}")


if __name__ == "__main__":
    main()
