#!/usr/bin/env python3
"""Opens and closes every window again and again; nothing may pile up.

HITWICK_UI_REPEAT is how often (default 5). In a sanitizer build memory that is lost counts too.
"""

import os

import controls
import expected
from ui_test import CONFIGURATION, UiTest, main

TIMES = int(os.environ.get("HITWICK_UI_REPEAT", "5"))


class RepeatTest(UiTest):
    RULES = [{"name": "docs", "includes": "True", "field": "cs-uri-stem", "pattern": "/docs/*"}]

    def descriptors(self, program):
        return len(os.listdir("/proc/%d/fd" % program.process.pid))

    def close(self, program, title):
        controls.key("Escape")
        program.wait_closed(title)

    def one_round(self, program):
        program.list(expected.USAGE_FOLDER).click_row("usage", "right")
        program.find("menu item", "New Folder").click()
        program.window(expected.NEW_USAGE_FOLDER)
        self.close(program, expected.NEW_USAGE_FOLDER)
        program.button("On Demand Report").click()
        program.window(expected.ON_DEMAND)
        self.close(program, expected.ON_DEMAND)
        program.window()
        program.button("Filter out records").click()
        program.window(expected.FILTERS)
        program.button("Edit docs", expected.FILTERS).click()
        program.window(expected.FILTER)
        program.button("Help", expected.FILTER).click()
        program.box().press()
        self.close(program, expected.FILTER)
        self.close(program, expected.FILTERS)
        program.window()

    def test_windows(self):
        program = self.open(epoch=None)
        self.one_round(program)
        before = self.descriptors(program)
        for _ in range(TIMES - 1):
            self.one_round(program)
        self.assertEqual([top.name for top in program.tree() if top.showing], [CONFIGURATION])
        self.assertLessEqual(self.descriptors(program), before + 2)
        self.assertEqual(program.quit(), 0)

    def test_site_selection(self):
        self.desk.configure("INI")
        for _ in range(max(1, TIMES // 5)):
            program = self.start("/L", epoch=None)
            program.window(expected.SITE)
            controls.key("Escape")
            program.window()
            self.assertEqual(program.quit(), 0)


if __name__ == "__main__":
    main()
