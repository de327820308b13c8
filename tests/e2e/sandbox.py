"""A throw-away home for one run of the program: folders, settings, frozen clock, event log."""

import functools
import os
import re
import shutil
import socket
import subprocess
import sys
import tempfile

import frozen_clock

LEAKS_OF_OTHERS = os.path.join(os.path.dirname(os.path.abspath(__file__)), "leaks.supp")
SITE_VALUES = {"IISLogDir": "@ROOT@/logs", "UsageDir": "@ROOT@/usage"}


def take_program(usage):
    """Takes `--program PATH` from the command line, so that the test framework finds the rest
    there; ends the script with its usage when it is missing."""
    arguments = sys.argv[1:]
    if "--program" not in arguments[:-1]:
        sys.exit(usage)
    at = arguments.index("--program")
    sys.argv[1:] = arguments[:at] + arguments[at + 2:]
    frozen_clock.require()
    return os.path.abspath(arguments[at + 1])


def host_name():
    """This computer's name as the pages show it, before HTML escapes."""
    return "".join(c for c in socket.gethostname() if 45 <= ord(c) <= 122)


@functools.lru_cache(maxsize=None)
def loopback_name():
    """The name that this computer gives to 127.0.0.1. Asked for once: without a hosts file it is
    the name server that answers, or keeps silent."""
    try:
        return socket.gethostbyaddr("127.0.0.1")[0]
    except OSError:
        return ""


def ini_text(site, settings, rules):
    """`settings.ini` with one site; `rules` is a list of dicts or None."""
    def escaped(value):
        value = value.replace("\\", "\\\\").replace("\r", "\\r").replace("\n", "\\n")
        return re.sub("^ | $", lambda blank: "\\s", value)

    lines = ["[" + site + "]"] + [name + "=" + escaped(value) for name, value in settings.items()]
    for rule in rules or []:
        lines += ["", "[" + site + "\\Filters\\" + rule["name"] + "]"]
        lines += [name + "=" + escaped(value) for name, value in rule.items()]
    return "\n".join(lines) + "\n"


class Sandbox:
    """A temporary folder with `logs` and `usage`, and the environment that points into it."""

    def __init__(self):
        self.root = tempfile.mkdtemp(prefix="hitwick-e2e-")
        self.logs = os.path.join(self.root, "logs")
        self.usage = os.path.join(self.root, "usage")
        self.config = os.path.join(self.root, "config", "hitwick", "settings.ini")
        self.event_log = os.path.join(self.root, "state", "hitwick", "events.log")

    def __enter__(self):
        for folder in (self.logs, self.usage, os.path.join(self.root, "home")):
            os.makedirs(folder)
        os.chmod(self.root, 0o755)
        return self

    def __exit__(self, *_):
        for folder, names, _ in os.walk(self.root):
            for name in names:
                path = os.path.join(folder, name)
                if not os.path.islink(path):
                    os.chmod(path, 0o700)
        shutil.rmtree(self.root)

    def placed(self, text):
        return text.replace("@ROOT@", self.root)

    def write(self, path, content):
        """Writes bytes or text to a path below the root."""
        path = os.path.join(self.root, path)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "wb") as file:
            file.write(content if isinstance(content, bytes) else content.encode("utf-8"))
        return path

    def configure(self, site, settings=None, rules=None):
        values = {**SITE_VALUES, **(settings or {})}
        values = {name: self.placed(value) for name, value in values.items() if value is not None}
        self.write("config/hitwick/settings.ini", ini_text(site, values, rules))

    def environment(self, zone="UTC", extra=None):
        env = {"PATH": os.environ.get("PATH", "/usr/bin:/bin"), "LC_ALL": "C", "TZ": zone,
               "HOME": os.path.join(self.root, "home"),
               "XDG_CONFIG_HOME": os.path.join(self.root, "config"),
               "XDG_STATE_HOME": os.path.join(self.root, "state"),
               "RES_OPTIONS": "timeout:1 attempts:1"}
        for name, value in os.environ.items():
            if name.startswith(("UBSAN_", "LSAN_")):
                env[name] = value
        env["LSAN_OPTIONS"] = (os.environ.get("LSAN_OPTIONS", "") +
                               ":print_suppressions=0:suppressions=" + LEAKS_OF_OTHERS)
        # The frozen clock is preloaded, which a sanitizer takes for a mistake unless told.
        env["ASAN_OPTIONS"] = os.environ.get("ASAN_OPTIONS", "") + ":verify_asan_link_order=0"
        env.update({name: self.placed(value) for name, value in (extra or {}).items()})
        return env

    def run(self, program, arguments, epoch=None, zone="UTC", extra=None, timeout=120,
            wrapper=(), **options):
        """Runs the program, with the clock frozen at `epoch` when one is given."""
        env = self.environment(zone, extra)
        clock = [] if epoch is None else frozen_clock.prefix(epoch)
        command = [*wrapper, *clock, program, *arguments]
        return subprocess.run(command, env=env, cwd=self.root, timeout=timeout,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, check=False, **options)

    def events(self):
        """The lines of the event log, as bytes."""
        if not os.path.exists(self.event_log):
            return []
        with open(self.event_log, "rb") as file:
            return file.read().splitlines()

    def event_texts(self):
        """(level, text) of each event-log entry."""
        found = []
        for line in self.events():
            match = re.fullmatch(rb"\S+ (information|warning) (.*)", line)
            found.append((match.group(1).decode(), match.group(2).decode("utf-8", "replace"))
                         if match else ("malformed", line.decode("utf-8", "replace")))
        return found

    def usage_files(self):
        """Every file below the usage folder: relative name to bytes."""
        found = {}
        for folder, _, names in os.walk(self.usage):
            for name in names:
                path = os.path.join(folder, name)
                with open(path, "rb") as file:
                    found[os.path.relpath(path, self.usage)] = file.read()
        return found
