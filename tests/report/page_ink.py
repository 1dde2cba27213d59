"""Finds the ink of curves and letters in a picture of the report page."""

import numpy

from page_browser import nearness
from page_project import LETTERS


class Ink:
    """Which pixels of a picture have which base's colour."""

    def __init__(self, browser):
        self.browser = browser
        self.colours = {letter: browser.colour("--base-" + letter.lower()) for letter in LETTERS}
        self.refresh()

    def refresh(self):
        self.picture = self.browser.picture()

    def of(self, letter, left, top, right, bottom, reach=90):
        """Pixels (y, x), counted from left and top, nearer to this base's colour than to others."""
        pixels = self.picture.box(round(left), round(top), round(right), round(bottom))
        own = nearness(pixels, self.colours[letter])
        others = numpy.min([nearness(pixels, self.colours[other])
                            for other in LETTERS if other != letter], axis=0)
        return numpy.argwhere((own < reach) & (own < others))

    def stands_at(self, letter, x, y):
        """Whether the colour is within 2 px of a point."""
        return len(self.of(letter, x - 2, y - 2, x + 2, y + 2)) > 0

    def height_at(self, letter, place):
        """Height of the curve over the zero line at x, in px; none when it is not there."""
        found = self.of(letter, place["x"], place["top"], place["x"], place["baseline"] + 1, 140)
        if len(found) == 0:
            return None
        # The first pixel of a line of 1.6 px is most of a pixel above its middle.
        return place["baseline"] - (round(place["top"]) + found[0][0] + 0.7)

    def top_near(self, letter, place, reach):
        """x of the highest place of the curve within reach of x; none when it is not there."""
        heights = {}
        for x in range(round(place["x"]) - reach, round(place["x"]) + reach + 1):
            height = self.height_at(letter, {**place, "x": x})
            if height is not None:
                heights[x] = height
        highest = [x for x, height in heights.items() if height > max(heights.values()) - 0.5]
        return numpy.mean(highest) if highest else None

    def letter_over(self, letter, place):
        """The middle of this letter's ink in the row of letters over the curves, or none."""
        x, top = place["x"], place["top"]
        found = self.of(letter, x - 6, top - 50, x + 6, top - 10, 60)
        if len(found) < 6:
            return None
        return round(place["x"] - 6) + (found[:, 1].min() + found[:, 1].max()) / 2
