#!/usr/bin/env python3
"""The list of filter rules and the editor of one rule."""

import controls
import expected
from ui_test import CONFIGURATION, UiTest, main

LIST, EDITOR = expected.FILTERS, expected.FILTER
ROBOT = {"name": "Ex_Browser_XrobotX", "includes": "False", "field": "cs(User-Agent)",
         "pattern": "*robot*"}
DOCS = {"name": "docs", "includes": "True", "field": "cs-uri-stem", "pattern": "/docs/*"}
USER = {"name": "user", "includes": "False", "field": "cs-username", "pattern": "admin"}
NO_NAME = "Please supply an alphanumeric name for the filter."
SUGGESTED = "(a suggestion has been inserted).\n" + NO_NAME


class FilterTest(UiTest):
    RULES = [ROBOT, DOCS]

    def open_list(self):
        program = self.open()
        self.show_list(program)
        return program

    def show_list(self, program):
        program.activate(CONFIGURATION)
        program.button("Filter out records").click()
        program.window(LIST)

    def close_list(self, program, button):
        program.button(button, LIST).click()
        program.wait_closed(LIST)

    def names(self, program):
        return [part.name[len("Edit "):] for part in program.find_all("push button", None, LIST)
                if part.name.startswith("Edit ")]

    def wait_names(self, program, *names):
        controls.wait(lambda: self.names(program) == list(names),
                      lambda: "the rules %r (shown: %r)" % (names, self.names(program)))
        shown = [part.name for part in program.find_all("label", None, LIST)]
        self.assertEqual([name for name in shown if name in names], list(names))

    def add(self, program):
        program.button("Add", LIST).click()
        program.window(EDITOR)

    def edit(self, program, name):
        program.button("Edit " + name, LIST).click()
        program.window(EDITOR)

    def delete(self, program, name):
        program.button("Delete " + name, LIST).click()

    def ok(self, program):
        program.button("OK", EDITOR).click()

    def name_box(self, program):
        return program.text_box("Filter name", EDITOR)

    def pattern_box(self, program):
        return program.text_box("matches", EDITOR)

    def field(self, program):
        """The drop-down list of fields, whatever its name."""
        return program.find(expected.LIST, None, EDITOR)

    def option(self, program, name):
        return program.find("radio button", name, EDITOR)

    def rules(self):
        """The stored rules, in their order."""
        return [values for section, values in self.desk.settings().items()
                if section.startswith("web1\\Filters\\")]


class ListTest(FilterTest):
    def test_rows_stand_in_order_below_each_other(self):
        program = self.open_list()
        self.wait_names(program, "Ex_Browser_XrobotX", "docs")
        rows = [[program.find(role, name, LIST).extents() for role, name in (
            ("label", rule), ("push button", "Edit " + rule), ("push button", "Delete " + rule))]
            for rule in ("Ex_Browser_XrobotX", "docs")]
        for row in rows:
            middles = [top + height // 2 for _, top, _, height in row]
            self.assertLess(max(middles) - min(middles), 6)
        self.assertLess(rows[0][0][1], rows[1][0][1])

    def test_delete_asks_nothing_and_commit_stores(self):
        program = self.open_list()
        self.delete(program, "Ex_Browser_XrobotX")
        self.wait_names(program, "docs")
        self.assertEqual(program.boxes(), [])
        self.assertEqual(self.rules(), [ROBOT, DOCS])
        self.close_list(program, "Commit")
        self.assertEqual(self.rules(), [DOCS])

    def test_deleting_and_cancel_changes_nothing(self):
        program = self.open_list()
        before = self.desk.settings()
        self.delete(program, "docs")
        self.wait_names(program, "Ex_Browser_XrobotX")
        self.close_list(program, "Cancel")
        self.assertEqual(self.desk.settings(), before)
        self.show_list(program)
        controls.wait(lambda: sorted(self.names(program)) == ["Ex_Browser_XrobotX", "docs"],
                      "the deleted rule to be back")

    def test_added_rules_outlive_cancel(self):
        program = self.open_list()
        self.add(program)
        self.name_box(program).fill("mine")
        self.pattern_box(program).fill("10.*")
        self.ok(program)
        program.wait_closed(EDITOR)
        self.wait_names(program, "Ex_Browser_XrobotX", "docs", "mine")
        self.close_list(program, "Cancel")
        self.assertEqual(self.rules(), [ROBOT, DOCS])
        self.show_list(program)
        self.wait_names(program, "Ex_Browser_XrobotX", "docs", "mine")
        self.close_list(program, "Commit")
        self.assertEqual(self.rules(), [ROBOT, DOCS, {"name": "mine", "includes": "False",
                                                      "field": "c-ip", "pattern": "10.*"}])

    def test_all_rules_can_be_deleted(self):
        program = self.open_list()
        self.delete(program, "docs")
        self.wait_names(program, "Ex_Browser_XrobotX")
        self.delete(program, "Ex_Browser_XrobotX")
        self.wait_names(program)
        self.close_list(program, "Commit")
        self.assertEqual(self.rules(), [])

    def scroll_to(self, program, button):
        """Turns the wheel over the rules until a button of a row is above "Commit"."""
        left, top, width, _ = program.window(LIST).extents()
        below = program.button("Commit", LIST).extents()[1]

        def in_sight():
            box = button.extents()
            return top < box[1] and box[1] + box[3] < below
        for _ in range(100):
            if in_sight():
                return
            controls.click_at(left + width // 3, (top + below) // 2, "wheel down", 5)
        self.fail("%r cannot be reached" % button)

    def test_many_rules_can_be_reached(self):
        self.desk.configure("web1", None, [dict(ROBOT, name="rule%d" % number)
                                           for number in range(60)])
        program = self.open_list()
        self.delete(program, "rule0")
        controls.wait(lambda: self.names(program)[:1] == ["rule1"], "the first row to go")
        last = program.button("Delete rule59", LIST)
        self.scroll_to(program, last)
        last.click()
        controls.wait(lambda: self.names(program)[-1] == "rule58", "the last row to go")
        self.close_list(program, "Commit")
        self.assertEqual([rule["name"] for rule in self.rules()],
                         ["rule%d" % number for number in range(1, 59)])

    def test_deleting_leaves_the_keyboard_among_the_rules(self):
        program = self.open_list()
        program.button("Delete Ex_Browser_XrobotX", LIST).click()
        self.wait_names(program, "docs")
        controls.key("space")
        self.wait_names(program)


class EditTest(FilterTest):
    RULES = [ROBOT, DOCS, USER]

    def test_a_rule_is_shown_as_stored(self):
        program = self.open_list()
        self.edit(program, "docs")
        self.assertEqual(self.name_box(program).text, "docs")
        self.assertEqual(self.pattern_box(program).text, "/docs/*")
        self.assertTrue(self.option(program, "Include").checked)
        self.assertFalse(self.option(program, "Exclude").checked)
        self.assertEqual(self.field(program).text, "URL")
        self.assertEqual(self.field(program).row_texts(), expected.OFFERED_FIELDS)

    def test_every_part_can_be_changed(self):
        program = self.open_list()
        self.edit(program, "docs")
        self.option(program, "Exclude").click()
        self.field(program).choose_row("HTTP status")
        self.pattern_box(program).fill("4[0-9][!4]")
        self.ok(program)
        program.wait_closed(EDITOR)
        self.wait_names(program, "Ex_Browser_XrobotX", "docs", "user")
        self.close_list(program, "Commit")
        self.assertEqual(self.rules(), [ROBOT, {"name": "docs", "includes": "False",
                                                "field": "sc-status", "pattern": "4[0-9][!4]"},
                                        USER])

    def test_another_name_adds_a_rule(self):
        program = self.open_list()
        self.edit(program, "docs")
        self.name_box(program).fill("docs2")
        self.ok(program)
        program.wait_closed(EDITOR)
        self.wait_names(program, "Ex_Browser_XrobotX", "docs", "user", "docs2")
        self.close_list(program, "Commit")
        self.assertEqual(self.rules(), [ROBOT, DOCS, USER, dict(DOCS, name="docs2")])

    def test_cancel_changes_nothing(self):
        program = self.open_list()
        self.edit(program, "docs")
        self.name_box(program).fill("other")
        self.pattern_box(program).fill("x")
        program.button("Cancel", EDITOR).click()
        program.wait_closed(EDITOR)
        self.wait_names(program, "Ex_Browser_XrobotX", "docs", "user")
        self.close_list(program, "Commit")
        self.assertEqual(self.rules(), [ROBOT, DOCS, USER])

    def test_a_field_that_is_not_offered_is_not_selected(self):
        program = self.open_list()
        self.edit(program, "user")
        self.assertEqual(self.field(program).selected(), [])
        self.assertEqual(self.pattern_box(program).text, "admin")
        self.ok(program)
        self.assertBox(program, "Please select field")
        self.assertIn(EDITOR, program.titles())
        program.button("Cancel", EDITOR).click()
        program.wait_closed(EDITOR)
        self.close_list(program, "Commit")
        self.assertEqual(self.rules(), [ROBOT, DOCS, USER])


class AddTest(FilterTest):
    RULES = None

    def open_editor(self):
        program = self.open_list()
        self.add(program)
        return program

    def stored_rule(self, program):
        program.wait_closed(EDITOR)
        self.close_list(program, "Commit")
        rules = self.rules()
        self.assertEqual(len(rules), 1, rules)
        return rules[0]

    def test_first_contents(self):
        program = self.open_editor()
        self.assertEqual(self.name_box(program).text, "")
        self.assertEqual(self.pattern_box(program).text, "")
        self.assertTrue(self.option(program, "Exclude").checked)
        self.assertFalse(self.option(program, "Include").checked)
        self.assertEqual(self.field(program).selected(), ["Client IP"])
        self.assertEqual(self.field(program).row_texts(), expected.OFFERED_FIELDS)

    def test_a_suggested_name_is_stored_at_the_second_ok(self):
        program = self.open_editor()
        self.field(program).choose_row("Browser")
        self.pattern_box(program).fill("*robot*")
        self.ok(program)
        self.assertBox(program, SUGGESTED)
        self.assertEqual(self.name_box(program).text, "Ex_Browser_XrobotX")
        self.ok(program)
        self.assertEqual(self.stored_rule(program), ROBOT)

    def test_an_include_rule_is_suggested_as_such(self):
        program = self.open_editor()
        self.option(program, "Include").click()
        self.field(program).choose_row("HTTP status")
        self.pattern_box(program).fill("[1-3]#?={}")
        self.ok(program)
        self.assertBox(program, SUGGESTED)
        self.assertEqual(self.name_box(program).text, "In_HTTP_status__1_3_nxeq__")
        self.ok(program)
        self.assertEqual(self.stored_rule(program), {
            "name": "In_HTTP_status__1_3_nxeq__", "includes": "True", "field": "sc-status",
            "pattern": "[1-3]#?={}"})

    def test_a_suggestion_that_is_not_alphanumeric(self):
        program = self.open_editor()
        self.field(program).choose_row("URL")
        self.pattern_box(program).fill("/a b(c)")
        self.ok(program)
        self.assertBox(program, SUGGESTED)
        self.assertEqual(self.name_box(program).text, "Ex_URL_/a_b_c_")
        self.ok(program)
        self.assertBox(program, NO_NAME)
        self.name_box(program).fill("Ex_URL_a_b_c_")
        self.ok(program)
        self.assertEqual(self.stored_rule(program)["pattern"], "/a b(c)")

    def test_a_typed_name_is_cleaned(self):
        program = self.open_editor()
        self.name_box(program).fill("my rule (1.2-3)")
        self.pattern_box(program).fill("x")
        self.ok(program)
        self.assertEqual(self.stored_rule(program)["name"], "my_rule__1_2_3_")

    def test_a_name_that_stays_unusable(self):
        program = self.open_editor()
        self.name_box(program).fill("50%")
        self.pattern_box(program).fill("x")
        self.ok(program)
        self.assertBox(program, NO_NAME)
        self.assertIn(EDITOR, program.titles())

    def test_no_pattern(self):
        program = self.open_editor()
        self.name_box(program).fill("name")
        self.ok(program)
        self.assertBox(program, "Please enter a pattern to match field against.")
        self.assertIn(EDITOR, program.titles())
        self.pattern_box(program).fill("10.*")
        self.ok(program)
        self.assertEqual(self.stored_rule(program), {"name": "name", "includes": "False",
                                                     "field": "c-ip", "pattern": "10.*"})

    def test_every_offered_field(self):
        program = self.open_list()
        for offered in expected.OFFERED_FIELDS:
            self.add(program)
            self.field(program).choose_row(offered)
            self.name_box(program).fill("f" + offered.replace(" ", ""))
            self.pattern_box(program).fill("x")
            self.ok(program)
            program.wait_closed(EDITOR)
        self.close_list(program, "Commit")
        self.assertEqual([rule["field"] for rule in self.rules()], expected.W3C_FIELDS)

    def test_help(self):
        program = self.open_editor()
        program.button("Help", EDITOR).click()
        self.assertBox(program, expected.FILTER_HELP)
        self.assertIn(EDITOR, program.titles())

    def test_the_rule_counts_in_a_run(self):
        self.desk.add_log("u_ex260110.log", [("2026-01-10", "/keep.htm"),
                                             ("2026-01-10", "/drop.htm")])
        program = self.open_editor()
        self.name_box(program).fill("drop")
        self.field(program).choose_row("URL")
        self.pattern_box(program).fill("/drop*")
        self.ok(program)
        program.wait_closed(EDITOR)
        self.close_list(program, "Commit")
        program.activate(CONFIGURATION)
        program.button("Save + Catch-Up").click()
        self.assertEqual(program.wait_end(), 0)
        page = self.desk.usage_files()["Jan.htm"]
        self.assertIn(b"/keep.htm", page)
        self.assertNotIn(b"/drop.htm", page)


if __name__ == "__main__":
    main()
