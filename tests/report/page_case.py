"""What the browser tests of the report page share: the projects, made once, and the case that every
test of a page is: afterwards nothing was asked for, and nothing is on the console."""

import atexit
import functools
import re
import tempfile
import unittest

import page_browser
import page_project

STATE_ORDER = ("differs", "borrowed", "cut", "no-poly", "orphan", "invalid", "refused", "hidden",
               "waiting", "converted")
NUMBERS = ("bases", "mean_quality", "q20", "contiguous", "trim_start", "trim_end", "no_calls",
           "mixed", "capillary", "signal_to_noise")


@functools.lru_cache(maxsize=None)
def project_of(maker, *flags, names=None):
    """The project that a function of page_project makes, with its page; made once."""
    folder = tempfile.TemporaryDirectory(ignore_cleanup_errors=True)
    atexit.register(folder.cleanup)
    project = getattr(page_project, maker)(folder.name)
    if project is not None:
        project.report(*flags, names=names)
    return project


def number_of(row, column):
    """A value of the table as a number; none where it is unknown."""
    return float(row[column]) if row[column] != "" else None


def by_need(rows):
    """Worst state first, and whole results by the shortest good stretch; those without calls, of
    which nothing is good, before the others."""
    def need(row):
        if row["state"] != "converted":
            return 0
        contiguous = number_of(row, "contiguous")
        return -1 if contiguous is None else contiguous
    return sorted(rows, key=lambda row: (STATE_ORDER.index(row["state"]), need(row)))


def natural_key(text):
    """Sorts P2 before P10, and punctuation (in the order of Unicode's collation) before digits
    before letters, whatever their case."""
    keys = []
    for part in re.findall(r"\d+|\D", text.casefold()):
        if part.isdigit():
            keys.append((1, int(part), ""))
        elif part.isalpha():
            keys.append((2, 0, part))
        else:
            keys.append((0, " _-,;:!?.".index(part), ""))
    return keys


def samples(rows):
    return [page_project.shown_name(row["sample"]) for row in rows]


class PageCase(unittest.TestCase):
    """A test of pages in Chromium."""

    maxDiff = None

    def setUp(self):
        self.browser = page_browser.chromium()
        self.is_silent = True

    def tearDown(self):
        self.assertEqual(self.browser.requests(), [])
        console = self.browser.console()
        if self.is_silent:
            self.assertEqual(console, [])

    def open(self, maker, *flags, fragment=None, names=None):
        """Opens the page of a project in a fresh window."""
        project = project_of(maker, *flags, names=names)
        self.browser.open(project.page, fragment)
        return project

    def row_texts(self):
        """[aria-rowindex, [sample, state, texts by column]] of all rows, scrolling through them."""
        return self.browser.driver.execute_async_script("""
            const done = arguments[0];
            const grid = document.querySelector("[role=grid]");
            let scroller = grid;
            while (scroller.scrollHeight <= scroller.clientHeight && scroller.parentElement) {
              scroller = scroller.parentElement;
            }
            const columns = [...grid.querySelectorAll("th")].map((th) => th.dataset.column);
            const found = new Map();
            const take = () => {
              for (const row of grid.querySelectorAll("tr[data-sample]")) {
                const texts = {};
                [...row.querySelectorAll("td")].forEach((cell, i) => {
                  if (columns[i]) texts[columns[i]] = cell.textContent;
                });
                found.set(Number(row.getAttribute("aria-rowindex")),
                          [row.dataset.sample, row.dataset.state, texts]);
              }
            };
            const step = () => {
              take();
              if (scroller.scrollTop + scroller.clientHeight >= scroller.scrollHeight - 1) {
                done([...found].sort(([a], [b]) => a - b));
              } else {
                scroller.scrollTop += 200;
                requestAnimationFrame(() => requestAnimationFrame(step));
              }
            };
            scroller.scrollTop = 0;
            requestAnimationFrame(() => requestAnimationFrame(step));""")

    def chosen(self):
        """The rows in the document that are marked as chosen."""
        return self.browser.run("return [...document.querySelectorAll('tr[aria-selected=true]')]"
                                ".map((row) => row.dataset.sample)")

    def assert_near(self, found, expected, tolerance, what=None):
        self.assertLessEqual(abs(found - expected), tolerance, (what, found, expected))
