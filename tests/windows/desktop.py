"""The windows of hitwick.exe under Wine on a display of their own: read through their handles by
window_reader.exe, clicked and typed into through the X server as a person would."""

import json
import os
import subprocess
import sys
import time

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path[1:1] = [os.path.join(HERE, "..", "e2e"), os.path.join(HERE, "..", "ui")]

import frozen_clock  # noqa: E402
import session  # noqa: E402
import wine  # noqa: E402

CONFIGURATION = "Hitwick - Configuration"
DIALOG = "#32770"  # the class of the system's message boxes, too
MENU = "#32768"
GROUP_BOX = 0x7
TYPE_MASK = 0xF
STILL_SECONDS = 0.4
BUTTONS = {"left": "1", "right": "3", "wheel up": "4", "wheel down": "5"}
# The scaffolding that holds the others, and the grip in the corner of a window.
PANEL = "wxWindow"
GRIP = "ScrollBar"


def xdotool(*arguments):
    subprocess.run(["xdotool", *map(str, arguments)], check=True, stdin=subprocess.DEVNULL,
                   stdout=subprocess.DEVNULL)


def key(*names):
    xdotool("key", "--delay", "20", *names)


def click_at(x, y, button="left", count=1):
    """Clicks, and moves the pointer away: a tooltip would lie over what is clicked next."""
    xdotool("mousemove", x, y, "click", "--repeat", count, "--delay", 60, BUTTONS[button],
            "mousemove", 1, 1)


def picture(path):
    """Writes what is on the screen as a PNG file."""
    subprocess.run(["import", "-window", "root", str(path)], check=False, timeout=60,
                   stdin=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


class Control:
    """A window or control as it was when it was read."""

    def __init__(self, fields):
        self.fields = fields
        self.kind = fields["class"]
        self.text = fields["text"]
        self.box = tuple(fields["box"])  # left, top, right, bottom on the screen
        self.children = [Control(child) for child in fields["children"]]

    def __repr__(self):
        return "<%s %r %r>" % (self.kind, self.caption, self.box)

    def __getattr__(self, name):
        if name not in self.__dict__.get("fields", {}):
            raise AttributeError(name)
        return self.fields[name]

    @property
    def caption(self):
        """The text without the marks of underlined letters."""
        return self.text.replace("&&", "\0").replace("&", "").replace("\0", "&")

    @property
    def is_group(self):
        return self.kind == "Button" and self.style & TYPE_MASK == GROUP_BOX

    @property
    def rows(self):
        return [item.strip() for item in self.items]

    @property
    def chosen(self):
        return self.rows[self.selected] if self.selected >= 0 else None

    def parts(self):
        for child in self.children:
            yield child
            yield from child.parts()

    def leaves(self):
        """The outermost controls that show something."""
        for child in self.children:
            if child.kind.startswith(PANEL):
                yield from child.leaves()
            elif not (child.is_group or child.kind == GRIP
                      or child.kind == "Static" and not child.text):
                yield child

    def click(self, button="left", count=1):
        left, top, right, bottom = self.box
        click_at((left + right) // 2, (top + bottom) // 2, button, count)


def is_message_box(window):
    return (window.kind == DIALOG and len(window.children) <= 4
            and any(part.kind == "Static" and part.text for part in window.children)
            and not any(part.kind.startswith(PANEL) or part.kind == "Edit"
                        for part in window.children))


def stand_still(find, what):
    """What `find` gives, once that is on one place for a moment: the window manager moves new
    windows."""
    moved = [None, 0.0]

    def stands():
        found = find()
        place = found and found.box
        if place is None or place != moved[0]:
            moved[:] = place, time.monotonic()
        return time.monotonic() - moved[1] > STILL_SECONDS and found
    return session.poll(stands, what)


class Desktop:
    """Wine's desktop at one scale, and the reader on it. `prefix` is a `wine.Wine`."""

    def __init__(self, prefix, reader, dots_per_inch):
        self.wine = prefix
        session.start()
        prefix.start()
        code, _, errors = prefix("reg", "add", r"HKCU\Control Panel\Desktop", "/v", "LogPixels",
                                 "/t", "REG_DWORD", "/d", str(dots_per_inch), "/f")
        if code != 0:
            raise RuntimeError("the scale cannot be set: " + errors)
        prefix.stop()
        subprocess.run(["wineserver", "-w"], env=self.environment(), check=False, timeout=60)
        # Wine's services start with the first program; they hold its output open until they end.
        for command in (["wineserver", "-p"], ["wine", "cmd", "/c", "exit"]):
            subprocess.run(command, env=self.environment(), check=False, timeout=120,
                           stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                           stderr=subprocess.DEVNULL)
        # It ends when nobody asks it any more.
        self.reader = subprocess.Popen(["wine", reader], env=self.environment(),
                                       stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                       stderr=subprocess.DEVNULL)

    def environment(self, epoch=None):
        environment = {"PATH": os.environ["PATH"], "LC_ALL": "C.UTF-8",
                       "DISPLAY": os.environ["DISPLAY"], **self.wine.environment()}
        if epoch is not None:
            environment.update(frozen_clock.environment(epoch))
        return environment

    def windows(self, title=""):
        """All visible windows; names and lists only of the controls of those with this title."""
        self.reader.stdin.write(title.encode() + b"\n")
        self.reader.stdin.flush()
        return [Control(fields) for fields in json.loads(self.reader.stdout.readline())]

    def stop(self):
        self.reader.stdin.close()
        self.reader.stdout.close()
        self.reader.wait(timeout=60)
        self.wine.stop()


class Program:
    """One start of hitwick.exe on a desktop."""

    def __init__(self, desktop, path, *arguments, epoch=None):
        self.desktop = desktop
        self.process = session.spawn(["wine", path, *arguments], env=desktop.environment(epoch),
                                     stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def windows(self, title=""):
        if self.process.poll() is not None:
            raise AssertionError("the program has ended with %r" % self.process.returncode)
        return self.desktop.windows(title)

    def _window(self, title):
        return next((window for window in self.windows(title) if window.text == title), None)

    def _find(self, fits):
        return next(filter(fits, self.windows()), None)

    def window(self, title=CONFIGURATION):
        """The window, once it is there and stands still."""
        stand_still(lambda: self._find(lambda window: window.text == title),
                    lambda: "the window %r (there are %r)" % (title, self.windows()))
        return self._window(title)

    def wait_closed(self, title):
        session.poll(lambda: self._find(lambda window: window.text == title) is None,
                     "the window %r to close" % title)

    def box(self):
        """The message box, once there is one and it stands still."""
        return stand_still(lambda: self._find(is_message_box), "a message box")

    def press(self, box, name="OK"):
        """Presses a button of a message box and waits until it is gone."""
        next(part for part in box.parts() if part.caption == name).click()
        session.poll(lambda: all(window.handle != box.handle for window in self.windows()),
                     "the box to close")

    def find(self, kind, name, title=CONFIGURATION):
        """The control of a class, by its accessible name."""
        def found():
            window = self._window(title)
            return window and next((part for part in window.parts() if part.kind == kind
                                    and not part.is_group and part.name == name), None)
        return session.poll(found, lambda: "a %s %r in %r, which holds %r" % (
            kind, name, title, [(part.kind, part.name) for part in self._window(title).parts()]))

    def press_button(self, name, title=CONFIGURATION):
        self.window(title)
        self.find("Button", name, title).click()

    def fill(self, name, text, title=CONFIGURATION):
        """Selects all of a text box and types over it."""
        self.find("Edit", name, title).click()
        session.poll(lambda: self.find("Edit", name, title).focus, "%r to have the focus" % name)
        key("ctrl+a")
        xdotool("type", "--delay", "20", "--", text)
        session.poll(lambda: self.find("Edit", name, title).text == text,
                     lambda: "%r to hold %r" % (self.find("Edit", name, title), text))

    def click_row(self, name, row, title=CONFIGURATION, button="left", count=1):
        """Turns the wheel until a line of a list is in sight, and clicks it."""
        for _ in range(100):
            control = self.find("ListBox", name, title)
            left, top, right, bottom = control.box
            place = control.rows.index(row) - control.first
            y = top + place * control.line + control.line // 2 + 2
            if top < y < bottom - control.line // 2:
                return click_at((3 * left + right) // 4, y, button, count)
            click_at((left + right) // 2, (top + bottom) // 2,
                     "wheel up" if place < 0 else "wheel down")
        raise AssertionError("line %r of %r cannot be reached" % (row, name))

    def choose_row(self, name, row, title=CONFIGURATION):
        self.click_row(name, row, title)
        session.poll(lambda: self.find("ListBox", name, title).chosen == row,
                     "%r to be selected in %r" % (row, name))

    def wait_end(self, limit=120):
        return self.process.wait(timeout=limit)

    def quit(self):
        self.press_button("Quit")
        return self.wait_end()

    def kill(self):
        session.stop(self.process)
        self.desktop.wine("taskkill", "/f", "/im", "hitwick.exe")
