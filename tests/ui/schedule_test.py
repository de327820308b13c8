#!/usr/bin/env python3
"""The daily task: what the add button writes into the crontab, and what it says.

The crontab is a stand-in here; `crontab_test.py` uses the real one.
"""

import os
import re
import subprocess

import controls
import expected
import ui_test
from ui_test import CONFIGURATION, UiTest, main

HOSTILE = "a$(touch${IFS}x)`id`'&%b"


def success(when):
    return ("Scheduled at " + when
            + "\nTo remove use Control Panel -> Scheduled Tasks")


def failure(reason, parameters):
    return ("Unable to add task.\n" + reason + "\n\nTime should be formatted as HH:MM:SS\n"
            "Or perhaps insufficient privilege, so as administrator, Control Panel->Add Scheduled "
            "task\n" + os.path.basename(ui_test.PROGRAM) + " " + parameters)


def shell_command(line):
    """What cron hands to the shell: the line without its five fields; "%" ends it unless it
    stands behind a backslash."""
    command = line.split(None, 5)[5]
    assert not re.search(r"(?<!\\)%", command), command
    return command.replace("\\%", "%")


class ScheduleTest(UiTest):
    def add(self, program, when=None):
        if when is not None:
            program.text_box("Run daily at").fill(when)
            program.text_box("Run daily at").wait_text(when)
        program.button("Add").click()

    def table(self):
        if not os.path.exists(self.desk.crontab):
            return ""
        with open(self.desk.crontab, encoding="utf-8") as file:
            return file.read()

    def tasks(self):
        """(comment, line) of each task."""
        lines = self.table().splitlines()
        return [(lines[at - 1], line) for at, line in enumerate(lines)
                if line and not line.startswith("#")]

    def assertScheduled(self, program, when, fields, name):
        self.add(program, when)
        self.assertBox(program, success(when))
        comment, line = self.tasks()[-1]
        self.assertTrue(comment.startswith("#"), comment)
        self.assertIn(name, comment)
        self.assertEqual(line.split()[:5], fields.split())

    def test_first_time_offered(self):
        program = self.open()
        self.add(program)
        self.assertBox(program, success("02:00:00"))
        (comment, line), = self.tasks()
        self.assertIn("web1-Hitwick-020000", comment)
        self.assertEqual(line.split()[:5], ["0", "2", "*", "*", "*"])
        self.assertTrue(program.button("Add").enabled)

    def test_times(self):
        program = self.open()
        self.assertScheduled(program, "02:30:45", "30 2 * * *", "web1-Hitwick-023045")
        self.assertScheduled(program, "23:59:59", "59 23 * * *", "web1-Hitwick-235959")
        self.assertScheduled(program, "7:05", "5 7 * * *", "web1-Hitwick-070500")
        self.assertScheduled(program, "00:00", "0 0 * * *", "web1-Hitwick-000000")
        self.assertEqual(len(self.tasks()), 4)

    def test_not_a_time_of_day(self):
        program = self.open()
        for when in ("noon", "24:00", "12:60", "12:00:60", "", "12"):
            with self.subTest(when=when):
                self.add(program, when)
                self.assertBox(program, failure("Not a time of day", ' /BATCH /SITE="web1"'))
        self.assertEqual(self.table(), "")

    def test_the_same_task_is_replaced_and_other_lines_stay(self):
        before = "# mine\n\n17 *\t* * *  root  cd / && x %a\\%b\nMAILTO=\"\"\n# no line end"
        self.desk.write("crontab", before)
        program = self.open()
        self.add(program)
        self.assertBox(program, success("02:00:00"))
        once = self.table()
        self.assertTrue(once.startswith(before), once)
        self.add(program)
        self.assertBox(program, success("02:00:00"))
        self.assertEqual(self.table(), once)

    def run_line(self, line):
        """Runs a task's command as cron would, at this very moment: the settings and the event log
        of the sandbox are found only if the line says where they are."""
        home = os.path.join(self.desk.root, "home")
        env = {"HOME": home, "PATH": "/usr/bin:/bin", "SHELL": "/bin/sh", "LOGNAME": "tester"}
        for name, value in self.desk.environment().items():
            if name.startswith(("ASAN_", "LSAN_", "UBSAN_")):
                env[name] = value
        return subprocess.run(["/bin/sh", "-c", shell_command(line)], env=env, cwd=home,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, timeout=120, check=False)

    def test_the_line_runs_the_site(self):
        program = self.open()
        self.add(program)
        self.assertBox(program, success("02:00:00"))
        self.assertEqual(program.quit(), 0)
        (_, line), = self.tasks()
        self.assertIn(os.path.realpath(ui_test.PROGRAM), line)
        done = self.run_line(line)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertIn("index.htm", self.desk.usage_files())

    def test_the_line_keeps_language_and_zone(self):
        program = self.open(zone="Europe/Berlin")
        self.add(program)
        self.assertBox(program, success("02:00:00"))
        (_, line), = self.tasks()
        self.assertRegex(line, r"LC_ALL=\W?C\b")
        self.assertRegex(line, r"TZ=\W?Europe/Berlin")

    def test_the_default_site_has_no_switch(self):
        self.desk.configure("INI")
        program = self.start()
        program.window()
        self.add(program)
        self.assertBox(program, success("02:00:00"))
        (comment, line), = self.tasks()
        self.assertIn("Hitwick-020000", comment)
        self.assertNotIn("INI", comment)
        self.assertIn("/BATCH", line)
        self.assertNotIn("/SITE", line)
        done = self.run_line(line)
        self.assertEqual(done.returncode, 0, done.stderr)

    def test_a_failure_of_the_default_site_shows_its_parameters(self):
        self.desk.configure("INI")
        program = self.start()
        program.window()
        self.add(program, "never")
        self.assertBox(program, failure("Not a time of day", " /BATCH"))

    def test_a_hostile_site_name_is_no_command(self):
        self.desk.configure(HOSTILE)
        program = self.start("/SITE=" + HOSTILE)
        program.window()
        self.add(program)
        self.assertBox(program, success("02:00:00"))
        self.assertEqual(program.quit(), 0)
        (_, line), = self.tasks()
        done = self.run_line(line)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertEqual(os.listdir(os.path.join(self.desk.root, "home")), [])
        self.assertEqual([text for _, text in self.desk.event_texts()].count(
            "Hitwick: operating on site '%s'" % HOSTILE), 2)

    def test_a_site_that_the_switch_cannot_carry(self):
        self.desk.configure("My Site")
        program = self.start("/L")
        program.window(expected.SITE)
        program.find("combo box", None, expected.SITE).choose_row("My Site")
        program.button("Select", expected.SITE).click()
        program.window()
        self.add(program)
        self.assertBox(program, failure("The site's name cannot stand in a command line",
                                        ' /BATCH /SITE="My Site"'))
        self.assertEqual(self.table(), "")

    def assertFails(self, stand_in=None):
        """With this program for crontab, or none, adding fails and the window goes on."""
        if stand_in:
            self.desk.stand_in("crontab", stand_in)
        program = self.open(extra=None if stand_in else self.desk.without("crontab"))
        self.add(program)
        box = program.box()
        self.assertRegex(box.text, r"\AUnable to add task\.\n[^\n].*\n\nTime should be formatted as "
                         r"HH:MM:SS\nOr perhaps ")
        box.press()
        self.assertTrue(program.button("Add").enabled)
        self.assertIn(CONFIGURATION, program.titles())

    def test_crontab_refuses(self):
        self.assertFails("#!/bin/sh\necho 'You (tester) are not allowed to use this program' >&2\n"
                         "exit 1\n")

    def test_a_crontab_that_cannot_be_stored(self):
        self.assertFails("#!/bin/sh\n[ \"$1\" = -l ] && exit 0\ncat >/dev/null\n"
                         "echo 'No space left on device' >&2\nexit 1\n")

    def test_no_crontab_program(self):
        self.assertFails()

    def test_an_unreadable_crontab_is_not_overwritten(self):
        self.desk.write("crontab", "1 1 * * * mine\n")
        record = os.path.join(self.desk.root, "written")
        self.assertFails("#!/bin/sh\n[ \"$1\" = -l ] && { echo 'crontab: I/O error' >&2; exit 1; }\n"
                         "cat >'%s'\n" % record)
        self.assertFalse(os.path.exists(record))


if __name__ == "__main__":
    main()
