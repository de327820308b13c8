#!/usr/bin/env python3
"""Compares the program with other log analysers that are installed, and with `wc -l`.

    rivals.py --build DIR [--lines 1023372] [--runs 3]

All read the same hits: one month of generated logs with 17 fields, 50,000 URLs, 61,000 visitors
and 5,000 agents, in the combined format for webalizer and logswan. One process each, HTML to a
file, no name lookups, from the warm file cache, in turn within each run. Printed is one table in
Markdown with the medians of the processor seconds, user and system. AWStats gets the first
10,000 lines; its ratio is that of the cost per line.
"""

import argparse
import datetime
import os
import platform
import shutil
import statistics
import subprocess
import sys
import tempfile

from whole_runs import make_logs, prepare_run, used

AWSTATS = "/usr/lib/cgi-bin/awstats.pl"
AWSTATS_LINES = 10000
GOACCESS_FORMAT = "%d %t %^ %m %U %q %^ %^ %h %u %R %s %^ %^ %b %^ %L"
OPTIONS = ["--urls", "50000", "--visitors", "61000", "--agents", "5000"]


class Rival:
    """One program: its command, the lines it gets, and what its runs used."""

    def __init__(self, name, command, lines, environment=None):
        self.name, self.command, self.lines = name, command, lines
        self.environment = environment
        self.seconds, self.megabytes = [], 0

    def run(self):
        seconds, megabytes = used(self.command, env=self.environment)
        self.seconds.append(seconds)
        self.megabytes = max(self.megabytes, megabytes)

    def cost(self):
        return statistics.median(self.seconds)

    def cost_per_line(self):
        return self.cost() / self.lines


def write_w3c(files, target):
    """All files in one, the header once."""
    count = 0
    with open(target, "wb") as out:
        for number, name in enumerate(files):
            with open(name, "rb") as log:
                for line in log:
                    if not line.startswith(b"#"):
                        count += 1
                    elif number != 0:
                        continue
                    out.write(line)
    return count


def write_combined(source, target):
    """The hits of a W3C log in the combined format, which has blanks where W3C has plus signs."""
    with open(source, encoding="utf-8") as log, open(target, "w", encoding="utf-8") as out:
        for line in log:
            if line.startswith("#"):
                continue
            (date, time, _, method, stem, query, _, user, client, agent, referrer, status, _, _,
             sent, _, _) = line.split()
            day = datetime.date.fromisoformat(date).strftime("%d/%b/%Y")
            url = stem if query == "-" else f"{stem}?{query}"
            out.write(f'{client} - {user} [{day}:{time} +0000] "{method} {url} HTTP/1.1" {status} '
                      f'{sent} "{referrer}" "{agent.replace("+", " ")}"\n')


def write_awstats_settings(log, fields, folder):
    with open(os.path.join(folder, "awstats.bench.conf"), "w", encoding="utf-8") as out:
        out.write(f'LogFile="{log}"\nLogType=W\nLogFormat="{fields}"\nSiteDomain="bench"\n'
                  f'DNSLookup=0\nDirData="{folder}"\nHostAliases="localhost"\n')


def fields_of(log):
    with open(log, encoding="utf-8") as lines:
        for line in lines:
            if line.startswith("#Fields: "):
                return line[len("#Fields: "):].strip()
    sys.exit("no fields")


def first_lines(source, target, count):
    with open(source, "rb") as log, open(target, "wb") as out:
        for _, line in zip(range(count), log):
            out.write(line)


def rivals(w3c, combined, lines, scratch):
    """Those that are installed."""
    if shutil.which("webalizer"):
        folder = os.path.join(scratch, "webalizer")
        os.mkdir(folder)
        yield Rival("Webalizer", ["webalizer", "-c", "/dev/null", "-Q", "-i", "-b", "-N", "0", "-o",
                                  folder, combined], lines)
    if shutil.which("goaccess"):
        yield Rival("GoAccess", ["goaccess", w3c, "--no-global-config", "--log-format",
                                 GOACCESS_FORMAT, "--date-format", "%Y-%m-%d", "--time-format",
                                 "%H:%M:%S", "--no-progress", "-o",
                                 os.path.join(scratch, "goaccess.html")], lines)
    if shutil.which("logswan"):
        yield Rival("Logswan", ["logswan", combined], lines)
    if os.path.exists(AWSTATS):
        part = os.path.join(scratch, "part.log")
        first_lines(w3c, part, AWSTATS_LINES)
        write_awstats_settings(part, fields_of(w3c), scratch)
        yield Rival("AWStats", ["sh", "-c", f"rm -f {scratch}/awstats[0-9]*.txt; perl {AWSTATS} "
                                f"-config=bench -configdir={scratch} -update -output -staticlinks "
                                f"> {scratch}/awstats.html"], min(AWSTATS_LINES, lines))


def processor():
    with open("/proc/cpuinfo", encoding="utf-8") as info:
        for line in info:
            if line.startswith("model name"):
                return line.split(":", 1)[1].strip()
    return platform.machine()


def print_table(program, floor, others):
    print(f"{program.lines:,} lines, {processor()}, {os.cpu_count()} processors, "
          f"{platform.system()}, {datetime.date.today().isoformat()}:\n")
    print("| program | lines | CPU s | lines/s | Hitwick is faster by | times `wc -l` | peak MB |")
    print("|---|---|---|---|---|---|---|")
    for one in [program] + others + [floor]:
        faster = one.cost_per_line() / program.cost_per_line()
        print(f"| {one.name} | {one.lines:,} | {one.cost():.2f} | {1 / one.cost_per_line():,.0f} | "
              f"{faster:,.1f} | {one.cost_per_line() / floor.cost_per_line():,.1f} | "
              f"{one.megabytes:.0f} |")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--build", required=True)
    parser.add_argument("--lines", type=int, default=1023372)
    parser.add_argument("--runs", type=int, default=3)
    arguments = parser.parse_args()
    logs = make_logs(arguments.build, "rivals", arguments.lines, OPTIONS)
    files = [os.path.join(logs, name) for name in sorted(os.listdir(logs))]
    with tempfile.TemporaryDirectory() as scratch:
        w3c, combined = os.path.join(scratch, "w3c.log"), os.path.join(scratch, "combined.log")
        lines = write_w3c(files, w3c)
        write_combined(w3c, combined)
        environment = prepare_run(scratch, logs)
        program = Rival("Hitwick", [os.path.join(arguments.build, "hitwick"), "/BATCH",
                                    "/SITE=bench"], lines, environment)
        floor = Rival("`wc -l`", ["wc", "-l"] + files, lines)
        others = list(rivals(w3c, combined, lines, scratch))
        for _ in range(arguments.runs):
            for one in [program, floor] + others:
                one.run()
        print_table(program, floor, others)


if __name__ == "__main__":
    main()
