#!/usr/bin/env python3
"""Reads every CSV file of the golden cases as a strict spreadsheet would.

The golden cases hold the program to these very bytes, so what can be read here can be read there.
"""

import csv
import glob
import os
import unittest

GOLDEN = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "golden")
TEXT_COLUMNS = {"URL", "FileType", "Country", "Company", "Range", "Units", "NRUnits", "EntryURL",
                "ExitURL", "NREntryURL", "NRExitURL", "Referrer", "Query", "Browser", "IsRobot",
                "OS", "Type"}


def records(path):
    with open(path, newline="", encoding="latin-1") as file:
        return list(csv.reader(file, strict=True, lineterminator="\r\n"))


class CsvFiles(unittest.TestCase):
    def paths(self, pattern):
        found = [path for path in
                 sorted(glob.glob(os.path.join(GOLDEN, "*", "expected", "usage", pattern)))
                 if records(path)[0][0] != "old"]  # left alone by a run without CSV output
        self.assertGreater(len(found), 5)
        return found

    def test_every_table_has_one_width_and_numbers_where_numbers_belong(self):
        for path in self.paths("*-*.csv"):
            if path.endswith("-Summary.csv"):
                continue
            header, *rows = records(path)
            for row in rows:
                self.assertEqual(len(row), len(header), path)
                for name, field in zip(header, row):
                    if name not in TEXT_COLUMNS and field:
                        float(field)

    def test_summaries_hold_labels_and_numbers(self):
        for path in self.paths("*-Summary.csv"):
            rows = records(path)
            self.assertEqual([row[0] for row in rows[:2]], ["Total Hits", "Total Files"])
            self.assertIn(["Breakdown", "Average", "Max"], rows)
            for row in rows[:11]:
                for field in row[1:]:
                    float(field)

    def test_every_record_ends_with_a_carriage_return_and_a_line_feed(self):
        for path in self.paths("*.csv"):
            with open(path, "rb") as file:
                content = file.read()
            self.assertTrue(content.endswith(b"\r\n"), path)
            self.assertEqual(content.count(b"\n"), content.count(b"\r\n"), path)


if __name__ == "__main__":
    unittest.main()
