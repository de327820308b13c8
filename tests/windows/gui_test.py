#!/usr/bin/env python3
"""The windows of hitwick.exe under Wine, on a display of their own: what they hold and where, at
96 and 192 dots an inch, and a new user's walk from nothing to filtered reports.

    gui_test.py --build build/windows-mingw --linux build/server/hitwick [--prefix FOLDER]
                [--shots FOLDER] [unittest options]
"""

import argparse
import os
import pathlib
import shutil
import sys
import tempfile
import unittest

import desktop
from desktop import CONFIGURATION, Desktop, Program, key, session
from wine import Wine, run, windows_path

from run_cases import compare_files
from sandbox import ini_text

NOON = 1768478400  # 2026-01-15 12:00 UTC
HEADER = "#Fields: date time c-ip cs-method cs-uri-stem sc-status sc-bytes cs(User-Agent)\r\n"
DEFAULT_LOGS = r"C:\inetpub\logs\LogFiles\W3SVC1"
SITE = "Hitwick - Select which site"
ON_DEMAND = "Hitwick - On Demand Report"
NEW_USAGE_FOLDER = "Create new usage folder"
FILTERS = "Filters"
FILTER = "Filter Name"
LOG_FOLDER = "Where are the log files?"
USAGE_FOLDER = "Where do you want to publish the usage pages?"
# (class, accessible name) of what takes input in the configuration window.
CONFIGURATION_CONTROLS = {
    ("ListBox", "What sort of web server log files are in use?"),
    ("ListBox", LOG_FOLDER), ("Button", "Browse for log files"),
    ("ListBox", USAGE_FOLDER), ("Button", "Browse for usage pages"),
    ("Edit", "Maximum number of entries to show"),
    ("Button", "Omit correction for offset from UTC/GMT"), ("Button", "Show Usernames"),
    ("Button", "Generate CSV files for other analysis"), ("Button", "Save + Exit"),
    ("Button", "Save + Catch-Up"), ("Button", "And view"), ("Button", "View generated"),
    ("Button", "On Demand Report"), ("Button", "Filter out records"), ("Button", "Help"),
    ("Button", "Quit"), ("Edit", "Run daily at"), ("Button", "Add"),
}
INPUTS = ("Button", "Edit", "ListBox", "ComboBox")

options = None  # the command line's, set by main()
wine = None


def overlap(one, other):
    """How far two rectangles reach into each other, in pixels of the narrower direction."""
    return min(min(one[2], other[2]) - max(one[0], other[0]),
               min(one[3], other[3]) - max(one[1], other[1]))


def add_year_of_logs(folder):
    """One log for each of the first two days of thirteen months up to January 2026."""
    folder.mkdir(parents=True)
    for number, (year, month) in enumerate([(25, month) for month in range(1, 13)] + [(26, 1)]):
        for day in (1, 2):
            date = "20%02d-%02d-%02d" % (year, month, day)
            lines = ["%s 10:00:00 192.0.2.1 GET /page%d.htm 200 1000 Mozilla/5.0\r\n"
                     % (date, hit % 7) for hit in range(5 + number)]
            (folder / ("u_ex%02d%02d%02d.log" % (year, month, day))).write_text(
                HEADER + "".join(lines), encoding="utf-8", newline="")


class GuiTest(unittest.TestCase):
    """A folder on drive C: with the program in it, and a desktop for all tests of a class."""

    dots_per_inch = 96

    @classmethod
    def setUpClass(cls):
        cls.desktop = Desktop(wine, options.build / "window_reader.exe", cls.dots_per_inch)
        cls.addClassCleanup(cls.desktop.stop)

    def setUp(self):
        self.folder = wine.prefix / "drive_c" / "web"
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        shutil.rmtree(self.folder, ignore_errors=True)
        add_year_of_logs(self.folder / "logs")
        (self.folder / "www" / "docs").mkdir(parents=True)
        (self.folder / "program").mkdir()
        self.exe = shutil.copy(options.build / "hitwick.exe", self.folder / "program")
        self.forget_settings()
        self.addCleanup(self.forget_settings)

    def _callTestMethod(self, method):
        try:
            super()._callTestMethod(method)
        except BaseException:
            self.take_picture("failed-" + self.id().rpartition(".")[2])
            raise

    def forget_settings(self):
        wine("reg", "delete", r"HKCU\Software\VB and VBA Program Settings\Hitwick", "/f")
        for places in wine.prefix.glob("drive_c/users/*/AppData/Roaming/hitwick"):
            shutil.rmtree(places)

    def take_picture(self, name):
        if options.shots:
            options.shots.mkdir(parents=True, exist_ok=True)
            desktop.picture(options.shots / ("%s-%d.png" % (name, self.dots_per_inch)))

    def start(self, *arguments):
        program = Program(self.desktop, self.exe, *arguments, epoch=NOON)
        self.addCleanup(program.kill)
        return program

    def store_site(self):
        wine.store({"web1": {"IISLogDir": r"C:\web\logs", "UsageDir": r"C:\web\www"},
                    r"web1\Filters\docs": {"name": "docs", "includes": "True",
                                           "field": "cs-uri-stem", "pattern": "/docs/*"}})

    def open_menu(self, program, row):
        program.click_row(USAGE_FOLDER, row, button="right")
        session.poll(lambda: any(window.kind == desktop.MENU for window in program.windows()),
                     "the menu of the usage folders")
        key("Down", "Return")
        program.window(NEW_USAGE_FOLDER)


class Layout:
    """Every window: named controls, none over another or outside. For both scales."""

    def assert_laid_out(self, window):
        leaves = list(window.leaves())
        self.assertGreater(len(leaves), 2, window)
        for leaf in leaves:
            self.assertGreater(min(leaf.box[2] - leaf.box[0], leaf.box[3] - leaf.box[1]), 0, leaf)
            self.assertTrue(window.box[0] <= leaf.box[0] and window.box[1] <= leaf.box[1]
                            and leaf.box[2] <= window.box[2] and leaf.box[3] <= window.box[3],
                            (window, leaf))
        for at, leaf in enumerate(leaves):
            for other in leaves[at + 1:]:
                self.assertLessEqual(overlap(leaf.box, other.box), 0, (window, leaf, other))

    def check(self, program, title, picture):
        window = program.window(title)
        self.assert_laid_out(window)
        # The text box of a drop-down list goes by the list's name.
        inner = {child.handle for part in window.parts() if part.kind == "ComboBox"
                 for child in part.children}
        for part in window.parts():
            if part.kind in INPUTS and not part.is_group and part.handle not in inner:
                self.assertTrue(part.name, (part, title))
        self.take_picture(picture)
        return window

    def close(self, program, button, title):
        program.press_button(button, title)
        program.wait_closed(title)

    def test_every_window(self):
        self.store_site()
        program = self.start("/SITE=web1")
        window = self.check(program, CONFIGURATION, "configuration")
        self.assertEqual({(part.kind, part.name) for part in window.parts()
                          if part.kind in INPUTS and part.kind != "ComboBox" and not part.is_group},
                         CONFIGURATION_CONTROLS)
        self.assertEqual([part.caption for part in window.parts() if part.is_group],
                         ["Configuration (web1)", "Run daily at"])
        drives = [part for part in window.parts() if part.kind == "ComboBox"]
        self.assertEqual([drive.chosen for drive in drives], ["C:\\", "C:\\"])
        self.assertEqual(program.find("ListBox", LOG_FOLDER).chosen, "logs")
        self.open_menu(program, "www")
        self.check(program, NEW_USAGE_FOLDER, "new-folder")
        self.close(program, "Cancel", NEW_USAGE_FOLDER)
        program.press_button("On Demand Report")
        self.check(program, ON_DEMAND, "on-demand")
        self.close(program, "Close", ON_DEMAND)
        program.press_button("Filter out records")
        self.check(program, FILTERS, "filters")
        program.press_button("Edit docs", FILTERS)
        self.check(program, FILTER, "filter")
        include = program.find("Button", "Include", FILTER)
        self.assertTrue(include.checked)
        self.assertFalse(program.find("Button", "Exclude", FILTER).checked)
        self.assertEqual(program.find("ComboBox", "log records where", FILTER).chosen, "URL")
        self.assertEqual(program.find("Edit", "matches", FILTER).text, "/docs/*")
        self.close(program, "Cancel", FILTER)
        self.close(program, "Cancel", FILTERS)
        self.assertEqual(program.quit(), 0)
        program = self.start("/L")
        self.check(program, SITE, "site")
        self.assertEqual(program.find("ComboBox", "SiteName", SITE).rows, ["web1"])
        program.press_button("Cancel", SITE)
        program.press(program.box())  # no logs in the usual folder
        program.window()

    def test_the_edges_of_a_small_and_a_large_window(self):
        self.store_site()
        program = self.start("/SITE=web1")
        left, top, right, bottom = program.window().box
        for width, height in ((50, 50), (right - left + 300, bottom - top + 200)):
            desktop.xdotool("search", "--name", "^" + CONFIGURATION + "$", "windowsize", width,
                            height)
            self.assert_laid_out(program.window())
        self.assertGreater(program.window().box[2] - program.window().box[0], right - left)


class LayoutAt96(Layout, GuiTest):
    pass


class LayoutAt192(Layout, GuiTest):
    dots_per_inch = 192


class Walk(GuiTest):
    """A new user's way to the reports, as in the walk of the Linux program."""

    def setUp(self):
        super().setUp()
        shutil.copy(options.build / "HitwickHelper.dll", self.folder / "program")
        self.note_opened_pages()

    def note_opened_pages(self):
        self.opened = self.folder / "opened.txt"
        command = r"cmd.exe /c echo %1>>C:\web\opened.txt"
        # Wine does not look for types of files at the user's own.
        for name, value in ((".htm", "hitwick.page"),
                            (r"hitwick.page\shell\open\command", command)):
            code, _, errors = wine("reg", "add", "HKLM\\Software\\Classes\\" + name, "/ve", "/d",
                                   value, "/f")
            self.assertEqual(code, 0, errors)

    def wait_opened(self, *pages):
        def lines():
            text = self.opened.read_text() if self.opened.exists() else ""
            return [line.strip('"') for line in text.splitlines()]
        session.poll(lambda: lines() == ["C:\\web\\www\\Usage\\" + page for page in pages],
                     lambda: "%r to be opened (opened: %r)" % (pages, lines()))

    def assert_box(self, program, text):
        box = program.box()
        shown = "\n".join(part.text for part in box.parts() if part.kind == "Static" and part.text)
        self.assertEqual(shown, text)
        self.assertEqual(box.text, "Hitwick")
        program.press(box)

    def go_to(self, program, name, *path):
        """Walks a folder list from the root down."""
        chain = []
        for folder in ("C:\\", *path):
            # The first of the two clicks alone selects the folder.
            session.poll(lambda: folder in program.find("ListBox", name).rows,
                         lambda: "%r in %r" % (folder, program.find("ListBox", name).rows))
            program.click_row(name, folder, count=2)
            chain.append(folder)
            session.poll(lambda: program.find("ListBox", name).chosen == folder
                         and program.find("ListBox", name).rows[:len(chain)] == chain,
                         lambda: "the folder %r in %r" % (chain,
                                                          program.find("ListBox", name).rows))

    def first_start(self):
        program = self.start()
        self.assert_box(program, (
            "No IIS log files found in '{0}'. If this is the wrong directory reset registry "
            r"'My Computer\HKEY_CURRENT_USER\Software\VB and VBA Program Settings\Hitwick\INI"
            r"\IISLogDir'. Or delete to use default of {0}").format(DEFAULT_LOGS))
        program.window()
        return program

    def choose_folders(self, program):
        self.go_to(program, LOG_FOLDER, "web", "logs")
        self.go_to(program, USAGE_FOLDER, "web", "www")
        self.open_menu(program, "www")
        for typed, shown in (("Usag", "Usag"), ("e", "Usage")):  # over the proposed name
            desktop.xdotool("type", "--delay", "20", "--", typed)
            session.poll(lambda: program.find("Edit", NEW_USAGE_FOLDER, NEW_USAGE_FOLDER).text
                         == shown, "%r in the place of the proposed name" % shown)
        program.press_button("Create", NEW_USAGE_FOLDER)
        program.wait_closed(NEW_USAGE_FOLDER)
        session.poll(lambda: program.find("ListBox", USAGE_FOLDER).chosen == "Usage",
                     "the new folder to be chosen")

    def linux_pages(self):
        root = self.folder / "linux"
        (root / "usage").mkdir(parents=True)
        settings = root / "config" / "hitwick" / "settings.ini"
        settings.parent.mkdir(parents=True)
        settings.write_text(ini_text("INI", {"IISLogDir": str(self.folder / "logs"),
                                             "UsageDir": str(root / "usage")}, None),
                            encoding="utf-8")
        code, _, errors = run([options.linux, "/C"],
                              {"TZ": "UTC", "XDG_CONFIG_HOME": str(root / "config"),
                               "XDG_STATE_HOME": str(root / "state")}, NOON)
        self.assertEqual(code, 0, errors)
        return root / "usage"

    def catch_up_and_view(self, program):
        program.press_button("And view")
        session.poll(lambda: program.find("Button", "And view").checked, "And view to be ticked")
        program.press_button("Save + Catch-Up")
        self.assertEqual(program.wait_end(), 0)
        self.assertEqual(wine.stored("INI"), {
            "IISLogFormat": ("REG_SZ", "W3C"),
            "IISLogDir": ("REG_SZ", r"C:\web\logs"),
            "UsageDir": ("REG_SZ", r"C:\web\www\Usage"),
            "MaxListSize": ("REG_SZ", "100"),
            "UseUTC": ("REG_SZ", "False"),
            "ShowUsernames": ("REG_SZ", "False"),
            "GenerateCSV": ("REG_SZ", "False"),
        })
        self.wait_opened("index.htm")
        expected, found = ({path.name: path.read_bytes() for path in pages.iterdir()}
                           for pages in (self.linux_pages(), self.folder / "www" / "Usage"))
        self.assertGreater(len(found), 13)
        problems = compare_files(expected, found)
        self.assertFalse(problems, "\n".join(problems))

    def report_of_ten_days(self, program):
        program.press_button("On Demand Report")
        program.choose_row("To day", "10", ON_DEMAND)
        program.fill("Report name", "Ten days", ON_DEMAND)
        program.press_button("Create report", ON_DEMAND)
        self.wait_opened("index.htm", "Ten days.htm")
        page = (self.folder / "www" / "Usage" / "Ten days.htm").read_bytes()
        self.assertIn(b"1 - 10 January 2026", page)
        program.press_button("Close", ON_DEMAND)
        program.wait_closed(ON_DEMAND)

    def add_a_filter(self, program):
        program.press_button("Filter out records")
        program.press_button("Add", FILTERS)
        program.window(FILTER)
        # With the keyboard: a click would open the list.
        program.find("Edit", "matches", FILTER).click()
        session.poll(lambda: program.find("Edit", "matches", FILTER).focus, "the pattern's box")
        key("shift+Tab", "U")
        session.poll(lambda: program.find("ComboBox", "log records where", FILTER).chosen == "URL",
                     "the field")
        program.fill("matches", "*page3*", FILTER)
        program.press_button("OK", FILTER)
        program.press(program.box())  # a name is proposed
        program.press_button("OK", FILTER)
        program.wait_closed(FILTER)
        program.find("Button", "Edit Ex_URL_Xpage3X", FILTERS)
        program.press_button("Commit", FILTERS)
        program.wait_closed(FILTERS)
        rule = wine.stored(r"INI\Filters\Ex_URL_Xpage3X")
        self.assertEqual({name: text for name, (_, text) in rule.items()},
                         {"name": "Ex_URL_Xpage3X", "includes": "False", "field": "cs-uri-stem",
                          "pattern": "*page3*"})

    def test_without_the_helper_library_no_task_is_added(self):
        self.store_site()
        (self.folder / "program" / "HitwickHelper.dll").unlink()
        program = self.start("/SITE=web1")
        program.fill("Run daily at", "03:15")
        program.press_button("Add")
        self.assert_box(program, (
            "Unable to add task.\nModule not found.\n\nTime should be formatted as HH:MM:SS\n"
            "Or perhaps insufficient privilege, so as administrator, Control Panel->Add Scheduled "
            'task\nhitwick.exe  /BATCH /SITE="web1"'))
        self.assertEqual(program.quit(), 0)

    def test_from_nothing_to_filtered_reports(self):
        program = self.first_start()
        self.choose_folders(program)
        self.catch_up_and_view(program)
        program = self.start()
        self.report_of_ten_days(program)
        self.add_a_filter(program)
        self.assertEqual(program.quit(), 0)


def main():
    global options, wine
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    for name in ("build", "linux"):
        parser.add_argument("--" + name, type=pathlib.Path, required=True)
    parser.add_argument("--prefix", type=pathlib.Path)
    parser.add_argument("--shots", type=pathlib.Path, help="folder for pictures of the windows")
    options, rest = parser.parse_known_args()
    options.build = options.build.resolve(strict=True)
    options.linux = options.linux.resolve(strict=True)
    with tempfile.TemporaryDirectory(prefix="hitwick-wine-", ignore_cleanup_errors=True) as fresh:
        wine = Wine((options.prefix or pathlib.Path(fresh)).resolve())
        program = unittest.main(argv=[sys.argv[0], *rest], exit=False, verbosity=2)
    sys.exit(not program.result.wasSuccessful())


if __name__ == "__main__":
    main()
