"""The map of the report page: wells of plates, capillaries of runs."""

import unittest

import page_browser
from page_browser import nearness
from page_case import PageCase, by_need, samples


class MapTest(PageCase):
    def tab(self, name):
        for button in self.browser.find_all("[data-panel=map] button"):
            if button.text == name:
                button.click()
        self.browser.after_paint()

    def cell(self, sample, reach=6):
        """The pixels around the middle of a sample's cell."""
        well = self.browser.well_of(sample)
        picture = self.browser.picture()
        x, y = well["x"], well["y"]
        return picture.box(x - reach, y - reach, x + reach, y + reach)

    def test_wells_stand_in_the_lines_and_columns_of_their_plate(self):
        plates = {"P01_A{:02}_F": (1, 2, 3, 4, 5, 6, 9, 10, 11, 12), "P02_B{:02}_R": range(1, 7)}
        for form, numbers in plates.items():
            self.open("every_state", fragment=form.format(1))
            wells = {number: self.browser.well_of(form.format(number)) for number in numbers}

            pitch = wells[2]["x"] - wells[1]["x"]
            self.assertGreater(pitch, 12)
            for number, well in wells.items():
                self.assert_near(well["y"], wells[1]["y"], 0.5, number)
                self.assert_near(well["x"], wells[1]["x"] + (number - 1) * pitch, 0.5, number)
        map_box = self.browser.run("const box = document.querySelector('[data-panel=map]')"
                                   ".getBoundingClientRect(); return [box.left, box.top]")
        self.assertGreater(wells[1]["x"], map_box[0])
        self.assertGreater(wells[1]["y"], map_box[1])

    def test_a_row_beyond_h_makes_a_plate_of_384(self):
        self.open("every_state", fragment="r7_1")
        first, middle, last = (self.browser.well_of(f"r7_{number}") for number in (1, 2, 10))

        # A1, J13 and P24: 9 and 15 lines, 12 and 23 columns from the first one.
        pitch_x = (last["x"] - first["x"]) / 23
        pitch_y = (last["y"] - first["y"]) / 15
        self.assertGreater(min(pitch_x, pitch_y), 4)
        self.assert_near(middle["x"], first["x"] + 12 * pitch_x, 0.5)
        self.assert_near(middle["y"], first["y"] + 9 * pitch_y, 0.5)

    def test_the_end_of_a_name_is_a_well_too(self):
        self.open("every_state", fragment="bare_C05")

        self.assertIsNotNone(self.browser.well_of("bare_C05"))
        self.assertIsNone(self.browser.well_of("bare"))
        self.assertIsNone(self.browser.well_of("silent"))

    def test_a_click_on_a_well_shows_its_sample(self):
        self.open("every_state", fragment="P01_A01_F")
        for sample in ("P01_A04_F", "P01_A11_F", "P01_A02_F"):
            well = self.browser.well_of(sample)
            self.browser.click_at(well["x"], well["y"])
            self.browser.wait_for_shown(sample)
            self.assertEqual(self.chosen(), [sample])

    def test_a_click_on_a_small_plate_shows_its_sample(self):
        self.open("every_state", fragment="P01_A01_F")
        well = self.browser.well_of("P02_B04_R")

        self.browser.click_at(well["x"], well["y"])

        self.browser.wait_for_shown("P02_B04_R")

    def test_samples_of_one_well_share_a_cell_that_shows_the_worst(self):
        project = self.open("every_state", fragment="P02_B01_R")
        both = ["P01_A12_again", "P01_A12_F"]
        self.assertEqual({row["well"] for row in project.rows if row["sample"] in both}, {"A12"})

        wells = [self.browser.well_of(sample) for sample in both]

        self.assertEqual(wells[0], wells[1])
        self.browser.click_at(wells[0]["x"], wells[0]["y"])
        self.browser.wait_for_shown("P01_A12_again")  # 473 good bases; the other one has 773

    def test_fill_is_the_good_stretch_and_ring_or_cross_the_state(self):
        self.open("every_state", fragment="P02_B01_R")
        for sample, colour in (("P02_B04_R", "--good"), ("P02_B03_R", "--fair"),
                               ("P02_B02_R", "--poor")):
            inside = self.cell(sample, 2)
            self.assertLess(nearness(inside, self.browser.colour(colour)).max(), 60, sample)
        self.browser.show("P01_A10_F")
        signs = {"P01_A04_F": ("--untrusted", True), "P01_A06_F": ("--missing", True),
                 "P01_A12_F": ("--untrusted", False)}
        for sample, (colour, is_there) in signs.items():
            near = nearness(self.cell(sample, 14), self.browser.colour(colour)) < 40
            self.assertEqual(near.sum() >= 12, is_there, sample)

    def test_what_the_filter_drops_is_dimmed_on_the_map(self):
        self.open("every_state", fragment="P01_A04_F")
        means = {}
        for text in ("", "state:cut"):
            self.browser.filter(text)
            for sample in ("P01_A05_F", "P01_A10_F"):
                means.setdefault(sample, []).append(self.cell(sample, 2).mean(axis=(0, 1)))

        self.assertLess(nearness(*means["P01_A05_F"]), 6)
        self.assertGreater(nearness(*means["P01_A10_F"]), 40)

    def test_a_plate_s_name_filters(self):
        project = self.open("every_state")
        for button in self.browser.find_all("[data-panel=map] button"):
            if button.text == "Run 7":
                button.click()
                break

        self.assertEqual(self.browser.order(),
                         samples(row for row in by_need(project.rows) if row["plate"] == "Run 7"))

    def test_capillaries_have_a_line_for_each_run_and_a_column_each(self):
        self.open("every_state", fragment="P01_A01_F")
        self.tab("Capillaries")

        def place(sample):
            return self.browser.well_of(sample)

        first = place("P01_A01_F")
        pitch = (place("P01_A12_again")["x"] - first["x"]) / 19  # capillaries 1 and 20
        self.assertGreater(pitch, 2)
        for sample, capillary in (("P01_A05_F", 5), ("P01_A12_F", 12)):
            self.assert_near(place(sample)["x"], first["x"] + (capillary - 1) * pitch, 0.5, sample)
            self.assert_near(place(sample)["y"], first["y"], 0.5, sample)
        for sample, capillary in (("P02_B03_R", 43), ("r7_10", 96)):
            self.assert_near(place(sample)["x"], first["x"] + (capillary - 1) * pitch, 1.5, sample)
        lines = [place(sample)["y"] for sample in ("P01_A01_F", "P02_B01_R", "r7_1")]
        self.assertEqual(lines, sorted(lines))  # by date, instrument and plate
        self.assertGreater(min(b - a for a, b in zip(lines, lines[1:])), 5)
        self.assertIsNone(place("bare"))

        target = place("P02_B05_R")
        self.browser.click_at(target["x"], target["y"])
        self.browser.wait_for_shown("P02_B05_R")

    def test_without_wells_there_is_no_map(self):
        self.open("single")

        self.assertFalse(self.browser.find("[data-panel=map]").is_displayed())
        self.assertIsNone(self.browser.well_of("only"))
        width = self.browser.run("return document.querySelector('[data-panel=table]').offsetWidth")
        self.assertGreater(width, 0.9 * page_browser.WIDTH)


if __name__ == "__main__":
    unittest.main()
