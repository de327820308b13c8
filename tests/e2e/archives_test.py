#!/usr/bin/env python3
"""Archived logs, a visitor's address from another field, the list of the sites, and many of them.

    archives_test.py --program PATH [unittest arguments]
"""

import gzip
import os
import re
import subprocess
import unittest

import failures_test
import frozen_clock
from failures_test import HEADER, NOON, RECORD, ProgramTest
from sandbox import take_program

LINES = "".join(RECORD % f"/page{i % 7}.htm" for i in range(500))


class ArchiveTest(ProgramTest):
    def pages_with(self, logs):
        for name in os.listdir(self.box.logs):
            os.remove(os.path.join(self.box.logs, name))
        for name, content in logs.items():
            self.box.write("logs/" + name, content)
        for name in os.listdir(self.box.usage):
            os.remove(os.path.join(self.box.usage, name))
        self.assertEqual(self.batch().returncode, 0)
        return self.box.usage_files()

    def test_same_bytes_make_the_same_pages(self):
        text = (HEADER + LINES).encode()
        cut = text.index(b"\n", len(text) // 2) + 5  # within a line
        plain = self.pages_with({"u_ex260110.log": text, "u_ex260112.log": text})
        packed = {
            "alone": {"u_ex260110.log.gz": gzip.compress(text), "u_ex260112.log.gz":
                      gzip.compress(text)},
            "in parts": {"u_ex260110.log.gz": gzip.compress(text[:cut]) + gzip.compress(text[cut:]),
                         "u_ex260112.log": text},
            "beside the log": {"u_ex260110.log": text, "u_ex260110.log.gz": gzip.compress(b"x"),
                               "U_EX260112.LOG.GZ": gzip.compress(text)},
        }
        for name, logs in packed.items():
            with self.subTest(name):
                self.assertEqual(self.pages_with(logs), plain)

    def test_damage_costs_what_comes_behind_it(self):
        text = (HEADER + "".join(RECORD % f"/p{os.urandom(20).hex()}.htm" for _ in range(2000)))
        packed = gzip.compress(text.encode())
        damaged = bytearray(packed)
        damaged[len(packed) // 2:] = b"\xff" * (len(packed) - len(packed) // 2)
        for name, archive in {"cut off": packed[:len(packed) // 2],
                              "overwritten": bytes(damaged)}.items():
            with self.subTest(name):
                self.pages_with({"u_ex260110.log.gz": archive,
                                 "u_ex260111.log": HEADER + RECORD % "/next.htm"})
                hits = int(re.search(r"Total Hits</td><td align=right>\d+</td><td align=right>(\d+)",
                                     self.page()).group(1))
                self.assertTrue(500 < hits < 1500, hits)
        self.batch("/D")
        self.assertEvent("warning", "^HitwickError during read of  .*u_ex260110.log.gz : "
                                    "The archive is damaged or cut off$")

    def test_bomb_stays_within_memory(self):
        # Half a million bytes that unpack to five hundred million.
        block = gzip.compress(b"x" * 10_000_000 + b"\n", 9)
        self.assertLess(len(block), 10_010)
        self.box.write("logs/u_ex260110.log.gz", gzip.compress(HEADER.encode()) + block * 50)
        os.remove(os.path.join(self.box.logs, "u_ex260110.log"))
        env = {**self.box.environment(), **frozen_clock.environment(NOON)}
        process = subprocess.Popen([failures_test.PROGRAM, "/BATCH", "/SITE=web1"], env=env,
                                   stdin=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
        self.assertEqual(process.returncode, 0)
        if os.environ.get("HITWICK_BUILD") != "asan":  # sanitizers need memory themselves
            self.assertLess(usage.ru_maxrss, 40_000)


class VisitorFieldTest(ProgramTest):
    def test_readers_are_the_visitors(self):
        self.box.configure("web1", {"ClientIPField": "X-Forwarded-For"})
        self.box.write("logs/u_ex260110.log",
                       "#Fields: date time c-ip cs-uri-stem sc-status sc-bytes X-Forwarded-For\n"
                       "2026-01-10 10:00:00 10.0.0.9 /a 200 1 203.0.113.7:33453,+10.0.0.1:49770\n"
                       "2026-01-10 10:00:01 10.0.0.9 /a 200 1 -\n")
        self.assertEqual(self.batch().returncode, 0)
        readers = re.findall(r"<td>((?:\d+[.]){3}\d+)</td><td>", self.page())
        self.assertEqual(sorted(readers), ["10.0.0.9", "203.0.113.7"])
        self.assertNoEvent("which nothing reads")


class SiteListTest(ProgramTest):
    def sites(self):
        done = self.box.run(failures_test.PROGRAM, ["--sites"])
        self.assertEqual(done.stderr, b"")
        self.assertEqual(self.box.events(), [])
        return done.returncode, done.stdout.decode().splitlines()

    def test_one_a_line(self):
        self.box.write("config/hitwick/settings.ini",
                       "[web1]\nUsageDir=/x\n[a shop]\n[web1\\Filters\\F]\nname=F\n[WEB2]\n")
        self.assertEqual(self.sites(), (0, ["web1", "a shop", "WEB2"]))

    def test_none_without_settings(self):
        os.remove(self.box.config)
        self.assertEqual(self.sites(), (0, []))

    def test_settings_that_cannot_be_read_are_a_failure(self):
        os.remove(self.box.config)
        os.mkdir(self.box.config)
        done = self.box.run(failures_test.PROGRAM, ["--sites"])
        self.assertEqual((done.returncode, done.stdout), (1, b""))
        self.assertRegex(done.stderr.decode(), "^Hitwick: The settings cannot be read : [0-9]+\n$")

    def test_part_of_a_name_lists_nothing(self):
        self.box.configure("x--sites")
        self.assertEqual(self.box.run(failures_test.PROGRAM, ["/BATCH", "/SITE=x--sites"],
                                      NOON).returncode, 0)
        self.assertIn("Jan.htm", self.box.usage_files())


class ManySitesTest(ProgramTest):
    COUNT = 64

    def test_all_at_once(self):
        """One log, one event log and one settings file, and a usage folder for each."""
        self.box.write("logs/u_ex260110.log", HEADER + LINES)
        names = [f"site{number}" for number in range(self.COUNT)]
        text = ""
        for name in names:
            os.mkdir(os.path.join(self.box.usage, name))
            text += f"[{name}]\nIISLogDir={self.box.logs}\nUsageDir={self.box.usage}/{name}\n"
        self.box.write("config/hitwick/settings.ini", text)
        listed = self.box.run(failures_test.PROGRAM, ["--sites"]).stdout.decode().split()
        self.assertEqual(listed, names)
        env = {**self.box.environment(), **frozen_clock.environment(NOON)}
        runs = [subprocess.Popen([failures_test.PROGRAM, "/BATCH", "/SITE=" + name], env=env,
                                 stdin=subprocess.DEVNULL, stderr=subprocess.PIPE)
                for name in listed]
        for run in runs:
            self.assertEqual((run.communicate()[1], run.returncode), (b"", 0))
        pages = self.box.usage_files()
        for name in names:
            page = pages[f"{name}/Jan.htm"].replace(name.encode(), b"NAME")
            self.assertEqual(page, pages["site0/Jan.htm"].replace(b"site0", b"NAME"))
            self.assertEqual(pages[f"{name}/History.txt"], pages["site0/History.txt"])
        entries = self.box.event_texts()
        self.assertFalse([text for level, text in entries if level == "warning"])
        created = {text for _, text in entries if ": month report created :" in text}
        self.assertEqual(len(created), self.COUNT)
        with open(self.box.config, encoding="utf-8") as settings:
            sections = re.findall(r"^\[(.*)\]$", settings.read(), re.MULTILINE)
        self.assertEqual(sections, names)


if __name__ == "__main__":
    failures_test.PROGRAM = take_program(__doc__)
    unittest.main()
