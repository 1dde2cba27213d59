"""What a report page must never do: run what a name says, ask for anything, or leave people out."""

import base64
import os
import shutil
import tempfile
import unittest

import page_browser
import page_project
from page_browser import nearness
from page_case import PageCase, by_need, project_of, samples
from page_firefox import Firefox
from page_project import (HOSTILE_LIST, HOSTILE_PLATES, HOSTILE_SAMPLES, SCRIPT, StoredTrace,
                          shown_name)

AXE = os.environ.get("QUILLET_AXE", os.path.join(page_project.BUILD, "..", "axe", "node_modules",
                                                 "axe-core", "axe.min.js"))


class HostileNamesTest(PageCase):
    def assert_nothing_ran(self, project):
        """No name became a script, an element or a property."""
        run = self.browser.run
        self.assertEqual(run("return [typeof hacked, typeof window.hacked]"), ["undefined"] * 2)
        self.assertIsNone(run("return ({}).hacked ?? Object.prototype.sample ?? null"))
        self.assertEqual(run("return document.querySelectorAll('img, iframe, object, embed, link,"
                             "base, h1 b, main b > b, style:not(head > style)').length"), 0)
        pictures = run("return document.querySelectorAll('script[id^=t]').length")
        self.assertEqual(run("return document.scripts.length"), pictures + 2)
        self.assertEqual(run("return document.querySelectorAll('style').length"), 1)
        self.assertEqual(run("return [...document.querySelectorAll('*')].filter((node) =>"
                             "[...node.attributes].some(({name}) => name.startsWith('on')))"
                             ".length"), 0)
        self.assertEqual(run("return document.title"), "<b>: report")
        self.assertEqual(self.browser.text("h1"), "<b>")
        self.assertEqual(os.path.basename(project.root), "<b>")

    def test_names_of_files_and_plates_are_text(self):
        project = self.open("hostile")

        rows = self.row_texts()

        self.assert_nothing_ran(project)
        self.assertEqual(sorted(sample for _, (sample, _, _) in rows),
                         sorted(map(shown_name, HOSTILE_SAMPLES)))
        self.assertEqual({texts["plate"] for _, (_, _, texts) in rows},
                         set(map(shown_name, HOSTILE_PLATES)))
        for _, (sample, state, texts) in rows:
            self.assertEqual((texts["sample"], state), (sample, "converted"))
            self.assertEqual(texts["trace"], sample + ".ab1")
        self.assertEqual({texts["instrument"] for _, (_, _, texts) in rows}, {SCRIPT})

    def test_rows_with_odd_names_are_those_of_the_table(self):
        project = self.open("hostile")

        self.assertEqual(self.browser.order(), samples(by_need(project.rows)))
        for _, (sample, _, texts) in self.row_texts():
            row = next(row for row in project.rows if row["sample"] == sample)
            for column in ("sample", "trace", "plate", "well", "caller", "instrument"):
                self.assertEqual(texts[column], row[column])

    def test_traces_with_odd_names_are_shown_and_found(self):
        project = self.open("hostile")
        for name in HOSTILE_SAMPLES:
            with self.subTest(sample=name):
                shown = shown_name(name)
                self.browser.show(shown, 45)
                self.assertEqual(self.browser.shown(), shown)
                self.assertIsNotNone(self.browser.pixel_of(45, "A"))
                self.assertIn(" ".join(shown.split()),
                              " ".join(self.browser.run(
                                  "return document.querySelector('[data-panel=trace]').textContent")
                                  .split()))
        self.browser.filter("sample:__proto__")
        self.assertEqual(self.browser.order(), ["__proto__"])
        self.browser.filter('plate:"' + HOSTILE_PLATES[6].replace('"', '""') + '"')
        expected = [row for row in by_need(project.rows) if row["plate"] == HOSTILE_PLATES[6]]
        self.assertGreater(len(expected), 0)
        self.assertEqual(self.browser.order(), samples(expected))
        self.assert_nothing_ran(project)

    def test_plates_with_odd_names_filter(self):
        project = self.open("hostile")
        for plate in HOSTILE_PLATES:
            self.browser.filter("")
            shown = shown_name(plate)
            buttons = [button for button in self.browser.find_all("[data-panel=map] button")
                       if button.get_property("textContent") == shown]
            with self.subTest(plate=shown):
                self.assertGreater(len(buttons), 0)
                self.browser.run("arguments[0].click()", buttons[-1])
                expected = [row for row in by_need(project.rows) if row["plate"] == shown]
                self.assertEqual(self.browser.order(), samples(expected))
        self.assert_nothing_ran(project)

    def test_names_of_a_list_are_text(self):
        project = self.open("hostile", names=tuple(HOSTILE_LIST))

        rows = self.row_texts()

        self.assert_nothing_ran(project)
        self.assertEqual(sorted(texts["trace"] for _, (_, _, texts) in rows),
                         sorted(map(shown_name, HOSTILE_LIST)))
        # No such trace, but some results have these samples' names.
        self.assertLessEqual({state for _, (_, state, _) in rows}, {"invalid", "hidden", "differs"})

    def test_names_are_text_without_scripts_and_on_paper(self):
        project = project_of("hostile", names=tuple(HOSTILE_LIST))
        self.browser.scripts(False)
        self.browser.open(project.page, is_running=False)
        text = page_browser.pdf_text(self.browser.pdf())
        for name in (SCRIPT, "<!--<script>", "{{rows}}", "<b>"):
            self.assertIn(name[:24], text)

        self.browser.scripts(True)
        project = self.open("hostile")
        self.browser.pdf()
        self.assert_nothing_ran(project)


class PolicyTest(PageCase):
    def changed(self, change):
        """Opens the page of one sample with its text changed."""
        project = project_of("single")
        with open(project.page, encoding="utf-8") as file:
            text = file.read()
        changed = change(text)
        self.assertNotEqual(changed, text)
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        path = os.path.join(folder.name, "changed.html")
        with open(path, "w", encoding="utf-8", newline="") as file:
            file.write(changed)
        self.is_silent = False  # the browser says what it refuses
        self.browser.open(path)
        self.assertIsNone(self.browser.run("return window.hacked ?? null"))
        return self.browser.console()

    def test_an_added_script_does_not_run(self):
        said = self.changed(lambda text: text.replace(
            "</body>", "<script>window.hacked = 1</script></body>"))
        self.assertIn("Content Security Policy", " ".join(said))

    def test_added_handlers_do_not_run(self):
        self.changed(lambda text: text.replace(
            "<body>", "<body onload='window.hacked = 1'><img src='x' onerror='window.hacked = 1'>"
                      "<a id='link' href='javascript:window.hacked = 1'>x</a>"
                      "<iframe srcdoc='<script>parent.hacked = 1</script>'></iframe>"))
        self.browser.run("document.getElementById('link').click()")
        self.browser.after_paint()
        self.assertIsNone(self.browser.run("return window.hacked ?? null"))
        self.assertEqual(self.browser.requests(refused=[]), [])

    def test_added_addresses_are_not_asked_for(self):
        self.changed(lambda text: text.replace(
            "</body>", "<script src='http://localhost/x.js'></script>"
                       "<link rel='stylesheet' href='http://localhost/x.css'>"
                       "<form action='http://localhost/'><button id='send'></button></form>"
                       "</body>"))
        self.browser.run("document.getElementById('send').click();"
                         "fetch('http://localhost/fetched').catch(() => {})")
        self.browser.after_paint()

        refused = []
        self.assertEqual(self.browser.requests(refused), [])
        self.assertIn("http://localhost/x.js", refused)
        self.assertIn("http://localhost/x.css", refused)

    def test_a_changed_script_does_not_run(self):
        project = project_of("single")
        with open(project.page, encoding="utf-8") as file:
            text = file.read()
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        path = os.path.join(folder.name, "changed.html")
        with open(path, "w", encoding="utf-8", newline="") as file:
            file.write(text.replace('"use strict";', '"use strict"; window.hacked = 1;', 1))
        self.is_silent = False
        self.browser.open(path, is_running=False)
        self.browser.after_paint()
        self.assertEqual(self.browser.run("return [typeof window.hacked, typeof window.quillet]"),
                         ["undefined", "undefined"])

    def test_markup_can_not_be_made_from_strings(self):
        self.open("single")
        self.is_silent = False
        for sink in ("document.body.innerHTML = '<b>'", "document.write('<b>')",
                     "document.body.insertAdjacentHTML('beforeend', '<b>')",
                     "trustedTypes.createPolicy('x', {})"):
            refused = self.browser.run(f"try {{ {sink}; return false; }} catch {{ return true; }}")
            self.assertTrue(refused, sink)
        # Later, when it is the page that asks and not the driver.
        for sink in ("eval('window.hacked = 1')", "new Function('window.hacked = 1')()"):
            refused = self.browser.driver.execute_async_script(
                "const done = arguments[0]; setTimeout(() => {"
                f"try {{ {sink}; done(false); }} catch {{ done(true); }} }})")
            self.assertTrue(refused, sink)

    def test_the_hooks_are_frozen(self):
        self.open("single")

        self.assertEqual(self.browser.run(
            "return [Object.isFrozen(window.quillet), Object.keys(window.quillet).sort()]"),
            [True, ["order", "pixelOf", "show", "wellOf"]])
        self.assertEqual(self.browser.run("return performance.getEntriesByName('table').length"), 1)

    def test_nothing_is_global_but_the_hooks(self):
        self.open("every_state")

        added = self.browser.driver.execute_async_script("""
            const done = arguments[0];
            const own = Object.getOwnPropertyNames(window);
            const known = new Set(own.filter((name) => {
              const text = Object.getOwnPropertyDescriptor(window, name);
              return text.get || !text.enumerable || String(text.value).includes('[native code]');
            }));
            done(own.filter((name) => !known.has(name)));""")
        self.assertFalse({"pageData", "sampleRows", "stateOf", "element", "traceView", "table",
                          "map"} & set(added))
        self.assertIn("quillet", added)

    def test_a_page_that_is_cut_tells_so_and_shows_its_rows(self):
        project = project_of("every_state")
        with open(project.page, "rb") as file:
            content = file.read()
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        path = os.path.join(folder.name, "cut.html")
        with open(path, "wb") as file:
            file.write(content[:content.index(b'id="t5"')])
        self.browser.open(path, "P02_B04_R")

        self.assertEqual(self.browser.order(), samples(by_need(project.rows)))
        self.assertIsNone(self.browser.pixel_of(300, "A"))
        self.assertRegex(self.browser.text("[data-panel=trace]"), "(?i)not whole|missing|damaged")
        self.browser.show("P01_A02_F", 100)
        self.assertIsNotNone(self.browser.pixel_of(100, "A"))


@unittest.skipUnless(os.path.exists(AXE), "no axe-core at " + AXE)
class AxeTest(PageCase):
    def check(self, what):
        with open(AXE, encoding="utf-8") as file:
            self.browser.run(file.read() + "\nwindow.axe = window.axe ?? axe;")
        found = self.browser.driver.execute_async_script(
            "const done = arguments[arguments.length - 1];"
            "window.axe.run(document).then(({violations, passes}) =>"
            "done([passes.length, violations.map((rule) => [rule.id, rule.help,"
            "rule.nodes.map(({html, failureSummary}) =>"
            "`${html.slice(0, 200)}: ${failureSummary}`).slice(0, 4)])]),"
            "(fault) => done([0, String(fault)]))")
        self.assertGreater(found[0], 15)
        self.assertEqual(found[1], [], what)

    def check_theme(self, theme):
        self.browser.policy(False)  # axe is a script that the page's policy refuses
        self.browser.theme(theme)
        self.open("every_state")
        self.check("first sight")
        for sample in ("P01_A03_F", "P01_A07_F", "P02_B01_R", "P01_A10_F", "P01_A06_F"):
            self.browser.show(sample)
            self.check(sample)
        for button in self.browser.find_all("[data-panel=map] button"):
            if button.text == "Capillaries":
                button.click()
        self.browser.filter("state:cut")
        self.browser.after_paint()
        self.check("capillaries and a filter")
        self.browser.run("document.activeElement.blur()")
        self.browser.press("?")
        self.check("the list of keys")

    def test_axe_finds_nothing_in_the_light(self):
        self.check_theme("light")

    def test_axe_finds_nothing_in_the_dark(self):
        self.check_theme("dark")

    def test_axe_finds_nothing_at_700_px_and_without_scripts_started(self):
        self.browser.policy(False)
        self.browser.size(700, 1000)
        self.open("every_state")
        self.check("700 px")

    def test_axe_finds_what_is_wrong(self):
        self.browser.policy(False)
        self.open("single")
        self.browser.run("document.querySelector('input').removeAttribute('aria-label');"
                         "document.querySelector('input').removeAttribute('placeholder')")
        with self.assertRaises(AssertionError):
            self.check("a field without a name")


@unittest.skipUnless(shutil.which("firefox-esr"), "no firefox-esr")
class FirefoxTest(unittest.TestCase):
    def test_firefox_shows_rows_and_traces(self):
        project = project_of("every_state")
        stored = StoredTrace(project.trace("P02_B04_R.ab1"))
        with Firefox() as firefox:
            firefox.command("WebDriver:SetWindowRect", {"width": 1400, "height": 1100})
            firefox.open(page_browser.address_of(project.page, "P01_A02_F"))
            shown = firefox.run(
                "const done = arguments[0]; const look = () => {"
                "const panel = document.querySelector('[data-panel=trace]');"
                "if (panel.dataset.shown) done(panel.dataset.shown);"
                "else setTimeout(look, 20); }; look();")
            self.assertEqual(shown, "P01_A02_F")
            order, rows, mark = firefox.run(
                "arguments[0]([window.quillet.order(),"
                "[...document.querySelectorAll('tr[data-sample]')]"
                ".map((row) => row.dataset.sample),"
                "performance.getEntriesByName('table').length])")
            expected = samples(by_need(project.rows))
            self.assertEqual(order, expected)
            self.assertGreater(len(rows), 5)
            self.assertEqual(rows, expected[:len(rows)])
            self.assertEqual(mark, 1)
            for base in (100, 300, 500):
                letter = stored.bases[base - 1]
                place, colour = firefox.run(
                    "const [base, letter, done] = arguments; const page = window.quillet;"
                    "page.show('P02_B04_R', base).then(() => requestAnimationFrame(() =>"
                    "requestAnimationFrame(() => {"
                    "const probe = document.createElement('canvas').getContext('2d');"
                    "probe.fillStyle = getComputedStyle(document.documentElement)"
                    ".getPropertyValue('--base-' + letter.toLowerCase()).trim();"
                    "const place = JSON.parse(JSON.stringify(page.pixelOf(base, letter)));"
                    "done([place, probe.fillStyle]); })));",
                    base, letter)
                shot = firefox.command("WebDriver:TakeScreenshot", {"full": False})["value"]
                picture = page_browser.Picture(base64.b64decode(shot))
                near = picture.box(place["x"] - 2, place["y"] - 2, place["x"] + 2, place["y"] + 2)
                rgb = tuple(int(colour[i:i + 2], 16) for i in (1, 3, 5))
                self.assertLess(nearness(near, rgb).min(), 90, (base, letter))


if __name__ == "__main__":
    unittest.main()
