"""The program's windows as the accessibility bus shows them, and real mouse and key events.

Importing it starts the private desktop. Everything is read afresh from the bus: a `Control` is a handle,
not a copy. Events go through the X server, as a person's would; a bus action would block while a box
is open.
"""

import subprocess

import gi

import session

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

LISTS = ("table", "tree table", "list", "list box")
ROWS = ("table cell", "list item")
BOXES = ("alert",)
WINDOWS = ("frame", "dialog")
# What shows something or takes input; the rest is scaffolding of the toolkit.
LEAVES = ("push button", "check box", "radio button", "text", "combo box", "label", "progress bar",
          *LISTS)
INPUTS = ("push button", "check box", "radio button", "text", "combo box", *LISTS)
BUTTONS = {"left": "1", "right": "3", "wheel up": "4", "wheel down": "5"}

session.start()
_desktop = Atspi.get_desktop(0)
# A program that reads logs, or one under the sanitizers on a busy machine, answers late.
Atspi.set_timeout(20000, 60000)


def wait(condition, what, limit=session.LIMIT):
    """`session.poll` that takes a control that is just vanishing for "not yet"."""
    def tried():
        try:
            return condition()
        except GLib.Error:
            return None
    return session.poll(tried, what, limit)


def steady(read, what):
    """Waits until `read()` gives something, and the same again a little later: a window that has
    just opened still moves its controls."""
    last = []

    def same():
        last.append(read())
        return last[-1] if len(last) > 2 and last[-1] == last[-2] == last[-3] else None
    return wait(same, what)


def xdotool(*arguments):
    subprocess.run(["xdotool", *[str(argument) for argument in arguments]], check=True,
                   stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL)


def try_xdotool(*arguments):
    """True when it could be done; a window may come or go at the same moment."""
    return subprocess.run(["xdotool", *[str(argument) for argument in arguments]], check=False,
                          stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                          stderr=subprocess.DEVNULL).returncode == 0


def key(*names):
    """Presses keys, such as "Tab", "ctrl+a", "Return"."""
    xdotool("key", "--delay", "10", *names)


def type_text(text):
    xdotool("type", "--delay", "10", "--", text)


def active_window_title():
    done = subprocess.run(["xdotool", "getactivewindow", "getwindowname"], check=False,
                          stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=subprocess.DEVNULL)
    return done.stdout.decode("utf-8", "replace").rstrip("\n")


class Control:
    """One control. `scale` turns the toolkit's pixels into those of the screen."""

    def __init__(self, accessible, scale=1):
        self.accessible = accessible
        self.scale = scale

    def __repr__(self):
        try:
            return "<%s %r>" % (self.role, self.name)
        except GLib.Error:
            return "<gone>"

    @property
    def role(self):
        return self.accessible.get_role_name()

    @property
    def name(self):
        return self.accessible.get_name() or ""

    @property
    def tip(self):
        """The tool tip, which the toolkit shows as the description."""
        return self.accessible.get_description() or ""

    def has(self, state):
        states = self.accessible.get_state_set()
        return states is not None and states.contains(getattr(Atspi.StateType, state.upper()))

    @property
    def enabled(self):
        return self.has("sensitive")

    @property
    def showing(self):
        return self.has("showing")

    @property
    def focused(self):
        return self.has("focused") or any(part.has("focused") for part in self.parts())

    @property
    def checked(self):
        return self.has("checked")

    def children(self):
        found = []
        for index in range(self.accessible.get_child_count()):
            child = self.accessible.get_child_at_index(index)
            if child is not None:
                found.append(Control(child, self.scale))
        return found

    def parts(self):
        """Every descendant that is shown, in the order of the bus."""
        for child in self.children():
            if child.showing:
                yield child
                yield from child.parts()

    def all_parts(self):
        """Every descendant, shown or not."""
        for child in self.children():
            yield child
            yield from child.all_parts()

    @property
    def text(self):
        """What a label or a text box says; for a drop-down list what is chosen."""
        if self.role == "combo box":
            return self._chosen()
        if "Text" in (self.accessible.get_interfaces() or []):
            return Atspi.Text.get_text(self.accessible, 0, -1)
        return self.name

    def _chosen(self):
        for part in self.parts():
            if part.role == "text":
                return part.text
        if Atspi.Selection.get_n_selected_children(self.accessible) < 1:
            return ""
        chosen = Atspi.Selection.get_selected_child(self.accessible, 0)
        return (chosen.get_name() or "") if chosen else ""

    def entry(self):
        """The text box of a drop-down list."""
        return next(part for part in self.parts() if part.role == "text")

    def rows(self):
        """The lines of a list, or the entries of a drop-down list."""
        wanted = ("menu item",) if self.role == "combo box" else ROWS
        return [part for part in self.all_parts() if part.role in wanted]

    def row_texts(self):
        return [row.text.strip() for row in self.rows()]

    def selected(self):
        """The texts of the lines that are selected."""
        if self.role == "combo box":
            return [self.text] if self.text else []
        return [row.text.strip() for row in self.rows() if row.has("selected")]

    def value(self):
        return Atspi.Value.get_current_value(self.accessible)

    def extents(self):
        """(left, top, width, height) on the screen; negative when it is not shown."""
        box = Atspi.Component.get_extents(self.accessible, Atspi.CoordType.SCREEN)
        if box.x < -10000:
            return (-1, -1, 0, 0)
        return tuple(self.scale * number for number in (box.x, box.y, box.width, box.height))

    def click(self, button="left", count=1, hold=None):
        """Clicks in the middle, once it has a place on the screen."""
        left, top, width, height = steady(self._placed, lambda: "%r on the screen" % self)
        click_at(left + width // 2, top + height // 2, button, count, hold)

    def _placed(self):
        box = self.extents()
        return box if box[2] > 0 and box[3] > 0 and box[0] >= 0 and box[1] >= 0 else None

    def fill(self, text):
        """Selects all of a text box and types over it, as a person would."""
        self.click()
        wait(lambda: self.focused, "%r to have the focus" % self)
        key("ctrl+a")
        type_text(text) if text else key("Delete")

    def wait_text(self, text):
        wait(lambda: self.text == text,
             lambda: "%r to hold %r (it holds %r)" % (self, text, self.text))

    def _point_in(self, row):
        """A point of a row that can be clicked, or None as long as it is not wholly in sight: a
        click on a part of it makes the list scroll, and a second one hits something else."""
        left, top, width, height = self.extents()
        x, y, wide, high = row.extents()
        low, end = max(y, top), min(y + high, top + height)
        if wide <= 0 or y < 0 or end - low < min(high, height):
            return None
        return (max(x, left) + min(wide, width) // 4, (low + end) // 2)

    def _reach(self, text):
        """Turns the wheel until a row is in sight. Returns a point inside it."""
        rows = wait(lambda: self.rows() if text in self.row_texts() else None,
                    lambda: "row %r of %r (it has %r)" % (text, self, self.row_texts()))
        at = next(index for index, row in enumerate(rows) if row.text.strip() == text)
        left, top, width, height = self.extents()
        direction = "wheel up" if any(self._point_in(row) for row in rows[at + 1:]) else "wheel down"
        for _ in range(120):
            if self._point_in(rows[at]):
                return steady(lambda: self._point_in(rows[at]), "row %r to stand still" % text)
            click_at(left + width // 2, top + height // 2, direction)
            _pump()
        raise AssertionError("row %r of %r cannot be reached" % (text, self))

    def click_row(self, text, button="left", count=1, hold=None):
        x, y = self._reach(text)
        click_at(x, y, button, count, hold)

    def choose_row(self, text):
        """Selects a line of a list with the mouse, or an entry of a drop-down list."""
        if self.role == "combo box":
            self._open_and_choose(text)
        else:
            self.click_row(text)
            wait(lambda: self.selected() == [text], "%r to be selected in %r" % (text, self))

    def _open_and_choose(self, text):
        left, top, width, height = self.extents()
        click_at(left + width - 10 * self.scale, top + height // 2)

        def entry():
            refresh(self.accessible)
            return next((row for row in self.rows() if row.name == text and row._placed()
                         and row.showing), None)
        wait(entry, "entry %r of %r" % (text, self)).click()
        wait(lambda: self.text == text, "%r to be chosen in %r" % (text, self))


def click_at(x, y, button="left", count=1, hold=None):
    press = ["mousemove", x, y]
    if hold:
        press += ["keydown", hold]
    press += ["click", "--repeat", count, "--delay", 40, BUTTONS[button]]
    if hold:
        press += ["keyup", hold]
    xdotool(*press)


def _pump():
    context = GLib.MainContext.default()
    while context.iteration(False):
        pass


def refresh(accessible):
    """Forgets what was read of an object and below, so that the next look is a fresh one."""
    _pump()
    accessible.clear_cache()


def application(pid):
    """The root of a process's windows, or None as long as it has none."""
    refresh(_desktop)
    for index in range(_desktop.get_child_count()):
        found = _desktop.get_child_at_index(index)
        if found is not None and found.get_process_id() == pid:
            return found
    return None
