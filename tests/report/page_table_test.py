"""Table, head and filter of the report page, against the table that --tsv writes."""

import unittest

from selenium.webdriver.common.keys import Keys

from page_case import NUMBERS, STATE_ORDER, PageCase, by_need, natural_key, number_of, samples

NO_CALLS = 'contiguous:""'


def grade(row):
    """The filter of the chip of a whole read's good stretch."""
    contiguous = number_of(row, "contiguous")
    if contiguous is None:
        return NO_CALLS
    if contiguous < 300:
        return "contiguous<300"
    return "contiguous>600" if contiguous > 600 else "contiguous>299 contiguous<601"


def words(row):
    columns = ("sample", "trace", "state", "detail", "plate", "well", "caller", "instrument")
    return "\n".join(row[column] for column in columns).lower()


def more(row, column, limit):
    return row[column] != "" and float(row[column]) > limit


def less(row, column, limit):
    return row[column] != "" and float(row[column]) < limit


FILTERS = {
    "": lambda row: True,
    "p01": lambda row: "p01" in words(row),
    "P01 cut": lambda row: "p01" in words(row) and "cut" in words(row),
    "not a trace": lambda row: all(word in words(row) for word in ("not", "a", "trace")),
    '"not a trace"': lambda row: "not a trace" in words(row),
    "KB seq-b": lambda row: "kb" in words(row) and "seq-b" in words(row),
    "state:cut": lambda row: row["state"] == "cut",
    "state:cut detail:poly": lambda row: (row["state"], row["detail"]) == ("cut", "poly"),
    "sample:bare": lambda row: row["sample"] == "bare",  # as a whole: not bare_C05
    "sample:bar": lambda row: "bar" in row["sample"],  # no sample is just this: in part
    "plate:P01": lambda row: row["plate"] == "P01",
    'plate:"Run 7"': lambda row: row["plate"] == "Run 7",
    'plate:""': lambda row: row["plate"] == "",
    "well:A12": lambda row: row["well"] == "A12",
    "capillary:5": lambda row: row["capillary"] == "5",
    "capillary:4": lambda row: row["capillary"] == "4",  # a number is equal or not: no 41 to 46
    "contiguous<300": lambda row: less(row, "contiguous", 300),
    "contiguous>600": lambda row: more(row, "contiguous", 600),
    "contiguous>300 contiguous<400": lambda row: more(row, "contiguous", 300)
                                     and less(row, "contiguous", 400),
    "mean_quality>51.5": lambda row: more(row, "mean_quality", 51.5),
    "mixed>0": lambda row: more(row, "mixed", 0),
    "mixed:0": lambda row: row["mixed"] == "0",
    "state:converted p02 q20>500": lambda row: row["state"] == "converted" and "p02" in words(row)
                                   and more(row, "q20", 500),
    "<img": lambda row: False,
    "nobody_has_this": lambda row: False,
}


class TableTest(PageCase):
    def test_rows_are_those_of_the_table(self):
        project = self.open("every_state")

        found = self.row_texts()

        self.assertEqual([index for index, _ in found], list(range(2, len(project.rows) + 2)))
        for (_, (sample, state, texts)), row in zip(found, by_need(project.rows)):
            self.assertEqual((sample, state), (row["sample"], row["state"]))
            self.assertEqual(sorted(texts), sorted(project.columns))
            for column, text in texts.items():
                expected = row[column]
                if column in NUMBERS and column != "mean_quality" and expected:
                    expected = f"{int(expected):,}"
                if column == "mixed_positions":
                    text = text.replace(" ", "")
                self.assertEqual(text, expected, (sample, column))

    def test_every_state_is_there(self):
        project = self.open("every_state")

        states = self.browser.run("return [...document.querySelectorAll('button[data-filter]')]"
                                  ".map((chip) => chip.dataset.filter)")

        for state in STATE_ORDER:
            self.assertIn("state:" + state, states)
            self.assertIn(state, {row["state"] for row in project.rows})

    def test_the_worst_stands_first_and_the_first_is_chosen_and_drawn(self):
        project = self.open("every_state")

        order = self.browser.order()

        self.assertEqual(order, samples(by_need(project.rows)))
        self.assertEqual(self.chosen(), order[:1])
        self.assertEqual(self.browser.shown(), order[0])

    def test_only_rows_in_sight_are_in_the_document(self):
        project = self.open("many")

        count = self.browser.run("return document.querySelectorAll('tr[data-sample]').length")

        self.assertLess(count, 80)
        self.assertGreater(count, 5)
        grid = self.browser.find("[role=grid]")
        self.assertEqual(grid.get_attribute("aria-rowcount"), str(len(project.rows) + 1))
        self.assertEqual(self.browser.order(), samples(by_need(project.rows)))

    def test_a_heading_sorts_turns_round_and_goes_back(self):
        project = self.open("every_state")
        rows = by_need(project.rows)
        for column in ("sample", "state", "detail", "contiguous", "mean_quality", "mixed", "plate",
                       "capillary", "bases", "trace", "run_date", "caller"):
            def key(row):
                if column == "state":
                    return STATE_ORDER.index(row[column])
                return float(row[column]) if column in NUMBERS else natural_key(row[column])
            known = [row for row in rows if row[column] != ""]
            unknown = [row for row in rows if row[column] == ""]
            heading = self.browser.find(f"th[data-column={column}]")
            for direction, expected in (
                    ("ascending", sorted(known, key=key) + unknown),
                    ("descending", sorted(known, key=key, reverse=True) + unknown),
                    ("none", rows)):
                self.browser.run("arguments[0].querySelector('button').click()", heading)
                with self.subTest(column=column, direction=direction):
                    self.assertEqual(heading.get_attribute("aria-sort"), direction)
                    self.assertEqual(self.browser.order(), samples(expected))

    def test_columns_keep_their_width_while_rows_scroll(self):
        self.open("every_state")
        widths = "return [...document.querySelectorAll('th')].map((th) => th.offsetWidth)"
        before = self.browser.run(widths)

        self.browser.filter("state:orphan")
        few = self.browser.run(widths)

        self.assertEqual(few, before)

    def test_a_filter_leaves_the_rows_that_it_names(self):
        project = self.open("every_state")
        for text, holds in FILTERS.items():
            with self.subTest(filter=text):
                expected = [row for row in by_need(project.rows) if holds(row)]
                if text not in ("<img", "nobody_has_this"):
                    self.assertGreater(len(expected), 0)
                self.browser.filter(text)
                self.assertEqual(self.browser.order(), samples(expected))

    def test_a_limit_itself_is_neither_less_nor_more(self):
        project = self.open("every_state")
        rows = by_need(project.rows)
        for column in ("contiguous", "mean_quality", "capillary", "mixed"):
            values = sorted({float(row[column]) for row in rows if row[column] != ""})
            limit = values[len(values) // 2]
            for text, holds in ((f"{column}<{limit:g}", less), (f"{column}>{limit:g}", more)):
                self.browser.filter(text)
                self.assertEqual(self.browser.order(),
                                 samples(row for row in rows if holds(row, column, limit)), text)

    def test_a_chip_tells_its_count_and_filters(self):
        project = self.open("every_state")
        rows = by_need(project.rows)
        whole = [row for row in rows if row["state"] == "converted"]
        expected = {f"state:{state}": [row for row in rows if row["state"] == state]
                    for state in STATE_ORDER}
        for row in whole:
            expected.setdefault("state:converted " + grade(row), []).append(row)

        chips = self.browser.find_all("button[data-filter]")

        self.assertEqual({chip.get_attribute("data-filter") for chip in chips}, set(expected))
        for chip in chips:
            name = chip.get_attribute("data-filter")
            with self.subTest(chip=name):
                self.assertEqual(chip.text.split()[-1], str(len(expected[name])))
                chip.click()
                self.assertEqual(self.browser.order(), samples(expected[name]))
                chip.click()
                self.assertEqual(self.browser.order(), samples(rows))

    def test_a_part_of_the_bar_is_never_too_small_to_be_seen(self):
        project = self.open("many")
        self.assertEqual([row["state"] for row in project.rows].count("cut"), 1)

        widths = self.browser.run(
            "return [...document.querySelectorAll('[data-panel=head] [role=img] > *')]"
            ".map((part) => part.getBoundingClientRect().width)")

        self.assertGreaterEqual(len(widths), 5)  # four states, and what the whole reads are
        self.assertGreaterEqual(min(widths), 5)

    def test_the_head_tells_the_worst_state_or_the_chosen_one(self):
        self.open("every_state")
        texts = {"differs": "not what its own trace gives", "cut": "not whole",
                 "orphan": "no trace of this sample", "waiting": "no result yet"}

        self.assertIn(texts["differs"], self.browser.text("[data-panel=head]"))
        for state, text in texts.items():
            self.browser.filter("state:" + state)
            self.assertIn(text, self.browser.text("[data-panel=head]"), state)
            self.assertEqual("not what its own" in self.browser.text("[data-panel=head]"),
                             state == "differs")

    def test_the_verdict_counts(self):
        project = self.open("every_state")

        heading = self.browser.text("h1")
        verdict = self.browser.text("[data-panel=head]")

        self.assertEqual(heading, "lab_run")
        states = [row["state"] for row in project.rows]
        self.assertIn(f"{states.count('converted')} of {len(states)} samples are whole", verdict)
        untrusted = sum(states.count(state) for state in ("differs", "borrowed", "cut", "orphan"))
        self.assertIn(f"{untrusted} results are not to be trusted", verdict)

    def test_a_click_on_a_row_chooses_it(self):
        self.open("every_state")

        self.browser.find("tr[data-sample=P01_A04_F]").click()

        self.browser.wait_for_shown("P01_A04_F")
        self.assertEqual(self.chosen(), ["P01_A04_F"])

    def test_the_copied_rows_are_those_of_the_tsv(self):
        project = self.open("every_state")
        with open(project.table, encoding="utf-8", newline="\n") as table:
            header, *lines = table.read().splitlines(keepends=True)
        self.browser.cdp("Browser.grantPermissions",
                         permissions=["clipboardReadWrite", "clipboardSanitizedWrite"])
        for text, holds in (("", lambda row: True), ("mixed>0", FILTERS["mixed>0"])):
            self.browser.filter(text)

            self.browser.find("[data-panel=table] button.copy").click()
            self.browser.wait_for("return document.querySelector('button.copy').textContent"
                                  " !== 'Copy as TSV'")
            copied = self.browser.driver.execute_async_script(
                "navigator.clipboard.readText().then(arguments[0], (f) => arguments[0](String(f)))")

            chosen = [row for row in by_need(project.rows) if holds(row)]
            expected = [lines[project.rows.index(row)] for row in chosen]
            self.assertEqual(copied, "".join([header] + expected))
            self.browser.wait_for("return document.querySelector('button.copy').textContent"
                                  " === 'Copy as TSV'")

    def test_pages_without_samples_and_of_one_are_pages_too(self):
        project = self.open("empty")
        self.assertEqual(project.rows, [])
        self.assertEqual(self.browser.order(), [])
        self.browser.press(Keys.ARROW_DOWN, "m", "r", "]", "+")
        self.browser.filter("x")
        self.assertEqual(self.browser.text("h1"), "lab_run")

        self.open("single")
        self.assertEqual(self.browser.order(), ["only"])
        self.assertEqual(self.browser.shown(), "only")
        self.browser.press(Keys.ARROW_DOWN, Keys.ARROW_UP)
        self.assertEqual(self.chosen(), ["only"])


if __name__ == "__main__":
    unittest.main()
