#!/usr/bin/env python3
"""Holds the definition of the daily task on Windows to the Task Scheduler's schema.

The text is handed over as UTF-16, so that is how it is looked at: by a validator (xmllint) and by
a parser that reads back what the task would start.

    task_schema_test.py --task-text build/release/task_text [unittest options]
"""

import argparse
import pathlib
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree

SCHEMA = pathlib.Path(__file__).with_name("task.xsd")
NAMESPACE = {"t": "http://schemas.microsoft.com/windows/2004/02/mit/task"}
FOLDER = r"C:\Program Files\Hitwick"
PROGRAM = "hitwick.exe"
PARAMETERS = ' /BATCH /SITE="web1"'

# Folder, program, parameters: what a file system and the site switch let through.
HOSTILE = (
    (FOLDER, PROGRAM, " /BATCH"),
    (FOLDER, PROGRAM, ' /BATCH /SITE="<![CDATA[x]]>&amp;&#0;--><Hidden>false</Hidden>"'),
    (FOLDER, PROGRAM, " /BATCH /SITE=\"a'b`c^d|e>f<g&h%i!\""),
    (r"C:\Программы\日本 R&D's", "hit&wick.exe", ' /BATCH /SITE="гавань-日本-😀"'),
    ("Z:" + r"\a" * 120, PROGRAM, ' /BATCH /SITE="' + "x" * 3000 + '"'),
)

task_text = None  # the program, set by main()


def definition(logon="always", folder=FOLDER, program=PROGRAM, parameters=PARAMETERS):
    """The text as the Task Scheduler gets it."""
    text = subprocess.run([task_text, logon, folder, program, parameters], check=True,
                          stdout=subprocess.PIPE).stdout.decode("utf-8")
    return text.encode("utf-16")


def complaints(text):
    """What the validator says of a text; empty when it is valid."""
    with tempfile.NamedTemporaryFile(suffix=".xml") as file:
        file.write(text)
        file.flush()
        result = subprocess.run(["xmllint", "--noout", "--nonet", "--schema", SCHEMA, file.name],
                                check=False, stderr=subprocess.PIPE)
    return result.stderr.decode() if result.returncode else ""


def tags(task):
    return [element.tag for element in task.iter()]


def replaced(text, old, new):
    changed = text.decode("utf-16").replace(old, new)
    assert changed != text.decode("utf-16"), old
    return changed.encode("utf-16")


class Schema(unittest.TestCase):
    def test_both_kinds_of_logon_are_valid(self):
        for logon in ("always", "logged-on"):
            with self.subTest(logon=logon):
                self.assertEqual(complaints(definition(logon)), "")

    def test_hostile_names_are_valid_and_arrive_whole(self):
        for folder, program, parameters in HOSTILE:
            with self.subTest(parameters=parameters[:60]):
                text = definition(folder=folder, program=program, parameters=parameters)
                self.assertEqual(complaints(text), "")
                task = ElementTree.fromstring(text)
                self.assertEqual(tags(task), tags(ElementTree.fromstring(definition())))

                def content(name):
                    return task.findtext(f"t:Actions/t:Exec/t:{name}", namespaces=NAMESPACE)

                self.assertEqual(content("Command"), folder + "\\" + program)
                self.assertEqual(content("WorkingDirectory"), folder)
                self.assertEqual(content("Arguments"), parameters[1:])
                self.assertEqual(task.findtext("t:Settings/t:Hidden", namespaces=NAMESPACE),
                                 "true")

    def test_the_validator_notices_what_is_wrong(self):
        text = definition()
        for old, new in (("<Hidden>true", "<Hidden>yes"), ("S4U", "Anyhow"),
                         ("T02:05:00<", "T2:05<"), ("2026-03-01T", "2026-02-29T"),
                         ("<DaysInterval>1<", "<DaysInterval>0<"), ("PT23H", "23 hours"),
                         ('Context="User"', 'Context="Nobody"'), ('version="1.3"', 'version="2"'),
                         (r"<Command>C:\Program Files\Hitwick\hitwick.exe<", "<Command><"),
                         ("Description>", "Remark>"), ("2004/02/mit", "2004/03/mit")):
            with self.subTest(new=new):
                self.assertNotEqual(complaints(replaced(text, old, new)), "")


def main():
    global task_text
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--task-text", type=pathlib.Path, required=True)
    options, rest = parser.parse_known_args()
    task_text = options.task_text.resolve(strict=True)
    unittest.main(argv=[sys.argv[0], *rest], verbosity=2)


if __name__ == "__main__":
    main()
