#!/usr/bin/env python3
"""A new user's walk through everything, from nothing to a scheduled site."""

import os

import controls
import expected
from ui_test import CONFIGURATION, UiTest, main


class WalkTest(UiTest):
    def setUp(self):
        super().setUp()
        os.remove(self.desk.config)
        self.desk.add_year_of_logs()
        os.makedirs(self.desk.root + "/www/docs")
        os.makedirs(self.desk.root + "/home/me")

    def go_to(self, program, name, *path):
        """Walks a folder list from the root down."""
        folders = program.list(name)
        chain = []
        for folder in ("/", *path):
            folders.click_row(folder, count=2)
            chain.append(folder)
            controls.wait(lambda: folders.selected() == [folder]
                          and folders.row_texts()[:len(chain)] == chain,
                          lambda: "the folder %r in %r" % (chain, folders.row_texts()))

    def first_start(self):
        program = self.start()
        self.assertBox(program, expected.in_a_box(
            expected.no_logs_on_load(expected.DEFAULT_LOGS, "INI"), self.desk.config, "INI"))
        program.window()
        return program

    def choose_folders(self, program):
        root = self.desk.root.strip("/").split("/")
        self.go_to(program, expected.LOG_FOLDER, *root, "logs")
        self.go_to(program, expected.USAGE_FOLDER, *root, "www")
        folders = program.list(expected.USAGE_FOLDER)
        folders.click_row("www", "right")
        program.find("menu item", "New Folder").click()
        program.window(expected.NEW_USAGE_FOLDER)
        program.button("Create", expected.NEW_USAGE_FOLDER).click()
        program.wait_closed(expected.NEW_USAGE_FOLDER)
        controls.wait(lambda: folders.selected() == ["Usage"], "the new folder to be chosen")

    def catch_up_and_view(self, program):
        program.check_box("And view").click()
        controls.wait(lambda: program.check_box("And view").checked, "And view to be ticked")
        program.button("Save + Catch-Up").click()
        self.assertEqual(program.wait_end(), 0)
        usage = self.desk.root + "/www/Usage"
        self.assertEqual(self.desk.stored("INI")["UsageDir"], usage)
        self.assertEqual(self.desk.opened(), [usage + "/index.htm"])
        self.assertTrue({"index.htm", "History.txt", "Jan.htm", "Dec.htm"}
                        <= set(os.listdir(usage)))

    def report_of_ten_days(self, program):
        program.button("On Demand Report").click()
        title = expected.ON_DEMAND
        program.window(title)
        program.list("To day", title).choose_row("10")
        program.text_box("Report name", title).fill("Ten days")
        program.button("Create report", title).click()
        usage = self.desk.root + "/www/Usage"
        self.desk.wait_opened(usage + "/index.htm", usage + "/Ten days.htm")
        with open(usage + "/Ten days.htm", "rb") as file:
            self.assertIn(b"1 - 10 January 2026", file.read())
        program.button("Close", title).click()
        program.wait_closed(title)

    def add_a_filter(self, program):
        program.activate(CONFIGURATION)
        program.button("Filter out records").click()
        program.window(expected.FILTERS)
        program.button("Add", expected.FILTERS).click()
        program.window(expected.FILTER)
        program.find(expected.LIST, None, expected.FILTER).choose_row("URL")
        program.text_box("matches", expected.FILTER).fill("*page3*")
        program.button("OK", expected.FILTER).click()
        program.box().press()
        program.button("OK", expected.FILTER).click()
        program.wait_closed(expected.FILTER)
        program.button("Commit", expected.FILTERS).click()
        program.wait_closed(expected.FILTERS)
        self.assertEqual(self.desk.settings()["INI\\Filters\\Ex_URL_Xpage3X"]["pattern"],
                         "*page3*")

    def schedule(self, program):
        program.activate(CONFIGURATION)
        box = program.text_box("Run daily at")
        box.fill("03:15")
        program.button("Add").click()
        self.assertBox(program, "Scheduled at 03:15\n"
                       "To remove use Control Panel -> Scheduled Tasks")
        with open(self.desk.crontab, encoding="utf-8") as file:
            return file.read()

    def second_site(self):
        program = self.start("/L")
        program.window(expected.SITE)
        sites = program.find("combo box", None, expected.SITE)
        self.assertEqual(sites.row_texts(), ["INI"])
        inside = sites.entry().extents()
        box = next(box for box in program.find_all("text", None, expected.SITE)
                   if box.extents() != inside)
        box.fill("intra net")
        box.wait_text("intranet")
        program.button("Add", expected.SITE).click()
        program.box().press()  # no logs in the usual folder
        program.window()
        root = self.desk.root.strip("/").split("/")
        self.go_to(program, expected.LOG_FOLDER, *root, "logs")
        self.go_to(program, expected.USAGE_FOLDER, *root, "www", "docs")
        program.button("Save + Exit").click()
        self.assertEqual(program.wait_end(), 0)
        self.assertEqual(self.desk.stored("intranet")["UsageDir"], self.desk.root + "/www/docs")

    def remove_the_second_site(self):
        program = self.start("/L")
        program.window(expected.SITE)
        sites = program.find("combo box", None, expected.SITE)
        sites.choose_row("intranet")
        program.button("Remove", expected.SITE).click()
        program.box().press("Yes")
        controls.wait(lambda: sites.row_texts() == ["INI"], "the list without the site")
        sites.choose_row("INI")
        program.button("Select", expected.SITE).click()
        program.window()
        self.assertTrue(program.find_all(expected.FRAME, "Configuration (INI)", CONFIGURATION))
        return program

    def test_from_nothing_to_a_scheduled_site(self):
        program = self.first_start()
        self.choose_folders(program)
        self.catch_up_and_view(program)
        program = self.start()
        program.window()
        self.report_of_ten_days(program)
        self.add_a_filter(program)
        self.assertEqual(program.quit(), 0)
        self.second_site()
        program = self.remove_the_second_site()
        table = self.schedule(program)
        self.assertIn("15 3 * * * ", table)
        self.assertIn("Hitwick-031500", table)
        self.assertEqual(program.quit(), 0)


if __name__ == "__main__":
    main()
