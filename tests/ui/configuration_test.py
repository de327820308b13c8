#!/usr/bin/env python3
"""The configuration window: loading, editing, saving, its folder lists, its small buttons."""

import os
import shutil

import controls
import expected
import session
import ui_test
from program import BOUND_BY_PERMISSIONS
from ui_test import CONFIGURATION, UiTest, main

ALWAYS_USABLE = ("Save + Exit", "Save + Catch-Up", "On Demand Report", "Filter out records",
                 "View generated", "Help", "Quit")


class LoadTest(UiTest):
    SETTINGS = {"MaxListSize": "55 rows", "UseUTC": "True", "ShowUsernames": "true",
                "GenerateCSV": "True"}

    def test_stored_settings_are_shown(self):
        program = self.open()
        self.assertEqual(program.text_box(expected.LIST_SIZE).text, "55")
        self.assertTrue(program.check_box(expected.OMIT_UTC).checked)
        self.assertFalse(program.check_box(expected.USERNAMES).checked)
        self.assertTrue(program.check_box(expected.CSV).checked)
        self.assertFalse(program.check_box("And view").checked)
        for name, folder in ((expected.LOG_FOLDER, "logs"), (expected.USAGE_FOLDER, "usage")):
            chain = ["/"] + self.desk.root.strip("/").split("/") + [folder]
            self.assertEqual(program.list(name).row_texts(), chain)
        self.assertEqual(self.desk.stored()["MaxListSize"], "55 rows")

    def test_without_a_site_the_default_one_is_used(self):
        self.desk.configure("INI", self.SETTINGS)
        program = self.start()
        program.window()
        self.assertTrue(program.find_all(expected.FRAME, "Configuration", CONFIGURATION))
        self.assertEqual(program.text_box(expected.LIST_SIZE).text, "55")
        self.assertEvent("information", "Hitwick: operating on site 'INI'")

    def test_missing_logs_are_told_and_the_window_opens(self):
        shutil.rmtree(self.desk.logs)
        program = self.start("/SITE=web1")
        self.assertBox(program, expected.in_a_box(
            expected.no_logs_on_load(self.desk.logs), self.desk.config))
        program.window()
        for name in ALWAYS_USABLE:
            self.assertTrue(program.button(name).enabled, name)
        self.assertEvent("warning", "Hitwick: " + expected.no_logs_on_load(self.desk.logs))

    def test_what_is_stored_outlives_missing_logs(self):
        os.rename(self.desk.logs, self.desk.logs + ".away")
        program = self.start("/SITE=web1")
        program.box().press()
        program.window()
        os.rename(self.desk.logs + ".away", self.desk.logs)
        self.assertEqual(program.text_box(expected.LIST_SIZE).text, "55")
        program.button("Save + Exit").click()
        self.assertEqual(program.wait_end(), 0)
        stored = self.desk.stored()
        self.assertEqual((stored["MaxListSize"], stored["UseUTC"], stored["UsageDir"]),
                         ("55", "True", self.desk.usage))

    def test_missing_usage_folder_is_told_and_the_rest_is_loaded(self):
        shutil.rmtree(self.desk.usage)
        program = self.start("/SITE=web1")
        self.assertBox(program, expected.in_a_box(
            expected.no_usage_on_load(self.desk.usage), self.desk.config))
        program.window()
        self.assertEqual(program.text_box(expected.LIST_SIZE).text, "55")
        self.assertTrue(program.check_box(expected.CSV).checked)

    def test_unknown_format_is_told(self):
        self.desk.configure("web1", {"IISLogFormat": "NCSA"})
        program = self.start("/SITE=web1")
        self.assertBox(program, "The only log file format supported is W3C")
        program.window()

    def test_a_new_site_has_its_defaults(self):
        program = self.start("/SITE=new1")
        self.assertBox(program, expected.in_a_box(
            expected.no_logs_on_load(expected.DEFAULT_LOGS, "new1"), self.desk.config, "new1"))
        program.window()
        self.assertTrue(program.find_all(expected.FRAME, "Configuration (new1)", CONFIGURATION))
        self.assertNotIn("IISLogDir", self.desk.stored("new1"))


class SaveTest(UiTest):
    def test_all_seven_values_are_stored(self):
        self.desk.configure("web1", {})
        program = self.open()
        program.button("Save + Exit").click()
        self.assertEqual(program.wait_end(), 0)
        self.assertEqual(set(self.desk.stored().items()), {
            ("IISLogFormat", "W3C"), ("IISLogDir", self.desk.logs), ("UsageDir", self.desk.usage),
            ("MaxListSize", "100"), ("UseUTC", "False"), ("ShowUsernames", "False"),
            ("GenerateCSV", "False")})
        self.assertEqual(self.desk.usage_files(), {})

    def test_check_boxes_are_stored(self):
        program = self.open()
        for name in (expected.OMIT_UTC, expected.USERNAMES, expected.CSV):
            box = program.check_box(name)
            box.click()
            controls.wait(lambda: box.checked, "%r to be ticked" % name)
        program.button("Save + Exit").click()
        program.wait_end()
        stored = self.desk.stored()
        self.assertEqual([stored[name] for name in ("UseUTC", "ShowUsernames", "GenerateCSV")],
                         ["True"] * 3)

    def test_check_boxes_can_be_cleared(self):
        self.desk.configure("web1", {"UseUTC": "True", "ShowUsernames": "True",
                                     "GenerateCSV": "True"})
        program = self.open()
        for name in (expected.OMIT_UTC, expected.USERNAMES, expected.CSV):
            box = program.check_box(name)
            box.click()
            controls.wait(lambda: not box.checked, "%r to be cleared" % name)
        program.button("Save + Exit").click()
        program.wait_end()
        stored = self.desk.stored()
        self.assertEqual([stored[name] for name in ("UseUTC", "ShowUsernames", "GenerateCSV")],
                         ["False"] * 3)

    def test_quit_stores_nothing(self):
        before = self.desk.settings()
        program = self.open()
        program.check_box(expected.CSV).click()
        program.text_box(expected.LIST_SIZE).fill("7")
        self.assertEqual(program.quit(), 0)
        before["web1"]["IISLogFormat"] = "W3C"  # written back by the loading
        self.assertEqual(self.desk.settings(), before)

    def test_the_close_button_of_the_window_ends_the_program(self):
        program = self.open()
        controls.key("alt+F4")
        self.assertEqual(program.wait_end(), 0)

    def assertUsableAfterFailure(self, program):
        for name in ALWAYS_USABLE:
            controls.wait(lambda: program.button(name).enabled, name + " to be usable again")
        program.list(expected.USAGE_FOLDER).click_row("usage", "right")
        entry = program.find("menu item", "New Folder")
        self.assertTrue(entry.enabled)
        controls.key("Escape")

    def failed_save(self, button):
        program = self.open()
        os.remove(os.path.join(self.desk.logs, "u_ex260110.log"))
        program.text_box(expected.LIST_SIZE).fill("77")
        before = self.desk.settings()
        program.button(button).click()
        self.assertBox(program, expected.no_logs_on_save(self.desk.logs))
        self.assertUsableAfterFailure(program)
        self.assertEqual(self.desk.settings(), before)
        self.assertEqual(self.desk.usage_files(), {})
        self.assertIn("Hitwick: " + expected.no_logs_on_load(self.desk.logs),
                      [text for _, text in self.desk.event_texts()])
        return program

    def test_failed_save_leaves_every_button_usable(self):
        program = self.failed_save("Save + Exit")
        self.desk.add_log()
        program.button("Save + Exit").click()
        self.assertEqual(program.wait_end(), 0)
        self.assertEqual(self.desk.stored()["MaxListSize"], "77")

    def test_failed_catch_up_leaves_every_button_usable(self):
        program = self.failed_save("Save + Catch-Up")
        self.assertEqual(program.quit(), 0)

    def test_failed_save_for_want_of_the_usage_folder(self):
        program = self.open()
        shutil.rmtree(self.desk.usage)
        program.button("Save + Exit").click()
        self.assertBox(program, expected.no_usage_on_save(self.desk.usage))
        for name in ALWAYS_USABLE:
            controls.wait(lambda: program.button(name).enabled, name + " to be usable again")
        texts = [text for _, text in self.desk.event_texts()]
        self.assertIn("Hitwick: Usage directory (%s) must be a writeable pre-existing directory. "
                      "If this is the wrong directory reset registry '%sweb1\\UsageDir'."
                      % (self.desk.usage, expected.REGISTRY), texts)


class ListSizeTest(UiTest):
    def size(self, program):
        return program.text_box(expected.LIST_SIZE)

    def stored_after(self, program):
        program.button("Save + Exit").click()
        program.wait_end()
        return self.desk.stored()["MaxListSize"]

    def test_29999_is_kept(self):
        program = self.open()
        self.size(program).fill("29999")
        self.size(program).wait_text("29999")
        self.assertEqual(self.stored_after(program), "29999")

    def test_out_of_range_is_set_back(self):
        program = self.open()
        for typed in ("30000", "0", "word"):
            with self.subTest(typed=typed):
                self.size(program).fill("42")
                self.size(program).wait_text("42")
                self.size(program).fill(typed)
                self.size(program).wait_text("100")
                program.settle()
                self.assertEqual(self.size(program).text, "100")
        self.assertEqual(self.stored_after(program), "100")

    def test_cleared_is_set_back(self):
        program = self.open()
        self.size(program).fill("42")
        self.size(program).wait_text("42")
        self.size(program).fill("")
        self.size(program).wait_text("100")

    def test_one_is_kept(self):
        program = self.open()
        self.size(program).fill("1")
        self.size(program).wait_text("1")
        self.assertEqual(self.stored_after(program), "1")


class FolderListTest(UiTest):
    def setUp(self):
        super().setUp()
        for path in ("usage/one", "usage/Two/deep", "usage/three"):
            os.makedirs(os.path.join(self.desk.root, path))
        self.desk.write("usage/Two/page.htm", "not a folder")
        self.chain = ["/"] + self.desk.root.strip("/").split("/")

    def usage(self, program):
        return program.list(expected.USAGE_FOLDER)

    def wait_rows(self, program, rows):
        controls.wait(lambda: self.usage(program).row_texts() == rows,
                      lambda: "the folders %r (shown: %r)" % (rows, self.usage(program).row_texts()))

    def stored_folder(self, program, name="UsageDir"):
        program.button("Save + Exit").click()
        self.assertEqual(program.wait_end(), 0)
        return self.desk.stored()[name]

    def test_chain_and_sub_folders(self):
        program = self.open()
        self.assertEqual(self.usage(program).row_texts(),
                         self.chain + ["usage", "one", "three", "Two"])
        self.assertEqual(self.usage(program).selected(), ["usage"])

    def test_double_click_goes_in(self):
        program = self.open()
        self.usage(program).click_row("Two", count=2)
        self.wait_rows(program, self.chain + ["usage", "Two", "deep"])
        self.assertEqual(self.stored_folder(program), self.desk.usage + "/Two")

    def test_double_click_on_the_chain_goes_back(self):
        program = self.open()
        self.usage(program).click_row(self.chain[-1], count=2)
        controls.wait(lambda: "logs" in self.usage(program).row_texts(), "the folders above")
        self.usage(program).click_row("usage", count=2)
        self.wait_rows(program, self.chain + ["usage", "one", "three", "Two"])
        self.assertEqual(self.stored_folder(program), self.desk.usage)

    def test_a_single_click_stays(self):
        program = self.open()
        self.usage(program).click_row("one")
        controls.wait(lambda: self.usage(program).selected() == ["one"], "the click")
        self.assertEqual(self.usage(program).row_texts(),
                         self.chain + ["usage", "one", "three", "Two"])
        self.assertEqual(self.stored_folder(program), self.desk.usage)

    def test_enter_goes_in_and_backspace_up(self):
        os.mkdir(os.path.join(self.desk.usage, "Two", "other"))
        program = self.open()
        self.usage(program).choose_row("Two")
        controls.key("Return")
        self.wait_rows(program, self.chain + ["usage", "Two", "deep", "other"])
        controls.key("Down", "Return")
        self.wait_rows(program, self.chain + ["usage", "Two", "deep"])
        controls.key("BackSpace")
        self.wait_rows(program, self.chain + ["usage", "Two", "deep", "other"])
        controls.key("BackSpace")
        self.wait_rows(program, self.chain + ["usage", "one", "three", "Two"])
        self.assertEqual(self.stored_folder(program), self.desk.usage)

    def test_backspace_at_the_root_stays(self):
        program = self.open()
        self.usage(program).choose_row("usage")
        controls.key(*["BackSpace"] * (len(self.chain) + 3))
        controls.wait(lambda: self.usage(program).row_texts()[0] == "/"
                      and "usr" in self.usage(program).row_texts()
                      and self.chain[-1] not in self.usage(program).row_texts(), "the root")
        program.settle()
        self.assertTrue(self.usage(program).showing)

    def test_an_unreadable_folder_stays_put(self):
        os.chmod(os.path.join(self.desk.usage, "one"), 0)
        program = self.start("/SITE=web1", wrapper=BOUND_BY_PERMISSIONS)
        program.window()
        rows = self.chain + ["usage", "one", "three", "Two"]
        self.assertEqual(self.usage(program).row_texts(), rows)
        self.usage(program).click_row("one", count=2)
        program.settle()
        self.assertEqual(self.usage(program).row_texts(), rows)
        controls.key("Return")
        program.settle()
        self.assertEqual(self.usage(program).row_texts(), rows)
        self.assertEqual(program.boxes(), [])
        self.assertEqual(self.stored_folder(program), self.desk.usage)

    def test_a_vanished_folder_stays_put(self):
        program = self.open()
        os.rmdir(os.path.join(self.desk.usage, "one"))
        self.usage(program).click_row("one", count=2)
        program.settle()
        self.assertEqual(self.usage(program).row_texts()[:len(self.chain) + 1],
                         self.chain + ["usage"])
        self.assertEqual(self.stored_folder(program), self.desk.usage)

    def test_the_log_list_sets_the_log_folder(self):
        self.desk.write("logs/W3SVC2/ex260110.log", "#\n")
        program = self.open()
        program.list(expected.LOG_FOLDER).click_row("W3SVC2", count=2)
        controls.wait(lambda: program.list(expected.LOG_FOLDER).row_texts()
                      == self.chain + ["logs", "W3SVC2"], "the log folder")
        self.assertEqual(self.stored_folder(program, "IISLogDir"), self.desk.logs + "/W3SVC2")

    def test_odd_folder_names(self):
        for name in ("with blank", "per%20cent", "under_score", "amp&ersand"):
            os.mkdir(os.path.join(self.desk.usage, "three", name))
        program = self.open()
        self.usage(program).click_row("three", count=2)
        self.wait_rows(program, self.chain + ["usage", "three", "amp&ersand", "per%20cent",
                                              "under_score", "with blank"])
        self.usage(program).click_row("amp&ersand", count=2)
        self.wait_rows(program, self.chain + ["usage", "three", "amp&ersand"])
        self.assertEqual(self.stored_folder(program), self.desk.usage + "/three/amp&ersand")

    def browse(self, program, button):
        """Opens the system's folder dialog, types a folder into it and takes it."""
        program.button(button).click()
        dialog = controls.wait(lambda: next(
            (top for top in program.tree() if top.showing and top.role in ("dialog", "file chooser")
             and top.name != CONFIGURATION), None), "the folder dialog")
        controls.wait(lambda: dialog.has("active"), "the folder dialog to be active")
        return dialog

    def test_browsing_for_the_usage_folder(self):
        program = self.open()
        dialog = self.browse(program, "Browse for usage pages")
        controls.type_text(self.desk.usage + "/three")
        controls.key("Return")
        if dialog.showing:
            session.poll(lambda: not program.boxes(), "no box")
            controls.key("alt+o")
        self.wait_rows(program, self.chain + ["usage", "three"])
        self.assertEqual(self.stored_folder(program), self.desk.usage + "/three")

    def test_cancelled_browsing_changes_nothing(self):
        program = self.open()
        dialog = self.browse(program, "Browse for log files")
        controls.key("Escape")
        program.wait_gone(dialog)
        self.assertEqual(self.stored_folder(program, "IISLogDir"), self.desk.logs)


class NewUsageFolderTest(UiTest):
    TITLE = expected.NEW_USAGE_FOLDER

    def open_window(self):
        program = self.open()
        program.list(expected.USAGE_FOLDER).click_row("usage", "right")
        program.find("menu item", "New Folder").click()
        program.window(self.TITLE)
        return program

    def name_box(self, program):
        return program.find("text", None, self.TITLE)

    def create(self, program, name=None):
        if name is not None:
            self.name_box(program).fill(name)
            self.name_box(program).wait_text(name)
        program.button("Create", self.TITLE).click()

    def test_created_listed_and_chosen(self):
        program = self.open_window()
        self.create(program)
        program.wait_closed(self.TITLE)
        path = self.desk.usage + "/Usage"
        self.assertTrue(os.path.isdir(path))
        self.assertEvent("information", "Hitwick : User created new usage folder: " + path)
        folders = program.list(expected.USAGE_FOLDER)
        controls.wait(lambda: folders.row_texts()[-2:] == ["usage", "Usage"], "the new folder")
        program.button("Save + Exit").click()
        program.wait_end()
        self.assertEqual(self.desk.stored()["UsageDir"], path)

    def test_empty_name(self):
        program = self.open_window()
        self.create(program, "")
        self.assertBox(program, "Please enter a name for the new folder")
        program.window(self.TITLE)
        self.create(program, "pages")
        program.wait_closed(self.TITLE)
        self.assertTrue(os.path.isdir(self.desk.usage + "/pages"))

    def test_failure_is_told_and_closes(self):
        self.desk.write("usage/taken", "a file")
        program = self.open_window()
        self.create(program, "taken")
        self.assertBox(program, "Failed to create '%s/taken'\nFile exists" % self.desk.usage)
        program.wait_closed(self.TITLE)
        self.assertNotIn("User created", " ".join(text for _, text in self.desk.event_texts()))
        program.button("Save + Exit").click()
        program.wait_end()
        self.assertEqual(self.desk.stored()["UsageDir"], self.desk.usage)

    def test_a_folder_below_a_missing_one_fails(self):
        program = self.open_window()
        self.create(program, "no/such")
        self.assertBox(program, "Failed to create '%s/no/such'\nNo such file or directory"
                       % self.desk.usage)
        program.wait_closed(self.TITLE)

    def test_cancel(self):
        program = self.open_window()
        program.button("Cancel", self.TITLE).click()
        program.wait_closed(self.TITLE)
        self.assertEqual(os.listdir(self.desk.usage), [])

    def test_in_the_folder_that_is_shown(self):
        os.mkdir(self.desk.usage + "/sub")
        program = self.open()
        folders = program.list(expected.USAGE_FOLDER)
        folders.click_row("sub", count=2)
        controls.wait(lambda: folders.selected() == ["sub"], "the sub-folder")
        folders.click_row("sub", "right")
        program.find("menu item", "New Folder").click()
        program.window(self.TITLE)
        self.create(program, "x")
        program.wait_closed(self.TITLE)
        self.assertTrue(os.path.isdir(self.desk.usage + "/sub/x"))


class OpeningTest(UiTest):
    """A file that is not there is a failure, and so is an opener that says so."""

    def setUp(self):
        super().setUp()
        self.desk.write("usage/index.htm", "a page")

    def test_view(self):
        program = self.open()
        program.button("View generated").click()
        self.desk.wait_opened(self.desk.usage + "/index.htm")
        self.assertEqual(program.boxes(), [])

    def test_view_of_nothing(self):
        os.remove(self.desk.usage + "/index.htm")
        program = self.open()
        program.button("View generated").click()
        self.assertBox(program, "Cannot locate file '%s/index.htm'" % self.desk.usage)

    def test_view_fails(self):
        self.desk.set_opener(2)
        program = self.open()
        program.button("View generated").click()
        self.assertBox(program, "Cannot locate file '%s/index.htm'" % self.desk.usage)
        self.assertTrue(program.button("View generated").enabled)

    def test_view_shows_the_folder_that_is_chosen_now(self):
        self.desk.write("usage/sub/index.htm", "another page")
        program = self.open()
        folders = program.list(expected.USAGE_FOLDER)
        folders.click_row("sub", count=2)
        controls.wait(lambda: folders.selected() == ["sub"], "the sub-folder")
        program.button("View generated").click()
        self.desk.wait_opened(self.desk.usage + "/sub/index.htm")

    def program_beside(self, help_page):
        """A copy of the program, with or without its help page."""
        folder = os.path.join(self.desk.root, "program")
        os.mkdir(folder)
        path = ui_test.copy_of_program(folder)
        if help_page:
            self.desk.write("program/index.htm", "help")
        program = self.start("/SITE=web1", path=path)
        program.window()
        return program, folder + "/index.htm"

    def test_help(self):
        program, page = self.program_beside(help_page=True)
        program.button("Help").click()
        self.desk.wait_opened(page)
        self.assertEqual(program.boxes(), [])

    def test_no_help_page(self):
        program, page = self.program_beside(help_page=False)
        program.button("Help").click()
        self.assertBox(program, "Cannot locate help file '%s'" % page)

    def test_help_that_cannot_be_opened(self):
        self.desk.set_opener(3)
        program, page = self.program_beside(help_page=True)
        program.button("Help").click()
        self.assertBox(program, "Cannot locate help file '%s'" % page)

    def test_no_opener_at_all(self):
        program = self.open(extra=self.desk.without("xdg-open"))
        program.button("View generated").click()
        self.assertBox(program, "Cannot locate file '%s/index.htm'" % self.desk.usage)


if __name__ == "__main__":
    main()
