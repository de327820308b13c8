#!/usr/bin/env python3
"""Every window at several sizes and scales: named controls, none over another or outside."""

import controls
import expected
from controls import LEAVES
from ui_test import CONFIGURATION, UiTest, main

SLACK = 1  # a pixel of rounding


def overlap(one, other):
    """How far two rectangles reach into each other, in pixels of the narrower direction."""
    wide = min(one[0] + one[2], other[0] + other[2]) - max(one[0], other[0])
    high = min(one[1] + one[3], other[1] + other[3]) - max(one[1], other[1])
    return min(wide, high)


class LayoutTest(UiTest):
    RULES = [{"name": "rule%d" % number, "includes": "False", "field": "c-ip", "pattern": "x"}
             for number in range(5)]

    def setUp(self):
        super().setUp()
        with open(self.desk.config, "a", encoding="utf-8") as file:
            file.write("\n[old]\nIISLogDir=%s\nUsageDir=%s\n" % (self.desk.logs, self.desk.usage))

    def leaves(self, program, title):
        """The outermost controls that show something."""
        found = []

        def visit(control):
            for child in control.children():
                if not child.showing:
                    continue
                if child.role in LEAVES:
                    if child.role != "label" or child.text:
                        found.append(child)
                else:
                    visit(child)
        visit(program.window(title))
        return found

    def assertNamed(self, program, title):
        for part in program.find_all(LEAVES, None, title):
            self.assertTrue(part.name, "%s at %r in %r has no name" % (part.role, part.extents(),
                                                                      title))

    def assertLaidOut(self, program, title):
        frame = program.window(title).extents()
        leaves = [(leaf, leaf.extents()) for leaf in self.leaves(program, title)]
        self.assertGreater(len(leaves), 2)
        for leaf, box in leaves:
            self.assertGreater(min(box[2:]), 0, leaf)
            self.assertGreaterEqual(box[0], frame[0] - SLACK, leaf)
            self.assertGreaterEqual(box[1], frame[1] - SLACK, leaf)
            self.assertLessEqual(box[0] + box[2], frame[0] + frame[2] + SLACK, (leaf, box, frame))
            self.assertLessEqual(box[1] + box[3], frame[1] + frame[3] + SLACK, (leaf, box, frame))
        for at, (leaf, box) in enumerate(leaves):
            for other, place in leaves[at + 1:]:
                self.assertLessEqual(overlap(box, place), SLACK,
                                     "%r %r and %r %r overlap" % (leaf, box, other, place))

    def resize(self, program, title, width, height):
        """Asks for a size of the window; it may refuse what is too small. The size it took."""
        before = program.window(title).extents()
        controls.wait(lambda: controls.try_xdotool("search", "--name", "^" + title + "$",
                                                   "windowsize", width, height), "a new size")
        if (width, height) != tuple(before[2:]):
            seen = [before]

            def steady():
                seen.append(program.window(title).extents())
                return len(seen) > 8 and len(set(seen[-6:])) == 1
            controls.wait(steady, "the size of %r" % title)
        return program.window(title).extents()[2:]

    def check(self, program, title):
        """Looks at a window as it opens, as small as it gets, and large."""
        program.window(title)
        self.assertNamed(program, title)
        self.assertLaidOut(program, title)
        width, height = program.window(title).extents()[2:]
        smallest = self.resize(program, title, 50, 50)
        self.assertLaidOut(program, title)
        self.assertGreater(smallest[0], 50 * program.scale)
        self.resize(program, title, width + 300, height + 200)
        self.assertLaidOut(program, title)
        self.resize(program, title, width, height)

    def walk(self, scale):
        program = self.open(scale=scale)
        self.check(program, CONFIGURATION)
        folders = program.list(expected.USAGE_FOLDER)
        folders.click_row("usage", "right")
        program.find("menu item", "New Folder").click()
        self.check(program, expected.NEW_USAGE_FOLDER)
        self.close(program, "Cancel", expected.NEW_USAGE_FOLDER)
        program.button("On Demand Report").click()
        self.check(program, expected.ON_DEMAND)
        self.close(program, "Close", expected.ON_DEMAND)
        program.activate(CONFIGURATION)
        program.button("Filter out records").click()
        self.check(program, expected.FILTERS)
        program.button("Edit rule1", expected.FILTERS).click()
        self.check(program, expected.FILTER)
        self.close(program, "Cancel", expected.FILTER)
        self.close(program, "Cancel", expected.FILTERS)
        self.assertEqual(program.quit(), 0)
        program = self.start("/L", scale=scale)
        self.check(program, expected.SITE)
        self.close(program, "Cancel", expected.SITE)

    def close(self, program, button, title):
        program.button(button, title).click()
        program.wait_closed(title)

    def test_windows(self):
        self.walk(1)

    def test_windows_at_twice_the_scale(self):
        self.walk(2)

    def test_a_size_is_remembered(self):
        program = self.open()
        width, height = program.window().extents()[2:]
        size = self.resize(program, CONFIGURATION, width + 120, height + 60)
        self.assertEqual(program.quit(), 0)
        program = self.open()
        controls.wait(lambda: program.window().extents()[2:] == size,
                      "the window's last size %r" % (size,))


if __name__ == "__main__":
    main()
