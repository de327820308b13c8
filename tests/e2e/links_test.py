#!/usr/bin/env python3
"""Runs the program in compiled locales and clicks every link of its pages in Chromium.

    links_test.py --program PATH [unittest arguments]

The usage folder is served as a web server does it. A link is right when the click fetches the file
that is meant: each month's page from the index and the index from it, and beside each table its
own CSV file.
"""

import datetime
import glob
import http.server
import os
import threading
import time
import unittest
import urllib.parse

import locales
from browser import Browser
from sandbox import Sandbox, take_program

PROGRAM = ""
YEAR = 2026
# The month on whose first day the program runs: two months get CSV files, and their names are among
# the odder ones.
MONTHS = {"fr_FR": 9, "ja_JP": 2, "ca_ES": 11, "ar_SY": 11, "byn_ER": 11}
LOG = ("#Fields: date time c-ip cs-uri-stem sc-status sc-bytes\n"
       "2026-01-10 10:00:00 192.0.2.1 /page.htm 200 1000\n")
PREFIX = "/usage/"
SECONDS = 60
# The links to files of the usage folder: element, address as written, text.
OWN_LINKS = """
    return Array.from(document.links)
        .filter(link => link.href.startsWith(arguments[0]) && !link.hash)
        .map(link => [link, link.getAttribute("href"), link.textContent]);"""
LOST_ANCHORS = """
    return Array.from(document.links)
        .map(link => link.getAttribute("href")).filter(href => href.startsWith("#"))
        .filter(href => !document.anchors.namedItem(href.slice(1))
                        && !document.getElementById(href.slice(1)));"""


class UsageServer(http.server.ThreadingHTTPServer):
    """Serves the files of a folder below PREFIX and remembers what it was asked for."""

    def __init__(self, folder):
        super().__init__(("127.0.0.1", 0), UsageRequest)
        self.folder = os.fsencode(folder)
        self.asked = []
        self.base = "http://127.0.0.1:%d%s" % (self.server_port, PREFIX)


class UsageRequest(http.server.BaseHTTPRequestHandler):
    def do_GET(self):
        path = urllib.parse.unquote_to_bytes(self.path)
        name = path[len(PREFIX):]
        if not path.startswith(PREFIX.encode()):
            self.send_error(404)
            return
        self.server.asked.append(os.fsdecode(name))
        try:
            with open(self.server.folder + b"/" + name, "rb") as file:
                content = file.read()
        except OSError:
            self.send_error(404)
            return
        self.send_response(200)
        self.send_header("Content-Type", "text/csv" if name.endswith(b".csv") else "text/html")
        self.send_header("Content-Length", str(len(content)))
        self.end_headers()
        self.wfile.write(content)

    def log_message(self, *_):
        pass


def text(latin):
    """Text from the characters of its UTF-8 bytes."""
    return latin.encode("latin-1").decode("utf-8")


class Links(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.browser = Browser()
        cls.browser.__enter__()
        cls.addClassCleanup(cls.browser.__exit__)

    def click_all(self, source):
        """Every link of every page of a year in the locale; the last two months have CSV files."""
        language, self.month = locales.locale(source), MONTHS[source]
        today = datetime.datetime(YEAR, self.month, 1, 12, tzinfo=datetime.timezone.utc)
        with Sandbox() as box:
            box.write("logs/u_ex260110.log", LOG)
            for switch, csv in (("/C", "False"), ("/BATCH", "True")):
                box.configure("web1", {"GenerateCSV": csv})
                done = box.run(PROGRAM, [switch, "/SITE=web1"], int(today.timestamp()),
                               extra=language.environment())
                self.assertEqual(done.returncode, 0, done.stderr)
            with UsageServer(box.usage) as server:
                threading.Thread(target=server.serve_forever, daemon=True).start()
                self.server, self.months = server, language.months()
                self.files = box.usage_files()
                try:
                    self.click_through_the_index()
                finally:
                    server.shutdown()

    def click_through_the_index(self):
        self.open("index.htm")
        links = self.own_links()
        self.assertEqual(len(links), 13)  # the year's months and Annual.csv
        annual, *months = links
        self.assertEqual(self.downloaded([annual]), ["Annual.csv"])
        pages = []
        for number, (_, _, shown) in enumerate(months):
            # The slots are January to December, up to the present month this year's.
            month, year = number + 1, YEAR if number < self.month else YEAR - 1
            self.assertEqual(shown, "%s %d" % (text(self.months.abbreviation(month)), year))
            pages.append(self.click_through_a_month(number, month, year))
        self.assertEqual(len(set(pages)), 12)
        self.assertEqual(sorted(pages + ["index.htm"]),
                         sorted(name for name in self.files if name.endswith(".htm")))

    def click_through_a_month(self, number, month, year):
        """Follows a link of the index and all those of its page; returns the page's name."""
        self.open("index.htm")
        page = self.fetched(self.own_links()[number + 1][0])
        self.assertIn(" - %s %d" % (" ".join(text(self.months.name(month)).split()), year),
                      self.browser.run("return document.title"))
        self.assertEqual(self.browser.run(LOST_ANCHORS), [])
        links = self.own_links()
        tables = [link for link in links if link[1].endswith(".csv")]
        base = page[:-len(".htm")]
        self.assertEqual(sorted(self.downloaded(tables)),
                         sorted(name for name in self.files
                                if name.startswith(base + "-") and name.endswith(".csv")))
        self.assertEqual(len(tables), 18 if month in (self.month - 1, self.month) else 0)
        back = [link for link in links if link not in tables]
        self.assertEqual([self.fetched(link[0]) for link in back], ["index.htm"])
        return page

    def open(self, name):
        self.browser.open(self.server.base + name)
        self.assertEqual(self.server.asked.pop(), name)

    def own_links(self):
        links = self.browser.run(OWN_LINKS, self.server.base)
        for _, address, _ in links:
            self.assertRegex(address, r"^[A-Za-z0-9._~%-]+$")
        return links

    def fetched(self, element):
        """Clicks; returns the name of the one file that this fetches."""
        self.server.asked.clear()
        self.browser.click(element)
        self.wait_for(lambda: self.server.asked)
        name, = self.server.asked
        self.assertIn(name, sorted(self.files))
        return name

    def downloaded(self, links):
        """Clicks on links to files that are saved; returns their names."""
        for path in self.saved():
            os.unlink(path)
        names = [self.fetched(link[0]) for link in links]
        self.wait_for(lambda: len(self.saved()) == len(names))
        contents = []
        for path in self.saved():
            with open(path, "rb") as file:
                contents.append(file.read())
        self.assertEqual(sorted(contents), sorted(self.files[name] for name in names))
        return names

    def saved(self):
        """The paths of all downloads; none while one is still under way."""
        paths = glob.glob(os.path.join(glob.escape(self.browser.downloads), "*"))
        return [] if any(path.endswith(".crdownload") for path in paths) else paths

    def wait_for(self, condition):
        end = time.monotonic() + SECONDS
        while not condition():
            self.assertLess(time.monotonic(), end, "nothing happened")
            time.sleep(0.005)


def case(source):
    return lambda self: self.click_all(source)


for _source in locales.REAL:
    setattr(Links, "test_" + _source, case(_source))


if __name__ == "__main__":
    PROGRAM = take_program(__doc__)
    unittest.main()
