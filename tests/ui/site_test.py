#!/usr/bin/env python3
"""The site selection window of "/L": choosing, adding, removing, cancelling."""

import os

import controls
import expected
from program import BOUND_BY_PERMISSIONS
from ui_test import CONFIGURATION, UiTest, main

TITLE = expected.SITE


class SiteTest(UiTest):
    def setUp(self):
        super().setUp()
        with open(self.desk.config, "a", encoding="utf-8") as file:
            for site in ("INI", "old"):
                file.write("\n[%s]\nIISLogDir=%s\nUsageDir=%s\n"
                           % (site, self.desk.logs, self.desk.usage))
            file.write("\n[old\\Filters\\Ex_a]\nname=Ex_a\nincludes=False\nfield=c-ip\npattern=a\n")

    def open_sites(self, *more, **options):
        program = self.start("/L", *more, **options)
        program.window(TITLE)
        return program

    def sites(self, program):
        return program.find("combo box", None, TITLE)

    def new_name(self, program):
        inside = self.sites(program).entry().extents()
        return next(box for box in program.find_all("text", None, TITLE)
                    if box.extents() != inside)

    def press(self, program, name):
        program.button(name, TITLE).click()

    def assertWorksOn(self, program, site):
        """The configuration window opens, for this site."""
        program.window()
        program.wait_closed(TITLE)
        caption = "Configuration (%s)" % site if site else "Configuration"
        self.assertTrue(program.find_all(expected.FRAME, caption, CONFIGURATION))
        self.assertEvent("information", "Hitwick: operating on site '%s'" % (site or "INI"))

    def test_lists_the_sites_in_their_order(self):
        program = self.open_sites()
        self.assertEqual(self.sites(program).row_texts(), ["web1", "INI", "old"])

    def test_select(self):
        program = self.open_sites()
        self.sites(program).choose_row("old")
        self.press(program, "Select")
        self.assertWorksOn(program, "old")

    def test_select_a_typed_site(self):
        program = self.open_sites()
        self.sites(program).entry().fill("web1")
        self.sites(program).wait_text("web1")
        self.press(program, "Select")
        self.assertWorksOn(program, "web1")

    def test_cancel_uses_the_default_site(self):
        program = self.open_sites()
        self.sites(program).choose_row("old")
        self.press(program, "Cancel")
        self.assertWorksOn(program, "")

    def test_cancel_forgets_a_site_named_before(self):
        program = self.start("/SITE=old", "/L")
        program.window(TITLE)
        self.press(program, "Cancel")
        self.assertWorksOn(program, "")

    def test_the_close_button_is_cancel(self):
        program = self.open_sites()
        controls.key("alt+F4")
        self.assertWorksOn(program, "")

    def test_a_site_named_after_counts(self):
        program = self.start("/L", "/SITE=web1")
        program.window(TITLE)
        self.sites(program).choose_row("old")
        self.press(program, "Select")
        self.assertWorksOn(program, "web1")

    def test_typed_names_are_cleaned(self):
        program = self.open_sites()
        box = self.new_name(program)
        self.assertEqual(box.text, "Add new site name here")
        box.fill("web 1/a")
        box.wait_text("web1a")
        box.fill("a\\ b//c \\d")
        box.wait_text("abcd")

    def test_cleaning_keeps_the_cursor_at_the_end(self):
        program = self.open_sites()
        self.new_name(program).fill("we b")
        controls.type_text("2 /3")
        self.new_name(program).wait_text("web23")

    def test_add(self):
        program = self.open_sites()
        self.new_name(program).fill("web 2/b")
        self.new_name(program).wait_text("web2b")
        self.press(program, "Add")
        self.assertBox(program, expected.in_a_box(
            expected.no_logs_on_load(expected.DEFAULT_LOGS, "web2b"), self.desk.config, "web2b"))
        self.assertWorksOn(program, "web2b")

    def ask_removal(self, program, site):
        self.sites(program).choose_row(site)
        self.press(program, "Remove")
        box = program.box()
        self.assertEqual(box.title, "Confirm delete of " + site)
        self.assertEqual(box.text,
                         "Are you sure you want to delete configuration for site '%s'" % site)
        self.assertEqual(set(box.buttons), {"Yes", "No"})
        return box

    def test_remove(self):
        program = self.open_sites()
        self.ask_removal(program, "old").press("Yes")
        controls.wait(lambda: self.sites(program).row_texts() == ["web1", "INI"],
                      "the list without the site")
        self.assertEqual(list(self.desk.settings()), ["web1", "INI"])
        self.assertEvent("information", "Hitwick : Deleted configuration of site 'old'")
        self.assertEqual(program.titles(), [TITLE])
        self.sites(program).choose_row("web1")
        self.press(program, "Select")
        self.assertWorksOn(program, "web1")

    def test_remove_and_no(self):
        before = self.desk.settings()
        program = self.open_sites()
        self.ask_removal(program, "old").press("No")
        program.settle()
        self.assertEqual(self.desk.settings(), before)
        self.assertEqual(self.sites(program).row_texts(), ["web1", "INI", "old"])

    def test_remove_and_escape(self):
        before = self.desk.settings()
        program = self.open_sites()
        box = self.ask_removal(program, "old")
        controls.key("Escape")
        if box.alert.showing and program.boxes():
            box.press("No")
        program.settle()
        self.assertEqual(self.desk.settings(), before)

    def test_removing_a_site_that_is_not_there(self):
        program = self.open_sites()
        before = self.desk.settings()
        self.sites(program).entry().fill("ghost")
        self.sites(program).wait_text("ghost")
        self.press(program, "Remove")
        program.box().press("Yes")
        program.settle()
        self.assertEqual(program.boxes(), [])
        self.assertEqual(self.desk.settings(), before)
        self.assertEqual(self.sites(program).row_texts(), ["web1", "INI", "old"])

    def test_settings_that_cannot_be_read_are_told(self):
        os.chmod(self.desk.config, 0)
        program = self.start("/L", wrapper=BOUND_BY_PERMISSIONS)
        box = program.box()
        self.assertRegex(box.text, r"\AError in reading site configuration from registry : "
                         r"RegOpenKeyEx\(Software\\VB and VBA Program Settings\\Hitwick\)\n.")
        box.press()
        program.window(TITLE)
        self.assertEqual(self.sites(program).row_texts(), [])


if __name__ == "__main__":
    main()
