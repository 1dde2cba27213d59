"""Measures the page of quillet-report: its size, what making it costs, and how a browser takes it.

usage: measure_page.py BUILD [--rounds N] [--traces N] [--from FOLDER]

The traces are those of FOLDER that Quillet converts, else those of the plate of 96, each under many
names (hard links). Prints Markdown. Figures are medians over the rounds; a browser is started anew in
each, headless and without GPU.
"""

import argparse
import base64
import os
import re
import shutil
import statistics
import struct
import subprocess
import sys
import tempfile
import time
import zlib

from selenium import webdriver
from selenium.webdriver.chrome.options import Options
from selenium.webdriver.chrome.service import Service

from runs import Run, in_memory

SHOWN = 60  # samples shown in each round

# What one asks of the page: the time until each sample of a list is drawn, in ms.
SHOW = """
const [samples, pause, done] = arguments;
(async () => {
  const times = [];
  for (const sample of samples) {
    const start = performance.now();
    await quillet.show(sample);
    times.push(performance.now() - start);
    await new Promise((resolve) => setTimeout(resolve, pause));
  }
  done(times);
})();
"""


def converted_rows(report, folder):
    """The rows of whole results, by their number."""
    table = subprocess.run([report, "--tsv", "-"], cwd=folder, stdout=subprocess.PIPE, text=True,
                           env={**os.environ, "PWD": folder}).stdout.splitlines()
    columns = table[0].split("\t")
    rows = [dict(zip(columns, line.split("\t"))) for line in table[1:]]
    return {number: row for number, row in enumerate(rows) if row["state"] == "converted"}


def sample_counts(page):
    """The samples of each channel of the traces in a page, by the number of their row."""
    with open(page, encoding="utf-8") as text:
        pictures = re.findall(r'id="t(\d+)">([^<]+)<', text.read())
    return {int(row): struct.unpack_from("<I", zlib.decompress(base64.b64decode(picture)))[0]
            for row, picture in pictures}


def converted_traces(quillet, report, folder, place):
    """The traces of a folder that are converted: (paths, mean of bases, mean of samples)."""
    project = os.path.join(place, "tried")
    for name in ("phd_dir", "poly_dir", "edit_dir"):
        os.makedirs(os.path.join(project, name))
    shutil.copytree(folder, os.path.join(project, "chromat_dir"))
    Run([quillet], project)
    rows = converted_rows(report, project)
    paths = [os.path.join(project, "chromat_dir", row["trace"]) for row in rows.values()]
    if not paths:
        sys.exit(f"no trace of {folder} is converted")
    Run([report, "-o", "page.html"], project, allowed=(0, 2, 3))
    samples = sample_counts(os.path.join(project, "page.html"))
    return (paths, statistics.mean(int(row["bases"]) for row in rows.values()),
            statistics.mean(samples[number] for number in rows))


def many_traces(paths, count, folder):
    for name in ("chromat_dir", "phd_dir", "poly_dir", "edit_dir"):
        os.makedirs(os.path.join(folder, name))
    for i in range(count):
        path = paths[i % len(paths)]
        # With the beginning of its name a trace keeps its ending, such as ".ab1.gz".
        ending = os.path.basename(path).partition(".")[2]
        os.link(path, os.path.join(folder, "chromat_dir", f"T{i:05}.{ending}"))


def parent_of(process):
    with open(f"/proc/{process}/stat") as stat:
        return int(stat.read().rpartition(")")[2].split()[1])


def renderer_memory(ancestor):
    """Of the pages below a process, the largest's resident memory and its peak, in MiB."""
    parents = {}
    for process in filter(str.isdigit, os.listdir("/proc")):
        try:
            parents[int(process)] = parent_of(process)
        except OSError:
            pass  # it has ended
    found = []
    for process in parents:
        above = process
        while above in parents and above != ancestor:
            above = parents[above]
        if above != ancestor:
            continue
        try:
            with open(f"/proc/{process}/cmdline") as line:
                words = line.read()
            with open(f"/proc/{process}/status") as status:
                fields = dict(line.split(":", 1) for line in status)
        except OSError:
            continue
        if "--type=renderer" not in words or "--top-chrome-webui" in words:
            continue
        found.append([int(fields[name].split()[0]) / 1024 for name in ("VmRSS", "VmHWM")])
    return max(found)


class Visit:
    """One visit of a new browser to a page: what it takes."""

    def __init__(self, page):
        options = Options()
        options.binary_location = "/usr/bin/chromium"
        options.page_load_strategy = "none"
        for argument in ("--headless=new", "--disable-gpu", "--window-size=1400,1000"):
            options.add_argument(argument)
        if os.geteuid() == 0:
            options.add_argument("--no-sandbox")  # Chromium has none for root
        service = Service("/usr/bin/chromedriver")
        self.driver = webdriver.Chrome(service=service, options=options)
        try:
            self.driver.set_script_timeout(120)
            self.driver.get("file://" + page)
            self.wait_for("return document.readyState === 'complete' && "
                          "document.querySelector('[data-panel=trace]')?.dataset.shown !== undefined")
            self.table = self.entry("performance.getEntriesByName('table')[0]")
            self.paint = self.entry("performance.getEntriesByName('first-contentful-paint')[0]")
            self.loaded = self.driver.execute_script(
                "return performance.getEntriesByType('navigation')[0].loadEventEnd")
            self.heap = self.heap_size()
            self.renderer = renderer_memory(service.process.pid)[0]
            self.show()
            self.used_heap = self.heap_size()
            self.used_renderer, self.peak_renderer = renderer_memory(service.process.pid)
        finally:
            self.driver.quit()

    def wait_for(self, script):
        end = time.monotonic() + 120
        while not self.driver.execute_script(script):
            if time.monotonic() > end:
                raise TimeoutError(script)
            time.sleep(0.05)

    def entry(self, script):
        return self.driver.execute_script(f"return ({script})?.startTime ?? null")

    def heap_size(self):
        """The memory of the page's script after a collection, in MiB."""
        self.driver.execute_cdp_cmd("HeapProfiler.collectGarbage", {})
        self.driver.execute_cdp_cmd("Performance.enable", {})
        metrics = self.driver.execute_cdp_cmd("Performance.getMetrics", {})["metrics"]
        return next(m["value"] for m in metrics if m["name"] == "JSHeapUsedSize") / 2**20

    def show(self):
        order = self.driver.execute_script("return quillet.order()")
        far = order[50::max(1, len(order) // SHOWN)][:SHOWN]
        self.far = statistics.median(self.driver.execute_async_script(SHOW, far, 0))
        middle = len(order) // 2
        near = order[middle:middle + SHOWN]
        self.near = statistics.median(self.driver.execute_async_script(SHOW, near, 100))


def median(values):
    return statistics.median(value for value in values if value is not None)


def print_making(title, runs, count, size):
    cpu = median(run.cpu for run in runs)
    peak = median(run.peak for run in runs) / 1024
    print(f"| {title} | {size / 1e6:,.1f} | {size / count / 1000:.1f} | {1000 * cpu / count:.2f} "
          f"| {peak:.1f} |", flush=True)


def measure_making(report, folder, rounds, count):
    print("| quillet-report | Size, MB | kB a trace | CPU a trace, ms | Peak memory, MiB |")
    print("|---|---:|---:|---:|---:|")
    programs = (("the table alone (`--tsv`)", ["--tsv", "table"], "table"),
                ("page without pictures", ["--no-pictures", "-o", "short.html"], "short.html"),
                ("page", ["-o", "report.html"], "report.html"))
    for title, flags, output in programs:
        runs = [Run([report, *flags], folder, allowed=(0, 2, 3)) for _ in range(rounds)]
        print_making(title, runs, count, os.path.getsize(os.path.join(folder, output)))


def measure_browser(page, rounds):
    visits = [Visit(page) for _ in range(rounds)]
    print("\n| In the browser | Median | Least | Most |\n|---|---:|---:|---:|")
    for title, figure in (("first paint, ms", "paint"), ("`table`, ms", "table"),
                          ("loaded, ms", "loaded"),
                          (f"`show`, {SHOWN} samples all over the project, ms", "far"),
                          (f"`show`, {SHOWN} samples one after the other, ms", "near"),
                          ("heap after loading, MiB", "heap"),
                          ("heap after the samples, MiB", "used_heap"),
                          ("renderer after loading, resident MiB", "renderer"),
                          ("renderer after the samples, resident MiB", "used_renderer"),
                          ("renderer at its peak, resident MiB", "peak_renderer")):
        values = [getattr(visit, figure) for visit in visits if getattr(visit, figure) is not None]
        print(f"| {title} | {median(values):,.1f} | {min(values):,.1f} | {max(values):,.1f} |")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("build")
    parser.add_argument("--rounds", type=int, default=5)
    parser.add_argument("--traces", type=int, default=10_000)
    golden = os.environ.get("QUILLET_GOLDEN") or os.path.join(
        os.path.dirname(os.path.abspath(__file__)), "..", "..", "shared", "golden")
    parser.add_argument("--from", dest="folder", default=os.path.join(golden, "chromat_dir"))
    options = parser.parse_args()
    build = os.path.abspath(options.build)
    quillet, report = os.path.join(build, "quillet"), os.path.join(build, "quillet-report")

    with tempfile.TemporaryDirectory(dir=in_memory() or tempfile.gettempdir()) as place:
        kind, folder = "real", options.folder
        if not os.path.isdir(folder):
            kind, folder = "made", os.path.join(place, "plate", "chromat_dir")
            subprocess.run([os.path.join(build, "examples", "plate_project"),
                            os.path.dirname(folder)], check=True)
        paths, bases, samples = converted_traces(quillet, report, folder, place)
        project = os.path.join(place, "project")
        many_traces(paths, options.traces, project)
        Run([quillet], project)
        print(f"{options.traces:,} traces: {len(paths)} {kind} ones under many names, in the mean "
              f"of {bases:,.0f} bases and {samples:,.0f} samples. Medians over {options.rounds} "
              f"rounds.\n")
        measure_making(report, project, options.rounds, options.traces)
        measure_browser(os.path.join(project, "report.html"), options.rounds)


main()
