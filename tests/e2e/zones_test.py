#!/usr/bin/env python3
"""Compares the program's standard time of every zone with what the zone's file says.

    zones_test.py --program PATH --zone-bias PATH [unittest arguments]
"""

import csv
import datetime
import os
import subprocess
import sys
import unittest

import zones
from sandbox import Sandbox

PROGRAM = ZONE_BIAS = ""
UTC = datetime.timezone.utc
# Saving time of years, both halves of the year, changes of law, Ramadan, the seconds around a
# change, and the far future.
MOMENTS = [datetime.datetime(*date, tzinfo=UTC) for date in (
    (1941, 8, 1), (1992, 2, 1), (1996, 7, 1), (2001, 1, 15), (2007, 3, 20), (2010, 5, 15, 12),
    (2011, 10, 31), (2012, 6, 15), (2014, 7, 1), (2016, 12, 1), (2017, 11, 15), (2018, 11, 15), (2019, 5, 20),
    (2020, 10, 25, 0, 59, 59), (2020, 10, 25, 1), (2023, 7, 15), (2026, 1, 31), (2036, 8, 1),
    (2049, 7, 1))]
# Known from the laws of the land and not from any file.
KNOWN = {("America/Nuuk", 2023, 7): 120, ("America/Nuuk", 2022, 7): 180,
         ("Pacific/Apia", 2012, 6): -780, ("Pacific/Apia", 2011, 7): 660,
         ("Africa/Tripoli", 2012, 6): -120, ("Europe/Dublin", 2023, 7): 0,
         ("Europe/Dublin", 2023, 1): 0, ("Africa/Casablanca", 2018, 12): 0,
         ("Africa/Casablanca", 2023, 4): 0, ("Africa/Casablanca", 2023, 7): 0,
         ("Africa/Windhoek", 2016, 7): -60, ("Africa/Windhoek", 2017, 12): -120,
         ("Europe/Moscow", 2011, 7): -240, ("Europe/Moscow", 2014, 12): -180,
         ("Europe/Berlin", 2023, 7): -60, ("America/New_York", 2023, 7): 300,
         ("Australia/Lord_Howe", 2023, 1): -630, ("Australia/Sydney", 2023, 1): -600,
         ("Asia/Kolkata", 2023, 7): -330, ("Antarctica/Troll", 2023, 7): 0}


def computed(pairs):
    """The program's bias for (zone, moment) pairs."""
    lines = "".join("%s %d\n" % (zone, moment.timestamp()) for zone, moment in pairs)
    done = subprocess.run([ZONE_BIAS], input=lines, stdout=subprocess.PIPE, check=True,
                          universal_newlines=True)
    return [int(line) for line in done.stdout.split()]


class StandardTime(unittest.TestCase):
    def test_every_zone_agrees_with_its_file(self):
        pairs = [(zone, moment) for zone in zones.names() for moment in MOMENTS]
        self.assertGreater(len(pairs), 300 * len(MOMENTS))
        wrong = ["%s %s: %d instead of %d" % (zone, moment, found, wanted)
                 for (zone, moment), found in zip(pairs, computed(pairs))
                 for wanted in [zones.offsets(zone, moment)[0]] if found != wanted]
        self.assertFalse(wrong, "\n".join(wrong))

    def test_known_zones(self):
        pairs = [(zone, datetime.datetime(year, month, 15, tzinfo=UTC))
                 for zone, year, month in KNOWN]
        self.assertEqual(dict(zip(KNOWN, computed(pairs))), KNOWN)
        self.assertEqual({key: zones.offsets(*pair)[0] for key, pair in zip(KNOWN, pairs)}, KNOWN)


class WholeRun(unittest.TestCase):
    def hours(self, zone, now, hit):
        """The hours with hits of the month page that a run at `now` writes, and its month."""
        with Sandbox() as box:
            box.configure("web1", {"GenerateCSV": "True"})
            box.write(f"logs/u_ex{hit:%y%m%d}.log",
                      "#Fields: date time c-ip cs-uri-stem sc-status\n"
                      f"{hit:%Y-%m-%d %H:%M:%S} 192.0.2.1 /page.htm 200\n")
            done = box.run(PROGRAM, ["/BATCH", "/SITE=web1"], int(now.timestamp()), zone)
            self.assertEqual(done.returncode, 0, done.stderr)
            found = {}
            for name, content in box.usage_files().items():
                if name.endswith("-HourlyUsage.csv"):
                    rows = list(csv.reader(content.decode().splitlines()))[1:]
                    found[name[:3]] = [int(row[0]) for row in rows if float(row[1]) > 0]
            return found

    def test_hits_are_counted_by_the_standard_time_in_force(self):
        noon = datetime.datetime(2023, 7, 14, 12, tzinfo=UTC)
        now = datetime.datetime(2023, 7, 20, tzinfo=UTC)
        for zone, hour in (("America/Nuuk", 10), ("Europe/Dublin", 12), ("Africa/Casablanca", 12),
                           ("Europe/Berlin", 13)):
            with self.subTest(zone=zone):
                self.assertEqual(self.hours(zone, now, noon), {"Jul": [hour]})

    def test_apia_after_its_move_over_the_date_line(self):
        hit = datetime.datetime(2012, 6, 30, 11, 30, tzinfo=UTC)
        now = datetime.datetime(2012, 7, 15, tzinfo=UTC)
        self.assertEqual(self.hours("Pacific/Apia", now, hit), {"Jul": [0]})


if __name__ == "__main__":
    if len(sys.argv) < 5 or sys.argv[1] != "--program" or sys.argv[3] != "--zone-bias":
        sys.exit(__doc__)
    PROGRAM, ZONE_BIAS = os.path.abspath(sys.argv[2]), os.path.abspath(sys.argv[4])
    unittest.main(argv=sys.argv[:1] + sys.argv[5:])
