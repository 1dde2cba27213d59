"""Curves and letters on the report page, pixel by pixel, against what Biopython reads."""

import os
import unittest

import numpy

import page_project
from page_case import PageCase, project_of
from page_ink import Ink
from page_project import LETTERS, StoredTrace

POSITIONS = 20


def peak_near(samples, position, reach):
    """Where the highest sample within reach is, between samples; none when it is at the edge."""
    near = samples[position - reach:position + reach + 1]
    highest = near.index(max(near))
    if not 0 < highest < len(near) - 1:
        return None
    before, top, after = near[highest - 1:highest + 2]
    bend = before - 2 * top + after
    return position - reach + highest + (0.5 * (before - after) / bend if bend else 0)


def clear_bases(stored):
    """1-based bases, spread over the read, whose call stands alone and in the picture."""
    median = stored.median_called()
    clear = []
    for i in range(30, len(stored.bases) - 30):
        position = stored.positions[i]
        heights = {letter: stored.samples[letter][position] for letter in LETTERS}
        called = heights.get(stored.bases[i], 0)
        others = sorted(height for letter, height in heights.items() if letter != stored.bases[i])
        if 0.3 * median < called < 2 * median and others[-1] < 0.15 * called \
                and stored.qualities[i] >= 20:
            clear.append(i + 1)
    step = len(clear) / POSITIONS
    return [clear[int(number * step)] for number in range(POSITIONS)]


class PixelsTest(PageCase):
    def check(self, project, sample, count=POSITIONS):
        """Holds the picture of a trace against its file at `count` called positions."""
        stored = StoredTrace(project.trace(sample + ".ab1"))
        bases = clear_bases(stored)[:count]
        self.assertEqual(len(set(bases)), count)
        measured = []
        spacings = []
        tops = []
        self.browser.show(sample, bases[0])
        ink = Ink(self.browser)
        for base in bases:
            letter = stored.bases[base - 1]
            self.browser.show(sample, base)
            ink.refresh()
            place = self.browser.pixel_of(base, letter)
            self.assertFalse(place["clipped"], base)
            self.assertTrue(ink.stands_at(letter, place["x"], place["y"]),
                            (sample, base, letter, place))
            over = ink.letter_over(letter, place)
            self.assertIsNotNone(over, (sample, base, letter))
            self.assert_near(over, place["x"], 3, (sample, base, letter))
            height = ink.height_at(letter, place)
            self.assertIsNotNone(height, (sample, base, letter))
            measured.append((base, height, stored.samples[letter][stored.positions[base - 1]]))
            position = stored.positions[base - 1]
            peak = peak_near(list(stored.samples[letter]), position, 4)
            if peak is not None:
                tops.append((base, ink.top_near(letter, place, 6) - place["x"], peak - position))
            near = (base - 12, base - 5, base, base + 5, base + 12)
            x_of = {end: found["x"] for end, found in
                    zip(near, self.browser.pixels_of(*[(end, "A") for end in near]))}
            for before, after in ((base - 5, base), (base, base + 5), (base - 12, base + 12)):
                spacings.append((base, x_of[after] - x_of[before],
                                 stored.positions[after - 1] - stored.positions[before - 1]))

        scale = numpy.median([height / amplitude for _, height, amplitude in measured])
        for base, height, amplitude in measured:
            expected = scale * amplitude
            self.assert_near(height, expected, 0.06 * expected + 3, (sample, base, amplitude))
        pitch = numpy.median([pixels / distance for _, pixels, distance in spacings])
        for base, pixels, distance in spacings:
            self.assert_near(pixels, pitch * distance, 0.03 * pitch * distance, (sample, base))
        self.assertGreaterEqual(len(tops), 0.75 * count)
        for base, pixels, distance in tops:
            self.assert_near(pixels, pitch * distance, 2, (sample, base, "top"))
        return scale

    def test_curves_of_made_traces_stand_where_their_samples_are(self):
        project = self.open("every_state")
        for sample in ("P02_B04_R", "P01_A12_F"):
            with self.subTest(sample=sample):
                self.check(project, sample)

    def test_curves_of_real_traces_stand_where_their_samples_are(self):
        project = project_of("real")
        if project is None:
            self.skipTest("no real traces at " + page_project.REAL_TRACES)
        self.open("real")
        for sample in ("3100", "A6_1-DB3"):
            self.assertTrue(os.path.exists(project.trace(sample + ".ab1")))
            with self.subTest(sample=sample):
                self.check(project, sample)

    def test_curves_stand_there_in_the_dark_too_and_g_is_light(self):
        project = self.open("every_state")
        light = Ink(self.browser).colours
        self.browser.theme("dark")
        self.browser.after_paint()
        self.assertLess(numpy.mean(self.browser.picture().at(3, 500)), 60)
        dark = Ink(self.browser).colours
        self.assertNotEqual(light, dark)
        self.assertLess(sum(light["G"]), 120)
        self.assertGreater(sum(dark["G"]), 600)

        self.check(project, "P02_B04_R", 8)

    def test_a_is_green_c_blue_g_black_and_t_red(self):
        self.open("single")
        for theme in ("light", "dark"):
            self.browser.theme(theme)
            red, green, blue = range(3)
            colours = Ink(self.browser).colours
            for letter, strongest in (("A", green), ("C", blue), ("T", red)):
                others = [value for i, value in enumerate(colours[letter]) if i != strongest]
                self.assertGreater(colours[letter][strongest], max(others) + 60, (theme, letter))
            self.assertLess(max(colours["G"]) - min(colours["G"]), 12, theme)

    def test_the_second_palette_colours_curves_and_letters(self):
        project = self.open("every_state")
        first = Ink(self.browser).colours
        for button in self.browser.find_all("[data-panel=trace] button"):
            if button.text == "Palette":
                button.click()
        self.browser.after_paint()

        self.assertNotEqual(Ink(self.browser).colours, first)
        self.check(project, "P02_B04_R", 8)

    def test_both_peaks_of_a_mixed_base_are_drawn_on_one_scale(self):
        project = self.open("every_state")
        scale = self.check(project, "P02_B01_R", 10)
        stored = StoredTrace(project.trace("P02_B01_R.ab1"))
        for base in (90, 210):
            self.browser.show("P02_B01_R", base)
            ink = Ink(self.browser)
            position = stored.positions[base - 1]
            called, second = sorted(LETTERS, key=lambda each: -stored.samples[each][position])[:2]
            self.assertEqual(called, stored.bases[base - 1])
            for letter in (called, second):
                place = self.browser.pixel_of(base, letter)
                self.assertTrue(ink.stands_at(letter, place["x"], place["y"]), (base, letter))
                expected = scale * stored.samples[letter][position]
                self.assert_near(ink.height_at(letter, place), expected, 0.06 * expected + 3, base)
            place = self.browser.pixel_of(base, called)
            x, top = place["x"], place["top"]
            below = ink.of(second, x - 5, top - 32, x + 5, top - 8, 60)
            self.assertGreater(len(below), 5, (base, second))

    def test_a_peak_that_leaves_the_picture_has_a_triangle_hollow_where_no_more_is_held(self):
        project = self.open("every_state")
        stored = StoredTrace(project.trace("P02_B01_R.ab1"))
        for base, is_filled in ((120, True), (140, False)):
            self.browser.show("P02_B01_R", base)
            letter = stored.bases[base - 1]
            place = self.browser.pixel_of(base, letter)
            self.assertTrue(place["clipped"], base)
            ink = Ink(self.browser)
            left, top = round(place["x"]) - 10, round(place["top"]) - 12
            triangle = ink.of(letter, left, top, left + 20, top + 9)
            self.assertGreater(len(triangle), 5, base)
            (first_y, first_x), (last_y, last_x) = triangle.min(axis=0), triangle.max(axis=0)
            self.assert_near(left + (first_x + last_x) / 2, place["x"], 6, base)
            x, y = left + (first_x + last_x) // 2, top + last_y - 2
            self.assertEqual(len(ink.of(letter, x, y, x, y, 120)) > 0, is_filled, base)

        for _ in range(20):
            self.browser.press("[")
        self.assertTrue(self.browser.pixel_of(140, stored.bases[139])["clipped"])
        self.assertFalse(self.browser.pixel_of(120, stored.bases[119])["clipped"])


if __name__ == "__main__":
    unittest.main()
