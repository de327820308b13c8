#!/usr/bin/env python3
"""Runs the Windows and the Linux program on the same hostile logs: exit codes and all files of the
usage folders have to be the same, byte for byte.

    hostile_logs.py --windows build/windows-server/hitwick.exe --linux build/server/hitwick
                    --prefix FOLDER [--first 1] [--count 300]

Logs, settings and rules are those of tests/e2e/fuzz_compare.py, a seed for each run. A seed that
differs is printed and can be run again by itself.
"""

import argparse
import datetime
import os
import pathlib
import random
import sys

sys.path.insert(1, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "e2e"))

import fuzz_compare  # noqa: E402
from run_cases import compare_files  # noqa: E402
from sandbox import SITE_VALUES, Sandbox  # noqa: E402
from wine import Wine, windows_path  # noqa: E402

# Of the zones, those that both systems know alike.
ZONES = ["UTC", "Europe/Berlin", "America/New_York", "Asia/Kolkata"]
SITE = "hostile"


class Comparison:
    def __init__(self, linux, windows, wine):
        self.linux, self.windows, self.wine = linux, windows, wine

    def run_on_windows(self, box, settings, rules, switches, zone, epoch):
        values = {name: windows_path(box.placed(value)) if value.startswith("@ROOT@") else value
                  for name, value in {**SITE_VALUES, **settings}.items()}
        keys = {f"{SITE}\\Filters\\{rule['name']}": rule for rule in rules or []}
        self.wine.forget(SITE)
        self.wine.store({SITE: values, f"{SITE}\\Filters": {}, **keys})
        code, _, _ = self.wine(self.windows, *switches, zone=zone, epoch=epoch)
        self.wine.forget(SITE)
        return code

    def problems_of(self, seed):
        dice = random.Random(seed)
        zone = dice.choice(ZONES)
        now = datetime.datetime(2026, 1, 1, tzinfo=datetime.timezone.utc) + datetime.timedelta(
            minutes=dice.choice([dice.randint(0, 500000), 360, 31 * 1440 + 30]))
        settings = {"MaxListSize": dice.choice(["0", "2", "100", "-1", "3.5"])}
        for name in ("UseUTC", "ShowUsernames", "GenerateCSV"):
            settings[name] = dice.choice(["True", "False"])
        switches = dice.choice([["/B", "/D"], ["/BATCH"], ["/BATCH"], ["/C"]]) + ["/SITE=" + SITE]
        rules = fuzz_compare.rules(dice)
        epoch = int(now.timestamp())
        with Sandbox() as box:
            for _ in range(dice.randint(1, 8)):
                day = now - datetime.timedelta(days=dice.randint(-1, 40))
                name = dice.choice(["ex", "u_ex", "U_Ex"]) + day.strftime("%y%m%d.log")
                box.write("logs/" + name, fuzz_compare.log_content(dice, now))
            history = fuzz_compare.history_content(dice, now)
            outcomes = []
            for system in ("linux", "windows"):
                for name in os.listdir(box.usage):
                    os.remove(os.path.join(box.usage, name))
                box.write("usage/History.txt", history)
                if system == "linux":
                    box.configure(SITE, settings, rules)
                    code = box.run(self.linux, switches, epoch, zone).returncode
                else:
                    code = self.run_on_windows(box, settings, rules, switches, zone, epoch)
                outcomes.append((code, box.usage_files()))
        (linux_code, linux_files), (windows_code, windows_files) = outcomes
        problems = compare_files(linux_files, windows_files)
        if linux_code != windows_code:
            problems.append("exit codes %d and %d" % (linux_code, windows_code))
        return problems


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--windows", type=pathlib.Path, required=True)
    parser.add_argument("--linux", type=pathlib.Path, required=True)
    parser.add_argument("--prefix", required=True)
    parser.add_argument("--first", type=int, default=1)
    parser.add_argument("--count", type=int, default=300)
    options = parser.parse_args()
    wine = Wine(options.prefix)
    wine.start()
    comparison = Comparison(str(options.linux.resolve()), str(options.windows.resolve()), wine)
    failed = []
    for seed in range(options.first, options.first + options.count):
        problems = comparison.problems_of(seed)
        if problems:
            failed.append(seed)
            print("seed %d" % seed)
            for line in problems:
                print("     " + line)
    print("%d hostile logs on both systems, %d differ %s" % (options.count, len(failed),
                                                            failed or ""))
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
