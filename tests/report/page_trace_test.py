"""What one does with the trace of the report page, and its second reading."""

import re
import unittest

from selenium.webdriver.common.keys import Keys

import page_project
from page_browser import nearness
from page_case import PageCase
from page_ink import Ink
from page_project import LETTERS, StoredTrace

COMPLEMENT = dict(zip("ACGT", "TGCA"))


class MovingTest(PageCase):
    def setUp(self):
        super().setUp()
        self.project = self.open("every_state", fragment="P02_B04_R:300")
        self.stored = StoredTrace(self.project.trace("P02_B04_R.ab1"))

    def x_of(self, base):
        place = self.browser.pixel_of(base, "A")
        return None if place is None else place["x"]

    def spacing(self):
        return (self.x_of(303) - self.x_of(297)) / 6

    def test_the_reverse_complement_mirrors_the_trace_and_keeps_its_numbers(self):
        before = [self.x_of(base) for base in (295, 300, 303)]

        self.browser.press("r")

        after = [self.x_of(base) for base in (295, 300, 303)]
        self.assertGreater(after[0], after[1])
        self.assertGreater(after[1], after[2])
        for first, second in ((0, 1), (1, 2)):
            self.assert_near(after[first] - after[second], before[second] - before[first], 1)
        ink = Ink(self.browser)
        for base in (295, 299, 300, 301, 303):
            letter = self.stored.bases[base - 1]
            place = self.browser.pixel_of(base, letter)
            self.assertTrue(ink.stands_at(COMPLEMENT[letter], place["x"], place["y"]), base)
            self.assertIsNotNone(ink.letter_over(COMPLEMENT[letter], place), base)
        self.browser.press("g", *"310", Keys.ENTER)
        self.assertEqual(self.browser.fragment(), "#P02_B04_R:310")
        self.browser.show("P02_B04_R", 300)
        self.browser.press("r")
        place = self.browser.pixel_of(300, self.stored.bases[299])
        ink.refresh()
        self.assertTrue(ink.stands_at(self.stored.bases[299], place["x"], place["y"]))
        self.assertLess(self.x_of(295), self.x_of(303))

    def test_keys_zoom_about_the_middle_and_back(self):
        home = self.spacing()
        self.assert_near(home, 15, 2)
        self.browser.press("+")
        self.assertGreater(self.spacing(), 1.15 * home)
        self.assert_near(self.x_of(300), self.x_of(297) + 3 * self.spacing(), 12)
        self.browser.press("-", "-")
        self.assertLess(self.spacing(), 0.9 * home)
        self.browser.press("0")
        self.assert_near(self.spacing(), home, 0.3)

    def test_all_shows_the_whole_read(self):
        for button in self.browser.find_all("[data-panel=trace] button"):
            if button.text == "All":
                button.click()
        self.browser.after_paint()

        first, last = self.x_of(1), self.x_of(len(self.stored.bases))

        self.assertIsNotNone(first)
        self.assertIsNotNone(last)
        self.assertGreater(last - first, 900)

    def test_the_wheel_zooms_where_the_pointer_is_and_pans_sideways(self):
        place = self.browser.pixel_of(305, "A")
        y = (place["top"] + place["baseline"]) / 2
        spacing = self.spacing()

        self.browser.move_to(place["x"], y)
        self.browser.wheel(place["x"], y, 0, -200)
        self.browser.wait_for("const x = (base) => window.quillet.pixelOf(base, 'A').x;"
                              f"return x(303) - x(297) > {6.5 * spacing}")
        self.assert_near(self.x_of(305), place["x"], 3)
        before = self.x_of(305)
        self.browser.wheel(place["x"], y, 60, 0)
        self.browser.wait_for("const {x} = window.quillet.pixelOf(305, 'A');"
                              f"return Math.abs(x - {before} + 60) < 2")

    def test_a_drag_moves_the_trace_with_the_pointer(self):
        place = self.browser.pixel_of(300, "A")
        y = (place["top"] + place["baseline"]) / 2

        self.browser.drag(place["x"], y, place["x"] - 150, y)

        self.assert_near(self.x_of(300), place["x"] - 150, 2)

    def test_arrows_pan(self):
        before = self.x_of(300)
        self.browser.press(Keys.ARROW_RIGHT)
        self.assertLess(self.x_of(300), before - 20)
        self.browser.press(Keys.ARROW_LEFT)
        self.assert_near(self.x_of(300), before, 1)

    def test_brackets_change_the_height(self):
        letter = self.stored.bases[299]

        def height():
            place = self.browser.pixel_of(300, letter)
            return place["baseline"] - place["y"]

        home = height()
        self.browser.press("]")
        higher = height()
        self.assertGreater(higher, 1.1 * home)
        self.browser.press("[", "[")
        self.assertLess(height(), 0.95 * home)

    def test_m_goes_to_the_next_mixed_base_and_back(self):
        self.browser.show("P02_B01_R", 50)
        self.browser.press("m")
        self.assertEqual(self.browser.fragment(), "#P02_B01_R:90")
        self.browser.press("m")
        self.assertEqual(self.browser.fragment(), "#P02_B01_R:210")
        self.browser.press("M")
        self.assertEqual(self.browser.fragment(), "#P02_B01_R:90")

    def test_g_jumps_to_a_base(self):
        self.browser.press("g", *"641", Keys.ENTER)

        self.assertEqual(self.browser.fragment(), "#P02_B04_R:641")
        self.assertIsNotNone(self.x_of(641))
        self.browser.press("m")  # no mixed base: nothing happens
        self.assertEqual(self.browser.shown(), "P02_B04_R")

    def test_the_readout_tells_what_is_under_the_pointer(self):
        letter = self.stored.bases[299]
        place = self.browser.pixel_of(300, letter)

        self.browser.move_to(place["x"], place["baseline"] - 30)

        text = self.browser.text("[data-panel=trace]")
        self.assertRegex(text, rf"base 300\b.*\b{letter}\b.*Q {self.stored.qualities[299]}\b")
        amplitude = self.stored.samples[letter][self.stored.positions[299]]
        told = int(re.search(rf"base 300\b.*{letter} ([\d,]+)", text)[1].replace(",", ""))
        self.assert_near(told, amplitude, 0.03 * amplitude)

    def test_a_trace_opens_at_its_first_good_base(self):
        row = next(row for row in self.project.rows if row["sample"] == "P02_B05_R")
        self.browser.show("P02_B05_R")

        start = self.x_of(int(row["trim_start"]) + 1)

        panel = self.browser.run("const box = document.querySelector('[data-panel=trace]')"
                                 ".getBoundingClientRect(); return [box.left, box.width]")
        self.assertIsNotNone(start)
        self.assertLess(start, panel[0] + panel[1] / 3)

    def test_pixels_of_what_is_not_in_sight_are_null(self):
        for base, channel in ((1, "A"), (0, "A"), (821, "A"), (10 ** 9, "A"), (300, "N"),
                              (300, "")):
            self.assertIsNone(self.browser.pixel_of(base, channel), (base, channel))
        with self.assertRaises(AssertionError):
            self.browser.show("nobody")


class ReadingsTest(PageCase):
    def setUp(self):
        super().setUp()
        self.project = self.open("every_state", fragment="P02_B04_R")
        self.stored = StoredTrace(self.project.trace("P01_A01_F.ab1"))
        self.other = dict(zip(LETTERS, "GAAG"))

    def test_the_view_opens_at_the_first_difference(self):
        self.browser.show("P01_A01_F")

        self.assertIsNotNone(self.browser.pixel_of(page_project.OTHER_LETTERS[0], "A"))
        self.assertIsNone(self.browser.pixel_of(100, "A"))

    def test_the_other_reading_stands_below_boxed_where_it_differs(self):
        first = page_project.OTHER_LETTERS[0]
        self.browser.show("P01_A01_F", first)
        ink = Ink(self.browser)
        untrusted = self.browser.colour("--untrusted")

        def box_ink(x, top):
            frame = ink.picture.box(x - 9, top - 40, x + 9, top - 10)
            return (nearness(frame, untrusted) < 120).sum()

        for base in page_project.OTHER_LETTERS:
            own = self.stored.bases[base - 1]
            place = self.browser.pixel_of(base, own)
            row = (place["x"] - 5, place["top"] - 34, place["x"] + 5, place["top"] - 8)
            self.assertGreater(len(ink.of(self.other[own], *row, 60)), 5, base)
            self.assertIsNotNone(ink.letter_over(own, {**place, "top": place["top"] - 24}), base)
            self.assertGreater(box_ink(place["x"], place["top"]), 40, base)
        same = [base for base in range(first - 25, first - 4) if self.stored.bases[base - 1] != "T"
                and "T" not in self.stored.bases[base - 2:base + 1]]
        self.assertGreater(len(same), 3)
        for base in same:
            own = self.stored.bases[base - 1]
            place = self.browser.pixel_of(base, own)
            row = (place["x"] - 5, place["top"] - 34, place["x"] + 5, place["top"] - 8)
            self.assertGreater(len(ink.of(own, *row, 60)), 5, base)
            self.assertLess(box_ink(place["x"], place["top"]), 8, base)

    def test_the_result_of_another_trace_is_shown_beside_the_own_calls(self):
        self.browser.show("P01_A02_F")

        self.assertIn("result", self.browser.text("[data-panel=trace]"))
        self.assertEqual(self.browser.shown(), "P01_A02_F")

    def test_rows_without_a_trace_say_why(self):
        for sample in ("P01_A07_F", "gone_2", "P01_A08_F"):
            self.browser.show(sample)
            self.assertEqual(self.browser.shown(), sample)
            self.assertIsNone(self.browser.pixel_of(1, "A"))
            self.assertGreater(len(self.browser.text("[data-panel=trace]")), 40)


if __name__ == "__main__":
    unittest.main()
