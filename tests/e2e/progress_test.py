#!/usr/bin/env python3
"""The progress line of a run at a terminal: what it says, and where it is not shown.

    progress_test.py --program PATH [unittest arguments]
"""

import os
import pty
import re
import subprocess
import unittest

import failures_test
import frozen_clock
from failures_test import HEADER, NOON, RECORD, ProgramTest
from sandbox import take_program


class ProgressTest(ProgramTest):
    def setUp(self):
        super().setUp()
        for day in (11, 12):
            self.box.write(f"logs/u_ex2601{day}.log", HEADER + RECORD % "/a.htm" * 2000)

    def at_terminal(self, *arguments):
        """What the program writes to a terminal that is its standard error; its exit code."""
        ours, theirs = pty.openpty()
        env = {**self.box.environment(), **frozen_clock.environment(NOON)}
        process = subprocess.Popen([failures_test.PROGRAM, *arguments, "/SITE=web1"], env=env,
                                   stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                   stderr=theirs)
        os.close(theirs)
        written = b""
        try:
            while piece := os.read(ours, 65536):
                written += piece
        except OSError:  # the other end is closed
            pass
        os.close(ours)
        self.assertEqual(process.wait(), 0)
        return written.decode()

    def test_month_file_and_share(self):
        written = self.at_terminal("/BATCH")
        shown = re.findall(r"\r(\d{4}-\d\d) \((\d+) of (\d+)\): (\S+), (\d+) %", written)
        self.assertEqual({(month, number, of) for month, number, of, _, _ in shown},
                         {("2026-01", "1", "1")})
        files = [name for _, _, _, name, _ in shown]
        self.assertEqual(list(dict.fromkeys(files)),
                         ["u_ex260110.log", "u_ex260111.log", "u_ex260112.log"])
        shares = [int(share) for *_, share in shown]
        self.assertEqual(shares, sorted(shares))
        self.assertEqual(shares[-1], 100)
        self.assertTrue(any(40 <= share <= 60 for share in shares), shares)

    def test_month_by_month(self):
        written = self.at_terminal("/C")
        self.assertEqual(re.findall(r"\r(\d{4}-\d\d \(\d+ of 13\)) *(?=\r)", written)[:2],
                         ["2025-01 (1 of 13)", "2025-02 (2 of 13)"])
        self.assertIn("\r2026-01 (13 of 13): u_ex260112.log, 100 %", written)

    def test_line_makes_room_for_entries_and_is_taken_away(self):
        written = self.at_terminal("/BATCH")
        rows = []
        for row in written.split("\n"):
            shown = ""
            for piece in row.rstrip("\r").split("\r"):  # each writes over what stands there
                shown = piece + shown[len(piece):]
            rows.append(shown.rstrip(" "))
        self.assertEqual(rows[-1], "")
        for row in rows[:-1]:
            self.assertRegex(row, "^Hitwick: ")

    def test_quiet_silences_it(self):
        for arguments in (["/BATCH", "--quiet"], ["--quiet", "/C"]):
            written = self.at_terminal(*arguments)
            self.assertNotIn(" %", written)
            self.assertNotIn(" of 13)", written)

    def test_nothing_without_a_terminal(self):
        for arguments in (["/BATCH"], ["/C"]):
            done = self.box.run(failures_test.PROGRAM, [*arguments, "/SITE=web1"], NOON)
            self.assertEqual((done.returncode, done.stdout, done.stderr), (0, b"", b""))

    def test_pages_are_the_same(self):
        self.at_terminal("/BATCH")
        watched = self.box.usage_files()
        self.batch()
        self.assertEqual(self.box.usage_files(), watched)


if __name__ == "__main__":
    failures_test.PROGRAM = take_program(__doc__)
    unittest.main()
