#!/usr/bin/env python3
"""A catch-up run started from the configuration window."""

import os
import re
import shutil
import subprocess
import unittest

import controls
import expected
import session
import ui_test
from program import SANITIZED
from ui_test import NOON, UiTest, main

MONTHS = ["Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"]
DISABLED = ("Save + Exit", "Save + Catch-Up", "On Demand Report", "Filter out records")
OLD = b"the page of last year\r\n"


class RunTest(UiTest):
    SETTINGS = {"GenerateCSV": "True", "MaxListSize": "5"}

    def setUp(self):
        super().setUp()
        self.desk.add_year_of_logs()

    def catch_up(self, **options):
        """Runs the catch-up from the window to its end; returns the exit code."""
        program = self.open(**options)
        program.button("Save + Catch-Up").click()
        return program.wait_end()

    def switch_run(self, extra=None):
        """The files of the same catch-up without windows."""
        done = self.desk.run(ui_test.PROGRAM, ["/C", "/SITE=web1"], NOON, extra=extra)
        self.assertEqual(done.returncode, 0, done.stderr)
        files = self.desk.usage_files()
        shutil.rmtree(self.desk.usage)
        os.mkdir(self.desk.usage)
        return files

    def add_long_logs(self, lines=1500):
        """So many lines that the run can be watched."""
        for year, month in [(25, month) for month in range(1, 13)] + [(26, 1)]:
            for day in range(1, 16):
                date = "20%02d-%02d-%02d" % (year, month, day)
                self.desk.add_log("u_ex%02d%02d%02d.log" % (year, month, day),
                                  [(date, "/p%d.htm" % (hit % 50)) for hit in range(lines)])


class CatchUpTest(RunTest):
    def test_pages_equal_those_of_the_switch(self):
        wanted = self.switch_run()
        self.assertEqual(self.catch_up(), 0)
        files = self.desk.usage_files()
        self.assertEqual(sorted(files), sorted(wanted))
        self.assertGreater(len(files), 14)
        for name, content in wanted.items():
            self.assertEqual(files[name], content, name)

    @unittest.skipIf(SANITIZED, "the preloaded clock aborts in another language")
    @unittest.skipUnless(shutil.which("localedef") and os.path.exists(
        "/usr/share/i18n/locales/de_DE"), "needs the sources of the locales (package locales)")
    def test_pages_equal_those_of_the_switch_in_another_language(self):
        locales = os.path.join(self.desk.root, "locales")
        os.mkdir(locales)
        subprocess.run(["localedef", "-i", "de_DE", "-f", "UTF-8", locales + "/de_DE.UTF-8"],
                       check=False, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                       stderr=subprocess.DEVNULL)
        extra = {"LC_ALL": "de_DE.UTF-8", "LOCPATH": locales, "LANGUAGE": "de"}
        wanted = self.switch_run(extra)
        self.assertEqual(self.catch_up(extra=extra), 0)
        files = self.desk.usage_files()
        self.assertEqual(sorted(files), sorted(wanted))
        self.assertIn("Okt.htm", files)
        for name, content in wanted.items():
            self.assertEqual(files[name], content, name)

    def test_edited_settings_count(self):
        program = self.open()
        program.text_box(expected.LIST_SIZE).fill("3")
        program.check_box(expected.CSV).click()
        program.button("Save + Catch-Up").click()
        self.assertEqual(program.wait_end(), 0)
        self.assertEqual(self.desk.stored()["MaxListSize"], "3")
        self.assertFalse([name for name in self.desk.usage_files() if name.endswith(".csv")])
        self.assertIn("index.htm", self.desk.usage_files())

    def test_nothing_is_opened_unasked(self):
        self.assertEqual(self.catch_up(), 0)
        self.assertEqual(self.desk.opened(), [])
        created = [text for _, text in self.desk.event_texts() if "month report created" in text]
        self.assertEqual(len(created), 13)

    def view_after(self):
        program = self.open()
        program.check_box("And view").click()
        controls.wait(lambda: program.check_box("And view").checked, "And view to be ticked")
        program.button("Save + Catch-Up").click()
        return program

    def test_and_view(self):
        self.assertEqual(self.view_after().wait_end(), 0)
        self.assertEqual(self.desk.opened(), [self.desk.usage + "/index.htm"])

    def test_and_view_that_fails_is_told(self):
        self.desk.set_opener(4)
        program = self.view_after()
        self.assertBox(program, "Cannot locate file '%s/index.htm'" % self.desk.usage)
        self.assertEqual(program.wait_end(), 0)

    @unittest.skipIf(SANITIZED, "the preloaded clock takes the exit code away")
    def test_a_page_that_was_not_written_is_not_opened(self):
        self.desk.write("usage/index.htm/in the way", "")
        self.assertEqual(self.view_after().wait_end(), 1)
        self.assertEqual(self.desk.opened(), [])


class DuringRunTest(RunTest):
    def setUp(self):
        super().setUp()
        self.add_long_logs()

    def watch(self, program, parts):
        """Looks at the status, the bar and the buttons of `parts` until the program ends.

        Returns the looks that began and ended during the run, and every status that was seen.
        """
        label, bar, buttons = parts
        seen, statuses = [], set()
        while program.process.poll() is None:
            try:
                before = label.text
                for button in buttons:
                    controls.refresh(button.accessible)
                    statuses.add(label.text)
                state = bar.value(), {button.name: button.enabled for button in buttons}
                seen.append((before, *state, label.text))
            except controls.GLib.Error:
                continue
        running = re.compile("Reading |Formatting |Finished report ")
        return [look[1:3] for look in seen
                if running.match(look[0]) and running.match(look[3])], statuses

    def test_the_window_tells_of_the_run(self):
        program = self.open()
        top = program.window()
        parts = (program.label("Current activity in progress."),
                 next(part for part in top.all_parts() if part.role == "progress bar"),
                 [program.button(name) for name in (*DISABLED, "Quit", "Help")])
        program.button("Save + Catch-Up").click()
        seen, statuses = self.watch(program, parts)
        self.assertEqual(program.wait_end(), 0)
        for pattern in (r"Reading u_ex\d{6}\.log", "(Formatting|Finished report) "
                        + re.escape(self.desk.usage) + r"/\w{3}\.htm"):
            self.assertTrue([status for status in statuses if re.fullmatch(pattern, status)],
                            "%s among %r" % (pattern, statuses))
        progress = [value for value, _ in seen]
        self.assertGreater(len(set(progress)), 2, progress)
        self.assertEqual(progress, sorted(progress))
        for _, enabled in seen[:-1]:
            self.assertEqual({name for name in enabled if enabled[name]}, {"Quit", "Help"})

    def pause_after(self, program, page):
        """Stops the program's process once it has replaced a page."""
        def replaced():
            with open(os.path.join(self.desk.usage, page), "rb") as file:
                return file.read() != OLD
        session.poll(replaced, page + " to be written", 120)
        program.pause()

    def middle(self, control):
        left, top, width, height = control.extents()
        return left + width // 2, top + height // 2

    def start_over_old_pages(self):
        """Starts a run that has something to replace, by a program without a help page."""
        for month in MONTHS:
            self.desk.write("usage/" + month + ".htm", OLD)
        self.desk.write("usage/index.htm", OLD)
        folder = os.path.join(self.desk.root, "program")
        os.mkdir(folder)
        program = self.start("/SITE=web1", path=ui_test.copy_of_program(folder))
        program.window()
        self.quit = self.middle(program.button("Quit"))
        self.help = self.middle(program.button("Help"))
        program.button("Save + Catch-Up").click()
        return program

    def assertWholePages(self, wanted):
        files = self.desk.usage_files()
        self.assertLessEqual(set(files), set(wanted) | {month + ".htm" for month in MONTHS})
        kept = [month for month in MONTHS if files[month + ".htm"] == OLD]
        for month in MONTHS[1:]:
            self.assertIn(files[month + ".htm"], (OLD, wanted[month + ".htm"]), month)
        self.assertTrue(files["Jan.htm"].rstrip().endswith(b"</html>"))
        self.assertTrue(files["index.htm"] == OLD
                        or files["index.htm"].rstrip().endswith(b"</html>"))
        for line in files.get("History.txt", b"").splitlines():
            self.assertEqual(len(line.split(b",")), 10, line)
        return kept

    def test_quit_leaves_whole_files(self):
        wanted = self.switch_run()
        program = self.start_over_old_pages()
        self.pause_after(program, "Mar.htm")
        controls.click_at(*self.quit)
        program.resume()
        self.assertIn(program.wait_end(), (0, 1))
        kept = self.assertWholePages(wanted)
        self.assertIn("Nov", kept)
        self.assertIn("Dec", kept)
        self.assertNotIn("Feb", kept)

    def test_closing_the_window_is_quitting(self):
        wanted = self.switch_run()
        program = self.start_over_old_pages()
        self.pause_after(program, "Mar.htm")
        controls.key("alt+F4")
        program.resume()
        self.assertIn(program.wait_end(), (0, 1))
        self.assertIn("Dec", self.assertWholePages(wanted))

    def test_help_during_the_run(self):
        program = self.start_over_old_pages()
        self.pause_after(program, "Mar.htm")
        controls.click_at(*self.help)
        program.resume()
        box = program.box()
        self.assertIn("help file", box.text)
        box.press()
        self.assertEqual(program.wait_end(), 0)
        self.assertNotIn(OLD, self.desk.usage_files().values())


if __name__ == "__main__":
    main()
