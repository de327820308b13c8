#!/usr/bin/env python3
"""Looks up visitors' names for real: in a hosts file, and at a name server that never answers.

    names_test.py --program PATH [unittest arguments]

Needs root: the program runs in a mount namespace of its own, where other files lie over
/etc/hosts, /etc/resolv.conf and /etc/nsswitch.conf. Skipped elsewhere.
"""

import datetime
import os
import shutil
import socket
import subprocess
import sys
import time
import unittest

from sandbox import Sandbox

PROGRAM = ""
TODAY = datetime.datetime.now(datetime.timezone.utc)
MONTH = TODAY.strftime("%b")
HEADER = "#Fields: date time c-ip cs-uri-stem sc-status sc-bytes\n"
SILENT_SERVER = "127.77.0.1"
GIVEN_UP = "Hitwick: Name lookups timed out"


def can_mount():
    return os.geteuid() == 0 and shutil.which("unshare") is not None and subprocess.run(
        ["unshare", "--mount", "true"], stderr=subprocess.DEVNULL, check=False).returncode == 0


@unittest.skipUnless(can_mount(), "needs root and mount namespaces")
class Names(unittest.TestCase):
    def setUp(self):
        self.box = Sandbox()
        self.box.__enter__()
        self.addCleanup(self.box.__exit__)

    def write_log(self, addresses):
        """One hit per address, the first ones more than the later ones."""
        lines = []
        for i, address in enumerate(addresses):
            hits = len(addresses) - i
            lines += [f"{TODAY:%Y-%m-%d} 00:00:00 {address} /page.htm 200 1000\n"] * hits
        self.box.write(f"logs/u_ex{TODAY:%y%m%d}.log", HEADER + "".join(lines))

    def run_with(self, hosts, *switches):
        """The batch run with these lines as /etc/hosts and the silent server for all else."""
        self.box.write("etc/hosts", hosts)
        self.box.write("etc/resolv.conf", f"nameserver {SILENT_SERVER}\n")
        self.box.write("etc/nsswitch.conf", "hosts: files dns\n")
        mounts = "".join(f"mount --bind {self.box.root}/etc/{name} /etc/{name} && "
                         for name in ("hosts", "resolv.conf", "nsswitch.conf"))
        # The program's own patience is what is tested, and a frozen clock would never run out.
        result = self.box.run(PROGRAM, ["/SITE=web1", *switches], None,
                              extra={"RES_OPTIONS": ""}, timeout=300,
                              wrapper=["unshare", "--mount", "sh", "-c",
                                       f"{mounts}exec \"$0\" \"$@\""])
        self.assertEqual(result.returncode, 0, result.stderr)
        return self.box.usage_files()

    def silent_server(self):
        """A socket that takes queries and never answers."""
        server = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
        self.addCleanup(server.close)
        server.bind((SILENT_SERVER, 53))

    def test_names_of_the_hosts_file_stand_on_the_page(self):
        self.box.configure("web1", {"GenerateCSV": "True"})
        self.write_log(["192.0.2.1", "192.0.2.2", "2001:db8::7"])
        files = self.run_with("192.0.2.1 www.museum.example\n192.0.2.2 gate.isp.com\n"
                              "2001:db8::7 six.museum.co.uk\n", "/BATCH")
        page = files[f"{MONTH}.htm"].decode("latin-1")
        for address, name in (("192.0.2.1", "www.museum.example"), ("192.0.2.2", "gate.isp.com"),
                              ("2001:db8::7", "six.museum.co.uk")):
            self.assertIn(f"<td>{address}</td><td>{name}</td></tr>", page)
        # 3 of the 6 hits from .example, whose name is too short to tell a company, 2 from .com and
        # 1 from .uk.
        domains = files[f"{MONTH}-Domains.csv"].decode().splitlines()
        self.assertEqual(domains[1:], [',"Unaccounted",0,"Unaccounted",0',
                                       '1,"example",50,"isp.com",33',
                                       '2,"com",33,"museum.co.uk",17', '3,"uk",17,"",'])

    def test_a_silent_name_server_costs_a_page_of_100_addresses_bounded_time(self):
        self.silent_server()
        self.box.configure("web1")
        self.write_log([f"198.51.100.{i}" for i in range(1, 101)])
        begin = time.monotonic()
        files = self.run_with("127.0.0.1 localhost\n", "/BATCH")
        self.assertLess(time.monotonic() - begin, 60)
        self.assertIn(b"<td>198.51.100.100</td><td></td></tr>", files[f"{MONTH}.htm"])
        given_up = [text for _, text in self.box.event_texts() if text.startswith(GIVEN_UP)]
        self.assertEqual(len(given_up), 1)


if __name__ == "__main__":
    if len(sys.argv) < 3 or sys.argv[1] != "--program":
        sys.exit(__doc__)
    PROGRAM = os.path.abspath(sys.argv[2])
    unittest.main(argv=sys.argv[:1] + sys.argv[3:])
