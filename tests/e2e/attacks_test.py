#!/usr/bin/env python3
"""Logs made to use up time or memory.

    attacks_test.py --program PATH [unittest arguments]

The sizes are such that all takes seconds; HITWICK_FULL=1 takes those of a real attack, which need
minutes and 4 GB of disk. Each test prints what the run took.
"""

import os
import re
import resource
import subprocess
import sys
import time
import unittest

import failures_test
import frozen_clock
from failures_test import HEADER, NOON, OLD_FILES, RECORD, ProgramTest
from sandbox import take_program

FULL = os.environ.get("HITWICK_FULL") == "1"
FIELDS = ("#Fields: time c-ip cs-uri-stem sc-status sc-bytes time-taken cs(User-Agent) "
          "cs(Referer)\n")
MEGABYTE = 1 << 20


def size(usual, full):
    return full if FULL else usual


class AttackTest(ProgramTest):
    def setUp(self):
        super().setUp()
        self.box.configure("web1", {"MaxListSize": "5"})

    def write_log(self, lines, name="u_ex260109.log"):
        """Writes lines as they come: a real attack does not fit into memory."""
        with open(os.path.join(self.box.logs, name), "w", encoding="latin-1") as file:
            file.writelines(lines)

    def measured(self, what, seconds, megabytes, memory_limit=None, exit_code=0):
        """Runs the program; it may take so many seconds of processor time and so much memory."""
        def limit():
            if memory_limit is not None:
                resource.setrlimit(resource.RLIMIT_AS, (memory_limit, memory_limit))

        env = self.box.environment()
        env.update(frozen_clock.environment(NOON))
        start = time.monotonic()
        with open(os.path.join(self.box.root, "errors"), "wb") as errors:
            process = subprocess.Popen([failures_test.PROGRAM, "/BATCH", "/SITE=web1"], env=env,
                                       stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                       stderr=errors, preexec_fn=limit)
            _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
        taken = usage.ru_utime + usage.ru_stime
        peak = usage.ru_maxrss / 1024
        print("%-34s %7.2f s of processor, %7.2f s in all, %6.1f MB"
              % (what, taken, time.monotonic() - start, peak), file=sys.stderr)
        self.assertEqual(process.returncode, exit_code)
        self.assertLess(taken, seconds)
        self.assertLess(peak, megabytes)

    def errors(self):
        with open(os.path.join(self.box.root, "errors"), encoding="utf-8") as file:
            return file.read()


class DistinctTextsTest(AttackTest):
    COUNT = size(150000, 3000000)

    def each_distinct(self, line, what):
        self.write_log([FIELDS])
        self.write_log((line.format(i) for i in range(self.COUNT)), "u_ex260110.log")
        self.measured(what, size(20, 240), size(150, 1500))
        self.assertHits(self.COUNT)

    def test_urls(self):
        self.each_distinct("10:00:00 192.0.2.1 /u{0} 200 1 1 agent -\n", "distinct URLs")

    def test_agents(self):
        self.each_distinct("10:00:00 192.0.2.1 / 200 1 1 agent{0} -\n", "distinct agents")

    def test_referrers(self):
        self.each_distinct("10:00:00 192.0.2.1 / 404 1 1 agent http://r/{0}?q=w{0}\n",
                           "distinct referrers and words")

    def test_everything(self):
        self.each_distinct("10:00:00 198.51.{0}.1 /u{0}.e{0} 404 1 1 agent{0} http://r{0}/\n",
                           "everything distinct")


class CollidingKeysTest(AttackTest):
    """Texts that collide in the hashes that are commonly used without a secret, and in anything
    that looks at the ends or the length of a text only. They cost no more than any others."""

    BITS = size(15, 20)

    def lines(self, pair):
        """All texts that are made of one of two pieces at each of so many places."""
        for number in range(1 << self.BITS):
            text = "".join(pair[number >> bit & 1] for bit in range(self.BITS))
            yield "10:00:00 192.0.2.1 /%s 200 1 1 agent -\n" % text

    def timed(self, pair, what):
        self.write_log([FIELDS])
        self.write_log(self.lines(pair), "u_ex260110.log")
        self.measured(what, size(10, 120), size(100, 700))
        self.assertHits(1 << self.BITS)

    def test_pieces_of_equal_hash_in_a_multiplying_hash(self):
        self.timed(("Aa", "BB"), "colliding: 31 * h + c")  # the same value wherever they stand

    def test_pieces_of_equal_sum(self):
        self.timed(("ad", "bc"), "colliding: sums")

    def test_texts_that_differ_in_their_middle_only(self):
        count = 1 << self.BITS
        self.write_log([FIELDS])
        self.write_log(("10:00:00 192.0.2.1 /%s%07d%s 200 1 1 agent -\n" % ("x" * 60, i, "y" * 60)
                        for i in range(count)), "u_ex260110.log")
        self.measured("colliding: ends and length", size(10, 120), size(100, 700))
        self.assertHits(count)


class OddFilesTest(AttackTest):
    def test_one_line(self):
        path = os.path.join(self.box.logs, "u_ex260109.log")
        with open(path, "w", encoding="ascii") as file:
            for _ in range(size(100, 4000)):
                file.write("GET / " * (MEGABYTE // 6))
        self.measured("a file that is one line", size(10, 120), 60)
        self.assertHits(1)

    def test_many_field_lists(self):
        self.write_log(HEADER for _ in range(size(200000, 1000000)))
        self.measured("#Fields: lines", size(10, 40), 60)
        self.assertHits(1)

    def test_many_fields(self):
        names = ["time", "c-ip", "cs-uri-stem", "sc-status", "sc-bytes"]
        many = ["x"] * size(10000, 15000)  # two characters each: the cursor ends at 32,767
        record = "10:00:00 192.0.2.7 /many.htm 200 1 " + " ".join(["y"] * 15000) + "\n"
        self.write_log(["#Fields: " + " ".join(names + many) + "\n"] + [record] * size(200, 20000))
        self.measured("thousands of fields", size(15, 240), 60)
        self.assertHits(1 + size(200, 20000))

    def test_thirty_thousand_fields(self):
        self.write_log(["#Fields: " + "time " * 30000 + "\n", "10:00:00 " * 30000 + "\n"] * 20)
        self.measured("30,000 fields", 10, 60)

    def test_every_visit_slot_and_one_more(self):
        for extra, warnings in ((0, 0), (1, 1)):
            with self.subTest(extra=extra):
                count = 32767 + extra
                lines = ["10:00:00 198.%d.%d.%d / 200 1 1 agent -\n"
                         % (18 + (i >> 16), i >> 8 & 255, i & 255) for i in range(count)]
                self.write_log([FIELDS] + lines * 2)
                if os.path.exists(self.box.event_log):
                    os.remove(self.box.event_log)
                self.measured("%d visits at once" % count, 20, 100)
                tracking = [text for _, text in self.box.event_texts()
                            if "Error tracking visit : " in text]
                self.assertEqual(len(tracking), warnings)
                self.assertIn("Max Concurrent Visitor Sessions</td><td colspan=2 align=right>"
                              "32767</td>", self.page())


class BacktrackingPatternsTest(AttackTest):
    """Twenty rules at which a matcher that goes back would work for ages."""

    PATTERNS = (["*a" * stars + "b" for stars in (5, 10, 15, 20, 25)]
                + ["a*" * stars + "c" for stars in (5, 10, 15, 20, 25)]
                + ["*" * 20 + "[!a]" + "*" * 20 + "d", "*?" * 20 + "e", "*a*a*a*a*a*a*a*a*f",
                   "*[a-b]" * 20 + "g", "*aaaaaaaaab*", "*[ab]a[ab]a[ab]h*", "*#*#*#*#*#z",
                   "*a?a?a?a?a?i", "*[!b][!b][!b]j", "*" * 50 + "k"])

    def test_time(self):
        self.assertEqual(len(self.PATTERNS), 20)
        rules = [{"name": "R%d" % i, "includes": "False", "field": "cs-uri-stem", "pattern": text}
                 for i, text in enumerate(self.PATTERNS)]
        self.box.configure("web1", {"MaxListSize": "5"}, rules)
        count = size(100, 2000)
        # Each differs, so that no verdict is remembered.
        self.write_log([FIELDS] + ["10:00:00 192.0.2.1 /%s%06d 200 1 1 agent -\n" % ("a" * 8000, i)
                                   for i in range(count)])
        self.measured("20 patterns on 8,000 letters", size(20, 240), 60)
        self.assertHits(count + 1)


class LittleMemoryTest(AttackTest):
    """Address space is what can be limited without further rights."""

    LINES, KEYS = size(400000, 10000000), size(20000, 200000)
    ENOUGH = 512 * MEGABYTE

    def write_lines(self):
        self.write_log([FIELDS])
        with open(os.path.join(self.box.logs, "u_ex260110.log"), "w", encoding="ascii") as file:
            for i in range(self.LINES):
                key = i * 7919 % self.KEYS
                file.write("10:%02d:00 10.%d.%d.%d /page%d.htm 200 1000 15 Agent/%d http://r/%d\n"
                           % (i * 60 // self.LINES, key >> 16, key >> 8 & 255, key & 255, key,
                              key % 5000, key % 50000))

    def test_a_large_month_fits(self):
        self.write_lines()
        self.measured("%d lines, %d keys, 512 MB" % (self.LINES, self.KEYS), size(20, 240), 512,
                      memory_limit=self.ENOUGH)
        self.assertHits(self.LINES)

    def test_a_month_that_does_not_fit_leaves_all_as_it_was(self):
        count = size(400000, 3000000)
        self.write_log([FIELDS])
        self.write_log(("10:00:00 192.0.2.1 /%0100d 200 1 1 %0100d -\n" % (i, i)
                        for i in range(count)), "u_ex260110.log")
        self.old_usage()
        self.measured("memory that does not suffice", size(20, 120), 100,
                      memory_limit=64 * MEGABYTE, exit_code=1)
        self.assertRegex(self.errors(), "^HitwickError generating usage report .*/Jan.htm : "
                         "Out of memory \\(event log: ")
        self.assertEvent("warning", "/Jan.htm : Out of memory$")
        files = self.box.usage_files()
        self.assertEqual(sorted(files), sorted(OLD_FILES))
        self.assertEqual(files["Jan.htm"], OLD_FILES["Jan.htm"])
        rows = dict(row.split(b",", 1) for row in files["History.txt"].splitlines())
        self.assertEqual(rows[b"12"], OLD_FILES["History.txt"].split(b",", 1)[1].rstrip())
        self.assertTrue(rows.get(b"1", b"0").startswith(b"0"))
        self.assertLess(len(self.box.events()), 2000)
        self.box.write("logs/u_ex260110.log", HEADER + RECORD % "/good.htm")
        self.assertEqual(self.batch().returncode, 0)
        self.assertHits(1)


if __name__ == "__main__":
    failures_test.PROGRAM = take_program(__doc__)
    unittest.main()
