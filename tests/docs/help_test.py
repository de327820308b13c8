#!/usr/bin/env python3
"""Holds the help page, the manual page and the completion to the program: links lead somewhere, and
every switch, setting, filter field and message of the event log is told of.

    help_test.py --program PATH [unittest arguments]
"""

import html.parser
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

TREE = pathlib.Path(__file__).resolve().parents[2]
HELP = TREE / "docs" / "help" / "index.htm"
MANUAL = TREE / "docs" / "hitwick.1"
COMPLETION = TREE / "packaging" / "linux" / "hitwick.bash-completion"
VOID = {"br", "hr", "img", "meta"}

# What enters a text in the event log, or makes one for it.
LOGGING = re.compile(
    r"\b(?:Log(?:Warning|Information|FileError|StoreFailure|TallyWarning)|"
    r"Report(?:Failure|KeyFailure|ValueFailure|FailedPage)|UnreadableText|NoLogFilesText|"
    r"WrongFolderHint)\(")
LITERAL = re.compile(r'"((?:[^"\\]|\\.)*)"')


class Page(html.parser.HTMLParser):
    """What the tests want to know of a page."""

    def __init__(self, text):
        super().__init__()
        self.ids, self.links, self.pictures, self.open, self.wrong = [], [], [], [], []
        self.pieces, self.code = [], []
        self.feed(text)
        self.close()
        self.text = " ".join("".join(self.pieces).split())

    def handle_starttag(self, tag, attributes):
        found = dict(attributes)
        if "id" in found:
            self.ids.append(found["id"])
        if tag == "a":
            self.links.append(found["href"])
        if tag == "img":
            self.pictures.append((found["src"], found.get("alt", "")))
        if tag == "br":
            self.pieces.append(" ")
        if tag not in VOID:
            self.open.append(tag)
        if tag == "code":
            self.code.append("")

    def handle_endtag(self, tag):
        if not self.open or self.open.pop() != tag:
            self.wrong.append(self.getpos())

    def handle_data(self, data):
        self.pieces.append(data)
        if "code" in self.open:
            self.code[-1] += data


def arguments_at(source, start):
    """The text between the parenthesis that ends at `start` and its partner."""
    depth, quoted, at = 1, False, start
    while depth:
        char = source[at]
        if quoted and char == "\\":
            at += 1
        elif char == '"':
            quoted = not quoted
        elif not quoted:
            depth += {"(": 1, ")": -1}.get(char, 0)
        at += 1
    return source[start:at - 1]


def literals(text):
    joined = re.sub(r'"\s*\n?\s*"', "", text)
    return [piece.replace('\\"', '"').replace("\\\\", "\\").replace("\\n", " ")
            for piece in LITERAL.findall(joined)]


def texts_in(source):
    """The pieces of text that the log calls of a source file hold, those of the variables and
    constants that they name included."""
    for call in LOGGING.finditer(source):
        arguments = arguments_at(source, call.end())
        yield from literals(arguments)
        for name in set(re.findall(r"\b[a-z_]\w*\b", arguments)) | set(
                re.findall(r"\bk[A-Z]\w*\b", arguments)):
            for value in re.findall(rf"\b{name}\s*=\s*([^;]*\"[^;]*);", source):
                yield from literals(value)


def messages():
    """(file, piece) of what the event log may say; pieces that hold too little to look for are left
    out."""
    found = set()
    for folder in ("app", "config", "logread", "stats", "report", "ui"):
        for path in sorted((TREE / folder).glob("*.cpp")):
            if path.stem.endswith("_test"):
                continue
            for piece in texts_in(path.read_text()):
                words = " ".join(piece.split()).strip(" :.'(")
                if len(re.findall("[A-Za-z]", words)) > 6 and "\\" not in words:
                    found.add((path.name, words))
    return sorted(found)


def listed_by_program():
    """(spelling, meaning) of every switch, as the program itself tells them."""
    text = subprocess.run([PROGRAM, "--help"], capture_output=True, text=True, check=True).stdout
    return re.findall(r"^  (\S+) +(\S.*)$", text, re.MULTILINE)


def names_in(file, table):
    """The texts of a table in a source file."""
    source = (TREE / file).read_text()
    start = source.index(table)
    return LITERAL.findall(source[start:source.index("};", start)])


class HelpPage(unittest.TestCase):
    def setUp(self):
        self.page = Page(HELP.read_text())

    def test_elements_are_nested(self):
        self.assertEqual((self.page.wrong, self.page.open), ([], []))

    def test_links_lead_somewhere(self):
        self.assertGreater(len(self.page.links), 10)
        for link in self.page.links:
            with self.subTest(link):
                if link.startswith("#"):
                    self.assertEqual(self.page.ids.count(link[1:]), 1)
                else:
                    self.assertTrue((HELP.parent / link).is_file())

    def test_pictures_are_there_and_told_of(self):
        self.assertGreaterEqual(len(self.page.pictures), 7)
        for source, text in self.page.pictures:
            with self.subTest(source):
                self.assertTrue((HELP.parent / source).is_file())
                self.assertTrue(text)
        used = {source for source, _ in self.page.pictures}
        there = {f"images/{path.name}" for path in (HELP.parent / "images").iterdir()}
        self.assertEqual(there, used)

    def test_every_switch(self):
        switches = listed_by_program()
        self.assertGreaterEqual(len(switches), 10)
        for spelling, _ in switches:
            self.assertIn(spelling, self.page.code)

    def test_every_setting(self):
        for name in names_in("config/unread_settings.cpp", "kSiteNames[]"):
            self.assertIn(name, self.page.code)

    def test_every_field_that_filters_know(self):
        for name in ("c-ip", "cs-method", "cs(Referer)", "sc-status", "cs-uri-query", "cs-uri-stem",
                     "cs(User-Agent)", "cs-username"):
            self.assertIn(name, self.page.code)

    def test_every_table_of_a_month(self):
        captions = set()
        for path in sorted((TREE / "report").glob("*.cpp")):
            if not path.stem.endswith("_test"):
                captions |= set(re.findall(r'[">]((?:Top|Slowest|Most|Broken|Traffic|Short|Session) '
                                           r'[A-Za-z ,/()]*?)(?: for | in |")', path.read_text()))
        self.assertGreaterEqual(len(captions), 12)
        text = self.page.text.lower()
        for caption in captions:
            self.assertIn(caption.removesuffix(" for").strip().lower().replace(
                "top file type ", "top file types "), text)

    def test_every_message(self):
        found = messages()
        self.assertGreater(len(found), 40)
        for file, piece in found:
            with self.subTest(file=file):
                self.assertIn(piece, self.page.text)


class OtherTexts(unittest.TestCase):
    def test_manual_has_every_switch_and_setting(self):
        manual = MANUAL.read_text().replace("\\-", "-")
        tagged = [re.sub("^[.]B[IR]? ", "", line).replace(" ", "")
                  for line in re.findall("^[.]TP\n(.*)$", manual, re.MULTILINE)]
        for spelling, meaning in listed_by_program():
            self.assertIn(spelling, tagged)
            if spelling not in ("--help", "--version"):
                self.assertIn(f"\n{meaning}\n", manual)
        for name in names_in("config/unread_settings.cpp", "kSiteNames[]"):
            self.assertIn(name, tagged)

    def test_manual_is_well_formed(self):
        done = subprocess.run(["man", "--warnings", "-l", str(MANUAL)], capture_output=True,
                              text=True, env=dict(os.environ, MANROFFSEQ="", LC_ALL="C.UTF-8"))
        self.assertEqual((done.returncode, done.stderr), (0, ""))

    def test_completion_offers_every_switch(self):
        offered = re.search(r'compgen -W "(/[^"]*)"', COMPLETION.read_text()).group(1).split()
        self.assertEqual(offered, [re.sub("NAME$", "", spelling)
                                   for spelling, _ in listed_by_program()])

    def complete(self, line):
        script = (f'source "{COMPLETION}"; COMP_LINE=$1; COMP_POINT=${{#1}}; _hitwick; '
                  'printf "%s\\n" "${COMPREPLY[@]}"')
        env = dict(os.environ, PATH=f"{os.path.dirname(PROGRAM)}:{os.environ['PATH']}",
                   XDG_CONFIG_HOME=str(self.config))
        done = subprocess.run(["bash", "-c", script, "bash", line], env=env, capture_output=True,
                              text=True, check=True)
        return done.stdout.split()

    def test_completion_knows_the_sites(self):

        with tempfile.TemporaryDirectory() as folder:
            self.config = pathlib.Path(folder)
            (self.config / "hitwick").mkdir()
            (self.config / "hitwick" / "settings.ini").write_text(
                "[web1]\nUsageDir=/x\n[web2]\n[shop]\n[web1\\Filters\\a]\nname=a\n")
            self.assertEqual(self.complete("hitwick /SITE=w"), ["web1", "web2"])
            self.assertEqual(self.complete("hitwick /BATCH /site="), ["web1", "web2", "shop"])
            self.assertEqual(self.complete("hitwick /B"), ["/BATCH"])
            self.assertEqual(self.complete("hitwick --s"), ["--sites"])


if __name__ == "__main__":
    if "--program" not in sys.argv[1:-1]:
        sys.exit(__doc__)
    at = sys.argv.index("--program")
    PROGRAM = os.path.abspath(sys.argv[at + 1])
    del sys.argv[at:at + 2]
    unittest.main()
