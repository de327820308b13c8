#!/usr/bin/env python3
"""Looks up visitors' names for real: in a hosts file, and at name servers good and bad.

    names_test.py --program PATH [unittest arguments]

Needs root: the program runs in a mount namespace of its own, where other files lie over
/etc/hosts, /etc/resolv.conf and /etc/nsswitch.conf. Skipped elsewhere.
"""

import datetime
import os
import re
import shutil
import socket
import subprocess
import struct
import sys
import threading
import time
import unittest

from sandbox import Sandbox

PROGRAM = ""
TODAY = datetime.datetime.now(datetime.timezone.utc)
MONTH = TODAY.strftime("%b")
HEADER = "#Fields: date time c-ip cs-uri-stem sc-status sc-bytes\n"
SERVERS = ["127.77.0.1", "127.77.0.2", "127.77.0.3"]
GIVEN_UP = "Hitwick: Name lookups timed out"
ADDRESSES = [f"198.51.100.{i}" for i in range(1, 101)]
SERVER_FAILURE, NO_SUCH_NAME = 2, 3


def can_mount():
    return os.geteuid() == 0 and shutil.which("unshare") is not None and subprocess.run(
        ["unshare", "--mount", "true"], stderr=subprocess.DEVNULL, check=False).returncode == 0


def question(query):
    """The name that a query asks for, and the bytes of its question."""
    labels, place = [], 12
    while query[place]:
        labels.append(query[place + 1:place + 1 + query[place]].decode("latin-1"))
        place += 1 + query[place]
    return ".".join(labels), query[12:place + 5]


def address_of(name):
    """The address whose reverse name is asked for."""
    return ".".join(reversed(name.split(".")[:4]))


def reply(query, code=0, host=None):
    """An answer with a code, and with a host name when one is given."""
    _, asked = question(query)
    record = b""
    if host is not None:
        name = b"".join(bytes([len(label)]) + label.encode() for label in host.split(".")) + b"\0"
        record = b"\xc0\x0c" + struct.pack(">HHIH", 12, 1, 60, len(name)) + name
    return (query[:2] + bytes([0x81, 0x80 | code]) + struct.pack(">4H", 1, bool(record), 0, 0)
            + asked + record)


def host_of(address):
    return "host" + address.split(".")[3] + ".example.com"


# Name servers: what they answer to a query, None for nothing at all.

def silent(_query):
    return None


def failing(query):
    return reply(query, SERVER_FAILURE)


def good(query):
    return reply(query, host=host_of(address_of(question(query)[0])))


def half(query):
    """Knows even addresses, and leaves the others without an answer."""
    return good(query) if int(address_of(question(query)[0]).split(".")[3]) % 2 == 0 else None


def lame(query):
    """Knows even addresses, and fails at once for the others."""
    return good(query) if int(address_of(question(query)[0]).split(".")[3]) % 2 == 0 else failing(
        query)


def garbage(query):
    """Noise, answers cut short, records that point outside, and what belongs to other queries."""
    kind = int(address_of(question(query)[0]).split(".")[3]) % 4
    if kind == 0:
        return b"\xff" * 60
    if kind == 1:
        return query[:7]
    if kind == 2:
        return (reply(query)[:6] + b"\0\x05" + reply(query)[8:] + b"\xc0\xff\0\x0c\0\1"
                + b"\xff" * 30)
    return b"\0\0" + good(query)[2:]


class NameServer(threading.Thread):
    """Answers on a loopback address, and keeps the addresses that it was asked for."""

    def __init__(self, answer, address=SERVERS[0]):
        super().__init__(daemon=True)
        self.answer = answer
        self.asked = []
        self.socket = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
        self.socket.bind((address, 53))
        self.start()

    def run(self):
        while True:
            query, sender = self.socket.recvfrom(4096)
            if not query:
                return
            self.asked.append(address_of(question(query)[0]))
            answer = self.answer(query)
            if answer is not None:
                self.socket.sendto(answer, sender)

    def close(self):
        with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as caller:
            caller.sendto(b"", self.socket.getsockname())
        self.join()
        self.socket.close()


@unittest.skipUnless(can_mount(), "needs root and mount namespaces")
class Names(unittest.TestCase):
    def setUp(self):
        self.box = Sandbox()
        self.box.__enter__()
        self.addCleanup(self.box.__exit__)

    def write_log(self, addresses, date=TODAY):
        """One hit per address, the first ones more than the later ones."""
        lines = []
        for i, address in enumerate(addresses):
            hits = len(addresses) - i
            lines += [f"{date:%Y-%m-%d} 00:00:00 {address} /page.htm 200 1000\n"] * hits
        self.box.write(f"logs/u_ex{date:%y%m%d}.log", HEADER + "".join(lines))

    def run_with(self, hosts, *switches, servers=SERVERS[:1], options=""):
        """The run with these lines as /etc/hosts and these name servers for all else. Returns the
        files of the usage folder and the seconds that the run took."""
        self.box.write("etc/hosts", hosts)
        self.box.write("etc/resolv.conf", "".join(f"nameserver {name}\n" for name in servers))
        self.box.write("etc/nsswitch.conf", "hosts: files dns\n")
        mounts = "".join(f"mount --bind {self.box.root}/etc/{name} /etc/{name} && "
                         for name in ("hosts", "resolv.conf", "nsswitch.conf"))
        # The program's own patience is what is tested, and a frozen clock would never run out.
        begin = time.monotonic()
        result = self.box.run(PROGRAM, ["/SITE=web1", *switches], None,
                              extra={"RES_OPTIONS": options}, timeout=300,
                              wrapper=["unshare", "--mount", "sh", "-c",
                                       f"{mounts}exec \"$0\" \"$@\""])
        seconds = time.monotonic() - begin
        self.assertEqual(result.returncode, 0, result.stderr)
        return self.box.usage_files(), seconds

    def run_page(self, answer, addresses=ADDRESSES, switches=("/BATCH",), hosts=""):
        """The rows of the readers (address to name) that a name server leads to, the seconds, and
        the server."""
        server = NameServer(answer)
        self.addCleanup(server.close)
        self.box.configure("web1")
        self.write_log(addresses)
        files, seconds = self.run_with("127.0.0.1 localhost\n" + hosts, *switches)
        return self.readers(files[f"{MONTH}.htm"]), seconds, server

    @staticmethod
    def readers(page):
        table = page.decode("latin-1").split("<a name=readers>")[1].split("</table>")[0]
        return dict(re.findall(r"<td>([^<]*)</td><td>([^<]*)</td></tr>", table))

    def warnings(self):
        return [text for level, text in self.box.event_texts() if level == "warning"]

    def given_up(self):
        return sum(text.startswith(GIVEN_UP) for text in self.warnings())

    def test_names_of_the_hosts_file_stand_on_the_page(self):
        self.box.configure("web1", {"GenerateCSV": "True"})
        self.write_log(["192.0.2.1", "192.0.2.2", "2001:db8::7"])
        files, _ = self.run_with("192.0.2.1 www.museum.example\n192.0.2.2 gate.isp.com\n"
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

    def test_an_address_is_read_as_inet_addr_does(self):
        names, _, server = self.run_page(
            silent, ["010.0.0.1", "10.1", "0", "0x0a.2", "2001:db8::7", "-", "300.1.1.1"],
            hosts="8.0.0.1 eight.example\n10.0.0.1 ten.example\n10.0.0.2 hex.example\n"
            "0.0.0.0 nought.example\n2001:db8::7 six.example\n")
        self.assertEqual(names, {"010.0.0.1": "eight.example", "10.1": "ten.example",
                                 "0": "nought.example", "0x0a.2": "hex.example",
                                 "2001:db8::7": "six.example", "-": "", "300.1.1.1": ""})
        self.assertEqual(server.asked, [])

    def test_a_name_server_names_every_address_and_is_asked_once_for_each(self):
        names, _, server = self.run_page(good)
        self.assertEqual(names, {address: host_of(address) for address in ADDRESSES})
        self.assertEqual(sorted(server.asked), sorted(ADDRESSES))

    def test_translations_are_logged_in_the_order_of_the_rows(self):
        self.run_page(good, ADDRESSES[:50], ("/BATCH", "/D"))
        translated = [text for _, text in self.box.event_texts() if "Translated IP" in text]
        self.assertEqual(translated, [f"Hitwick : Translated IP '{address}' to '{host_of(address)}'"
                                      for address in ADDRESSES[:50]])

    def test_a_silent_name_server_costs_a_page_of_100_addresses_one_patience(self):
        names, seconds, server = self.run_page(silent)
        self.assertEqual(set(names.values()), {""})
        self.assertEqual(len(names), 100)
        self.assertGreater(seconds, 3.5)
        self.assertLess(seconds, 10)
        self.assertEqual(self.given_up(), 1)
        self.assertLessEqual(len(set(server.asked)), 32)

    def test_this_computers_own_name_does_not_hide_that_the_name_server_is_silent(self):
        names, seconds, _ = self.run_page(silent, ["127.0.0.1", "-", *ADDRESSES])
        self.assertEqual(names["127.0.0.1"], "localhost")
        self.assertLess(seconds, 10)
        self.assertEqual(self.given_up(), 1)

    def test_nobody_waits_for_three_silent_name_servers(self):
        """They would cost ten seconds; the program neither waits for its threads nor at its end."""
        for address in SERVERS[1:]:
            self.addCleanup(NameServer(silent, address).close)
        self.addCleanup(NameServer(silent).close)
        self.box.configure("web1")
        self.write_log(ADDRESSES)
        _, seconds = self.run_with("", "/BATCH", servers=SERVERS)
        self.assertLess(seconds, 9)
        self.assertEqual(self.given_up(), 1)

    def test_a_silent_name_server_costs_a_catch_up_run_no_more_than_a_page(self):
        for months in range(12):
            self.write_log([f"203.0.113.{months * 20 + i}" for i in range(20)],
                           TODAY - datetime.timedelta(days=31 * months))
        _, seconds, server = self.run_page(silent, switches=("/C",))
        self.assertLess(seconds, 12)
        self.assertEqual(self.given_up(), 1)
        self.assertLessEqual(len(set(server.asked)), 32)

    def test_a_failing_name_server_is_asked_for_every_address_without_a_warning(self):
        names, seconds, server = self.run_page(failing)
        self.assertEqual(set(names.values()), {""})
        self.assertEqual(set(server.asked), set(ADDRESSES))
        self.assertLess(seconds, 8)
        self.assertEqual(self.warnings(), [])

    def test_a_lame_name_server_leaves_the_other_names_alone(self):
        names, seconds, _ = self.run_page(lame)
        self.assertEqual(names, {address: host_of(address) if i % 2 == 0 else ""
                                 for i, address in enumerate(ADDRESSES, 1)})
        self.assertLess(seconds, 8)
        self.assertEqual(self.warnings(), [])

    def test_a_name_server_that_answers_for_half_of_the_addresses_is_asked_for_all(self):
        names, seconds, server = self.run_page(half)
        self.assertEqual(names, {address: host_of(address) if i % 2 == 0 else ""
                                 for i, address in enumerate(ADDRESSES, 1)})
        self.assertEqual(set(server.asked), set(ADDRESSES))
        self.assertLess(seconds, 20)  # two patiences, for 50 addresses and 32 at a time
        self.assertEqual(self.given_up(), 0)

    def test_garbage_gives_no_names_and_does_no_harm(self):
        names, seconds, _ = self.run_page(garbage)
        self.assertEqual(len(names), 100)
        self.assertEqual(set(names.values()), {""})
        self.assertLess(seconds, 20)

    def test_a_resolver_that_is_told_not_to_try_asks_nobody_and_knows_the_hosts_file(self):
        server = NameServer(silent)
        self.addCleanup(server.close)
        self.box.configure("web1")
        self.write_log(ADDRESSES)
        files, _ = self.run_with("198.51.100.100 last.example\n", "/BATCH", options="attempts:0")
        self.assertEqual(self.readers(files[f"{MONTH}.htm"])["198.51.100.100"], "last.example")
        self.assertEqual(server.asked, [])
        self.assertEqual(self.warnings(), [])

    def test_without_a_name_server_a_run_takes_no_time(self):
        self.box.configure("web1")
        self.write_log(ADDRESSES)
        _, seconds = self.run_with("", "/BATCH", servers=[])
        self.assertLess(seconds, 8)
        self.assertEqual(self.given_up(), 0)


if __name__ == "__main__":
    if len(sys.argv) < 3 or sys.argv[1] != "--program":
        sys.exit(__doc__)
    PROGRAM = os.path.abspath(sys.argv[2])
    unittest.main(argv=sys.argv[:1] + sys.argv[3:])
