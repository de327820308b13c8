#!/usr/bin/env python3
"""Machines that fail: full disks, vanishing and changing logs, killed runs, clocks that jump.

    faults_test.py --program PATH --failing-calls LIBRARY [unittest arguments]

After each fault the files in the usage folder and the settings are old or new, each whole, nothing
else is left, and the next run needs no help. HITWICK_FULL=1 takes minutes: a catch-up run
fails at every one of its calls, and 500 runs are killed. HITWICK_SEED repeats the moments.
"""

import os
import random
import re
import signal
import subprocess
import sys
import threading
import time
import unittest

import failures_test
import frozen_clock
from failures_test import HEADER, NOON, OLD_FILES, RECORD, ProgramTest
from sandbox import take_program

FULL = os.environ.get("HITWICK_FULL") == "1"
SEED = int(os.environ.get("HITWICK_SEED", "1"))
FAILING_CALLS = ""
TEMPORARY = re.compile(r".*\.tmp")


class FaultTest(ProgramTest):
    SWITCHES = ("/BATCH",)
    WITH_CSV = False

    def setUp(self):
        super().setUp()
        self.box.configure("web1", {"GenerateCSV": str(self.WITH_CSV)})
        self.first_settings = self.settings()

    def settings(self):
        with open(self.box.config, "rb") as file:
            return file.read()

    def run_program(self, environment=None, epoch=NOON):
        env = self.box.environment()
        env.update(frozen_clock.environment(epoch))
        for name, value in (environment or {}).items():
            env[name] = env[name] + ":" + value if name == "LD_PRELOAD" else value
        return subprocess.run([failures_test.PROGRAM, *self.SWITCHES, "/SITE=web1"], env=env,
                              stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                              stderr=subprocess.PIPE, timeout=300, check=False)

    def reset(self, old):
        """The usage folder and the settings as before any run."""
        for name in os.listdir(self.box.usage):
            os.remove(os.path.join(self.box.usage, name))
        for name, content in old.items():
            self.box.write("usage/" + name, content)
        with open(self.box.config, "wb") as file:
            file.write(self.first_settings)

    def assertNothingIsLeft(self, names):
        self.assertLessEqual(set(self.box.usage_files()), names)
        self.assertLessEqual(set(os.listdir(os.path.dirname(self.box.config))),
                             {"settings.ini", "settings.ini.lock"})

    def assertOldOrNew(self, old, new):
        """Each file is whole; returns the names of the new ones. A catch-up run writes two years'
        January, one after the other, under the same name."""
        found = self.box.usage_files()
        renewed = set()
        for name in set(old) | set(new):
            if name in new and found.get(name) == new[name]:
                renewed.add(name)
            elif self.SWITCHES == ("/C",) and name == "Jan.htm" and found[name] != old[name]:
                self.assertIn(b"<title>Usage statistics for", found[name])
                self.assertIn(b" - January 2025</title>", found[name])
                self.assertTrue(found[name].endswith(b"</body></html>\r\n"))
            else:
                self.assertEqual(found.get(name), old.get(name), name)
        self.assertIn(self.settings(), (self.first_settings, self.new_settings))
        return renewed

    def clean_run(self, old):
        """What a run without a fault makes of the old files."""
        self.reset(old)
        self.assertEqual(self.run_program().returncode, 0)
        self.new_settings = self.settings()
        return self.box.usage_files()

    def assertNextRunNeedsNoHelp(self, new):
        self.assertEqual(self.run_program().returncode, 0)
        self.assertEqual(self.box.usage_files(), new)
        self.assertEqual(self.settings(), self.new_settings)


class FullDiskTest(FaultTest):
    SWITCHES = ("/C",) if FULL else ("/BATCH",)

    def count_calls(self):
        path = os.path.join(self.box.root, "count")
        self.run_program({"LD_PRELOAD": FAILING_CALLS, "FAILING_COUNT": path})
        with open(path, encoding="ascii") as file:
            return int(file.read())

    def fail_each(self, once):
        old = dict(OLD_FILES)
        new = self.clean_run(old)
        self.reset(old)
        calls = self.count_calls()
        self.assertGreater(calls, 20)
        failed = 0
        for number in range(1, calls + 1):
            with self.subTest(call=number):
                self.reset(old)
                done = self.run_program({"LD_PRELOAD": FAILING_CALLS, "FAILING_CALL": str(number),
                                         "FAILING_ONCE": str(int(once))})
                renewed = self.assertOldOrNew(old, new)
                self.assertNothingIsLeft(set(old) | set(new))
                changed = {name for name in new if new[name] != old.get(name)}
                self.assertIn(done.returncode, (0, 1))
                if done.returncode == 0:
                    self.assertLessEqual(changed, renewed)
                failed += done.returncode
                self.assertNextRunNeedsNoHelp(new)
        self.assertGreater(failed, 5)
        print("disk full at each of %d calls%s: %d runs failed" %
              (calls, ", once" if once else "", failed), file=sys.stderr)

    def test_from_the_nth_call_on(self):
        self.fail_each(once=False)

    def test_at_the_nth_call_only(self):
        self.fail_each(once=True)


class ChangingLogTest(FaultTest):
    LINES = 60000

    def start(self):
        env = self.box.environment()
        env.update(frozen_clock.environment(NOON))
        process = subprocess.Popen([failures_test.PROGRAM, *self.SWITCHES, "/SITE=web1"], env=env,
                                   stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                   stderr=subprocess.DEVNULL)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        return process

    def hits(self):
        return int(re.search(r"Total Hits</td><td align=right>\d+</td><td align=right>(\d+)",
                             self.page()).group(1))

    def test_log_vanishes_between_listing_and_opening(self):
        path = self.box.write("logs/u_ex260109.log", HEADER + RECORD % "/gone.htm")
        done = self.run_program({"LD_PRELOAD": FAILING_CALLS, "FAILING_VANISH": path})
        self.assertEqual(done.returncode, 0)
        self.assertFalse(os.path.exists(path))
        self.assertHits(1)

    def change_while_read(self, change):
        """Runs the program while `change` works on a large log, again and again; the hits."""
        path = self.box.write("logs/u_ex260109.log", HEADER + RECORD % "/a.htm" * self.LINES)
        process = self.start()
        over = threading.Event()
        changer = threading.Thread(target=lambda: change(path, over))
        changer.start()
        process.wait()
        over.set()
        changer.join()
        self.assertEqual(process.returncode, 0)
        self.assertNothingIsLeft({"Jan.htm", "index.htm", "History.txt"})
        return self.hits()

    def test_log_grows(self):
        def grow(path, over):
            with open(path, "ab", buffering=0) as file:
                while not over.is_set():
                    file.write((RECORD % "/more.htm").encode()[:20])
                    file.write((RECORD % "/more.htm").encode()[20:])

        self.assertGreaterEqual(self.change_while_read(grow), self.LINES + 1)
        self.assertEqual(self.run_program().returncode, 0)
        self.assertGreaterEqual(self.hits(), self.LINES + 1)

    def test_log_is_renamed(self):
        def rename(path, over):
            os.rename(path, path + ".old")
            over.wait()

        self.assertIn(self.change_while_read(rename), (1, self.LINES + 1))

    def test_log_is_rotated(self):
        def rotate(path, over):
            for number in range(1000):
                if over.is_set():
                    break
                os.rename(path, os.path.join(self.box.root, "rotated%d" % (number % 2)))
                self.box.write("logs/u_ex260109.log", HEADER + RECORD % "/new.htm")

        self.assertIn(self.change_while_read(rotate), (1, 2, self.LINES + 1))

    def test_log_is_emptied(self):
        def empty(path, over):
            os.truncate(path, 0)
            over.wait()

        self.assertLessEqual(self.change_while_read(empty), self.LINES + 1)


class KilledTest(FaultTest):
    WITH_CSV = FULL
    COUNT = 250 if FULL else 12

    def kill_at_random(self):
        old = dict(OLD_FILES)
        new = self.clean_run(old)
        dice = random.Random(SEED)
        start = time.monotonic()
        self.run_program()
        longest = time.monotonic() - start
        killed = 0
        for number in range(self.COUNT):
            with self.subTest(number=number):
                self.reset(old)
                killed += self.kill_after(dice.random() * longest)
                self.assertOldOrNew(old, new)
                left = [name for name in self.box.usage_files() if TEMPORARY.fullmatch(name)]
                self.assertLessEqual(len(left), 1)
                self.assertNextRunNeedsNoHelp(new)
                self.assertNothingIsLeft(set(old) | set(new))
        print("%d of %d %s runs killed" % (killed, self.COUNT, self.SWITCHES[0]), file=sys.stderr)
        self.assertGreater(killed, 0)

    def kill_after(self, seconds):
        env = self.box.environment()
        env.update(frozen_clock.environment(NOON))
        process = subprocess.Popen([failures_test.PROGRAM, *self.SWITCHES, "/SITE=web1"], env=env,
                                   stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                   stderr=subprocess.DEVNULL)
        time.sleep(seconds)
        process.send_signal(signal.SIGKILL)
        return process.wait() == -signal.SIGKILL

    def test_batch(self):
        self.kill_at_random()

    def test_catch_up(self):
        self.SWITCHES = ("/C",)
        self.kill_at_random()


class ClockTest(FaultTest):
    def history(self):
        rows = [line.split(b",") for line in self.box.usage_files()["History.txt"].splitlines()]
        return {(int(row[1]), int(row[0])): int(row[3]) for row in rows if row[1] != b"0"}

    def run_across(self, start, faster=3000):
        """A run in whose course the clock, going so many times as fast, passes midnight."""
        env = self.box.environment()
        env.update(frozen_clock.running(start + " x%d" % faster))
        return subprocess.run([failures_test.PROGRAM, *self.SWITCHES, "/SITE=web1"], env=env,
                              stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                              stderr=subprocess.PIPE, timeout=120, check=False)

    def test_clock_set_back(self):
        self.assertEqual(self.run_program().returncode, 0)
        for days in (1, 20, 400):
            with self.subTest(days=days):
                self.assertEqual(self.run_program(epoch=NOON - days * 86400).returncode, 0)
        # A clock that is right again finds its month again.
        self.assertEqual(self.run_program().returncode, 0)
        self.assertHits(1)
        self.assertEqual(self.history()[(2026, 1)], 1)

    def across(self, start, log, month):
        self.box.write(log, HEADER + (RECORD % "/a.htm").replace("2026-01-10", month + "-10") * 30000)
        done = self.run_across(start)
        self.assertEqual(done.returncode, 0, done.stderr)
        year, number = (int(part) for part in month.split("-"))
        self.assertGreaterEqual(self.history()[(year, number)], 30000)

    def test_midnight(self):
        self.across("2026-01-15 23:59:58", "logs/u_ex260110.log", "2026-01")

    def test_end_of_the_month(self):
        self.across("2026-01-31 23:59:58", "logs/u_ex260110.log", "2026-01")
        self.assertIn("Jan.htm", self.box.usage_files())

    def test_end_of_the_year(self):
        self.across("2025-12-31 23:59:58", "logs/u_ex251210.log", "2025-12")
        self.assertIn("Dec.htm", self.box.usage_files())


class LeastRightsTest(ProgramTest):
    def test_outputs_follow_the_mask_and_the_rest_is_for_the_user(self):
        self.box.configure("web1", {"GenerateCSV": "True"})
        for mask, wanted in ((0o022, 0o644), (0o027, 0o640), (0o077, 0o600), (0, 0o666)):
            with self.subTest(mask=oct(mask)):
                for name in os.listdir(self.box.usage):
                    os.remove(os.path.join(self.box.usage, name))
                if os.path.exists(self.box.event_log):
                    os.remove(self.box.event_log)
                done = self.batch(preexec_fn=lambda: os.umask(mask))
                self.assertEqual(done.returncode, 0)
                for name in os.listdir(self.box.usage):
                    mode = os.stat(os.path.join(self.box.usage, name)).st_mode & 0o7777
                    self.assertEqual(mode, wanted, name)
                self.assertEqual(os.stat(self.box.event_log).st_mode & 0o7777, 0o600)

    def created_files(self):
        """The (path, flags) of all files that a run creates."""
        path = os.path.join(self.box.root, "created")
        env = self.box.environment()
        env.update(frozen_clock.environment(NOON), FAILING_CREATED=path)
        env["LD_PRELOAD"] += ":" + FAILING_CALLS
        done = subprocess.run([failures_test.PROGRAM, "/BATCH", "/SITE=web1"], env=env,
                              stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, timeout=120,
                              stderr=subprocess.DEVNULL, check=False)
        self.assertEqual(done.returncode, 0)
        with open(path, encoding="utf-8") as file:
            lines = [line.rstrip("\n").split(" ", 1) for line in file]
        os.remove(path)
        return [(name, int(flags)) for flags, name in lines]

    def test_no_temporary_name_is_used_twice_or_can_be_foreseen(self):
        names = []
        for _ in range(2):
            created = self.created_files()
            in_usage = [entry for entry in created if entry[0].startswith(self.box.usage)]
            self.assertTrue(in_usage)
            for name, flags in in_usage:
                self.assertRegex(name, r"/\w+\.\w+\.[0-9]+-[0-9a-f]{16}\.tmp$")
                self.assertTrue(flags & os.O_EXCL and flags & os.O_NOFOLLOW, name)
            names += [name for name, _ in in_usage]
            # Nothing is created outside of the site's own folders and the user's.
            self.assertEqual([name for name, _ in created if not name.startswith(self.box.root)
                              and name != "/dev/null"], [])
        self.assertEqual(len(names), len(set(names)))


def main():
    global FAILING_CALLS
    arguments = sys.argv
    if "--failing-calls" not in arguments[:-1]:
        sys.exit(__doc__)
    at = arguments.index("--failing-calls")
    FAILING_CALLS = os.path.abspath(arguments[at + 1])
    sys.argv = arguments[:at] + arguments[at + 2:]
    failures_test.PROGRAM = take_program(__doc__)
    unittest.main()


if __name__ == "__main__":
    main()
