#!/usr/bin/env python3
"""The daily task and the real cron: what is scheduled runs when cron fires, as that site, with the
locale and zone in force; everything else in the crontab stays; refusals are told.

    cron_test.py --program HITWICK --scheduler SCHEDULE_TASK

Needs root, for a mount namespace of its own: the machine's crontabs and its cron are not touched.
Exit code 77: this machine does not allow one, nothing was tested."""

import argparse
import datetime
import grp
import os
import shutil
import signal
import subprocess
import sys
import time
import unittest

import frozen_clock
from sandbox import Sandbox, ini_text

SKIPPED = 77
SPOOL = "/var/spool/cron/crontabs"
HOSTILE = "a$(touch${IFS}x)`id`'&"
RECORDER = """#!/bin/sh
{ printf '%s|' "$@"; printf '%s|%s|%s' "$LC_ALL" "$TZ" "$XDG_CONFIG_HOME"; } > "$0.out"
"""
OWN_LINES = 'MAILTO=""\n# my own\n\n17 3 1 1 *\ttrue \\% "x" # %\n  \n@yearly true\n'
options = argparse.Namespace()


def mount(*arguments):
    subprocess.run(["mount", *arguments], check=True)


def hide_the_machine(folder):
    """Puts empty folders in the place of everything that cron reads or writes."""
    owner = grp.getgrnam("crontab").gr_gid
    mount("-t", "tmpfs", "-o", f"mode=1730,gid={owner}", "tmpfs", SPOOL)
    etc = os.path.join(folder, "etc")
    subprocess.run(["cp", "-a", "/etc", etc], check=True)
    mount("--bind", etc, "/etc")
    shutil.rmtree("/etc/cron.d", ignore_errors=True)
    for name in ("crontab", "cron.allow", "cron.deny"):
        if os.path.exists("/etc/" + name):
            os.remove("/etc/" + name)
    mount("-t", "tmpfs", "tmpfs", "/run")


class CronTest(unittest.TestCase):
    def setUp(self):
        self.box = Sandbox()
        self.box.__enter__()
        self.addCleanup(self.box.__exit__, None, None, None)
        self.addCleanup(self.clear)

    @staticmethod
    def clear():
        subprocess.run(["crontab", "-r"], stderr=subprocess.DEVNULL, check=False)

    def schedule(self, site, when="02:00", folder=None, program=None, user=None, **variables):
        environment = dict(os.environ, LC_ALL="nl_NL.UTF-8", TZ="Asia/Kolkata",
                           XDG_CONFIG_HOME=os.path.join(self.box.root, "config"),
                           XDG_STATE_HOME=os.path.join(self.box.root, "state"), **variables)
        command = [options.scheduler, site, when, folder or os.path.dirname(options.program),
                   program or os.path.basename(options.program)]
        if user:
            command = ["setpriv", "--reuid", user, "--regid", "nogroup", "--clear-groups"] + command
        run = subprocess.run(command, env=environment, stderr=subprocess.PIPE, check=True)
        return run.stderr.decode("utf-8", "surrogateescape")

    @staticmethod
    def crontab():
        return subprocess.run(["crontab", "-l"], stdout=subprocess.PIPE, check=True).stdout.decode()

    def fire(self, finished):
        """Runs cron over the minute in which it is two o'clock, until `finished` says so."""
        cron = subprocess.Popen(["cron", "-f"],
                                env={"PATH": os.environ["PATH"], "TZ": "UTC",
                                     **frozen_clock.running("2026-02-03 01:59:56")},
                                stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                                start_new_session=True)
        try:
            end = time.monotonic() + 45
            while not finished() and time.monotonic() < end:
                time.sleep(0.2)
        finally:
            os.killpg(cron.pid, signal.SIGTERM)
            cron.wait()
        self.assertTrue(finished(), "cron has not run it")

    def recorder(self, folder_name):
        folder = os.path.join(self.box.root, folder_name)
        os.mkdir(folder)
        path = os.path.join(folder, "it's 100% rec")
        with open(path, "w", encoding="ascii") as script:
            script.write(RECORDER)
        os.chmod(path, 0o755)
        return path

    def use_site(self, site):
        now = datetime.datetime.now(datetime.timezone.utc)
        with open(os.path.join(self.box.logs, now.strftime("ex%y%m%d.log")), "w",
                  encoding="ascii") as log:
            log.write("#Fields: date time c-ip cs-uri-stem sc-status\n")
            log.write(now.strftime("%Y-%m-%d 12:00:00 10.0.0.1 /x 200\n"))
        os.makedirs(os.path.dirname(self.box.config))
        with open(self.box.config, "w", encoding="utf-8") as settings:
            settings.write(ini_text(site, {"IISLogDir": self.box.logs,
                                           "UsageDir": self.box.usage}, None))

    def test_the_nightly_run_is_that_sites(self):
        self.use_site(HOSTILE)
        marks = [os.path.join(os.path.expanduser("~root"), "x"), "/x"]
        there = [os.path.exists(mark) for mark in marks]
        self.assertIn("Scheduled at 02:00\n", self.schedule(HOSTILE))
        self.fire(lambda: os.path.exists(os.path.join(self.box.usage, "index.htm")))
        with open(self.box.event_log, encoding="utf-8") as log:
            self.assertIn(f"operating on site '{HOSTILE}'", log.read())
        self.assertEqual([os.path.exists(mark) for mark in marks], there)

    def test_arguments_locale_zone_and_folders_arrive_whole(self):
        sites = [HOSTILE, "100%", "%d\u00e9", "it's", "=x", "~", "INI"]
        recorders = []
        for number, site in enumerate(sites):
            path = self.recorder(f"pro grams {number} 50% \\ '$HOME\\\\\\%")
            recorders.append(path)
            folder, program = os.path.split(path)
            self.assertIn("Scheduled at", self.schedule(site, folder=folder, program=program))
        self.fire(lambda: all(os.path.exists(path + ".out") for path in recorders))
        time.sleep(0.5)
        for site, path in zip(sites, recorders):
            with open(path + ".out", encoding="utf-8") as out:
                switch = "" if site == "INI" else f'/SITE="{site}"|'
                self.assertEqual(out.read(), f"/BATCH|{switch}nl_NL.UTF-8|Asia/Kolkata|"
                                 + os.path.join(self.box.root, "config"))

    def test_the_longest_command_is_run_whole(self):
        path = self.recorder("p")
        folder, program = os.path.split(path)
        site = "x" * 300
        while "Scheduled at" in self.schedule(site + "x" * 50, folder=folder, program=program):
            self.clear()
            site += "x" * 50
        while "Scheduled at" in self.schedule(site + "x", folder=folder, program=program):
            self.clear()
            site += "x"
        self.assertIn("too long", self.schedule(site + "x", folder=folder, program=program))
        self.schedule(site, folder=folder, program=program)
        self.fire(lambda: os.path.exists(path + ".out"))
        time.sleep(0.5)
        with open(path + ".out", encoding="utf-8") as out:
            self.assertIn(f'/SITE="{site}"|nl_NL', out.read())

    def test_other_lines_stay_to_the_byte(self):
        subprocess.run(["crontab", "-"], input=OWN_LINES.encode(), check=True)
        self.schedule("web1")
        self.schedule("web2", when="23:59:59")
        both = self.crontab()
        self.assertTrue(both.startswith(OWN_LINES))
        self.assertIn("\n59 23 * * * ", both)
        self.schedule("web1")
        self.assertEqual(self.crontab(), both, "the same task name replaces its line")
        self.schedule("web1", when="03:00")
        self.assertTrue(self.crontab().startswith(both), "another time is another task")

    def test_refusal_by_cron_allow_is_told(self):
        with open("/etc/cron.allow", "w", encoding="ascii") as allowed:
            allowed.write("root\n")
        self.addCleanup(os.remove, "/etc/cron.allow")
        box = self.schedule("web1", user="nobody")
        self.assertTrue(box.startswith("Unable to add task.\nYou (nobody) are not allowed to use "),
                        box)
        self.assertIn("\n\nTime should be formatted as HH:MM:SS\n", box)
        self.assertEqual(os.listdir(SPOOL), [])

    def test_a_full_disk_is_told_and_nothing_is_lost(self):
        subprocess.run(["crontab", "-"], input=OWN_LINES.encode(), check=True)
        mount("-o", "remount,size=8192", SPOOL)
        self.addCleanup(mount, "-o", "remount,size=50%", SPOOL)
        filler = os.path.join(SPOOL, "filler")
        self.addCleanup(os.remove, filler)
        with open(filler, "wb") as file:
            file.write(b"x" * 4096)
        box = self.schedule("web1")
        self.assertTrue(box.startswith("Unable to add task.\n"), box)
        self.assertIn("No space left on device", box)
        self.assertEqual(self.crontab(), OWN_LINES)

    def test_a_name_that_the_switch_would_cut_is_refused(self):
        for site in ("my site", 'a"b', "a;b", "a/b", "a\\b", "a\tb", "a\nb"):
            self.assertTrue(self.schedule(site).startswith(
                "Unable to add task.\nThe site's name cannot stand in a command line\n\n"), site)
        self.assertEqual(os.listdir(SPOOL), [])


def in_namespace():
    """Starts this script again in a mount namespace of its own."""
    if os.geteuid() != 0:
        print("not root: no mount namespace")
        return SKIPPED
    for program in ("cron", "crontab", "unshare"):
        if not shutil.which(program, path=os.environ["PATH"] + ":/usr/sbin:/sbin"):
            print(f"the program {program} is missing")
            return SKIPPED
    frozen_clock.require()
    unshare = ["unshare", "--mount", "--propagation", "private"]
    if subprocess.run(unshare + ["true"], stderr=subprocess.DEVNULL, check=False).returncode != 0:
        print("no mount namespace allowed here")
        return SKIPPED
    os.environ["PATH"] += ":/usr/sbin:/sbin"
    return subprocess.run(unshare + [sys.executable, *sys.argv, "--inside"], check=False).returncode


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--program", required=True, type=os.path.abspath)
    parser.add_argument("--scheduler", required=True, type=os.path.abspath)
    parser.add_argument("--inside", action="store_true")
    parser.parse_args(namespace=options)
    if not options.inside:
        return in_namespace()
    with Sandbox() as box:
        # Where any user may run it.
        options.scheduler = shutil.copy(options.scheduler, os.path.join(box.root, "schedule_task"))
        hide_the_machine(box.root)
        result = unittest.main(argv=[sys.argv[0]], exit=False).result
    return 0 if result.wasSuccessful() else 1


if __name__ == "__main__":
    sys.exit(main())
