#!/usr/bin/env python3
"""Runs the program on a folder of real logs and compares every file with the oracle's.

    compare_real.py --program PATH --logs DIR --now 2010-12-15T12:00:00Z --tz Europe/Berlin
                    --mode catchup

Each month page is also compared with the plain recount of recount.py. The logs are only read.
"""

import argparse
import datetime
import os
import socket
import sys
import time

import recount
from oracle.months import ENGLISH_SHORT
from oracle.run import Run
from run_cases import compare_events, compare_files, filled_in, version_of
from sandbox import Sandbox, host_name
from zones import offsets

COMMANDS = {"batch": "/BATCH /SITE=real", "catchup": "/C /SITE=real"}


class Resolver(dict):
    """Names of addresses as the system's resolver gives them, asked for when needed."""

    def get(self, address, default=""):
        try:
            return socket.gethostbyaddr(address)[0]
        except OSError:
            return default


def compare_run(program, logs, moment, zone, mode, settings):
    """The problems of one run: files, events and recounted months."""
    bias, wall_offset = offsets(zone, moment)
    with Sandbox() as box:
        values = {**settings, "IISLogDir": os.path.abspath(logs), "UsageDir": box.usage}
        box.configure("real", values)
        run = Run(COMMANDS[mode], values, None, moment, bias, wall_offset, host_name(), Resolver())
        wanted = run.execute()
        start = time.monotonic()
        done = box.run(program, COMMANDS[mode].split(), int(moment.timestamp()), zone, timeout=900)
        print("the program took %.1f s" % (time.monotonic() - start))
        version = version_of(program)
        files = {name: filled_in(content, box, version)
                 for name, content in wanted.files.items()}
        problems = compare_files(files, box.usage_files())
        problems += compare_events([line.encode("latin-1") for line in wanted.events],
                                   box.events())
        if done.returncode != wanted.exit_code:
            problems.append("exit code %d" % done.returncode)
        counted_bias = 0 if settings.get("UseUTC") == "True" else bias
        for month, year in run.period()[-12:]:
            page = os.path.join(box.usage, ENGLISH_SHORT[month - 1] + ".htm")
            if os.path.exists(page):
                problems += ["recount of %s: %s" % (os.path.basename(page), line) for line in
                             recount.compare(logs, page, month, year, counted_bias,
                                             run.list_size)]
        print("%d files and %d event-log lines compared" % (len(files), len(wanted.events)))
        return problems


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--program", required=True)
    parser.add_argument("--logs", required=True)
    parser.add_argument("--now", required=True, help="UTC, such as 2010-12-15T12:00:00Z")
    parser.add_argument("--tz", default="UTC", help="zone name")
    parser.add_argument("--mode", choices=sorted(COMMANDS), default="batch")
    parser.add_argument("--list-size", default="100")
    parser.add_argument("--utc", action="store_true", help="the site's UseUTC setting")
    options = parser.parse_args()
    moment = datetime.datetime.strptime(options.now, "%Y-%m-%dT%H:%M:%SZ").replace(
        tzinfo=datetime.timezone.utc)
    settings = {"GenerateCSV": "True", "ShowUsernames": "True", "MaxListSize": options.list_size,
                "UseUTC": str(options.utc)}
    problems = compare_run(os.path.abspath(options.program), options.logs, moment, options.tz,
                           options.mode, settings)
    for line in problems:
        print(line)
    print("%d problems" % len(problems))
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
