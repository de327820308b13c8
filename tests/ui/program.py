"""The real program on the private desktop: its start, its windows and boxes, its end."""

import json
import os
import re
import signal
import subprocess
import sys

import controls
import session
from controls import BOXES, INPUTS, LISTS, WINDOWS, Control, wait

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "e2e"))
import frozen_clock  # noqa: E402
from sandbox import Sandbox  # noqa: E402

NOON = 1768478400  # 2026-01-15 12:00 UTC
HEADER = "#Fields: date time c-ip cs-method cs-uri-stem sc-status sc-bytes cs(User-Agent)\n"
CONFIGURATION = "Hitwick - Configuration"
SANITIZED = os.environ.get("HITWICK_BUILD") == "asan"
CLOCK_ABORT = "The futex facility returned an unexpected error code."
# Root is bound by permissions as well without these.
BOUND_BY_PERMISSIONS = ("setpriv", "--bounding-set=-dac_override,-dac_read_search",
                        "--inh-caps=-dac_override,-dac_read_search")
STYLE = "[Settings]\ngtk-enable-animations=0\ngtk-cursor-blink=0\n"

FAKE_OPENER = """#!/bin/sh
for argument in "$@"; do printf '%s\\n' "$argument" >>'{record}'; done
exit {status}
"""

FAKE_CRONTAB = """#!/bin/sh
# Keeps its table in a file, with the same ways in and out as the real one.
table='{table}'
case "$1" in
  -l) [ -f "$table" ] || {{ echo "no crontab for tester" >&2; exit 1; }}
      cat "$table" ;;
  -r) rm -f "$table" ;;
  -|"") cat >"$table.new" && mv "$table.new" "$table" ;;
  -*) echo "usage error" >&2; exit 1 ;;
  *) cp "$1" "$table" ;;
esac
"""


class Desk(Sandbox):
    """A sandbox with a display, and with stand-ins for the programs that Hitwick starts."""

    def __enter__(self):
        super().__enter__()
        self.bin = os.path.join(self.root, "bin")
        os.mkdir(self.bin)
        self._opened = os.path.join(self.root, "opened")
        self.crontab = os.path.join(self.root, "crontab")
        self.write("config/gtk-3.0/settings.ini", STYLE)
        self.set_opener(0)
        self.stand_in("crontab", FAKE_CRONTAB.format(table=self.crontab))
        return self

    def stand_in(self, name, text):
        """Puts a program in front of the system's one of that name."""
        path = self.write("bin/" + name, text)
        os.chmod(path, 0o755)

    def without(self, name):
        """The environment in which a program that Hitwick starts is not there at all."""
        os.remove(os.path.join(self.bin, name))
        return {"PATH": self.bin}

    def set_opener(self, status):
        """Files are "opened" by noting their name; `status` is the opener's exit code."""
        self.stand_in("xdg-open", FAKE_OPENER.format(record=self._opened, status=status))

    def opened(self):
        if not os.path.exists(self._opened):
            return []
        with open(self._opened, encoding="utf-8") as file:
            return file.read().splitlines()

    def wait_opened(self, *paths):
        session.poll(lambda: self.opened() == list(paths),
                     lambda: "%r to be opened (opened: %r)" % (paths, self.opened()))

    def environment(self, zone="UTC", extra=None):
        env = super().environment(zone, None)
        env["PATH"] = self.bin + ":" + env["PATH"]
        for name in ("DISPLAY", "DBUS_SESSION_BUS_ADDRESS", "XDG_RUNTIME_DIR", "GSETTINGS_BACKEND",
                     "GIO_USE_VFS"):
            env[name] = os.environ[name]
        env["XDG_CACHE_HOME"] = os.path.join(self.root, "cache")
        env["XDG_DATA_HOME"] = os.path.join(self.root, "share")
        env["GTK_THEME"] = "Adwaita"
        if SANITIZED:
            env["ASAN_OPTIONS"] += ":log_path=" + os.path.join(self.root, "sanitizer")
            # What the toolkit keeps until the end is no failure; `own_leaks` looks for ours.
            env["LSAN_OPTIONS"] = env.get("LSAN_OPTIONS", "") + ":exitcode=0"
        env.update({name: self.placed(value) for name, value in (extra or {}).items()})
        return env

    def settings(self):
        """`settings.ini` as {section: {name: value}}, as written."""
        found, section = {}, None
        if not os.path.exists(self.config):
            return found
        with open(self.config, encoding="utf-8") as file:
            for line in file.read().splitlines():
                if line.startswith("["):
                    section = found.setdefault(line[1:-1], {})
                elif "=" in line and not line.startswith((";", "#")):
                    name, value = line.split("=", 1)
                    section[name] = value
        return found

    def stored(self, site="web1"):
        return self.settings().get(site, {})

    def add_log(self, name="u_ex260110.log", records=None):
        """A log with the given (date, URI) records; a single hit when none are given."""
        lines = ["%s 10:00:00 192.0.2.1 GET %s 200 1000 Mozilla/5.0" % record
                 for record in records or [("2026-01-10", "/good.htm")]]
        return self.write("logs/" + name, HEADER + "\n".join(lines) + "\n")

    def add_year_of_logs(self, a_month=2):
        """One log for each of the first days of thirteen months up to January 2026."""
        months = [(25, month) for month in range(1, 13)] + [(26, 1)]
        for number, (year, month) in enumerate(months):
            for day in range(1, a_month + 1):
                date = "20%02d-%02d-%02d" % (year, month, day)
                records = [(date, "/page%d.htm" % (hit % 7)) for hit in range(5 + number)]
                self.add_log("u_ex%02d%02d%02d.log" % (year, month, day), records)


class Box:
    """A message box: its text, its title, its buttons."""

    def __init__(self, program, alert):
        self.program = program
        self.alert = alert
        wait(lambda: alert.has("active"), "the box %r to be active" % self.text)

    @property
    def title(self):
        """The window manager's word on it, which comes after the box has become active."""
        others = self.program.titles()
        return wait(lambda: next((title for title in [controls.active_window_title()]
                                  if title and title not in others), None), "the box's title")

    @property
    def text(self):
        labels = [part.text for part in self.alert.parts() if part.role == "label"]
        return "\n".join(text for text in labels if text)

    @property
    def buttons(self):
        return {part.name: part for part in self.alert.parts() if part.role == "push button"}

    def press(self, name="OK"):
        """Presses a button with the mouse and waits until the box is gone."""
        wait(lambda: name in self.buttons, "the button %r of the box" % name)
        self.buttons[name].click()
        self.program.wait_gone(self.alert)


class Program:
    """One start of the program. `desk` is its sandbox."""

    def __init__(self, desk, path, arguments, epoch=NOON, scale=1, wrapper=(), extra=None,
                 zone="UTC"):
        self.desk = desk
        self.scale = scale
        env = desk.environment(zone, extra)
        if scale != 1:
            env["GDK_SCALE"] = str(scale)
        if epoch is not None:
            env.update(frozen_clock.environment(epoch))
        command = [*wrapper, path, *arguments]
        self._errors = os.path.join(desk.root, "stderr")
        with open(self._errors, "ab") as log:
            self.process = session.spawn(command, env=env, cwd=desk.root, stdout=log, stderr=log)

    # What is on the screen.

    def tree(self):
        """The program's top-level windows."""
        if self.process.poll() is not None:
            raise AssertionError("the program has ended with exit code %s\n%s"
                                 % (self.process.returncode, self.errors()))
        root = controls.application(self.process.pid)
        return Control(root, self.scale).children() if root is not None else []

    def titles(self):
        """The titles of the windows that are shown."""
        return [top.name for top in self.tree() if top.role in WINDOWS and top.showing]

    def _window(self, title):
        return next((top for top in self.tree() if top.role in WINDOWS and top.name == title
                     and top.showing), None)

    def window(self, title=CONFIGURATION, active=True):
        """The window of that title, once it is there and takes the keyboard."""
        found = wait(lambda: self._window(title), lambda: "the window %r (there are %r)"
                     % (title, self._safe_titles()))
        if active:
            wait(lambda: found.has("active"), "the window %r to be active" % title)
        return found

    def _safe_titles(self):
        try:
            return self.titles()
        except (AssertionError, controls.GLib.Error):
            return "none"

    def activate(self, title):
        """Brings a window to the front."""
        def activated():
            return controls.try_xdotool("search", "--name", "^" + title + "$", "windowactivate",
                                        "--sync")
        wait(activated, "the window %r to come to the front" % title)
        return self.window(title)

    def wait_closed(self, title):
        wait(lambda: title not in self.titles(), "the window %r to close" % title)

    def wait_gone(self, control):
        def gone():
            if self.process.poll() is not None:
                return True
            try:
                self.tree()
                return not control.showing
            except (controls.GLib.Error, AssertionError):
                return True
        session.poll(gone, "%r to go" % control)

    def _alert(self):
        return next((top for top in self.tree() if top.role in BOXES and top.showing), None)

    def box(self):
        """The message box, once there is one."""
        return Box(self, wait(self._alert, "a message box"))

    def boxes(self):
        return [top for top in self.tree() if top.role in BOXES and top.showing]

    # Controls.

    def find_all(self, roles, name=None, window=None):
        """The shown controls of a role (or roles), in the window of that title or in all."""
        roles = (roles,) if isinstance(roles, str) else roles
        tops = [top for top in self.tree() if top.showing and (window is None
                                                               or top.name == window)]
        return [part for top in tops for part in top.parts()
                if part.role in roles and (name is None or part.name == name)]

    def find(self, roles, name=None, window=None):
        """The first such control, once there is one."""
        def found():
            return next(iter(self.find_all(roles, name, window)), None)
        return wait(found, lambda: "a %s named %r in %r; it holds:\n%s"
                    % (roles, name, window, self._listing(window)))

    def _listing(self, window):
        try:
            return "\n".join(repr(part) for part in self.find_all(controls.LEAVES, None, window))
        except (AssertionError, controls.GLib.Error) as error:
            return str(error)

    def button(self, name, window=CONFIGURATION):
        return self.find("push button", name, window)

    def check_box(self, name, window=CONFIGURATION):
        return self.find("check box", name, window)

    def label(self, name, window=CONFIGURATION):
        return self.find("label", name, window)

    def text_box(self, name, window=CONFIGURATION):
        return self.find("text", name, window)

    def list(self, name, window=CONFIGURATION):
        return self.find((*LISTS, "combo box"), name, window)

    def focused(self, window=None):
        """The control that has the keyboard, or None."""
        for part in self.find_all(INPUTS, None, window):
            if part.has("focused"):
                return part
        return next((part for part in self.find_all(INPUTS, None, window) if part.focused), None)

    def settle(self):
        """Returns when every event sent so far has been handled: events keep their order, so the
        focus that goes round by one comes last."""
        place = wait(self._focused_place, "a control with the focus")
        controls.key("Tab")
        wait(lambda: self._focused_place() not in (None, place), "the focus to move")
        controls.key("shift+Tab")
        wait(lambda: self._focused_place() == place, "the focus to return")

    def _focused_place(self):
        found = self.focused()
        return found.extents() if found is not None else None

    # The end.

    def errors(self):
        """What was written to standard error and output."""
        with open(self._errors, encoding="utf-8", errors="replace") as file:
            return file.read()

    def wait_end(self, limit=120):
        """Waits for the program's own end and returns its exit code."""
        try:
            code = self.process.wait(timeout=limit)
        except subprocess.TimeoutExpired:
            raise AssertionError("the program did not end; windows: %r, boxes: %r" % (
                self.titles(), [Box(self, alert).text for alert in self.boxes()])) from None
        # Under the sanitizers the preloaded clock aborts after the program's own end, and with it
        # goes the exit code; the release build's tests are those that see it.
        if SANITIZED and code == -signal.SIGABRT and self.errors().strip().endswith(CLOCK_ABORT):
            return 0
        return code

    def quit(self):
        """Ends it with the button "Quit" and returns its exit code."""
        self.button("Quit").click()
        return self.wait_end()

    def pause(self):
        self.process.send_signal(signal.SIGSTOP)

    def resume(self):
        self.process.send_signal(signal.SIGCONT)

    def kill(self):
        if self.process.poll() is None:
            self.resume()
        session.stop(self.process)

    def complaints(self):
        """What the toolkit or a sanitizer held against the program."""
        found = {line for line in self.errors().splitlines()
                 if re.search(r"CRITICAL|assert|runtime error|AddressSanitizer", line)}
        return sorted(found) + (own_leaks(self.desk.root) if SANITIZED else [])


def _is_own(frame):
    return re.search(r" in (ui|app|platform|frm\w+|mdl\w+|scheduler|config|text)\b|/hitwick\b",
                     frame) is not None


def _is_inlined(frame):
    return "/include/c++/" in frame or "/include/wx" in frame or "/asan/" in frame


def own_leaks(folder):
    """Sanitizer reports other than of memory that the toolkit itself holds at the end."""
    found = []
    for name in sorted(os.listdir(folder)):
        if not name.startswith("sanitizer."):
            continue
        with open(os.path.join(folder, name), encoding="utf-8", errors="replace") as file:
            report = file.read()
        if "LeakSanitizer: detected memory leaks" not in report:
            found.append(report)
            continue
        for leak in re.split(r"\n\n", report):
            frames = [line for line in re.findall(r"^ +#\d+ .*$", leak, re.MULTILINE)[1:]
                      if not _is_inlined(line)]
            if "leak of" in leak and frames and _is_own(frames[0]):
                found.append(leak)
    return found


def dump(program):
    """For whoever writes a test: everything on the bus, as text."""
    lines = []

    def visit(control, depth):
        lines.append("  " * depth + json.dumps([control.role, control.name, control.tip,
                                                control.text, control.extents(),
                                                control.enabled]))
        for child in control.children():
            visit(child, depth + 1)
    for top in program.tree():
        visit(top, 0)
    return "\n".join(lines)
