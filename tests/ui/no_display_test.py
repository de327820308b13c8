#!/usr/bin/env python3
"""Starts without a display, and runs that must not touch one.

    no_display_test.py --program PATH [unittest arguments]

They need no desktop of their own.
"""

import os
import socket
import sys
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "e2e"))
from sandbox import Sandbox  # noqa: E402

PROGRAM = ""
NOON = 1768478400  # 2026-01-15 12:00 UTC
LOG = ("#Fields: date time c-ip cs-uri-stem sc-status sc-bytes\n"
       "2026-01-10 10:00:00 192.0.2.1 /good.htm 200 1000\n")


class Listener:
    """Stands in a display's place and notes whether anyone calls."""

    def __enter__(self):
        self.socket = socket.socket(socket.AF_UNIX)
        for number in range(700, 800):
            try:
                self.socket.bind("\0/tmp/.X11-unix/X%d" % number)
                break
            except OSError:
                continue
        self.socket.listen(8)
        self.socket.setblocking(False)
        self.display = ":%d" % number
        return self

    def __exit__(self, *_):
        self.socket.close()

    def was_called(self):
        try:
            self.socket.accept()[0].close()
            return True
        except BlockingIOError:
            return False


class NoDisplayTest(unittest.TestCase):
    def setUp(self):
        self.box = Sandbox()
        self.box.__enter__()
        self.addCleanup(self.box.__exit__)
        self.box.configure("web1")
        self.box.write("logs/u_ex260110.log", LOG)

    def run_program(self, *arguments, **extra):
        extra.setdefault("LSAN_OPTIONS", os.environ.get("LSAN_OPTIONS", "") + ":exitcode=0")
        extra.setdefault("XDG_RUNTIME_DIR", self.box.root)
        clock = NOON if {"/BATCH", "/C"} & set(arguments) else None
        return self.box.run(PROGRAM, list(arguments), clock, extra=extra, timeout=60)

    def assertNotStarted(self, done):
        self.assertEqual(done.returncode, 2, done.stderr)
        self.assertRegex(done.stderr, rb"(?i)display|window")
        self.assertIn(b"Hitwick", done.stderr)
        self.assertNotRegex(done.stderr, rb"CRITICAL|assert|ERROR: AddressSanitizer|runtime error")
        self.assertEqual(self.box.usage_files(), {})

    def test_interactive_without_a_display(self):
        self.assertNotStarted(self.run_program("/SITE=web1"))

    def test_interactive_with_a_display_that_is_not_there(self):
        self.assertNotStarted(self.run_program("/SITE=web1", DISPLAY=":798",
                                               WAYLAND_DISPLAY="nobody"))

    def test_interactive_without_arguments(self):
        self.assertNotStarted(self.run_program())

    def test_site_selection_without_a_display(self):
        self.assertNotStarted(self.run_program("/L"))

    def test_batch_and_catch_up_need_none(self):
        for arguments in (("/BATCH", "/SITE=web1"), ("/C", "/SITE=web1")):
            with self.subTest(arguments=arguments):
                self.assertEqual(self.run_program(*arguments).returncode, 0)
                self.assertIn("Jan.htm", self.box.usage_files())

    def test_batch_and_catch_up_touch_none(self):
        for arguments in (("/BATCH", "/SITE=web1"), ("/C", "/SITE=web1"),
                          ("/BATCH", "/SITE=nowhere"), ("/BATCH", "/SITE")):
            with self.subTest(arguments=arguments), Listener() as listener:
                self.run_program(*arguments, DISPLAY=listener.display)
                self.assertFalse(listener.was_called())

    def test_the_listener_notices_an_interactive_start(self):
        with Listener() as listener:
            done = None
            try:
                done = self.box.run(PROGRAM, ["/SITE=web1"], NOON, timeout=5,
                                    extra={"DISPLAY": listener.display,
                                           "XDG_RUNTIME_DIR": self.box.root})
            except Exception:  # it waits for an answer that never comes
                self.assertIsNone(done)
            self.assertTrue(listener.was_called())


def main():
    global PROGRAM
    if "--program" not in sys.argv[:-1]:
        sys.exit("usage: no_display_test.py --program PATH [unittest arguments]")
    for option in ("--program", "--shots"):
        if option in sys.argv[:-1]:
            at = sys.argv.index(option)
            value = sys.argv[at + 1]
            del sys.argv[at:at + 2]
            PROGRAM = os.path.abspath(value) if option == "--program" else PROGRAM
    unittest.main()


if __name__ == "__main__":
    main()
