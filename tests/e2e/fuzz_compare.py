#!/usr/bin/env python3
"""Compares the program with the oracle on random, mostly malformed, logs and settings.

    fuzz_compare.py --program PATH [--first 1] [--count 100]

Each seed makes one run; a seed that differs is printed and can be run again by itself.
"""

import argparse
import datetime
import os
import random
import sys

import locales
from oracle.run import Run
from run_cases import compare_events, compare_files, filled_in, version_of
from sandbox import SITE_VALUES, Sandbox, host_name
from zones import offsets

ZONES = ["UTC", "Europe/Berlin", "Europe/Dublin", "Africa/Casablanca", "America/New_York",
         "Asia/Kolkata", "Pacific/Marquesas", "America/St_Johns", "Pacific/Kiritimati",
         "Pacific/Pago_Pago"]
LOCALES = [None, None, *((name, "UTF-8") for name in locales.REAL), ("fr_FR", "ISO-8859-1")]
FIELDS = ["date", "time", "c-ip", "cs-username", "cs-method", "cs-uri-stem", "cs-uri-query",
          "sc-status", "sc-bytes", "cs-bytes", "time-taken", "cs-host", "cs(User-Agent)",
          "cs(Referer)", "s-computername", "x-other", "C-IP", "Time"]
PIECES = ["/", ".", "?", "#", "&", "*", "+", "%", "%7E", "=", ":", "://", "a", "b", "q", "q=",
          "p=x", ".htm", ".gif", ".asp", "http", "javascript", "index", "'", "\"", "<", ">", "-",
          "\t", "\0", "\x7f", "\xe9", "\xff", "[", "]", "!", "~", ";", ",", "0", "7", "word"]
AGENTS = ["Firefox", "MSIE+Windows", "Googlebot", "bottle", "Checker", "Safari+Macintosh", "-"]
PATTERNS = ["*", "?", "#", "[a-c]", "[!a-c]", "[", "[z-a]", "[]", "[!]", "a", "/", ".", "htm",
            "1", "Fire", "bot", "-"]


def text(dice, longest=6):
    return "".join(dice.choice(PIECES) for _ in range(dice.randint(0, longest)))


def date_text(dice, now):
    if dice.random() < 0.1:
        return dice.choice(["-", "2026-13-01", "26-1-1", "", text(dice, 3), "2026-00-00",
                            "%04d-%02d-%02d" % (now.year, dice.randint(0, 14),
                                                dice.randint(0, 33))])
    day = now - datetime.timedelta(days=dice.randint(-1, 45))
    return day.strftime("%Y-%m-%d")


def token(dice, field, now):
    """A value for a field: plausible as a rule, odd now and then."""
    if dice.random() < 0.04:
        return text(dice)
    number = str(dice.choice([0, 1, 20, 999, 1500, 123456, 1200001, 2 ** 31 - 1]))
    values = {
        "date": date_text(dice, now),
        "time": "%02d:%02d:%02d" % (dice.choice([dice.randint(0, 23)] * 9 + [48, 75]),
                                    dice.randint(0, 61), dice.randint(0, 59)),
        "c-ip": dice.choice(["192.0.2.%d" % dice.randint(1, 9), "2001:db8::1", "FE80::2"[1:]]),
        "cs-username": dice.choice(["-", "anna", "EXAMPLE\\bob"]),
        "cs-method": dice.choice(["GET", "POST", "HEAD"]),
        "cs-uri-stem": dice.choice(["/robots.txt", "/a.htm", "/b.gif", "/" + text(dice),
                                    text(dice)]),
        "sc-status": dice.choice(["200", "200", "200", "304", "301", "404", "500", "20", "-"]),
        "sc-bytes": dice.choice([number, number + ".5", "-", "9" * 11]),
        "cs-bytes": number,
        "time-taken": dice.choice([number, "-3", "1.5"]),
        "cs(User-Agent)": dice.choice(AGENTS),
        "cs(Referer)": dice.choice(["-", "http://www.example.org/" + text(dice), text(dice),
                                    "http://s.example/?q=" + text(dice)]),
    }
    return values.get(field, text(dice, 2))


def log_content(dice, now):
    """One log file with headers, records and rubbish, as bytes."""
    fields, lines = [], []
    for _ in range(dice.randint(1, 60)):
        if not fields or dice.random() < 0.04:
            fields = FIELDS[:14] if dice.random() < 0.7 else dice.sample(FIELDS,
                                                                         dice.randint(1, 18))
            lines.append(dice.choice(["#Fields: ", "#fields:", "#FIELDS:   "]) + " ".join(fields))
        elif dice.random() < 0.05:
            lines.append(dice.choice(["", "# note", text(dice, 20), " " * 5, "x" * 33000]))
        else:
            values = [token(dice, field, now).replace(" ", "") for field in fields]
            if dice.random() < 0.05:
                values = values[:dice.randint(0, len(values))]
            lines.append(dice.choice([" ", " ", " ", "  "]).join(values))
    end = dice.choice(["\n", "\r\n"])
    return (end.join(lines) + dice.choice(["", end])).encode("latin-1")


def history_content(dice, now):
    lines = []
    for month in range(1, dice.randint(0, 13)):
        figures = [month, now.year - dice.randint(0, 2)]
        figures += [dice.choice([dice.randint(0, 10 ** 7), 0.5, 1e9]) for _ in range(8)]
        if dice.random() < 0.02:
            figures = figures[:dice.randint(0, 9)]
        if dice.random() < 0.02:
            figures[-1:] = [dice.choice([-1, "-nan", "inf", "1e15", "1e16", "-0"])]
        lines.append(",".join(map(str, figures)))
    return "".join(line + "\r\n" for line in lines).encode()


def rules(dice):
    made = []
    for number in range(dice.choice([0, 0, 0, 1, 2])):
        made.append({"name": "Rule_%d" % number, "includes": dice.choice(["True", "False"]),
                     "field": dice.choice(FIELDS[2:8] + FIELDS[12:14]),
                     "pattern": "*" + "".join(dice.choice(PATTERNS)
                                              for _ in range(dice.randint(1, 3))) + "*"})
    return made or None


def run_seed(seed, program, version):
    """The problems of one seed."""
    dice = random.Random(seed)
    zone = dice.choice(ZONES)
    language = dice.choice(LOCALES)
    language = language and locales.locale(*language)
    now = datetime.datetime(2026, 1, 1, tzinfo=datetime.timezone.utc) + datetime.timedelta(
        minutes=dice.choice([dice.randint(0, 500000), 360, 31 * 1440 + 30]))
    bias, wall_offset = offsets(zone, now)
    settings = {"MaxListSize": dice.choice(["0", "2", "100", "-1", "3.5"])}
    for name in ("UseUTC", "ShowUsernames", "GenerateCSV"):
        settings[name] = dice.choice(["True", "False"])
    command = dice.choice(["/B /D /SITE=s", "/BATCH /SITE=s", "/C /SITE=s"])
    stored = rules(dice)
    with Sandbox() as box:
        for _ in range(dice.randint(1, 8)):
            day = now - datetime.timedelta(days=dice.randint(-1, 40))
            name = dice.choice(["ex", "u_ex", "U_Ex"]) + day.strftime("%y%m%d.log")
            box.write("logs/" + name, log_content(dice, now))
        box.write("usage/History.txt", history_content(dice, now))
        before = box.usage_files()
        box.configure("s", settings, stored)
        placed = {name: box.placed(value) for name, value in {**SITE_VALUES, **settings}.items()}
        run = Run(command, placed, stored, now, bias, wall_offset, host_name(),
                  {"127.0.0.1": "@LOOPBACK@"}, months=language and language.months())
        wanted = run.execute(before["History.txt"])
        done = box.run(program, command.split(), int(now.timestamp()), zone,
                       language and language.environment())
        files = {name: filled_in(content, box, version)
                 for name, content in {**before, **wanted.files}.items()}
        events = [filled_in(line.encode("latin-1"), box, version) for line in wanted.events]
        problems = compare_files(files, box.usage_files())
        problems += compare_events(events, box.events())
        if done.returncode != wanted.exit_code:
            problems.append("exit code %d" % done.returncode)
        return problems


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--program", required=True)
    parser.add_argument("--first", type=int, default=1)
    parser.add_argument("--count", type=int, default=100)
    options = parser.parse_args()
    program = os.path.abspath(options.program)
    version = version_of(program)
    failed = []
    for seed in range(options.first, options.first + options.count):
        problems = run_seed(seed, program, version)
        if problems:
            failed.append(seed)
            print("seed %d" % seed)
            for line in problems:
                print("     " + line)
    print("%d seeds, %d differ %s" % (options.count, len(failed), failed or ""))
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
