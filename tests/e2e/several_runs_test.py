#!/usr/bin/env python3
"""Runs that meet other runs: at once, killed, locked out, and what they leave to each other.

    several_runs_test.py --program PATH [unittest arguments]
"""

import fcntl
import os
import re
import shutil
import signal
import subprocess
import time
import unittest

import failures_test
import frozen_clock
from failures_test import HEADER, NOBODY, NOON, RECORD, ProgramTest, is_root
from sandbox import take_program

MONTH = 31 * 86400
TEMPORARY = r".+\.[0-9]+-[0-9a-f]{16}\.tmp"
needs_root = unittest.skipUnless(is_root, "only root can give files away")


class SeveralRunsTest(ProgramTest):
    def start(self, arguments, epoch=None, box=None):
        """Starts the program in a process group of its own."""
        env = (box or self.box).environment()
        if epoch is not None:
            env.update(frozen_clock.environment(epoch))
        process = subprocess.Popen([failures_test.PROGRAM] + arguments, env=env,
                                   stdin=subprocess.DEVNULL,
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                                   start_new_session=True)
        self.addCleanup(self.end, process)
        return process

    def end(self, process):
        if process.poll() is None:
            os.killpg(process.pid, signal.SIGKILL)
        process.wait()

    def usage_names(self):
        return sorted(os.listdir(self.box.usage))

    def history(self):
        """Month to (year, hits) of the rows that are not empty."""
        rows = [line.split(b",") for line in self.box.usage_files()["History.txt"].splitlines()]
        return {int(row[0]): (int(row[1]), int(row[3])) for row in rows if row[1] != b"0"}


class UnreadableHistoryTest(SeveralRunsTest):
    def test_it_is_never_replaced(self):
        self.box.configure("web1", {"GenerateCSV": "True"})
        old = b"12,2025,1000,10,5,3,100,2,2,6\r\n"
        path = self.box.write("usage/History.txt", old)
        os.chmod(path, 0)
        done = self.batch_as_user()
        self.assertEqual(done.returncode, 1)
        os.chmod(path, 0o600)
        self.assertEqual(self.box.usage_files()["History.txt"], old)
        self.assertHits(1)
        self.assertIn("index.htm", self.usage_names())
        self.assertNotIn("Annual.csv", self.usage_names())
        warning = "HitwickError saving past results %s : Permission denied" % path
        self.assertEvent("warning", "^%s$" % re.escape(warning))
        self.assertEqual(done.stderr.decode(),
                         "%s (event log: %s)\n" % (warning, self.box.event_log))

    def test_a_broken_one_is_kept_once(self):
        broken = b"12,2025,1000,10,5,3,100,2,2,6\r\n11,2025,-nan,1,1,1,1,1,1,1\r\n"
        for content in (broken, b"another one\r\n"):
            self.box.write("usage/History.txt", content)
            self.assertEqual(self.batch().returncode, 0)
            self.assertEqual(self.box.usage_files()["History.old"], broken)
        self.assertEvent("warning", r"^Hitwick: Line 2 of .*History\.old$")


class FailureIsToldTest(SeveralRunsTest):
    def test_good_run_is_silent(self):
        self.assertEqual(self.batch().stderr, b"")

    def test_one_line_with_the_last_warning(self):
        shutil.rmtree(self.box.logs)
        done = self.batch()
        self.assertEqual(done.returncode, 1)
        lines = done.stderr.decode().splitlines()
        self.assertEqual(len(lines), 1)
        self.assertRegex(lines[0], "^Hitwick: No IIS log files found in ")
        self.assertTrue(lines[0].endswith(" (event log: %s)" % self.box.event_log))

    def test_format_that_is_shown_in_a_box_only(self):
        self.box.configure("web1", {"IISLogFormat": "NCSA"})
        self.assertEqual(self.batch().stderr.decode(), "Hitwick: The run ended with exit code 1 "
                         "(event log: %s)\n" % self.box.event_log)

    def test_outside_batch_mode_file_and_section_are_named(self):
        shutil.rmtree(self.box.logs)
        done = self.box.run(failures_test.PROGRAM, ["/C", "/SITE=web1"], NOON)
        lines = done.stderr.decode().splitlines()
        self.assertRegex(lines[0], r"^No IIS log files found in .*\\web1\\IISLogDir'")
        self.assertEqual(lines[1], "On this system that is section [web1] of " + self.box.config)


class TwoRunsAtOnceTest(SeveralRunsTest):
    def test_months_of_both_are_kept(self):
        self.box.write("logs/u_ex260111.log", HEADER + RECORD % "/many.htm" * 400000)
        self.box.write("logs/u_ex260210.log",
                       HEADER + (RECORD % "/next.htm").replace("2026-01", "2026-02"))
        first = self.start(["/BATCH", "/SITE=web1"], NOON)
        while not any("Logfiles will be read" in text for _, text in self.box.event_texts()):
            time.sleep(0.001)
        time.sleep(0.03)
        os.killpg(first.pid, signal.SIGSTOP)
        self.assertEqual(self.usage_names(), [], "the first run was too fast for this test")
        second = self.box.run(failures_test.PROGRAM, ["/BATCH", "/SITE=web1"], NOON + MONTH)
        self.assertEqual(second.returncode, 0)
        self.assertEqual(self.history(), {2: (2026, 1)})
        os.killpg(first.pid, signal.SIGCONT)
        first.wait()
        self.assertEqual(first.returncode, 0)
        self.assertEqual(self.history(), {1: (2026, 400001), 2: (2026, 1)})
        index = self.box.usage_files()["index.htm"].decode("latin-1")
        for month in ("Jan 2026", "Feb 2026"):
            self.assertIn(month, index)
        self.assertEqual(self.usage_names(), ["Feb.htm", "History.txt", "Jan.htm", "index.htm"])

    def test_many_at_once(self):
        """Runs of twelve months race; each one's row and the page that shows it last."""
        for month in range(1, 13):
            self.box.write("logs/u_ex26%02d10.log" % month,
                           HEADER + (RECORD % "/x").replace("2026-01", "2026-%02d" % month))
        runs = [self.start(["/BATCH", "/SITE=web1"], NOON + i * 365 * 86400 // 12)
                for i in range(12)]
        for run in runs:
            run.wait()
            self.assertEqual(run.returncode, 0)
        self.assertEqual(self.history(), {month: (2026, 1) for month in range(1, 13)})
        index = self.box.usage_files()["index.htm"].decode("latin-1")
        self.assertEqual(len(re.findall("<tr align=right><td><a href=", index)), 12)


class LockTest(SeveralRunsTest):
    def hold(self, path, flags):
        file = os.open(path, flags, 0o600)
        self.addCleanup(os.close, file)
        fcntl.flock(file, fcntl.LOCK_EX)

    def test_nobody_waits_for_ever(self):
        """The history's lock and the settings', at the same time in two sandboxes."""
        other = self.enterSandbox()
        other.configure("web1")
        other.write("logs/u_ex260110.log", HEADER + RECORD % "/good.htm")
        self.hold(self.box.usage, os.O_RDONLY)
        self.hold(other.config + ".lock", os.O_RDWR | os.O_CREAT)
        start = time.monotonic()
        history = self.start(["/BATCH", "/SITE=web1"], NOON)
        settings = self.start(["/BATCH", "/SITE=web1"], NOON, other)
        history.wait(timeout=90)
        settings.wait(timeout=90)
        self.assertGreater(time.monotonic() - start, 29)
        self.assertEqual(history.returncode, 1)
        self.assertEvent("warning", "^HitwickError saving past results .*/History.txt : Another "
                         "process has held the lock all the time$")
        self.assertEqual(self.usage_names(), ["Jan.htm", "index.htm"])
        self.assertEqual(settings.returncode, 0)
        texts = [text for level, text in other.event_texts() if level == "warning"]
        self.assertRegex(texts[0], "^Hitwick: Gave up after 30 seconds of waiting for another "
                         "process that changes '" + re.escape(other.config) + "'$")
        self.assertIn("Jan.htm", other.usage_files())


class KilledRunTest(SeveralRunsTest):
    def left_over(self):
        return [name for name in self.usage_names() if name.endswith(".tmp")]

    def kill_while_writing(self):
        """Kills a run while it has a temporary file; False when it came to its end."""
        run = self.start(["/C", "/SITE=web1"])
        while run.poll() is None:
            if not self.left_over():
                continue
            os.killpg(run.pid, signal.SIGSTOP)
            # The signal has been sent, but a thread may still be finishing a call.
            os.waitid(os.P_PID, run.pid, os.WSTOPPED | os.WEXITED | os.WNOWAIT)
            if self.left_over():
                self.end(run)
                return True
            os.killpg(run.pid, signal.SIGCONT)
        return False

    def test_nothing_is_left_for_ever(self):
        self.box.configure("web1", {"GenerateCSV": "True"})
        self.assertTrue(any(self.kill_while_writing() for _ in range(50)))
        self.assertEqual(len(self.left_over()), 1)
        self.assertRegex(self.left_over()[0], TEMPORARY)
        for name in ("Jan.htm.backup.tmp", "mine.txt.1.tmp", "Jan.htm.4711.tmp"):
            self.box.write("usage/" + name, "x")
        self.assertEqual(self.batch().returncode, 0)
        self.assertEqual(self.left_over(), ["Jan.htm.backup.tmp", "mine.txt.1.tmp"])


class ForeignLinkTest(SeveralRunsTest):
    @needs_root
    def test_page_is_not_written_through_it(self):
        precious = self.box.write("elsewhere/precious", "mine")
        link = os.path.join(self.box.usage, "Jan.htm")
        os.symlink(precious, link)
        os.lchown(link, NOBODY, NOBODY)
        self.assertEqual(self.batch().returncode, 1)
        self.assertEvent("warning", "^HitwickError generating usage report %s : A symbolic link on "
                         "the way belongs to another user$" % re.escape(link))
        with open(precious, "rb") as file:
            self.assertEqual(file.read(), b"mine")
        self.assertIn("index.htm", self.usage_names())

    def test_own_link_is_followed(self):
        target = self.box.write("elsewhere/page", "old")
        os.symlink(target, os.path.join(self.box.usage, "Jan.htm"))
        self.assertEqual(self.batch().returncode, 0)
        self.assertHits(1)
        self.assertTrue(os.path.islink(os.path.join(self.box.usage, "Jan.htm")))


class EventLogTest(SeveralRunsTest):
    RUNS = 8
    TOKENS = 300

    def test_visitors_text_is_harmless(self):
        self.box.write("logs/u_ex260109.log", "#Fields: time c-ip cs-uri-stem\n"
                       "99:99:99 192.0.2.1 /\x1b]0;owned\x07\n")
        os.symlink("/proc/self/mem", os.path.join(self.box.logs, "u_ex2601\x1b[31m.log"))
        self.assertEqual(self.batch("/D").returncode, 0)
        with open(self.box.event_log, "rb") as file:
            text = file.read()
        self.assertIn(rb"u_ex2601\x1b[31m.log", text)
        self.assertEqual(re.findall(rb"[\x00-\x09\x0b-\x1f\x7f]", text), [])

    def test_full_file_moves_once_with_several_runs(self):
        for turn in range(3):
            with self.subTest(turn):
                self.fill_and_run(turn)

    def fill_and_run(self, turn):
        old = b"x" * 99 + b"\n"
        old *= (10000000 - 3000 * (turn + 1)) // len(old)
        self.box.write("state/hitwick/events.log", old)
        runs = [self.start(["/SITE=p%d" % i, "/BATCH"] + ["x"] * self.TOKENS)
                for i in range(self.RUNS)]
        for run in runs:
            run.wait()
        with open(self.box.event_log + ".1", "rb") as file:
            moved = file.read()
        self.assertTrue(moved.startswith(old))
        lines = moved[len(old):].splitlines() + self.box.events()
        for line in lines:
            self.assertRegex(line, rb"^2\S+ (information|warning) Hitwick\S* ")
        for i in range(self.RUNS):
            wanted = b"Configuration for site name is 'p%d'" % i
            self.assertEqual(sum(wanted in line for line in lines), self.TOKENS + 2)
        # What the others write while one of them is moving the file still goes there.
        self.assertLess(len(moved), 10000000 + len(b"".join(lines)) // 2)
        self.assertEqual(sorted(os.listdir(os.path.dirname(self.box.event_log))),
                         ["events.log", "events.log.1"])


if __name__ == "__main__":
    failures_test.PROGRAM = take_program(__doc__)
    unittest.main()
