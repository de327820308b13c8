#!/usr/bin/env python3
"""Everything without a mouse: tab order, default and Esc buttons, menu key, typing ahead."""

import os
import time

import controls
import expected
from controls import INPUTS
from ui_test import CONFIGURATION, UiTest, main

TEN_DAYS = 10


class KeyboardTest(UiTest):
    RULES = [{"name": "docs", "includes": "True", "field": "cs-uri-stem", "pattern": "/docs/*"}]

    def wait_focus(self, program, role, name, window):
        controls.wait(lambda: program.focused(window) and program.focused(window).role == role
                      and program.focused(window).name == name,
                      lambda: "the focus on %s %r (it is on %r)" % (role, name, program.focused(window)))

    def next_focus(self, program, window, step, before):
        """Presses Tab; the control that has the keyboard then. A drop-down list without a text
        box does not tell the bus that it has it: None."""
        controls.key(step)
        end = time.monotonic() + 3
        while time.monotonic() < end:
            found = program.focused(window)
            if found is not None and found.extents() != before:
                return found
        self.assertIsNone(program.focused(window), "Tab does not leave this control")
        return None

    def tab_round(self, program, window, step="Tab"):
        """(role, name, place) of what Tab visits until it comes back to the first."""
        here = controls.wait(lambda: program.focused(window), "a control with the focus")
        visited = []
        while len(visited) < 60:
            if here is None:
                here, = [part for part in program.find_all("combo box", None, window)
                         if not any(inside.role == "text" for inside in part.parts())]
            visited.append((here.role, here.name, here.extents()))
            here = self.next_focus(program, window, step, visited[-1][2])
            if here is not None and here.extents() == visited[0][2]:
                break
        return visited

    def assertTabRound(self, program, window):
        """Tab visits every control that takes input once, Shift+Tab in the opposite order."""
        visited = self.tab_round(program, window)
        wanted = [part for part in program.find_all(INPUTS, None, window) if part.enabled]
        places = {place for _, _, place in visited}
        for part in wanted:
            if part.role == "radio button" and not part.checked:
                continue  # the arrow keys go from one to the other
            left, top, width, height = part.extents()
            inside = [place for place in places
                      if left <= place[0] and top <= place[1]
                      and place[0] + place[2] <= left + width
                      and place[1] + place[3] <= top + height]
            self.assertTrue(inside, "Tab does not reach %r; it visits %r" % (part, visited))
        back = self.tab_round(program, window, "shift+Tab")
        self.assertEqual([name for _, name, _ in back[1:]],
                         [name for _, name, _ in reversed(visited[1:])])
        return visited

    def test_tab_goes_round_the_configuration(self):
        program = self.open()
        program.list(expected.LOG_FORMAT).click()
        names = [name for _, name, _ in self.assertTabRound(program, CONFIGURATION)]
        in_order = [expected.LOG_FORMAT, expected.LOG_FOLDER, "Browse for log files",
                    expected.USAGE_FOLDER, "Browse for usage pages", expected.LIST_SIZE,
                    expected.OMIT_UTC, expected.USERNAMES, expected.CSV]
        self.assertEqual([name for name in names if name in in_order], in_order)

    def test_tab_goes_round_the_other_windows(self):
        program = self.open()
        program.button("On Demand Report").click()
        program.window(expected.ON_DEMAND)
        self.assertTabRound(program, expected.ON_DEMAND)
        controls.key("Escape")
        program.wait_closed(expected.ON_DEMAND)
        program.activate(CONFIGURATION)
        program.button("Filter out records").click()
        program.window(expected.FILTERS)
        self.assertTabRound(program, expected.FILTERS)
        program.button("Add", expected.FILTERS).click()
        program.window(expected.FILTER)
        self.assertTabRound(program, expected.FILTER)

    def test_escape_closes_each_window(self):
        program = self.open()
        for button, title in (("On Demand Report", expected.ON_DEMAND),
                              ("Filter out records", expected.FILTERS)):
            program.activate(CONFIGURATION)
            program.button(button).click()
            program.window(title)
            controls.key("Escape")
            program.wait_closed(title)
        program.button("Filter out records").click()
        program.window(expected.FILTERS)
        program.button("Add", expected.FILTERS).click()
        program.window(expected.FILTER)
        controls.key("Escape")
        program.wait_closed(expected.FILTER)
        self.assertIn(expected.FILTERS, program.titles())

    def test_escape_leaves_the_site_selection(self):
        self.desk.configure("INI")
        program = self.start("/L")
        program.window(expected.SITE)
        controls.key("Escape")
        program.window()
        self.assertTrue(program.find_all(expected.FRAME, "Configuration", CONFIGURATION))

    def test_enter_in_a_filter_is_ok(self):
        program = self.open()
        program.button("Filter out records").click()
        program.window(expected.FILTERS)
        program.button("Add", expected.FILTERS).click()
        program.window(expected.FILTER)
        program.text_box("Filter name", expected.FILTER).fill("mine")
        program.text_box("matches", expected.FILTER).fill("10.*")
        controls.key("Return")
        program.wait_closed(expected.FILTER)
        controls.wait(lambda: program.find_all("push button", "Edit mine", expected.FILTERS),
                      "the new rule")

    def test_enter_creates_the_on_demand_report(self):
        program = self.open()
        program.button("On Demand Report").click()
        program.window(expected.ON_DEMAND)
        program.text_box("Report name", expected.ON_DEMAND).fill("keys")
        controls.key("Return")
        self.desk.wait_opened(self.desk.usage + "/keys.htm")

    def test_enter_takes_a_typed_site(self):
        program = self.start("/L")
        program.window(expected.SITE)
        sites = program.find("combo box", None, expected.SITE)
        sites.entry().fill("web1")
        controls.key("Return")
        program.window()
        self.assertTrue(program.find_all(expected.FRAME, "Configuration (web1)", CONFIGURATION))

    def open_menu_by_key(self, program):
        program.list(expected.USAGE_FOLDER).click_row("usage")
        controls.key("Menu")
        program.find("menu item", "New Folder")

    def test_menu_key_on_the_usage_folders(self):
        program = self.open()
        self.open_menu_by_key(program)
        controls.key("Down", "Return")
        program.window(expected.NEW_USAGE_FOLDER)
        controls.type_text("keys")
        controls.wait(lambda: program.find("text", None, expected.NEW_USAGE_FOLDER).text
                      in ("keys", "Usagekeys", "keysUsage"), "the typed name")
        name = program.find("text", None, expected.NEW_USAGE_FOLDER).text
        self.assertEqual(name, "keys", "the first text is not selected, so typing adds to it")
        controls.key("Return")
        program.wait_closed(expected.NEW_USAGE_FOLDER)
        self.assertTrue(os.path.isdir(self.desk.usage + "/keys"))

    def test_escape_leaves_the_new_folder_window(self):
        program = self.open()
        self.open_menu_by_key(program)
        controls.key("Down", "Return")
        program.window(expected.NEW_USAGE_FOLDER)
        controls.key("Escape")
        program.wait_closed(expected.NEW_USAGE_FOLDER)
        self.assertEqual(os.listdir(self.desk.usage), [])

    def test_typing_ahead_in_the_folders(self):
        for name in ("alpha", "beta", "gamma"):
            os.mkdir(os.path.join(self.desk.usage, name))
        program = self.open()
        folders = program.list(expected.USAGE_FOLDER)
        folders.click_row("usage")
        controls.type_text("be")
        controls.wait(lambda: folders.selected() == ["beta"], "the typed folder")

    def test_typing_ahead_in_the_months(self):
        program = self.open()
        program.button("On Demand Report").click()
        program.window(expected.ON_DEMAND)
        months = program.list("Month", expected.ON_DEMAND)
        months.choose_row("January")
        controls.type_text("Sep")
        controls.wait(lambda: months.selected() == ["September"], "the typed month")

    def test_arrow_keys_choose_a_day(self):
        program = self.open()
        program.button("On Demand Report").click()
        program.window(expected.ON_DEMAND)
        days = program.list("From day", expected.ON_DEMAND)
        days.choose_row("1")
        controls.key(*["Down"] * (TEN_DAYS - 1))
        controls.wait(lambda: days.selected() == ["10"], "the tenth day")

    def test_space_ticks_and_presses(self):
        program = self.open()
        box = program.check_box(expected.CSV)
        box.click()
        controls.wait(lambda: box.checked, "the tick")
        controls.key("space")
        controls.wait(lambda: not box.checked, "the tick to go")

    def test_mnemonics_do_not_collide(self):
        """Each Alt+letter of the configuration window belongs to one control."""
        program = self.open()
        letters = {}
        for part in program.find_all(("push button", "check box"), None, CONFIGURATION):
            binding = controls.Atspi.Action.get_key_binding(part.accessible, 0) or ""
            letter = binding.split(";")[0]
            if letter:
                self.assertNotIn(letter, letters, part)
                letters[letter] = part.name
        self.assertGreaterEqual(len(letters), 6, letters)


if __name__ == "__main__":
    main()
