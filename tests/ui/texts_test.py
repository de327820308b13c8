#!/usr/bin/env python3
"""Every text and tool tip of every window, and what is selected and enabled when it opens."""

import expected
from ui_test import CONFIGURATION, UiTest, main


class TextTest(UiTest):
    RULES = [{"name": "Ex_Browser_XrobotX", "includes": "False", "field": "cs(User-Agent)",
              "pattern": "*robot*"}]

    def assertControls(self, program, title, table):
        for role, name, tip in table:
            with self.subTest(role=role, name=name):
                found = program.find_all(role, name, title)
                self.assertTrue(found, "missing; there are %r" % program.find_all(role, None, title))
                if tip is not None:
                    self.assertIn(tip, [control.tip for control in found])

    def test_configuration(self):
        program = self.open()
        self.assertControls(program, CONFIGURATION, expected.CONFIGURATION)
        self.assertControls(program, CONFIGURATION, [(expected.FRAME, "Configuration (web1)", "")])
        self.assertEqual(program.text_box("Run daily at").text, "02:00:00")
        self.assertEqual(program.list(expected.LOG_FORMAT).row_texts(), ["W3C"])
        self.assertEqual(program.list(expected.LOG_FORMAT).selected(), ["W3C"])
        for role, name, _ in expected.CONFIGURATION:
            self.assertTrue(all(control.enabled
                                for control in program.find_all(role, name, CONFIGURATION)), name)

    def test_labels_of_check_boxes_stand_once_or_beside_them(self):
        program = self.open()
        for text in ("Show user name stats", "Show Usernames"):
            self.assertTrue(program.find_all(("label", "check box"), text, CONFIGURATION), text)

    def test_new_usage_folder(self):
        program = self.open()
        program.list(expected.USAGE_FOLDER).click_row("usage", "right")
        program.find("menu item", "New Folder").click()
        title = expected.NEW_USAGE_FOLDER
        program.window(title)
        box = program.find("text", None, title)
        self.assertEqual(box.text, "Usage")
        self.assertEqual(box.tip, expected.NEW_USAGE_FOLDER_TIP)
        self.assertControls(program, title, [("push button", "Create", ""),
                                             ("push button", "Cancel", "")])

    def test_on_demand(self):
        program = self.open()
        program.button("On Demand Report").click()
        program.window(expected.ON_DEMAND)
        self.assertControls(program, expected.ON_DEMAND, expected.ON_DEMAND_CONTROLS)
        self.assertEqual(program.text_box("Report name", expected.ON_DEMAND).text, "Custom")

    def test_filters(self):
        program = self.open()
        program.button("Filter out records").click()
        program.window(expected.FILTERS)
        self.assertControls(program, expected.FILTERS, [
            ("push button", "Add", ""), ("push button", "Commit", ""),
            ("push button", "Cancel", ""), ("label", "Ex_Browser_XrobotX", None),
            ("push button", "Edit Ex_Browser_XrobotX", "Edit Ex_Browser_XrobotX"),
            ("push button", "Delete Ex_Browser_XrobotX", "Delete Ex_Browser_XrobotX")])
        program.button("Add", expected.FILTERS).click()
        program.window(expected.FILTER)
        self.assertControls(program, expected.FILTER, expected.FILTER_CONTROLS)

    def test_sites(self):
        program = self.start("/L")
        program.window(expected.SITE)
        self.assertControls(program, expected.SITE, [
            ("push button", "Select", ""), ("push button", "Add", ""),
            ("push button", "Remove", ""), ("push button", "Cancel", "")])
        self.assertEqual(program.find("combo box", None, expected.SITE).text, "SiteName")
        texts = [box.text for box in program.find_all("text", None, expected.SITE)]
        self.assertIn("Add new site name here", texts)

    def test_version_box(self):
        program = self.start("/V", "/SITE=web1")
        box = program.box()
        self.assertRegex(box.text, r"\AHitwick version [0-9]+\.[0-9]+\.[0-9]+\Z")
        self.assertEqual(box.title, "Hitwick")
        box.press()
        program.window()


if __name__ == "__main__":
    main()
