"""Keys and links of the report page, and its other views: small, on paper, without scripts."""

import subprocess
import time
import unittest
import urllib.parse

from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.keys import Keys

import page_browser
import page_project
from page_case import PageCase, by_need, samples


class KeysTest(PageCase):
    def test_arrows_go_through_the_table(self):
        self.open("every_state")
        order = self.browser.order()
        self.browser.press(*[Keys.ARROW_DOWN] * 5)
        self.browser.wait_for_shown(order[5])
        self.browser.press(Keys.ARROW_UP)
        self.browser.wait_for_shown(order[4])
        self.assertEqual(self.chosen(), [order[4]])
        self.browser.press(*[Keys.ARROW_UP] * 9)
        self.browser.wait_for_shown(order[0])
        self.browser.press(*[Keys.ARROW_DOWN] * (len(order) + 3))
        self.browser.wait_for_shown(order[-1])

    def test_the_chosen_row_is_brought_into_sight(self):
        self.open("many")

        self.browser.press(*[Keys.ARROW_DOWN] * 40)

        self.browser.wait_for_shown(self.browser.order()[40])
        inside = self.browser.run(
            "const row = document.querySelector('tr[aria-selected=true]').getBoundingClientRect();"
            "const panel = document.querySelector('[data-panel=table]').getBoundingClientRect();"
            "return row.top >= panel.top && row.bottom <= panel.bottom")
        self.assertTrue(inside)

    def test_a_slash_goes_to_the_filter_and_a_question_mark_lists_the_keys(self):
        self.open("every_state")
        self.browser.press("/")
        self.assertEqual(self.browser.run("return document.activeElement.type"), "search")

        self.browser.run("document.activeElement.blur()")
        self.browser.press("?")

        self.assertIn("reverse complement", self.browser.text("dialog"))
        self.browser.press(Keys.ESCAPE)
        self.assertFalse(self.browser.find("dialog").is_displayed())

    def test_no_key_acts_while_one_types_or_with_a_modifier(self):
        self.open("every_state", fragment="P02_B01_R:100")
        place = self.browser.pixel_of(100, "A")

        self.browser.find("input[type=search]").send_keys("P02 r m0]")
        self.browser.after_paint()
        self.assertEqual(self.browser.run("return document.querySelector('input').value"),
                         "P02 r m0]")
        self.browser.filter("")
        self.browser.show("P02_B01_R", 100)
        self.browser.run("document.activeElement.blur()")
        for modifier in (Keys.CONTROL, Keys.ALT, Keys.META):
            keys = ActionChains(self.browser.driver).key_down(modifier)
            for key in ("m", "]", Keys.ARROW_DOWN, "-"):
                keys.send_keys(key)
            keys.key_up(modifier).perform()
            self.browser.after_paint()

        self.assertEqual(self.browser.shown(), "P02_B01_R")
        self.assertEqual(self.browser.pixel_of(100, "A"), place)


def quoted(name):
    return urllib.parse.quote(name, safe="")


class LinksTest(PageCase):
    def test_a_link_opens_its_sample_at_its_base(self):
        self.open("every_state", fragment="P02_B01_R:300")

        self.assertEqual(self.browser.shown(), "P02_B01_R")
        place = self.browser.pixel_of(300, "A")
        panel = self.browser.run("const box = document.querySelector('[data-panel=trace]')"
                                 ".getBoundingClientRect(); return [box.left, box.right]")
        self.assertGreater(place["x"], panel[0] + 0.25 * (panel[1] - panel[0]))
        self.assertLess(place["x"], panel[0] + 0.75 * (panel[1] - panel[0]))
        self.assertEqual(self.browser.fragment(), "#P02_B01_R:300")

    def test_a_link_without_a_base_opens_its_sample(self):
        self.open("every_state", fragment="P02_B04_R")

        self.assertEqual(self.browser.shown(), "P02_B04_R")

    def test_names_with_colons_and_percent_signs_are_links(self):
        self.open("hostile", fragment=quoted("a:12%41#b") + ":33")

        self.assertEqual(self.browser.shown(), "a:12%41#b")
        self.assertEqual(self.browser.fragment(), "#" + quoted("a:12%41#b") + ":33")
        self.assertIsNotNone(self.browser.pixel_of(33, "A"))
        # The last colon parts.
        for fragment, name in (("a:12%2541%23b:33", "a:12%41#b"), ("::5", ":")):
            self.open("hostile", fragment=fragment)
            self.assertEqual(self.browser.shown(), name)
        for name in ("__proto__", "constructor", "100%", "#", ":", "line\u2028separator"):
            self.open("hostile", fragment=quoted(name))
            self.assertEqual(self.browser.shown(), name)

    def test_a_hidden_row_goes_by_its_trace_s_name(self):
        self.open("every_state", fragment="bare.scf")
        self.assertEqual(self.browser.run(
            "return document.querySelector('tr[aria-selected=true]').dataset.state"), "hidden")
        self.assertEqual(self.browser.fragment().split(":")[0], "#bare.scf")

        self.open("every_state", fragment="bare")
        self.assertEqual(self.browser.run(
            "return document.querySelector('tr[aria-selected=true]').dataset.state"), "converted")

    def test_an_odd_link_opens_the_first_sample_and_says_so(self):
        plain = self.open("every_state") and self.browser.text("[data-panel=head]")
        first = self.browser.order()[0]
        for fragment in ("", ":", ":5", "%", "%E0%A4%A", "nobody", "nobody:5", "P01_A02_F:x",
                         "P01_A02_F:0", "P01_A02_F:-1", "P01_A02_F:1e2", "P01_A02_F:",
                         "P01_A02_F:%31x", "__proto__", "constructor", "toString:1"):
            with self.subTest(fragment=fragment):
                self.open("every_state", fragment=fragment)
                self.assertEqual(self.browser.shown(), first)
                said = self.browser.text("[data-panel=head]") + self.browser.text("main")
                self.assertRegex(said, "first (one|sample)")
        self.assertNotRegex(plain, "first (one|sample)")

    def test_a_base_beyond_the_end_is_told(self):
        self.open("every_state", fragment="P02_B02_R:131")

        self.assertRegex(self.browser.text("body"), "no base 131|first (one|sample)")

    def test_a_link_that_is_followed_inside_the_page_is_opened(self):
        self.open("every_state")

        self.browser.run("location.hash = '#P02_B03_R:77'")

        self.browser.wait_for_shown("P02_B03_R")
        self.assertIsNotNone(self.browser.pixel_of(77, "A"))

    def test_the_address_follows_four_times_a_second_at_most(self):
        self.open("every_state")
        self.browser.run("window.times = []; const replace = history.replaceState;"
                         "history.replaceState = function (...given) {"
                         "window.times.push(performance.now());"
                         "return replace.apply(this, given); }")

        end = time.monotonic() + 2.2
        while time.monotonic() < end:
            self.browser.press(Keys.ARROW_DOWN, Keys.ARROW_UP, Keys.ARROW_DOWN, Keys.ARROW_RIGHT)
            if len(self.chosen()) == 0:
                break
        self.browser.show("P02_B04_R", 250)

        self.assertEqual(self.browser.fragment(), "#P02_B04_R:250")
        times = self.browser.run("return window.times")
        self.assertGreater(len(times), 2)
        for earlier, later in zip(times, times[4:]):
            self.assertGreater(later - earlier, 950)


class ViewsTest(PageCase):
    def test_at_700_px_the_parts_stand_one_under_the_other(self):
        self.browser.size(700, 1000)
        self.open("every_state", fragment="P02_B01_R:100")

        boxes = self.browser.run(
            "return [...document.querySelectorAll('[data-panel]')].map((panel) => {"
            "const box = panel.getBoundingClientRect();"
            "return [panel.dataset.panel, box.left, box.right, box.top, box.bottom]; })")

        self.assertEqual({box[0] for box in boxes}, {"head", "table", "map", "trace"})
        boxes.sort(key=lambda box: box[3])
        for (name, left, right, top, bottom), (_, _, _, next_top, _) in zip(boxes, boxes[1:]):
            self.assertLessEqual(bottom, next_top + 1, name)
        for name, left, right, top, bottom in boxes:
            self.assertGreaterEqual(left, 0, name)
            self.assertLessEqual(right, 700, name)
            self.assertGreater(right - left, 600, name)
            self.assertGreater(bottom - top, 60, name)
        self.assertLessEqual(self.browser.run("return document.documentElement.scrollWidth"), 700)
        place = self.browser.pixel_of(100, "A")
        self.assertLess(place["x"], 700)

    def test_at_1366_x_768_all_of_it_is_in_sight(self):
        self.browser.size(1366, 768)
        self.open("every_state", fragment="P02_B01_R:100")

        place = self.browser.pixel_of(100, "A")

        self.assertLess(place["baseline"], 768)
        self.assertGreater(place["baseline"] - place["top"], 60)
        self.assertLessEqual(self.browser.run("return document.documentElement.scrollWidth"), 1366)

    def test_every_canvas_has_a_label(self):
        self.open("every_state", fragment="P01_A01_F")

        labels = self.browser.run(
            "return [...document.querySelectorAll('canvas')].map((canvas) =>"
            "canvas.closest('[aria-hidden=true]') !== null || canvas.ariaLabel)")

        self.assertGreater(len(labels), 5)
        for label in labels:
            self.assertTrue(label)

    def test_nothing_is_animated(self):
        self.open("every_state")
        self.browser.press(Keys.ARROW_DOWN, "m", "]")

        self.assertEqual(self.browser.run("return document.getAnimations().length"), 0)
        self.assertEqual(self.browser.run(
            "return [...document.querySelectorAll('*')].filter((node) =>"
            "parseFloat(getComputedStyle(node).transitionDuration) > 0).length"), 0)

    def test_paper_shows_the_filtered_rows_and_the_chosen_trace_whole(self):
        project = self.open("every_state", fragment="P02_B01_R")
        self.browser.filter("P02")
        self.browser.show("P02_B01_R")

        pdf = self.browser.pdf()

        text = page_browser.pdf_text(pdf)
        states = [row["state"] for row in project.rows]
        self.assertIn(f"{states.count('converted')} of {len(states)} samples are whole", text)
        for row in project.rows:
            is_printed = any(line.split()[:1] + line.split()[1:2] == [row["state"], row["sample"]]
                             for line in text.splitlines())
            self.assertEqual(is_printed, row["sample"].startswith("P02"), row["sample"])
        info = subprocess.run(["pdfinfo", pdf], stdout=subprocess.PIPE, check=True).stdout.decode()
        size = next(line for line in info.splitlines() if line.startswith("Page size:")).split()
        self.assertGreater(float(size[2]), float(size[4]))  # landscape
        letters = [line.replace(" ", "") for line in text.splitlines()]
        lines = [line for line in letters if len(line) > 50 and set(line) <= set("ACGTN")]
        bases = page_project.StoredTrace(project.trace("P02_B01_R.ab1")).bases
        self.assertEqual(lines, [bases[start:start + 100] for start in range(0, 700, 100)])

    def test_paper_is_light_in_the_dark_and_the_screen_is_dark_again(self):
        self.browser.theme("dark")
        self.open("every_state", fragment="P02_B01_R:100")
        before = self.browser.picture()

        pdf = self.browser.pdf()

        rendered = subprocess.run(["pdftoppm", "-r", "20", "-png", pdf], stdout=subprocess.PIPE,
                                  check=True).stdout
        pixels = page_browser.Picture(rendered).pixels
        self.assertGreater(pixels.mean(), 200)
        self.browser.after_paint()
        after = self.browser.picture()
        self.assertLess(abs(before.pixels - after.pixels).mean(), 0.5)

    def test_paper_holds_1000_rows_at_most_and_says_so(self):
        self.open("many")

        text = page_browser.pdf_text(self.browser.pdf())

        printed = [line for line in text.splitlines() if " S0" in line]
        self.assertRegex(text, "1,000 are printed|first 1,000")
        order = self.browser.order()
        rows = [line.split()[1] for line in printed if line.split()[0] in
                ("cut", "invalid", "waiting", "converted")]
        self.assertEqual(rows[:1000], order[:1000])
        self.assertNotIn(order[1000], rows)

    def test_without_scripts_the_verdict_the_counts_and_200_samples_stand_there(self):
        project = self.open("many")
        rows = [row for row in by_need(project.rows) if row["state"] != "converted"]
        self.assertEqual(len(rows), 251)
        self.browser.scripts(False)

        self.browser.open(project.page, is_running=False)
        text = page_browser.pdf_text(self.browser.pdf())

        self.assertIn("949 of 1,200 samples are whole", text)
        lines = [line.split() for line in text.splitlines()]
        for state, count in (("cut", "1"), ("invalid", "1"), ("waiting", "249"),
                             ("converted", "949")):
            self.assertTrue(any(line[:2] == [state, count] for line in lines), state)
        listed = [line[1] for line in lines if len(line) > 2 and line[1].startswith("S0")]
        self.assertEqual(listed, samples(rows[:200]))
        self.assertIn("51 more", text)

    def test_with_scripts_the_list_is_gone(self):
        self.open("many")

        self.assertNotIn("51 more", self.browser.text("body"))

    def test_without_pictures_only_the_traces_are_missing(self):
        project = self.open("every_state", "--no-pictures", fragment="P02_B01_R")

        self.assertEqual(self.browser.order(), samples(by_need(project.rows)))
        self.assertIsNone(self.browser.pixel_of(100, "A"))
        self.assertIn("without pictures", self.browser.text("[data-panel=trace]"))
        self.assertEqual(self.browser.run(
            "return document.querySelectorAll('script[id^=t]').length"), 0)


if __name__ == "__main__":
    unittest.main()
