#!/usr/bin/env python3
"""The on-demand window: its lists, its checks, the report that it builds."""

import os
import shutil

import controls
import expected
from ui_test import CONFIGURATION, UiTest, main

TITLE = expected.ON_DEMAND
DAYS = [str(day) for day in range(1, 32)]


class OnDemandTest(UiTest):
    def setUp(self):
        super().setUp()
        self.desk.add_log("u_ex260110.log", [("2026-01-10", "/ten.htm")])
        self.desk.add_log("u_ex260114.log", [("2026-01-14", "/fourteen.htm")])

    def open_window(self, **options):
        program = self.open(**options)
        program.button("On Demand Report").click()
        program.window(TITLE)
        return program

    def choose(self, program, **rows):
        for name, row in rows.items():
            program.list(name.replace("_", " "), TITLE).choose_row(row)

    def name(self, program, text):
        box = program.text_box("Report name", TITLE)
        box.fill(text)
        return box

    def create(self, program):
        program.button("Create report", TITLE).click()

    def page(self, name):
        return self.desk.usage_files().get(name, b"").decode("latin-1")

    def test_first_contents(self):
        program = self.open_window()
        for name, rows, chosen in (("From day", DAYS, "1"), ("To day", DAYS, "15"),
                                   ("Month", expected.MONTHS, "January"),
                                   ("Year", ["2026", "2025", "2024", "2023", "2022"], "2026")):
            found = program.list(name, TITLE)
            self.assertEqual(found.row_texts(), rows, name)
            self.assertEqual(found.selected(), [chosen], name)

    def test_report_of_ten_days(self):
        program = self.open_window()
        self.choose(program, To_day="10")
        self.create(program)
        self.desk.wait_opened(self.desk.usage + "/Custom.htm")
        self.assertIn("1 - 10 January 2026", self.page("Custom.htm"))
        self.assertIn("/ten.htm", self.page("Custom.htm"))
        self.assertNotIn("/fourteen.htm", self.page("Custom.htm"))
        self.assertEqual(list(self.desk.usage_files()), ["Custom.htm"])
        self.assertIn(TITLE, program.titles())

    def test_name_is_cleaned_as_it_is_typed(self):
        program = self.open_window()
        box = self.name(program, "a/b.c")
        box.wait_text("a_b_c")
        self.create(program)
        self.desk.wait_opened(self.desk.usage + "/a_b_c.htm")
        self.assertIn("a_b_c.htm", self.desk.usage_files())
        self.name(program, "a\\b/c.d'e\"f g").wait_text("a_b_c_d_e_f g")

    def test_typing_goes_on_at_the_cursor(self):
        program = self.open_window()
        self.name(program, "x.").wait_text("x_")
        controls.type_text("yz")
        program.text_box("Report name", TITLE).wait_text("x_yz")

    def test_csv_files_take_the_name(self):
        self.desk.configure("web1", {"GenerateCSV": "True"})
        program = self.open_window()
        self.name(program, "mine")
        self.create(program)
        self.desk.wait_opened(self.desk.usage + "/mine.htm")
        names = self.desk.usage_files()
        self.assertIn("mine-URLbyKBytes.csv", names)
        self.assertTrue(all(name.startswith("mine") for name in names), list(names))

    def test_invalid_day_range(self):
        program = self.open_window()
        self.choose(program, From_day="20")
        self.create(program)
        self.assertBox(program, "Invalid day range.")
        self.assertEqual(program.list("From day", TITLE).selected(), ["20"])
        self.assertEqual(program.list("To day", TITLE).selected(), ["15"])
        self.assertEqual(self.desk.usage_files(), {})
        self.assertEqual(self.desk.opened(), [])

    def unselect(self, program, name):
        """Takes the selection out of a list; False where the list does not allow it."""
        found = program.list(name, TITLE)
        found.click_row(found.selected()[0], hold="ctrl")
        program.settle()
        return found.selected() == []

    def test_nothing_selected(self):
        program = self.open_window()
        for name, text in (("Year", "Please select a year"), ("Month", "Please select a month."),
                           ("From day", "Invalid day range.")):
            with self.subTest(name=name):
                if not self.unselect(program, name):
                    continue  # a list that always has a selection needs no message
                self.create(program)
                self.assertBox(program, text)

    def test_a_day_that_the_month_does_not_have(self):
        program = self.open_window()
        self.choose(program, Year="2025", Month="November", To_day="31", From_day="31")
        self.create(program)
        self.desk.wait_opened(self.desk.usage + "/Custom.htm")
        self.assertIn("31 - 31 November 2025", self.page("Custom.htm"))
        self.assertEqual(program.boxes(), [])

    def test_history_and_index_are_left_alone(self):
        old = {"History.txt": b"12,2025,1000,10,5,3,100,2,2,6\r\n", "index.htm": b"old",
               "Jan.htm": b"old"}
        for name, content in old.items():
            self.desk.write("usage/" + name, content)
        program = self.open_window()
        self.create(program)
        self.desk.wait_opened(self.desk.usage + "/Custom.htm")
        files = self.desk.usage_files()
        self.assertEqual({name: files[name] for name in old}, old)

    def test_a_later_catch_up_writes_the_months_pages(self):
        program = self.open_window()
        self.create(program)
        self.desk.wait_opened(self.desk.usage + "/Custom.htm")
        self.choose(program, From_day="31")
        self.create(program)
        self.assertBox(program, "Invalid day range.")
        program.button("Close", TITLE).click()
        program.wait_closed(TITLE)
        custom = self.desk.usage_files()["Custom.htm"]
        program.activate(CONFIGURATION)
        program.button("Save + Catch-Up").click()
        self.assertEqual(program.wait_end(), 0)
        files = self.desk.usage_files()
        self.assertIn("Jan.htm", files)
        self.assertIn("index.htm", files)
        self.assertIn("History.txt", files)
        self.assertEqual(files["Custom.htm"], custom)

    def test_opening_that_fails_is_told(self):
        self.desk.set_opener(4)
        program = self.open_window()
        self.create(program)
        self.assertBox(program, "Cannot locate file '%s/Custom.htm'" % self.desk.usage)
        self.assertIn("Custom.htm", self.desk.usage_files())

    def test_a_page_that_cannot_be_written_is_not_opened(self):
        program = self.open_window()
        shutil.rmtree(self.desk.usage)
        self.create(program)
        self.wait_ready(program)
        self.assertEqual(self.desk.opened(), [])
        texts = [text for _, text in self.desk.event_texts()]
        self.assertTrue([text for text in texts if text.startswith(
            "HitwickError generating usage report %s/Custom.htm : " % self.desk.usage)], texts)

    def wait_ready(self, program):
        """The run is over: what was disabled for it can be used again."""
        program.settle()
        controls.wait(lambda: program.button("Create report", TITLE).enabled
                      and program.button("Save + Exit").enabled, "the end of the run")

    def test_the_configuration_window_is_usable_again(self):
        program = self.open_window()
        self.create(program)
        self.desk.wait_opened(self.desk.usage + "/Custom.htm")
        self.wait_ready(program)
        for name in ("Save + Exit", "Save + Catch-Up", "On Demand Report", "Filter out records"):
            self.assertTrue(program.button(name).enabled, name)

    def test_close_and_open_again(self):
        program = self.open_window()
        program.button("Close", TITLE).click()
        program.wait_closed(TITLE)
        program.activate(CONFIGURATION)
        program.button("On Demand Report").click()
        program.window(TITLE)
        self.assertEqual(program.list("From day", TITLE).selected(), ["1"])

    def test_quit_closes_this_window_too(self):
        program = self.open_window()
        program.activate(CONFIGURATION)
        self.assertEqual(program.quit(), 0)


if __name__ == "__main__":
    main()
