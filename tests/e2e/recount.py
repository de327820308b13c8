#!/usr/bin/env python3
"""Counts a month of real logs in the plainest way and compares the counts with a produced page.

    recount.py --logs DIR --page Nov.htm --month 11 --year 2010 --bias -60

Nothing here is shared with the program or with the oracle. The logs must carry both "date" and
"time" in every record and be free of malformed lines, as logs written by IIS are.
"""

import argparse
import collections
import datetime
import glob
import html
import os
import re
import sys

PAGE_MARKS = (".htm", ".shtml", ".phtml", ".asp", ".php", ".jsp", ".cgi", ".asa", ".chm")
FILE_MARKS = (".xml", ".jpg", ".jpeg", ".ico", ".gif", ".mp", ".avi", ".aif", ".ogg", ".png",
              ".au", ".wav", ".ra", ".ram", ".pcx", ".tif", ".bmp", ".sdp", ".rts", ".qt", ".mov",
              ".aac", ".asf", ".css", ".js", ".swf", ".spl", ".pic", ".wmv", ".zip", ".exe",
              ".gz")
# The program adds bytes in single precision; the share of a total that may get lost by it.
SINGLE_PRECISION_DRIFT = 1e-4
RANKED = ("URLs", "addresses", "agents", "file types")
GOOD = {"200", "201", "202", "203", "204", "205", "206", "304"}


def records(folder, month, year, bias):
    """The records of a local month, as dictionaries with their local time."""
    fields = []
    paths = sorted(glob.glob(os.path.join(folder, "ex*.log")))
    paths += sorted(glob.glob(os.path.join(folder, "u_ex*.log")))
    for path in paths:
        with open(path, encoding="latin-1", newline="\n") as file:
            for line in file:
                line = line.rstrip("\r\n")
                if line.lower().startswith("#fields:"):
                    fields = line[8:].split()
                elif line and not line.startswith("#"):
                    for mark in "\"'<>":
                        line = line.replace(mark, "_")
                    record = dict(zip(fields, line.split()))
                    utc = datetime.datetime.strptime(record["date"] + " " + record["time"][:5],
                                                     "%Y-%m-%d %H:%M")
                    local = utc - datetime.timedelta(minutes=bias)
                    if (local.month, local.year) == (month, year):
                        record["local"] = local
                        yield record


class Ranking:
    """Counts of keys; of equal counts the one reached earlier stands first."""

    def __init__(self):
        self.count = collections.Counter()
        self.last = {}
        self.steps = 0

    def add(self, key):
        self.count[key] += 1
        self.steps += 1
        self.last[key] = self.steps

    def top(self, limit=10):
        keys = sorted(self.count, key=lambda key: (-self.count[key], self.last[key]))
        return [(self.count[key], key) for key in keys[:limit]]


def is_page(uri):
    uri = uri.lower()
    return (any(mark in uri for mark in PAGE_MARKS)
            or not any(mark in uri for mark in FILE_MARKS))


def extension(uri):
    match = re.search(r"\.([^.]*)$", re.split(r"[?#&*]", uri)[0])
    return re.split(r"[/+]", match.group(1))[0].upper() if match else ""


def count_visits(hits):
    """Visits of (address, agent, seconds) hits: a table of slots that others' hits close."""
    slots, visits = [], 0
    for who, now in hits:
        mine = next((i for i, slot in enumerate(slots) if slot and slot[0] == who), None)
        for i in range(len(slots) if mine is None else mine):
            if slots[i] and slots[i][1] < now - 1210:
                slots[i] = None
        if mine is None:
            visits += 1
            mine = slots.index(None) if None in slots else len(slots)
            slots[mine:mine + 1] = [None]
        slots[mine] = (who, now)
    return visits


def recount(folder, month, year, bias):
    """All counts of a month by the names that `page_counts` uses."""
    found = {name: Ranking() for name in RANKED}
    totals = collections.Counter()
    days, statuses, methods = (collections.Counter() for _ in range(3))
    size, hits = 0, []
    for record in records(folder, month, year, bias):
        local = record["local"]
        uri, status, agent = record["cs-uri-stem"], record["sc-status"], record["cs(User-Agent)"]
        address = record["c-ip"]
        if address.lower().startswith("fe80:") or address.startswith("::1"):
            address = "127.0.0.1"
        totals["hits"] += 1
        totals["files"] += status == "200"
        totals["pages"] += status == "200" and is_page(uri)
        size += int(record["sc-bytes"])
        days[local.day] += 1
        statuses[status] += 1
        methods[record["cs-method"]] += 1
        if status in GOOD:
            found["URLs"].add(uri)
        if extension(uri):
            found["file types"].add(extension(uri))
        found["addresses"].add(address)
        found["agents"].add(agent)
        hits.append(((address, agent), ((local.day * 24 + local.hour) * 60 + local.minute) * 60))
    counts = {name: totals[name] for name in ("hits", "files", "pages")}
    counts.update({name: ranking.top() for name, ranking in found.items()})
    counts["kbytes"] = round(size / 1000)
    counts["visits"] = count_visits(hits)
    counts["days"] = [days[day] for day in range(1, 32)]
    counts["statuses"], counts["methods"] = dict(statuses), dict(methods)
    return counts


def rows_after(page, start, end="</table>"):
    """The cells of each table row between two marks, tags removed."""
    part = page[page.index(start):]
    part = part[:part.index(end)]
    return [[html.unescape(re.sub(r"<[^>]*>", "", cell)) for cell in
             re.split(r"<t[dh][^>]*>", row)[1:]] for row in re.split(r"<tr[^>]*>", part)[1:]]


def page_counts(path):
    """The same counts as a month page shows them."""
    with open(path, encoding="latin-1", newline="") as file:
        page = file.read().replace("\r\n", "")
    summary = {row[0]: row[-1] for row in rows_after(page, "Monthly statistics for")}
    counts = {name: int(summary["Total " + label]) for name, label in (
        ("hits", "Hits"), ("files", "Files"), ("pages", "Pages"), ("kbytes", "KBytes"),
        ("visits", "Sessions"))}
    daily = rows_after(page[page.index("</tfoot>"):], "<th>Day</th>")
    counts["days"] = [int(row[1]) for row in daily]
    codes = rows_after(page, "By return code", "By method")
    counts["statuses"] = {row[0].split(" - ")[-1]: int(row[1]) for row in codes if len(row) == 3}
    methods = rows_after(page, "By method")
    counts["methods"] = {row[0]: int(row[1]) for row in methods if len(row) == 3}
    for name, mark, column in (("URLs", "name=urls>", 5), ("file types", "name=FileTypes>", 5),
                               ("addresses", "name=readers>", 5), ("agents", "name=browsers>", 5)):
        rows = [row for row in rows_after(page, mark) if row[0].isdigit()]
        counts[name] = [(int(row[1]), row[column]) for row in rows[:10]]
    return counts


def shown_url(uri):
    return uri.replace("+", " ").replace("%7E", "~")


def compare(folder, path, month, year, bias, list_size=100):
    """The differences between the recount and a page, as lines of text.

    Visits are compared in zones of whole hours only: elsewhere the program keeps minutes below 0
    and above 59, and with them other pauses between hits than there were.
    """
    counted, shown = recount(folder, month, year, bias), page_counts(path)
    counted["URLs"] = [(count, shown_url(uri)) for count, uri in counted["URLs"]]
    if abs(counted["kbytes"] - shown["kbytes"]) <= 1 + counted["kbytes"] * SINGLE_PRECISION_DRIFT:
        shown["kbytes"] = counted["kbytes"]
    for name in RANKED:
        counted[name] = counted[name][:list_size]
    names = [name for name in counted if name != "visits" or bias % 60 == 0]
    return ["%s: counted %r, the page shows %r" % (name, counted[name], shown[name])
            for name in names if counted[name] != shown[name]]


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--logs", required=True)
    parser.add_argument("--page", required=True)
    parser.add_argument("--month", type=int, required=True)
    parser.add_argument("--year", type=int, required=True)
    parser.add_argument("--bias", type=int, default=0, help="UTC less local time, in minutes")
    parser.add_argument("--list-size", type=int, default=100, help="rows of the page's lists")
    options = parser.parse_args()
    problems = compare(options.logs, options.page, options.month, options.year, options.bias,
                       options.list_size)
    for line in problems:
        print(line)
    print("%s %d-%02d: %s" % (options.page, options.year, options.month,
                              "differs" if problems else "agrees with the recount"))
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
