#!/usr/bin/env python3
"""Runs the program in adverse surroundings and with odd command lines.

    failures_test.py --program PATH [unittest arguments]

Tests of permissions need an unprivileged user: as root they run the program through `setpriv` as
nobody. The full disk is a small tmpfs in a mount namespace.
"""

import os
import re
import resource
import shutil
import signal
import subprocess
import time
import unittest

import frozen_clock
from sandbox import Sandbox, take_program

PROGRAM = ""
NOON = 1768478400  # 2026-01-15 12:00 UTC
HEADER = "#Fields: date time c-ip cs-uri-stem sc-status sc-bytes\n"
RECORD = "2026-01-10 10:00:00 192.0.2.1 %s 200 1000\n"
NOBODY = 65534
AS_NOBODY = ("setpriv", "--reuid=65534", "--regid=65534", "--clear-groups")
OLD_FILES = {"History.txt": b"12,2025,1000,10,5,3,100,2,2,6\r\n", "Jan.htm": b"old page\r\n",
             "index.htm": b"old index\r\n", "Dec.htm": b"old december\r\n"}
is_root = os.geteuid() == 0


class ProgramTest(unittest.TestCase):
    """A sandbox with one site and one good log of a single hit."""

    def setUp(self):
        self.box = self.enterSandbox()
        self.box.configure("web1")
        self.box.write("logs/u_ex260110.log", HEADER + RECORD % "/good.htm")

    def enterSandbox(self):
        box = Sandbox()
        box.__enter__()
        self.addCleanup(box.__exit__)
        return box

    def batch(self, *more, **options):
        return self.box.run(PROGRAM, ["/BATCH", "/SITE=web1", *more], NOON, **options)

    def batch_as_user(self, *more):
        """The batch run as a user who is bound by permissions."""
        if not is_root:
            return self.batch(*more)
        program = shutil.copy(PROGRAM, os.path.join(self.box.root, "hitwick"))
        for folder, folders, files in os.walk(self.box.root):
            for name in folders + files:
                os.lchown(os.path.join(folder, name), NOBODY, NOBODY)
        os.lchown(self.box.root, NOBODY, NOBODY)
        return self.box.run(program, ["/BATCH", "/SITE=web1", *more], NOON, wrapper=AS_NOBODY)

    def old_usage(self):
        for name, content in OLD_FILES.items():
            self.box.write("usage/" + name, content)

    def page(self):
        return self.box.usage_files().get("Jan.htm", b"").decode("latin-1")

    def assertHits(self, count):
        self.assertIn("Total Hits</td><td align=right>%d</td><td align=right>%d</td>"
                      % (round(count / 15), count), self.page())

    def assertEvent(self, level, pattern):
        """Some entry of the level matches the regular expression."""
        texts = self.box.event_texts()
        self.assertTrue(any(found == level and re.search(pattern, text) for found, text in texts),
                        "no %s %r among %r" % (level, pattern, texts))

    def assertNoEvent(self, pattern):
        texts = [text for _, text in self.box.event_texts() if re.search(pattern, text)]
        self.assertEqual(texts, [])

    def site_entries(self):
        """The site names of the "Configuration for site name is" entries."""
        found = [re.fullmatch("Hitwick: Configuration for site name is '(.*)'", text)
                 for _, text in self.box.event_texts()]
        return [match.group(1) for match in found if match]


class LogTroubleTest(ProgramTest):
    def test_missing_log_folder(self):
        shutil.rmtree(self.box.logs)
        self.assertEqual(self.batch().returncode, 1)
        self.assertEvent("warning", "^Hitwick: No IIS log files found in '" + self.box.logs + "'")

    def test_unreadable_log_folder(self):
        os.chmod(self.box.logs, 0)
        self.assertEqual(self.batch_as_user().returncode, 1)
        self.assertEvent("warning", "^Hitwick: No IIS log files found in '")

    def test_unreadable_log_is_passed_over(self):
        path = self.box.write("logs/u_ex260109.log", HEADER + RECORD % "/secret.htm")
        os.chmod(path, 0)
        self.assertEqual(self.batch_as_user("/D").returncode, 0)
        self.assertEvent("warning", "^HitwickError on open of  " + path + " : .")
        self.assertHits(1)

    def test_unreadable_log_is_reported_with_diagnostics_only(self):
        os.chmod(self.box.write("logs/u_ex260109.log", HEADER), 0)
        self.assertEqual(self.batch_as_user().returncode, 0)
        self.assertNoEvent("Error on open")
        self.assertHits(1)

    def test_folder_named_like_a_log(self):
        os.mkdir(os.path.join(self.box.logs, "u_ex260109.log"))
        os.mkdir(os.path.join(self.box.logs, "u_ex260201.log"))
        self.assertEqual(self.batch("/D").returncode, 0)
        self.assertHits(1)

    def test_pipe_named_like_a_log(self):
        os.mkfifo(os.path.join(self.box.logs, "u_ex260109.log"))
        os.mkfifo(os.path.join(self.box.logs, "u_ex260201.log"))
        self.assertEqual(self.batch(timeout=30).returncode, 0)
        self.assertHits(1)

    def test_links_are_followed(self):
        target = self.box.write("elsewhere/real.log", HEADER + RECORD % "/linked.htm")
        os.symlink(target, os.path.join(self.box.logs, "u_ex260109.log"))
        os.symlink("nowhere", os.path.join(self.box.logs, "u_ex260108.log"))
        self.assertEqual(self.batch().returncode, 0)
        self.assertHits(2)

    def test_read_error_part_way(self):
        path = os.path.join(self.box.logs, "u_ex260109.log")
        os.symlink("/proc/self/mem", path)
        self.assertEqual(self.batch("/D").returncode, 0)
        self.assertEvent("warning", "^HitwickError during read of  " + path + " : .")
        self.assertHits(1)

    def test_empty_logs(self):
        self.box.write("logs/u_ex260108.log", "")
        self.box.write("logs/u_ex260109.log", HEADER)
        self.assertEqual(self.batch().returncode, 0)
        self.assertHits(1)


class EndlessLineTest(ProgramTest):
    SIZE = 100 * 1000 * 1000
    LIMIT_KBYTES = 60 * 1024

    def peak_kbytes(self):
        """Runs the program and returns its peak memory."""
        env = self.box.environment()
        env.update(frozen_clock.environment(NOON))
        process = subprocess.Popen([PROGRAM, "/BATCH", "/D", "/SITE=web1"], env=env,
                                   stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                   stderr=subprocess.DEVNULL)
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
        self.assertEqual(process.returncode, 0)
        return usage.ru_maxrss

    def test_memory_stays_bounded(self):
        starts = {"token": "2026-01-10 10:00:00 192.0.2.1 /", "comment": "#", "nothing": "",
                  "fields": "#Fields: date time c-ip "}
        for kind, start in starts.items():
            with self.subTest(kind):
                path = self.box.write("logs/u_ex260109.log", HEADER + start)
                os.truncate(path, self.SIZE)
                with open(path, "ab") as file:
                    file.write(("\n" + HEADER + RECORD % "/after.htm").encode())
                peak = self.peak_kbytes()
                if os.environ.get("HITWICK_BUILD") != "asan":  # sanitizers need memory themselves
                    self.assertLess(peak, self.LIMIT_KBYTES)
                self.assertHits(2)


class HostileVolumeTest(ProgramTest):
    """Records made to be as dear as possible must not take time out of proportion."""

    SECONDS = 60

    def timed(self, lines):
        self.box.configure("web1", {"MaxListSize": "5"})
        self.box.write("logs/u_ex260109.log",
                       "#Fields: time c-ip cs-uri-stem sc-status sc-bytes time-taken "
                       "cs(User-Agent) cs(Referer)\n" + "\n".join(lines) + "\n")
        start = time.monotonic()
        self.assertEqual(self.batch(timeout=10 * self.SECONDS).returncode, 0)
        self.assertLess(time.monotonic() - start, self.SECONDS)

    def test_many_keys_twice(self):
        count = 100000
        self.timed("10:00:00 192.0.2.1 /u%d 404 1 1 agent%d http://r/%d" % (i, i, i)
                   for _ in range(2) for i in range(count))
        self.assertHits(2 * count + 1)

    def test_many_visitors_at_once(self):
        count = 100000
        self.timed("10:00:00 198.%d.%d.%d /u 200 1 1 agent -"
                   % (18 + (i >> 16), i >> 8 & 255, i & 255)
                   for _ in range(2) for i in range(count))
        self.assertHits(2 * count + 1)
        tracking = [text for _, text in self.box.event_texts() if "Error tracking visit : " in text]
        self.assertEqual(len(tracking), 1)
        self.assertIn("Max Concurrent Visitor Sessions</td><td colspan=2 align=right>32767</td>",
                      self.page())


class UsageTroubleTest(ProgramTest):
    def assertOldFilesStand(self, *but):
        files = self.box.usage_files()
        self.assertEqual(sorted(files), sorted(set(OLD_FILES) | set(but)))
        for name, content in OLD_FILES.items():
            if name not in but:
                self.assertEqual(files[name], content, name)

    def assertPageFailed(self, name="Jan.htm"):
        self.assertEvent("warning", "^HitwickError generating usage report " + self.box.usage + "/"
                         + name + " : .")

    def assertHistoryFailed(self):
        self.assertEvent("warning", "^HitwickError saving past results " + self.box.usage
                         + "/History.txt : .")

    def test_read_only_folder(self):
        self.old_usage()
        os.chmod(self.box.usage, 0o555)
        self.assertEqual(self.batch_as_user().returncode, 1)
        self.assertPageFailed()
        self.assertPageFailed("index.htm")
        self.assertHistoryFailed()
        self.assertOldFilesStand()

    def test_file_size_limit(self):
        def limit():
            signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
            resource.setrlimit(resource.RLIMIT_FSIZE, (4096, 4096))

        self.old_usage()
        self.assertEqual(self.batch(preexec_fn=limit).returncode, 1)
        self.assertPageFailed()
        self.assertPageFailed("index.htm")
        self.assertOldFilesStand("History.txt")

    def batch_on_a_full_disk(self):
        """The batch run with the usage folder on a small disk that has no room left; the files of
        both stand in the folder afterwards."""
        self.old_usage()
        left = os.path.join(self.box.root, "left")
        os.rename(self.box.usage, left)
        os.mkdir(self.box.usage)
        script = ('mount -t tmpfs -o size=32k tmpfs "$0" || exit 100; cp "$1"/* "$0"; '
                  'cat /dev/zero > "$0/filler" 2>/dev/null; left=$1; shift; "$@"; code=$?; '
                  'rm -r "$left"; cp -R "$0" "$left"; exit $code')
        done = self.batch(wrapper=["unshare", "--mount", *([] if is_root else ["--map-root-user"]),
                                   "sh", "-c", script, self.box.usage, left])
        os.rmdir(self.box.usage)
        os.rename(left, self.box.usage)
        return done

    def test_full_disk(self):
        self.assertEqual(self.batch_on_a_full_disk().returncode, 1)
        self.assertPageFailed()
        self.assertPageFailed("index.htm")
        self.assertHistoryFailed()
        self.assertOldFilesStand("filler")

    def test_folder_in_the_place_of_a_page(self):
        os.mkdir(os.path.join(self.box.usage, "Jan.htm"))
        self.assertEqual(self.batch().returncode, 1)
        self.assertPageFailed()
        self.assertEqual(sorted(self.box.usage_files()), ["History.txt", "index.htm"])

    def test_failed_page_does_not_stop_the_run(self):
        os.mkdir(os.path.join(self.box.usage, "Jun.htm"))
        self.assertEqual(self.box.run(PROGRAM, ["/C", "/SITE=web1"], NOON).returncode, 1)
        self.assertPageFailed("Jun.htm")
        self.assertEqual(len([name for name in self.box.usage_files() if name.endswith(".htm")]),
                         12)

    def test_folder_in_the_place_of_the_history(self):
        os.mkdir(os.path.join(self.box.usage, "History.txt"))
        self.assertEqual(self.batch().returncode, 1)
        self.assertHistoryFailed()
        self.assertHits(1)

    def test_csv_file_that_cannot_be_created(self):
        self.box.configure("web1", {"GenerateCSV": "True"})
        os.mkdir(os.path.join(self.box.usage, "Jan-PageByHits.csv"))
        self.assertEqual(self.batch().returncode, 1)
        self.assertEvent("warning", "^HitwickError generating usage report ")
        self.assertTrue(self.page().rstrip().endswith("</tbody></table>"))
        self.assertIn("Top pages for January 2026", self.page())
        self.assertNotIn("Slowest pages", self.page())
        self.assertIn("Jan-URLbyKBytes.csv", self.box.usage_files())
        self.assertNotIn("Jan-PageTimes.csv", self.box.usage_files())


class SettingsTroubleTest(ProgramTest):
    def test_broken_line_is_named(self):
        with open(self.box.config, "a", encoding="utf-8") as file:
            file.write("; a comment\nthis line says nothing\n")
        with open(self.box.config, encoding="utf-8") as file:
            number = len(file.readlines())
        done = self.batch()
        texts = [text for _, text in self.box.event_texts()] + [done.stderr.decode()]
        self.assertTrue(any(re.search(r"settings\.ini", text)
                            and re.search(r"\b%d\b" % number, text) for text in texts), texts)
        self.assertHits(1)

    def test_values_are_written_back(self):
        self.box.configure("web1", {"MaxListSize": "7 rows"})
        self.assertEqual(self.batch().returncode, 0)
        with open(self.box.config, encoding="utf-8") as file:
            lines = file.read().splitlines()
        self.assertEqual(lines, ["[web1]", "IISLogDir=" + self.box.logs,
                                 "UsageDir=" + self.box.usage, "MaxListSize=7 rows",
                                 "IISLogFormat=W3C"])

    def test_hand_edited_file(self):
        self.box.write("config/hitwick/settings.ini", "; note\r\n# note\r\n\r\n[WEB1]\r\niislogdir="
                       + self.box.logs + "\r\nUSAGEDIR=" + self.box.usage + "\r\n")
        self.assertEqual(self.batch().returncode, 0)
        self.assertHits(1)

    def test_blanks_and_a_setting_that_nothing_reads(self):
        self.box.write("config/hitwick/settings.ini", "[web1]\n  IISLogDir = " + self.box.logs
                       + "  \nIISLogdirs = /x\nUsageDir  =" + self.box.usage
                       + "\n[web1\\Filters\\All]\n field = cs-uri-stem\n pattern = /*\n"
                       " includes = True\n patern = x\n[other]\nIISLogdirs=/y\n")
        self.assertEqual(self.batch().returncode, 0)
        self.assertHits(1)
        unread = [text for level, text in self.box.event_texts()
                  if level == "warning" and "which nothing reads" in text]
        self.assertEqual(unread, [
            "Hitwick: Line %d of the settings file '%s' sets '%s', which nothing reads"
            % (number, self.box.config, name) for number, name in ((3, "IISLogdirs"), (9, "patern"))])

    def test_folder_that_ends_in_a_blank(self):
        folder = os.path.join(self.box.root, "usage ")
        os.mkdir(folder)
        self.box.configure("web1", {"UsageDir": folder})
        self.assertEqual(self.batch().returncode, 0)
        self.assertIn("Jan.htm", os.listdir(folder))

    def test_event_log_that_cannot_be_written(self):
        self.box.write("state", "a file in the place of the folder")
        done = self.batch()
        self.assertEqual(done.returncode, 0)
        self.assertIn(b"Hitwick: operating on site 'web1'", done.stderr)
        self.assertHits(1)


class CommandLineTest(ProgramTest):
    def run_with(self, *arguments):
        return self.box.run(PROGRAM, list(arguments), NOON)

    def test_every_token_is_an_entry(self):
        self.run_with("/B", "/D", "/SITE=web1")
        self.assertEqual(self.site_entries(), ["", "", "web1"])
        self.assertEvent("information", "^Hitwick: operating on site 'web1'$")

    def test_switches_are_found_anywhere(self):
        self.assertEqual(self.run_with("x/bx", "/site=web1").returncode, 0)
        self.assertHits(1)

    def test_batch_switch_inside_the_site_token(self):
        self.assertEqual(self.run_with("/SITE=web1/B").returncode, 0)
        self.assertEqual(self.site_entries(), ["web1"])
        self.assertHits(1)

    def test_site_switch_inside_the_batch_token(self):
        self.assertEqual(self.run_with("a=b/BATCH/SITE=web1").returncode, 0)
        self.assertEqual(self.site_entries(), ["web1"])

    def test_quotes_do_not_group(self):
        self.run_with("/BATCH", '/SITE="My Site"')
        self.assertEqual(self.site_entries(), ["", "My", "My"])
        self.assertEvent("information", "^Hitwick: operating on site 'My'$")

    def test_quoted_name(self):
        self.run_with("/BATCH", '/SITE="we\\b;1"tail')
        self.assertEqual(self.site_entries(), ["", "web1"])

    def test_marks_are_removed(self):
        self.run_with("/BATCH", "/site=a;b\\c")
        self.assertEqual(self.site_entries(), ["", "abc"])

    def test_tabs_separate(self):
        self.assertEqual(self.run_with("/B\t/SITE=web1").returncode, 0)
        self.assertEqual(self.site_entries(), ["", "web1"])

    def test_empty_name_is_the_default_site(self):
        self.run_with("/BATCH", "/SITE=")
        self.assertEqual(self.site_entries(), ["", ""])
        self.assertEvent("information", "^Hitwick: operating on site 'INI'$")

    def test_site_without_equals(self):
        done = self.run_with("/BATCH", "/SITE", "/D")
        self.assertEqual(done.returncode, 2)
        self.assertIn(b"/SITE=NAME", done.stderr)
        self.assertEvent("warning", "^Hitwick: Format for site name switch is /SITE=NAME$")
        self.assertEqual(self.site_entries(), ["", "", ""])
        self.assertEqual(self.box.usage_files(), {})

    def test_site_without_equals_before_batch(self):
        self.assertEqual(self.run_with("/SITE", "/C").returncode, 2)
        self.assertNoEvent("Format for site name")

    def test_catch_up_wins_over_batch(self):
        self.assertEqual(self.run_with("/C", "/B", "/SITE=web1").returncode, 0)
        created = [text for _, text in self.box.event_texts() if "month report created" in text]
        self.assertEqual(len(created), 13)
        self.assertEqual(created[0], "Hitwick: month report created : " + self.box.usage
                         + "/Jan.htm")

    def test_version_switch(self):
        done = self.run_with("/V", "/C", "/SITE=web1")
        self.assertRegex(done.stderr, rb"Hitwick version [0-9]+\.[0-9]+\.[0-9]+")
        self.assertEqual(done.returncode, 0)

    def test_version_is_not_shown_in_a_batch_run(self):
        for line in (("/V", "/BATCH", "/SITE=web1"), ("/SITE=web1", "/BATCH", "/V")):
            done = self.run_with(*line)
            self.assertNotIn(b"Hitwick version", done.stderr)
            self.assertEqual(done.returncode, 0)

    def test_site_selection_switch(self):
        for switch in ("/L", "x/list"):
            with self.subTest(switch):
                done = self.run_with(switch, "/BATCH", "/SITE=web1")
                self.assertRegex(done.stderr, rb"site selection cannot be shown")
                self.assertEqual(done.returncode, 0)
                self.assertHits(1)
        self.assertEqual(self.run_with("L", "/BATCH", "/SITE=web1").stderr, b"")

    def test_no_windows(self):
        done = self.run_with("/SITE=web1")
        self.assertEqual(done.returncode, 2)
        self.assertNotEqual(done.stderr, b"")
        self.assertEqual(self.box.usage_files(), {})

    def test_help_and_version(self):
        done = self.run_with("--version")
        self.assertEqual(done.returncode, 0)
        self.assertRegex(done.stdout, rb"[0-9]+\.[0-9]+\.[0-9]+")
        done = self.run_with("--help")
        self.assertEqual(done.returncode, 0)
        for switch in (b"/B", b"/C", b"/SITE="):
            self.assertIn(switch, done.stdout.upper())

    def test_entries_of_a_good_run(self):
        self.run_with("/BATCH", "/SITE=web1")
        levels = {level for level, _ in self.box.event_texts()}
        self.assertEqual(levels, {"information"})
        self.assertTrue(all(line.startswith(b"2026-01-15T12:00:00+00:00 ")
                            for line in self.box.events()))


if __name__ == "__main__":
    PROGRAM = take_program(__doc__)
    unittest.main()
