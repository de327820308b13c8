"""What all tests of the windows stand on: one desktop a process, one sandbox a test.

A test file calls `main()` when it is run:

    FILE_test.py --program PATH [--shots FOLDER] [unittest arguments]
"""

import os
import shutil
import subprocess
import sys
import unittest

import session
from program import CONFIGURATION, NOON, Desk, Program  # noqa: F401

__unittest = True  # keeps this file out of the tracebacks of failures
PROGRAM = ""
SHOTS = ""


def _take(arguments, option, default=""):
    if option not in arguments[:-1]:
        return default
    at = arguments.index(option)
    value = arguments[at + 1]
    del arguments[at:at + 2]
    return value


def read_command_line():
    """Takes the tests' own options out of the command line."""
    global PROGRAM, SHOTS
    PROGRAM = os.path.abspath(_take(sys.argv, "--program"))
    SHOTS = _take(sys.argv, "--shots")
    if not os.path.isfile(PROGRAM):
        sys.exit("usage: %s --program PATH [--shots FOLDER] [unittest arguments]" % sys.argv[0])


def copy_of_program(folder):
    """Copies the program, and the windows that it loads, into a folder; the copy's path."""
    source = os.path.dirname(os.path.realpath(PROGRAM))
    for name in os.listdir(source):
        if name == os.path.basename(PROGRAM) or name.endswith(".so"):
            shutil.copy(os.path.join(source, name), folder)
    return os.path.join(folder, os.path.basename(PROGRAM))


def main():
    unittest.main(module="__main__", argv=sys.argv)


def screenshot(name):
    """Writes what is on the screen to the folder of pictures, if there is one."""
    if not SHOTS:
        return
    os.makedirs(SHOTS, exist_ok=True)
    path = os.path.join(SHOTS, name + ".png")
    subprocess.run(["import", "-window", "root", path], check=False, stdin=subprocess.DEVNULL,
                   stderr=subprocess.DEVNULL, timeout=60)
    print("screenshot: " + path, file=sys.stderr)


read_command_line()


class UiTest(unittest.TestCase):
    """A sandbox with a year of logs and the site "web1"."""

    SETTINGS = None
    RULES = None
    maxDiff = None

    def setUp(self):
        self.desk = Desk()
        self.desk.__enter__()
        self.addCleanup(self.desk.__exit__)
        self.desk.add_log()
        self.desk.configure("web1", self.SETTINGS, self.RULES)

    def _callTestMethod(self, method):
        try:
            super()._callTestMethod(method)
        except unittest.SkipTest:
            raise
        except BaseException:
            screenshot(self.id().rpartition("__main__.")[2])
            raise

    def start(self, *arguments, path=None, **options):
        """Starts the program; at the test's end it is stopped and must have given no complaint."""
        program = Program(self.desk, path or PROGRAM, list(arguments), **options)
        self.addCleanup(self._finish, program)
        return program

    def open(self, *more, **options):
        """Starts it for the site "web1" and waits for the configuration window."""
        program = self.start("/SITE=web1", *more, **options)
        program.window()
        return program

    def _finish(self, program):
        program.kill()
        self.assertEqual(program.complaints(), [])

    def assertBox(self, program, text, button="OK", title="Hitwick"):
        """There is a box with exactly this text and title; presses its button."""
        box = program.box()
        self.assertEqual(box.text, text)
        self.assertEqual(box.title, title)
        box.press(button)

    def assertEvent(self, level, text):
        self.assertIn((level, text), self.desk.event_texts())

    def wait_stored(self, name, value, site="web1"):
        session.poll(lambda: self.desk.stored(site).get(name) == value,
                     lambda: "%s=%s to be stored (stored: %r)" % (name, value, self.desk.stored(site)))
