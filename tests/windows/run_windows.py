#!/usr/bin/env python3
"""Runs the Windows program under Wine and looks at it from outside.

Settings go into the registry, runs are started as the daily task starts them, and what comes out
is compared with the golden cases and, for thirteen months of sample logs, with the pages of the
Linux program for the same logs, settings, date and zone.

    run_windows.py --windows build/windows-server/hitwick.exe --linux build/server/hitwick \\
                   --sample-logs build/server/sample_logs [--prefix FOLDER] [unittest options]
"""

import argparse
import os
import pathlib
import re
import shutil
import struct
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree

import program_file
from program_file import ProgramFile

sys.path.insert(1, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "e2e"))

from golden import Case, case_names  # noqa: E402
from run_cases import compare_files, filled_in, version_of  # noqa: E402
from sandbox import SITE_VALUES, Sandbox, ini_text  # noqa: E402
from wine import Wine, run, windows_path  # noqa: E402

# Parts of Windows itself; anything else would have to be shipped with the program.
SYSTEM_LIBRARIES = {"ADVAPI32", "COMCTL32", "COMDLG32", "GDI32", "KERNEL32", "MSIMG32", "MSVCRT",
                    "NETAPI32", "OLE32", "OLEACC", "OLEAUT32", "RPCRT4", "SHELL32", "SHLWAPI",
                    "USER32", "UXTHEME", "VERSION", "WINMM", "WINSPOOL.DRV", "WS2_32", "WSOCK32"}

# The page's list of filter rules stands in the store's order: that of writing in the settings file
# from which the golden cases come, that of the names in the registry.
FILTER_ROW = re.compile(rb"<tr><td><pre> [A-Za-z0-9_]+: (?:in|ex)clude where .*")

options = None  # the command line's, set by main()
wine = None


def hitwick(*switches, **settings):
    return wine(options.windows, *switches, **settings)


def with_sorted_filters(page):
    rows = iter(sorted(FILTER_ROW.findall(page)))
    return FILTER_ROW.sub(lambda _: next(rows), page)


def helper_library():
    return options.windows.with_name("HitwickHelper.dll")


class Files(unittest.TestCase):
    """What the program and the helper library say of themselves."""

    @classmethod
    def setUpClass(cls):
        cls.program = ProgramFile(options.windows.read_bytes())
        cls.library = ProgramFile(helper_library().read_bytes())

    def test_the_program_opens_no_console(self):
        self.assertEqual(self.program.subsystem, program_file.WINDOWS_SUBSYSTEM)

    def test_both_need_only_windows(self):
        for file in (self.program, self.library):
            libraries = file.libraries()
            self.assertTrue(libraries)
            foreign = {name for name in libraries
                       if name.upper().removesuffix(".DLL") not in SYSTEM_LIBRARIES}
            self.assertEqual(foreign, set())

    def test_the_library_has_one_entry(self):
        self.assertEqual(self.library.exports(), ["Hitwick_schedule"])
        self.assertEqual(self.program.exports(), [])

    def test_both_bear_the_programs_version(self):
        version = version_of(str(options.linux)).decode()
        numbers = (*map(int, version.split(".")), 0)
        for file, name, description in (
                (self.program, "hitwick.exe",
                 "Hitwick - Usage statistics from the W3C logs of IIS web servers"),
                (self.library, "HitwickHelper.dll", "Hitwick - adds the daily task")):
            with self.subTest(file=name):
                self.assertEqual(file.version(), (numbers, {
                    "CompanyName": "The Hitwick developers", "FileDescription": description,
                    "FileVersion": version, "InternalName": pathlib.Path(name).stem,
                    "LegalCopyright": "MIT licence", "OriginalFilename": name,
                    "ProductName": "Hitwick", "ProductVersion": version}))

    def test_the_manifest(self):
        (text,) = self.program.resources(program_file.MANIFEST).values()
        manifest = ElementTree.fromstring(text)

        def content(name):
            (element,) = manifest.iter("{http://schemas.microsoft.com/SMI/" + name)
            return element.text

        self.assertEqual(content("2019/WindowsSettings}activeCodePage"), "UTF-8")
        self.assertEqual(content("2016/WindowsSettings}longPathAware"), "true")
        self.assertEqual(content("2016/WindowsSettings}dpiAwareness"), "PerMonitorV2")
        (level,) = manifest.iter("{urn:schemas-microsoft-com:asm.v3}requestedExecutionLevel")
        self.assertEqual(level.attrib, {"level": "asInvoker", "uiAccess": "false"})
        (controls,) = manifest.iter("{urn:schemas-microsoft-com:asm.v1}assemblyIdentity")
        self.assertEqual(controls.get("name"), "Microsoft.Windows.Common-Controls")
        self.assertEqual(controls.get("version"), "6.0.0.0")

    def test_the_icon_in_four_sizes(self):
        icons = self.program.icons()
        self.assertEqual(sorted(icons), [16, 32, 48, 256])
        for width, image in icons.items():
            with self.subTest(width=width):
                if image.startswith(b"\x89PNG"):
                    self.assertEqual(struct.unpack_from(">II", image, 16), (width, width))
                else:
                    self.assertEqual(struct.unpack_from("<ii", image, 4), (width, 2 * width))
        self.assertEqual(self.library.resources(program_file.ICON), {})

    def test_the_icon_is_the_drawn_one(self):
        folder = pathlib.Path(__file__).resolve().parents[2] / "packaging/windows"
        with tempfile.TemporaryDirectory() as drawn:
            run([sys.executable, folder / "make_icon.py", drawn + "/hitwick.ico"], {})
            self.assertEqual(pathlib.Path(drawn, "hitwick.ico").read_bytes(),
                             (folder / "hitwick.ico").read_bytes())

    def test_the_messages_of_the_event_log(self):
        (table,) = self.program.resources(program_file.MESSAGE_TABLE).values()
        (blocks,) = struct.unpack_from("<I", table)
        found = [number for i in range(blocks)
                 for number in struct.unpack_from("<II", table, 4 + 12 * i)]
        self.assertEqual(set(found), {0x40000001, 0x80000002})
        self.assertEqual(table.decode("latin-1").replace("\0", "").count("%1\n"), 2)


class WindowsTest(unittest.TestCase):
    """A folder and a registry key of its own for each test."""

    site = "site1"

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="hitwick-windows-"))
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        self.clear(self.site)

    def clear(self, key):
        """Makes sure that a key exists neither before the test nor after it."""
        wine.forget(key)
        self.addCleanup(wine.forget, key)

    def make_folder(self, name):
        folder = self.folder / name
        folder.mkdir(parents=True)
        return folder

    def store_site(self, logs, usage, **values):
        wine.store({self.site: {"IISLogDir": windows_path(logs),
                                "UsageDir": windows_path(usage), **values}})


class CommandLine(WindowsTest):
    def test_standard_error_reaches_the_pipe(self):
        code, _, errors = hitwick("/BATCH", "/SITE")
        self.assertEqual(code, 2)
        self.assertIn("Format for site name switch is /SITE=NAME", errors)

    def test_entries_go_to_the_event_log_as_warning_and_information(self):
        _, _, trace = hitwick("/BATCH", "/SITE=" + self.site, debug="+eventlog")
        self.assertRegex(trace, r"trace:eventlog:ReportEventW L\"Hitwick: operating on site")
        self.assertRegex(trace, r"warn:eventlog:ReportEventW L\"Hitwick: No IIS log files found")

    def test_the_helper_library_is_not_loaded(self):
        _, _, trace = hitwick("/BATCH", "/SITE=" + self.site, debug="+loaddll")
        self.assertIn("Loaded L\"C:\\\\windows\\\\system32\\\\kernel32.dll\"", trace)
        self.assertNotIn("hitwickhelper", trace.lower())

    def test_entries_do_not_go_to_a_redirected_standard_error(self):
        _, _, errors = hitwick("/BATCH", "/SITE=" + self.site)
        self.assertNotIn("operating on site", errors)


class Settings(WindowsTest):
    def test_only_the_checked_values_are_written_back(self):
        logs, usage = self.make_folder("logs"), self.make_folder("usage")
        (logs / "u_ex160106.log").write_bytes(b"#Fields: date time c-ip\r\n")
        self.store_site(logs, usage)
        code, _, _ = hitwick("/BATCH", "/SITE=" + self.site)
        self.assertEqual(code, 0)
        self.assertEqual(wine.stored(self.site), {
            "IISLogFormat": ("REG_SZ", "W3C"),
            "IISLogDir": ("REG_SZ", windows_path(logs)),
            "UsageDir": ("REG_SZ", windows_path(usage)),
        })

    def test_values_added_at_a_prompt_are_obeyed(self):
        logs, usage = self.make_folder("logs"), self.make_folder("usage")
        (logs / "u_ex160106.log").write_bytes(b"#Fields: date time c-ip cs-method cs-uri-stem\r\n"
                                              b"2016-01-06 10:00:00 192.0.2.1 GET /a.htm\r\n"
                                              b"2016-01-06 10:00:00 192.0.2.1 POST /b.htm\r\n")
        wine.add_value(self.site, "IISLogDir", windows_path(logs))
        wine.add_value(self.site, "UsageDir", windows_path(usage))
        wine.add_value(self.site, "UseUTC", "True")
        wine.add_value(self.site, "GenerateCSV", "True")
        rule = self.site + r"\Filters\NoPosts"
        for name, text in (("name", "NoPosts"), ("includes", "False"), ("field", "cs-method"),
                           ("pattern", "POST")):
            wine.add_value(rule, name, text)
        noon = 1452254400  # 2016-01-08 12:00 UTC
        code, _, _ = hitwick("/BATCH", "/SITE=" + self.site, epoch=noon)
        self.assertEqual(code, 0)
        totals = (usage / "Jan-Summary.csv").read_bytes().split(b"\r\n")[0]
        self.assertEqual(totals, b'"Total Hits",0.125,1')
        self.assertIn(b"NoPosts: exclude where cs-method like POST", (usage / "Jan.htm").read_bytes())

    def test_values_that_are_no_text_are_understood_or_warned_of(self):
        logs, usage = self.make_folder("logs"), self.make_folder("usage")
        (logs / "u_ex160106.log").write_bytes(b"#Fields: date time c-ip cs-uri-stem sc-status\r\n"
                                              b"2016-01-06 10:00:00 192.0.2.1 /a.htm 200\r\n"
                                              b"2016-01-06 10:00:00 192.0.2.1 /b.htm 200\r\n")
        wine.add_value(self.site, "IISLogDir", windows_path(logs), "REG_EXPAND_SZ")
        wine.add_value(self.site, "UsageDir", windows_path(usage), "REG_EXPAND_SZ")
        wine.add_value(self.site, "MaxListSize", "1", "REG_DWORD")
        wine.add_value(self.site, "GenerateCSV", "54", "REG_BINARY")
        code, _, trace = hitwick("/BATCH", "/SITE=" + self.site, epoch=1452254400,
                                 debug="+eventlog")
        self.assertEqual(code, 0)
        self.assertRegex(trace, r"warn:eventlog:ReportEventW L\"Hitwick: Value '.*GenerateCSV' in "
                                "the registry is neither a text nor a number")
        page = (usage / "Jan.htm").read_bytes()
        self.assertIn(b"/a.htm", page)
        self.assertNotIn(b"/b.htm", page.split(b"name=urls>")[1].split(b"</table>")[0])
        self.assertEqual(wine.stored(self.site)["IISLogDir"][0], "REG_EXPAND_SZ")

    def test_a_folder_without_logs_ends_the_run(self):
        logs, usage = self.make_folder("logs"), self.make_folder("usage")
        self.store_site(logs, usage)
        code, _, _ = hitwick("/BATCH", "/SITE=" + self.site)
        self.assertEqual(code, 1)
        self.assertEqual(list(usage.iterdir()), [])

    def test_the_default_site_and_the_default_log_folder(self):
        self.clear("INI")
        logs = wine.prefix / "drive_c/inetpub/logs/LogFiles/W3SVC1"
        logs.mkdir(parents=True)
        self.addCleanup(shutil.rmtree, wine.prefix / "drive_c/inetpub")
        (logs / "ex160106.log").write_bytes(b"")
        code, _, _ = hitwick("/BATCH")
        self.assertEqual(code, 1)  # there is no usage folder
        self.assertEqual(wine.stored("INI"), {
            "IISLogFormat": ("REG_SZ", "W3C"),
            "IISLogDir": ("REG_SZ", r"C:\inetpub\logs\LogFiles\W3SVC1"),
        })

    def test_a_site_and_folders_outside_ascii(self):
        self.site = "гавань-日本"
        self.clear(self.site)
        logs, usage = self.make_folder("журналы"), self.make_folder("отчёты")
        (logs / "u_ex160106.log").write_bytes(b"")
        self.store_site(logs, usage)
        for _ in ("with the stored folders", "with those that the first run has written back"):
            code, _, _ = hitwick("/BATCH", "/SITE=" + self.site)
            self.assertEqual(code, 0)
            page = usage / "index.htm"
            self.assertIn(self.site.encode(), page.read_bytes())
            page.unlink()


class GoldenCases(unittest.TestCase):
    """The golden cases with their settings in the registry: exit code and every file."""

    # What stands in the environment of a case is not Windows' own, and neither is a locale's
    # source; and a quotation mark does not come through Wine as it would be typed at a Windows
    # prompt.
    @staticmethod
    def fits_windows(case):
        return (case.store and not case.environment and not case.has_locale
                and '"' not in case.command)

    @staticmethod
    def registry_keys(case, sandbox):
        settings = {**SITE_VALUES, **case.settings}
        values = {}
        for name, value in settings.items():
            if value is not None:
                placed = sandbox.placed(value)
                values[name] = windows_path(placed) if placed.startswith("/") else placed
        rules = {f"{case.site}\\Filters\\{rule['name']}": rule for rule in case.rules or []}
        return {case.site: values, **rules}

    def run_case(self, case, version):
        with Sandbox() as sandbox:
            case.stage(sandbox)
            wine.store(self.registry_keys(case, sandbox))
            self.addCleanup(wine.forget, case.site)
            code, _, _ = hitwick(*case.command.split(" "), zone=case.tz, epoch=case.epoch)
            wine.forget(case.site)
            self.assertEqual(code, case.exit)
            files, _ = case.expected()
            expected = {name: with_sorted_filters(filled_in(content, sandbox, version))
                        for name, content in files.items()}
            found = {name: with_sorted_filters(content)
                     for name, content in sandbox.usage_files().items()}
            problems = compare_files(expected, found)
            self.assertFalse(problems, "\n".join(problems))

    def test_each_case_gives_the_expected_files(self):
        version = version_of(str(options.linux))
        cases = [case for case in map(Case, case_names()) if self.fits_windows(case)]
        self.assertGreater(len(cases), 30)
        for case in cases:
            with self.subTest(case=case.name):
                self.run_case(case, version)


class SamePagesAsLinux(WindowsTest):
    """Both programs on the same logs: every file of the usage folder, byte for byte."""

    NOW = 1772339400  # 2026-03-01 04:30 UTC: on the first of a month two months are reported

    @classmethod
    def setUpClass(cls):
        cls.logs = pathlib.Path(tempfile.mkdtemp(prefix="hitwick-logs-"))
        cls.addClassCleanup(shutil.rmtree, cls.logs, ignore_errors=True)
        code, _, errors = run([options.sample_logs, "demo", cls.logs], {"TZ": "UTC"}, cls.NOW)
        assert code == 0, errors
        # What no web server writes: bytes that are no text, broken lines, a long token.
        with open(sorted(cls.logs.glob("*.log"))[-3], "ab") as log:
            log.write(bytes(range(1, 256)) + b"\r\n\r\n2026-02-30 25:61:61 - GET\n")
            log.write(b"2026-02-27 12:00:00 " + b"x" * 40000 + b" GET /\r\n")

    def linux_pages(self, switches, zone, values):
        usage = self.make_folder("linux/usage")
        values = {"IISLogDir": str(self.logs), "UsageDir": str(usage), **values}
        settings = self.make_folder("linux/config/hitwick") / "settings.ini"
        settings.write_text(ini_text(self.site, values, None), encoding="utf-8")
        environment = {"TZ": zone, "XDG_CONFIG_HOME": str(self.folder / "linux/config"),
                       "XDG_STATE_HOME": str(self.folder / "linux/state")}
        code, _, errors = run([options.linux, *switches], environment, self.NOW)
        self.assertEqual(code, 0, errors)
        return usage

    def windows_pages(self, switches, zone, values):
        usage = self.make_folder("windows/usage")
        self.store_site(self.logs, usage, **values)
        code, _, errors = hitwick(*switches, zone=zone, epoch=self.NOW)
        self.assertEqual(code, 0, errors)
        return usage

    def compare(self, switch, zone="UTC", **values):
        """Compares the two usage folders; returns the names of their files."""
        switches = [switch, "/SITE=" + self.site]
        expected, found = ({path.name: path.read_bytes() for path in pages.iterdir()}
                           for pages in (self.linux_pages(switches, zone, values),
                                         self.windows_pages(switches, zone, values)))
        problems = compare_files(expected, found)
        self.assertFalse(problems, "\n".join(problems))
        return sorted(found)

    def test_batch_run_on_the_first_of_a_month(self):
        self.assertEqual(self.compare("/BATCH"), ["Feb.htm", "History.txt", "Mar.htm", "index.htm"])

    def test_batch_run_in_a_zone_west_of_utc_is_still_in_the_month_before(self):
        self.assertEqual(self.compare("/BATCH", zone="America/New_York"),
                         ["Feb.htm", "History.txt", "index.htm"])

    def test_zone_of_half_hours_with_all_tables_and_csv_files(self):
        names = self.compare("/BATCH", zone="Asia/Kolkata", GenerateCSV="True",
                             ShowUsernames="True")
        self.assertIn("Annual.csv", names)

    def test_catch_up_run_writes_the_pages_of_a_year(self):
        pages = [name for name in self.compare("/C") if name.endswith(".htm")]
        self.assertEqual(len(pages), 13)  # the oldest month's page gives way to the newest one's


def main():
    global options, wine
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--windows", type=pathlib.Path, required=True, help="hitwick.exe")
    parser.add_argument("--linux", type=pathlib.Path, required=True, help="hitwick")
    parser.add_argument("--sample-logs", type=pathlib.Path, required=True)
    parser.add_argument("--prefix", type=pathlib.Path,
                        help="Wine's folder, made when missing (default: a new one for this run)")
    options, rest = parser.parse_known_args()
    for name in ("windows", "linux", "sample_logs"):
        setattr(options, name, getattr(options, name).resolve(strict=True))
    with tempfile.TemporaryDirectory(prefix="hitwick-wine-", ignore_cleanup_errors=True) as fresh:
        wine = Wine((options.prefix or pathlib.Path(fresh)).resolve())
        wine.start()
        try:
            program = unittest.main(argv=[sys.argv[0], *rest], exit=False, verbosity=2)
        finally:
            wine.stop()
    sys.exit(not program.result.wasSuccessful())


if __name__ == "__main__":
    main()
