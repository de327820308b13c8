"""What a zone's file says: its periods, its offset at a moment and its standard time.

Reads the files of the zone database itself, so that it shares nothing with the C library.
"""

import bisect
import datetime
import functools
import os
import re
import struct

FOLDER = "/usr/share/zoneinfo"
YEAR = 366 * 86400
LAST_YEAR = 2060  # up to which a zone's closing rule is spelt out
EPOCH = datetime.datetime(1970, 1, 1)


def names():
    """All zones of the database."""
    found = []
    for folder, folders, files in os.walk(FOLDER):
        if folder == FOLDER:
            folders[:] = [name for name in folders if name not in ("posix", "right")]
        for name in files:
            path = os.path.join(folder, name)
            with open(path, "rb") as file:
                if file.read(4) == b"TZif":
                    found.append(os.path.relpath(path, FOLDER))
    return sorted(found)


@functools.lru_cache(maxsize=None)
def periods(zone):
    """(start, offset, flagged) of each period in order; the first has no start."""
    with open(os.path.join(FOLDER, zone), "rb") as file:
        content = file.read()
    start = 44 + _body_size(_counts(content, 0), 4)
    counts = _counts(content, start)
    footer = content[start + 44 + _body_size(counts, 8):].strip(b"\n").decode("ascii")
    transitions, types, _, _, _, _ = counts
    place = start + 44
    starts = struct.unpack_from(">%dq" % transitions, content, place)
    kinds = content[place + 8 * transitions:place + 9 * transitions]
    place += 9 * transitions
    table = [struct.unpack_from(">iB", content, place + 6 * i) for i in range(types)]
    found = [(float("-inf"), table[0][0], bool(table[0][1]))]
    found += [(at, table[kind][0], bool(table[kind][1])) for at, kind in zip(starts, kinds)]
    return found + [period for period in _closing(footer) if period[0] > found[-1][0]]


def _counts(content, start):
    """(transitions, types, letters, leaps, standard marks, UTC marks) of a header."""
    marks_utc, marks_std, leaps, transitions, types, letters = struct.unpack_from(
        ">6l", content, start + 20)
    return transitions, types, letters, leaps, marks_std, marks_utc


def _body_size(counts, width):
    transitions, types, letters, leaps, marks_std, marks_utc = counts
    return (transitions * (width + 1) + types * 6 + letters + leaps * (width + 4) + marks_std
            + marks_utc)


NAME = r"(?:[A-Za-z]+|<[^>]+>)"
TIME = r"[-+]?\d+(?::\d+){0,2}"
RULE = re.compile(rf"{NAME}({TIME})(?:{NAME}({TIME})?,([^,]+),([^,]+))?")


def _seconds(text):
    sign = -1 if text.startswith("-") else 1
    parts = [int(part) for part in text.lstrip("+-").split(":")]
    return sign * sum(part * 60 ** (2 - i) for i, part in enumerate(parts))


def _closing(footer):
    """The periods of a closing rule such as "CET-1CEST,M3.5.0,M10.5.0/3"."""
    match = RULE.fullmatch(footer)
    if footer and match is None:
        raise ValueError("unknown closing rule " + footer)
    if not footer or match.group(3) is None:
        return []
    standard = -_seconds(match.group(1))
    saving = -_seconds(match.group(2)) if match.group(2) else standard + 3600
    found = []
    for year in range(1980, LAST_YEAR):
        found.append((_moment(match.group(3), year) - standard, saving, True))
        found.append((_moment(match.group(4), year) - saving, standard, False))
    return sorted(found)


def _moment(rule, year):
    """Seconds since 1970, by the wall clock, of "M3.5.0/1" in a year."""
    day, _, time = rule.partition("/")
    month, week, weekday = map(int, day[1:].split("."))
    first = datetime.datetime(year, month, 1)
    found = first + datetime.timedelta(days=(weekday - first.isoweekday()) % 7 + 7 * (week - 1))
    while found.month != month:
        found -= datetime.timedelta(days=7)
    return int((found - EPOCH).total_seconds()) + _seconds(time or "2")


def offsets(zone, moment):
    """Standard bias and wall-clock offset of a zone, both in minutes."""
    now = moment.timestamp()
    found = periods(zone)
    present = bisect.bisect_right([start for start, _, _ in found], now) - 1
    wall = found[present][1]
    return -int(_standard(found, present, now) / 60), int(wall / 60)


def _standard(found, present, now):
    """The offset of the standard time in force: see the comments."""
    _, offset, flagged = found[present]
    other = [(start, end) + tuple(period[1:]) for period, start, end in
             zip(found, [period[0] for period in found],
                 [period[0] for period in found[1:]] + [float("inf")])
             if period[2] != flagged]
    after = [(start - now, kind) for start, _, kind, _ in other if 0 < start - now <= YEAR]
    before = [(now - end, kind) for _, end, kind, _ in other if 0 <= now - end < YEAR]
    # A zone that is not in a flagged period may have had its last one: only what comes counts.
    near = min(after + before if flagged else after, default=None)
    if near is None:
        return offset
    # The unflagged time, unless the flagged one is behind it.
    return min(offset, near[1])
