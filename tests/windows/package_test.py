#!/usr/bin/env python3
"""Installs, upgrades and removes the packages for Windows under Wine, in a prefix of their own.

What was on the disk and in the registry before is compared with what is there afterwards.

    package_test.py --build build/windows-server --packages build/windows-server/packages
                    [unittest options]
"""

import argparse
import contextlib
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import time
import unittest
import zipfile

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(1, str(HERE.parent / "e2e"))
sys.path.insert(2, str(HERE.parents[1] / "packaging/windows"))

import package  # noqa: E402
import shell_link  # noqa: E402
import snapshot  # noqa: E402
from program_file import ProgramFile  # noqa: E402
from wine import BRANCH, Wine  # noqa: E402

UNINSTALL = r"Software\Microsoft\Windows\CurrentVersion\Uninstall\Hitwick"
ALL_SETTINGS = BRANCH.rpartition("\\")[0]
EVENT_SOURCE = r"HKLM\SYSTEM\CurrentControlSet\Services\EventLog\Application\Hitwick"
FAILED = 2
OLD_VERSION = "0.0.1"
WAIT_SECONDS = 60
# The uninstaller works in a copy of itself in a temporary folder, which the next start of the system
# removes. The others are Wine's: what it notes of the hardware at every start.
NOT_OURS = re.compile(r"/Temp/~nsu|PendingFileRenameOperations|^windows/inf/[^/]*\.pnf$"
                      r"|CurrentControlSet\\+Control\\+Class\\+{")

options = None  # the command line's, set by main()
wine = None
untouched = None  # files and registry before anything was installed


class Place:
    """Where an installation puts its things, and the switches that choose it."""

    def __init__(self, root, folder, start_menu, switches=()):
        self.root = root
        self.windows_folder = folder
        self.folder = wine.prefix / "drive_c" / folder.removeprefix("C:\\").replace("\\", "/")
        self.start_menu = wine.prefix / "drive_c" / start_menu
        self.switches = switches

    @property
    def program(self):
        return self.folder / "hitwick.exe"

    def files(self):
        return {path.relative_to(self.folder).as_posix() for path in self.folder.rglob("*")
                if path.is_file()}

    def links(self):
        return {path.name: shell_link.read(path.read_bytes())
                for path in self.start_menu.glob("*Hitwick*")}

    def uninstall_values(self):
        return values_of(self.root + "\\" + UNINSTALL)


def all_users(folder=r"C:\Program Files\Hitwick", switches=()):
    return Place("HKLM", folder, "ProgramData/Microsoft/Windows/Start Menu/Programs", switches)


def one_user():
    (home,) = (path for path in (wine.prefix / "drive_c/users").iterdir() if path.name != "Public")
    local = rf"C:\users\{home.name}\AppData\Local"
    return Place("HKCU", local + r"\Programs\Hitwick",
                 f"users/{home.name}/AppData/Roaming/Microsoft/Windows/Start Menu/Programs",
                 ("/CurrentUser",))


def values_of(key):
    """The values of a key: {name: text}; empty when there is no such key."""
    _, output, _ = wine("reg", "query", key)
    rows = (line.strip().split("    ", 2) for line in output.splitlines() if line[:4] == "    ")
    return {row[0]: row[2] for row in rows if len(row) == 3}


def wait_until(condition):
    end = time.monotonic() + WAIT_SECONDS
    while not condition():
        if time.monotonic() > end:
            raise TimeoutError(condition)
        time.sleep(0.1)


def install(place, setup=None):
    """The exit code of the setup, which asks nothing."""
    return wine(setup or options.setup, "/S", *place.switches)[0]


def uninstall(place, *switches):
    """Removes the program as Windows' list of programs does without asking. The uninstaller works
    on in a copy of itself, of which nothing is to be left after the next start."""
    code, _, _ = wine(place.folder / "uninstall.exe", "/S", *switches)
    wait_until(lambda: not (place.folder / "uninstall.exe").exists())
    wait_until(lambda: not values_of(place.root + "\\" + UNINSTALL))
    return code


def look():
    """Files and registry. The prefix is stopped meanwhile, which writes the registry out."""
    wine.stop()
    seen = [{name: content for name, content in found.items() if not NOT_OURS.search(str(name))}
            for found in (snapshot.files(wine.prefix), snapshot.registry(wine.prefix))]
    wine.start()
    return seen


class OldPackage:
    """A setup of an earlier version, whose program runs until its input ends."""

    def __init__(self, patience=60):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="hitwick-old-"))
        stage = self.folder / "stage"
        stage.mkdir()
        package.fill_stage(options.build, stage)
        shutil.copy(options.build / "stay.exe", stage / "hitwick.exe")
        self.setup = self.folder / "hitwick-old-setup.exe"
        package.make_setup(stage, OLD_VERSION, self.setup, PATIENCE=patience)

    def remove(self):
        shutil.rmtree(self.folder)


class Packages(unittest.TestCase):
    """What is in the two files, without installing anything."""

    def test_their_names(self):
        version = package.version_of(options.build)
        self.assertEqual({path.name for path in options.packages.glob("*windows*")},
                         {f"hitwick-{version}-windows-setup.exe", f"hitwick-{version}-windows.zip"})

    def test_the_zip_holds_what_is_installed(self):
        version = package.version_of(options.build)
        with zipfile.ZipFile(options.archive) as archive, tempfile.TemporaryDirectory() as folder:
            self.assertIsNone(archive.testzip())
            stage = pathlib.Path(folder)
            package.fill_stage(options.build, stage)
            expected = {f"hitwick-{version}/{path.relative_to(stage).as_posix()}": path.read_bytes()
                        for path in package.files_of(stage)}
            self.assertEqual({name: archive.read(name) for name in archive.namelist()}, expected)
            self.assertLessEqual({f"hitwick-{version}/{name}" for name in
                                  ("hitwick.exe", "HitwickHelper.dll", "index.htm", "LICENSE.txt")},
                                 set(expected))

    def test_both_are_made_the_same_again(self):
        with tempfile.TemporaryDirectory() as folder:
            for again, made in zip(package.make_packages(options.build, pathlib.Path(folder)),
                                   (options.setup, options.archive)):
                self.assertEqual(again.read_bytes(), made.read_bytes(), made.name)

    def test_the_setup_bears_the_version(self):
        numbers, texts = ProgramFile(options.setup.read_bytes()).version()
        version = package.version_of(options.build)
        self.assertEqual(numbers, (*map(int, version.split(".")), 0))
        self.assertEqual(texts["ProductVersion"], version)
        self.assertEqual(texts["FileDescription"], "Hitwick setup")


class SetupTest(unittest.TestCase):
    """Each test starts without an installation and leaves none."""

    maxDiff = None

    def setUp(self):
        self.places = []
        self.addCleanup(self.remove_installations)

    def remove_installations(self):
        wine("reg", "delete", ALL_SETTINGS, "/f")
        for place in self.places:
            if (place.folder / "uninstall.exe").exists():
                uninstall(place)
            shutil.rmtree(place.folder, ignore_errors=True)

    def install(self, place, setup=None):
        self.places.append(place)
        self.assertEqual(install(place, setup), 0)

    def check_installed(self, place):
        """Everything but the event source."""
        version = package.version_of(options.build)
        with zipfile.ZipFile(options.archive) as archive:
            packed = {name.partition("/")[2] for name in archive.namelist()}
        self.assertEqual(place.files(), packed | {"uninstall.exe"})
        program = place.windows_folder + r"\hitwick.exe"
        self.assertEqual(place.links(), {
            "Hitwick.lnk": (program, "", place.windows_folder),
            "Hitwick - choose site.lnk": (program, "/L", place.windows_folder)})
        values = place.uninstall_values()
        self.assertGreater(int(values.pop("EstimatedSize"), 16), 1000)
        uninstaller = rf'"{place.windows_folder}\uninstall.exe"'
        self.assertEqual(values, {
            "DisplayName": "Hitwick", "DisplayVersion": version, "DisplayIcon": program,
            "Publisher": "The Hitwick developers", "InstallLocation": place.windows_folder,
            "UninstallString": uninstaller, "QuietUninstallString": uninstaller + " /S",
            "NoModify": "0x1", "NoRepair": "0x1"})
        code, output, _ = wine(place.program, "--version")
        self.assertEqual((code, output.strip()), (0, "Hitwick " + version))

    def check_left(self, *names):
        """Nothing has come or gone or changed since before the installation but the things of
        these names."""
        for old, new in zip(untouched, look()):
            left = snapshot.differences(old, new)
            self.assertEqual({name: change for name, change in left.items()
                              if not any(part in str(name) for part in names)}, {})


class AllUsers(SetupTest):
    def test_what_the_user_made_stays_and_nothing_else(self):
        place = all_users()
        self.install(place)
        self.check_installed(place)
        self.assertEqual(values_of(EVENT_SOURCE), {
            "EventMessageFile": r"C:\Program Files\Hitwick\hitwick.exe", "TypesSupported": "0x7"})
        wine.store({"web1": {"IISLogDir": r"C:\logs"}})
        self.assertEqual(wine(place.program, "/BATCH", "/SITE=web1")[0], 1)
        (place.folder / "notes.txt").write_bytes(b"mine")
        self.assertEqual(uninstall(place), 0)
        self.assertEqual(place.files(), {"notes.txt"})
        self.assertEqual(wine.stored("web1")["IISLogDir"], ("REG_SZ", r"C:\logs"))
        self.check_left("VB and VBA Program Settings", "Program Files/Hitwick")

    def test_settings_and_event_sources_of_others_stay(self):
        place = all_users()
        self.install(place)
        other = BRANCH.replace("Hitwick", "Another")
        self.addCleanup(wine, "reg", "delete", ALL_SETTINGS, "/f")
        self.addCleanup(wine, "reg", "delete", EVENT_SOURCE, "/f")
        wine("reg", "add", other, "/v", "kept", "/d", "yes", "/f")
        wine("reg", "add", EVENT_SOURCE, "/v", "EventMessageFile", "/d", r"D:\hitwick.exe", "/f")
        wine.store({"web1": {"IISLogDir": r"C:\logs"}})
        self.assertEqual(uninstall(place, "/RemoveSettings"), 0)
        self.assertEqual(values_of(other), {"kept": "yes"})
        self.assertEqual(wine.stored("web1"), {})
        self.assertEqual(values_of(EVENT_SOURCE)["EventMessageFile"], r"D:\hitwick.exe")

    def test_another_folder(self):
        # In two words: NSIS wants this switch without quotation marks whatever it holds.
        place = all_users(r"C:\Web tools\Сайты", (r"/D=C:\Web", r"tools\Сайты"))
        self.install(place)
        self.assertEqual(wine(place.program, "--version")[0], 0)
        self.assertEqual({folder for _, _, folder in place.links().values()},
                         {place.windows_folder})
        self.assertFalse(all_users().folder.exists())
        self.assertEqual(uninstall(place), 0)
        self.assertFalse(place.folder.exists())
        place.folder.parent.rmdir()  # was empty: the setup made it, at the user's word


class OneUser(SetupTest):
    def test_nothing_stays_when_the_settings_may_go(self):
        place = one_user()
        self.install(place)
        self.check_installed(place)
        self.assertEqual(values_of(EVENT_SOURCE), {})
        self.assertEqual(values_of("HKLM\\" + UNINSTALL), {})
        wine.store({"web1": {"IISLogDir": r"C:\logs"}, r"web1\Filters\rule": {"name": "rule"}})
        places = wine.prefix / "drive_c" / place.start_menu.parents[3] / "hitwick/windows.ini"
        places.parent.mkdir()
        places.write_bytes(b"[Persistent_Options]\n")
        self.assertEqual(uninstall(place, "/RemoveSettings"), 0)
        self.check_left()


class Upgrade(SetupTest):
    @classmethod
    def setUpClass(cls):
        cls.old = OldPackage()
        cls.addClassCleanup(cls.old.remove)

    @contextlib.contextmanager
    def running(self, place):
        """The installed program while it runs."""
        with subprocess.Popen(["wine", str(place.program)], env=wine.environment(),
                              stdin=subprocess.PIPE, stdout=subprocess.PIPE) as process:
            self.assertIn(b"running", process.stdout.readline())
            yield process
            process.stdin.close()

    def test_a_task_and_the_settings_survive(self):
        place = all_users()
        self.install(place, self.old.setup)
        self.assertEqual(place.uninstall_values()["DisplayVersion"], OLD_VERSION)
        wine.store({"web1": {"IISLogDir": r"C:\logs"}})
        add_task = [options.build / "add_task.exe", place.windows_folder, "web1-Hitwick-020000"]
        self.assertEqual(wine(*add_task)[1].strip(), "0")
        task = wine.prefix / "drive_c/windows/system32/tasks/web1-Hitwick-020000"
        self.addCleanup(task.unlink, missing_ok=True)
        registered = task.read_bytes()
        self.install(place)
        self.check_installed(place)
        self.assertEqual(task.read_bytes(), registered)
        self.assertEqual(wine.stored("web1"), {"IISLogDir": ("REG_SZ", r"C:\logs")})
        self.assertEqual(wine(*add_task)[1].strip(), "0")

    def test_it_stays_in_the_folder_that_was_chosen_once(self):
        self.install(all_users(r"C:\Statistics", (r"/D=C:\Statistics",)), self.old.setup)
        self.install(all_users(r"C:\Statistics"))
        self.check_installed(self.places[-1])
        self.assertFalse(all_users().folder.exists())

    def test_it_waits_for_a_running_program(self):
        place = all_users()
        self.install(place, self.old.setup)
        with self.running(place) as process:
            setup = subprocess.Popen(["wine", str(options.setup), "/S"], env=wine.environment(),
                                     stderr=subprocess.DEVNULL)
            with self.assertRaises(subprocess.TimeoutExpired):
                setup.wait(3)
            process.stdin.close()
            self.assertEqual(setup.wait(WAIT_SECONDS), 0)
        self.check_installed(place)

    def test_it_gives_up_and_changes_nothing(self):
        impatient = OldPackage(patience=1)
        self.addCleanup(impatient.remove)
        place = all_users()
        self.install(place, impatient.setup)
        installed = snapshot.files(wine.prefix)
        with self.running(place):
            self.assertEqual(install(place, impatient.setup), FAILED)
            wine(place.folder / "uninstall.exe", "/S")
            time.sleep(4)
            self.assertEqual({name: content for name, content in
                              snapshot.files(wine.prefix).items() if "Temp" not in name},
                             {name: content for name, content in installed.items()
                              if "Temp" not in name})
            self.assertEqual(place.uninstall_values()["DisplayVersion"], OLD_VERSION)


def main():
    global options, wine, untouched
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--build", type=pathlib.Path, required=True)
    parser.add_argument("--packages", type=pathlib.Path, required=True)
    options, rest = parser.parse_known_args()
    options.build = options.build.resolve(strict=True)
    options.packages = options.packages.resolve(strict=True)
    (options.setup,) = options.packages.glob("*-setup.exe")
    (options.archive,) = options.packages.glob("*.zip")
    with tempfile.TemporaryDirectory(prefix="hitwick-wine-", ignore_cleanup_errors=True) as fresh:
        wine = Wine(pathlib.Path(fresh) / "prefix")
        try:
            wine.start()
            wine.restart()  # the first start of a prefix leaves some things to the second
            untouched = look()
            program = unittest.main(argv=[sys.argv[0], *rest], exit=False, verbosity=2)
        finally:
            wine.stop()
    sys.exit(not program.result.wasSuccessful())


if __name__ == "__main__":
    main()
