#!/usr/bin/env python3
"""The daily task in the real crontab, of a user made for this test and removed after it.

Needs root, to make the user, and the package cron; it is passed over without. Everything but that
runs as the user: the desktop, the program, the test.
"""

import os
import shutil
import subprocess
import sys
import tempfile

USER_ENV = "HITWICK_THROW_AWAY_USER"


def quiet(*command, **options):
    return subprocess.run(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=subprocess.PIPE, check=False, **options)


def copy_of_build(program, folder):
    """The program and what lies beside it, where the user can read them."""
    source = os.path.dirname(os.path.realpath(program))
    for name in os.listdir(source):
        path = os.path.join(source, name)
        if os.path.isfile(path) and (name == os.path.basename(program) or ".so" in name
                                     or name == "index.htm"):
            shutil.copy(path, folder)
    return os.path.join(folder, os.path.basename(program))


def run_as_throw_away_user():
    """Makes the user, runs this file again as that user, removes the user. Returns the status."""
    at = sys.argv.index("--program") + 1
    user = "hitwick%d" % os.getpid()
    folder = tempfile.mkdtemp(prefix="hitwick-crontab-")
    os.chmod(folder, 0o755)
    quiet("useradd", "--system", "--no-create-home", "--home-dir", folder + "/home",
          "--shell", "/bin/sh", user).check_returncode()
    try:
        here = os.path.dirname(os.path.abspath(__file__))
        for name, source in (("ui", here), ("e2e", os.path.join(here, "..", "e2e"))):
            shutil.copytree(source, os.path.join(folder, "tests", name))
        arguments = list(sys.argv)
        arguments[0] = os.path.join(folder, "tests", "ui", os.path.basename(__file__))
        arguments[at] = copy_of_build(sys.argv[at], folder)
        scratch = os.path.join(folder, "home")
        os.mkdir(scratch)
        shutil.chown(scratch, user)
        env = dict(os.environ, TMPDIR=scratch, HOME=scratch, **{USER_ENV: user})
        return subprocess.run(["setpriv", "--reuid", user, "--regid", user, "--init-groups",
                               sys.executable, *arguments], env=env, cwd=scratch,
                              stdin=subprocess.DEVNULL, check=False).returncode
    finally:
        quiet("crontab", "-r", "-u", user)
        quiet("userdel", user)
        shutil.rmtree(folder, ignore_errors=True)


def outer():
    if os.geteuid() != 0 or not all(shutil.which(name)
                                    for name in ("useradd", "setpriv", "crontab")):
        print("passed over: needs root and the real crontab")
        return 0
    return run_as_throw_away_user()


if __name__ == "__main__" and USER_ENV not in os.environ:
    sys.exit(outer())

from ui_test import UiTest, main  # noqa: E402


class RealCrontabTest(UiTest):
    def setUp(self):
        self.assertNotEqual(os.geteuid(), 0, "this would be somebody's own crontab")
        super().setUp()
        os.remove(os.path.join(self.desk.bin, "crontab"))

    def listing(self):
        return quiet("crontab", "-l", env=self.desk.environment()).stdout.decode()

    def test_the_task_is_in_the_crontab(self):
        before = "# mine\n5 5 1 1 * /bin/true\n"
        subprocess.run(["crontab", "-"], input=before.encode(), check=True)
        program = self.open()
        program.button("Add").click()
        self.assertBox(program, "Scheduled at 02:00:00\n"
                       "To remove use Control Panel -> Scheduled Tasks")
        listing = self.listing()
        self.assertIn(before, listing)
        self.assertIn("web1-Hitwick-020000", listing)
        line = listing.splitlines()[-1]
        self.assertTrue(line.startswith("0 2 * * * "), line)
        self.assertRegex(line, r"/BATCH\W+SITE=\W*web1")
        program.button("Add").click()
        program.box().press()
        self.assertEqual(self.listing(), listing)


if __name__ == "__main__":
    main()
