"""The golden cases: how one is stored, staged in a sandbox and answered by the oracle.

A case is a folder with `case.json`, `in/` (the log folder), optionally `before/` (what the usage
folder holds beforehand), `month_names` (the source of a locale to run in) and `expected/` (`usage/`
and `events.log`). A log named `*.in` is a template: `{{A*40000}}` stands for 40,000 letters A,
`{{00ff}}` for bytes in hexadecimal.
"""

import datetime
import functools
import json
import os
import re
import shutil
import stat

import locales
from oracle.run import Run
from sandbox import SITE_VALUES

GOLDEN = os.path.join(os.path.dirname(os.path.dirname(os.path.abspath(__file__))), "golden")
DEFAULTS = {"command": "/BATCH /SITE=web1", "site": "web1", "settings": {}, "rules": None,
            "tz": "UTC", "bias": 0, "wall_offset": 0, "names": {}, "environment": {}, "exit": 0,
            "logs_at": "logs", "usage_at": "usage", "store": True}


def case_names():
    return sorted(name for name in os.listdir(GOLDEN)
                  if os.path.exists(os.path.join(GOLDEN, name, "case.json")))


def expand(content):
    """The bytes that a template stands for."""
    content = re.sub(rb"\{\{(.)\*([0-9]+)\}\}", lambda m: m.group(1) * int(m.group(2)), content)
    return re.sub(rb"\{\{((?:[0-9a-f]{2})+)\}\}",
                  lambda m: bytes.fromhex(m.group(1).decode()), content)


class Case:
    def __init__(self, name):
        self.name = name
        self.folder = os.path.join(GOLDEN, name)
        with open(os.path.join(self.folder, "case.json"), encoding="utf-8") as file:
            values = json.load(file)
        unknown = set(values) - set(DEFAULTS) - {"about", "now", "logs_of"}
        if unknown:
            raise ValueError(name + "/case.json: unknown entries " + ", ".join(sorted(unknown)))
        for key, value in {**DEFAULTS, **values}.items():
            setattr(self, key, value)
        self.moment = datetime.datetime.strptime(self.now, "%Y-%m-%dT%H:%M:%SZ").replace(
            tzinfo=datetime.timezone.utc)
        owner = values.get("logs_of", name)
        self.logs_in = os.path.join(GOLDEN, owner, "in")

    @functools.cached_property
    def locale(self):
        """The locale to run in; None for the C locale."""
        return locales.locale(self._locale_source) if self.has_locale else None

    @property
    def has_locale(self):
        return os.path.exists(self._locale_source)

    @property
    def _locale_source(self):
        return os.path.join(self.folder, "month_names")

    @property
    def epoch(self):
        return int(self.moment.timestamp())

    def stage(self, sandbox):
        """Lays out logs, usage folder and settings in a sandbox."""
        logs = os.path.join(sandbox.root, self.logs_at)
        os.makedirs(logs, exist_ok=True)
        if os.path.isdir(self.logs_in):
            _copy_logs(self.logs_in, logs)
        sandbox.usage = os.path.join(sandbox.root, self.usage_at)
        if self.settings.get("UsageDir", "@ROOT@/usage") == "@ROOT@/usage":
            os.makedirs(sandbox.usage, exist_ok=True)
        before = os.path.join(self.folder, "before")
        if os.path.isdir(before):
            for name in os.listdir(before):
                shutil.copy(os.path.join(before, name), sandbox.usage)
        if self.store:
            sandbox.configure(self.site, self.settings, self.rules)

    def answer(self, sandbox):
        """What the oracle expects of a staged sandbox: usage files, event lines, exit code."""
        settings = {**SITE_VALUES, **self.settings} if self.store else {}
        settings = {name: latin(sandbox.placed(value)) for name, value in settings.items()
                    if value is not None}
        rules = self.rules and [{key: latin(value) for key, value in rule.items()}
                                for rule in self.rules]
        environment = {name: sandbox.placed(value) for name, value in self.environment.items()}
        run = Run(latin(self.command), settings, rules, self.moment, self.bias, self.wall_offset,
                  "@HOST@", self.names, environment=environment,
                  months=self.locale and self.locale.months())
        files = sandbox.usage_files()
        result = run.execute(files.get("History.txt", b""))
        files.update(result.files)
        root = sandbox.root.encode()
        files = {name: content.replace(root, b"@ROOT@") for name, content in files.items()}
        events = [line.encode("latin-1").replace(root, b"@ROOT@") for line in result.events]
        return files, events, result.exit_code

    def expected(self):
        """The stored expectation: usage files and event lines."""
        folder = os.path.join(self.folder, "expected")
        files = {}
        for name in os.listdir(os.path.join(folder, "usage")):
            with open(os.path.join(folder, "usage", name), "rb") as file:
                files[name] = file.read()
        files.pop(".gitkeep", None)
        with open(os.path.join(folder, "events.log"), "rb") as file:
            return files, file.read().splitlines()

    def store_expectation(self, files, events):
        folder = os.path.join(self.folder, "expected")
        shutil.rmtree(folder, ignore_errors=True)
        os.makedirs(os.path.join(folder, "usage"))
        for name, content in (files or {".gitkeep": b""}).items():
            with open(os.path.join(folder, "usage", name), "wb") as file:
                file.write(content)
        with open(os.path.join(folder, "events.log"), "wb") as file:
            file.write(b"".join(line + b"\n" for line in events))


def latin(text):
    """Text as the characters of its UTF-8 bytes."""
    return text.encode("utf-8").decode("latin-1")


def _copy_logs(source, target):
    for name in os.listdir(source):
        path = os.path.join(source, name)
        if os.path.isdir(path):
            os.makedirs(os.path.join(target, name))
            continue
        with open(path, "rb") as file:
            content = file.read()
        if name.endswith(".in"):
            name, content = name[:-3], expand(content)
        with open(os.path.join(target, name), "wb") as file:
            file.write(content)
        os.chmod(os.path.join(target, name), stat.S_IRUSR | stat.S_IWUSR | stat.S_IRGRP)
