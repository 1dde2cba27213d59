"""Compares the converter with other programs and with the bare cost of its files, and quillet-report
and quillet-shards with the converter.

usage: measure.py BUILD [growth | report | shards] [--rounds N]

In every round all programs run in turn, each into empty result folders. Figures are medians over
the rounds. A ratio is taken within each round first. Times include those of child processes.
"""

import argparse
import os
import shutil
import statistics
import subprocess
import sys
import tempfile

from runs import Run, in_memory

BENCH = os.path.dirname(os.path.abspath(__file__))
RESULTS = ("phd_dir", "poly_dir", "other_dir")


def empty_results(folder):
    for name in RESULTS:
        path = os.path.join(folder, name)
        shutil.rmtree(path, ignore_errors=True)
        os.mkdir(path)


def measure(folder, programs, rounds, keep_results=False):
    """The runs of every program, by the program's name."""
    runs = {name: [] for name in programs}
    for _ in range(rounds):
        for name, command in programs.items():
            if not keep_results:
                empty_results(folder)
            runs[name].append(Run(command, folder))
    return runs


def median(runs, figure):
    return statistics.median(getattr(run, figure) for run in runs)


def ratio(runs, others, figure):
    pairs = zip(runs, others)
    return statistics.median(getattr(a, figure) / getattr(b, figure) for a, b in pairs)


def print_table(title, file_count, runs, base):
    print(f"\n{title}\n")
    print(f"| Program | Files per second | CPU per file, µs | Peak memory, MiB "
          f"| Time / {base} | CPU / {base} |")
    print("|---|---:|---:|---:|---:|---:|")
    for name, own in runs.items():
        print(f"| {name} | {file_count / median(own, 'seconds'):,.0f} "
              f"| {1e6 * median(own, 'cpu') / file_count:,.1f} | {median(own, 'peak') / 1024:.1f} "
              f"| {ratio(own, runs[base], 'seconds'):.2f} | {ratio(own, runs[base], 'cpu'):.2f} |",
              flush=True)


class Bench:
    def __init__(self, build, folder, rounds):
        self.quillet = os.path.join(build, "quillet")
        self.report = os.path.join(build, "quillet-report")
        self.shards = os.path.join(build, "quillet-shards")
        self.floor = os.path.join(build, "bench", "floor")
        self.maker = os.path.join(build, "bench", "bench_project")
        self.folder = folder
        self.rounds = rounds

    def project(self, name, files, samples, bases, kind="plain"):
        folder = os.path.join(self.folder, name)
        needed = 2 * files * (9 * samples + 120 * bases)  # bytes, traces and results
        if shutil.disk_usage(self.folder).free < needed:
            sys.exit(f"{self.folder} has no room for {needed / 2**20:,.0f} MiB")
        subprocess.run([self.maker, folder, str(files), str(samples), str(bases), kind], check=True)
        return folder

    def tasks(self, folder):
        """Writes the file sizes of a conversion for the floor. The run also warms the caches."""
        empty_results(folder)
        Run([self.quillet], folder)
        lines = []
        for trace in sorted(os.listdir(os.path.join(folder, "chromat_dir"))):
            sample = trace.removesuffix(".gz").removesuffix(".ab1")
            sizes = [os.path.getsize(os.path.join(folder, *path)) for path in
                     (("phd_dir", sample + ".phd.1"), ("poly_dir", sample + ".poly"))]
            lines.append(f"{trace} {sample} {sizes[0]} {sizes[1]}\n")
        path = os.path.join(folder, "tasks")
        with open(path, "w") as out:
            out.writelines(lines)
        return path

    def plain(self):
        count = 2000
        folder = self.project("plain", count, 12000, 900)
        chromats = os.path.join(folder, "chromat_dir")
        names = os.path.join(folder, "names")
        with open(names, "w") as out:
            for name in sorted(os.listdir(chromats)):
                out.write(f"{chromats}/{name} {folder}/other_dir/{name}.scf\n")
        runs = measure(folder, {
            "Quillet, PHD and poly": [self.quillet],
            "the files alone": [self.floor, "copy", folder, self.tasks(folder)],
            "Biopython, PHD": [sys.executable, os.path.join(BENCH, "biopython_convert.py"),
                               chromats, os.path.join(folder, "phd_dir")],
            "io_lib, SCF": ["convert_trace", "-in_format", "abi", "-out_format", "scf",
                            "-fofn", names],
        }, self.rounds)
        print_table(f"Plain traces, {count:,} files of 12,000 samples and 900 bases:", count, runs,
                    "the files alone")
        own, other = runs["Quillet, PHD and poly"], runs["Biopython, PHD"]
        print(f"\nQuillet converts {ratio(other, own, 'seconds'):.1f} times as many files per "
              f"second as Biopython, at 1/{ratio(other, own, 'cpu'):.1f} of its CPU time.")
        shutil.rmtree(folder)

    def packed(self):
        count = 200
        folder = self.project("packed", count, 12000, 900, "packed")
        runs = measure(folder, {
            "Quillet": [self.quillet],
            "the commands alone": [self.floor, "commands", folder, self.tasks(folder)],
        }, self.rounds)
        print_table(f"Gzipped traces, {count:,} files of the same kind:", count, runs,
                    "the commands alone")
        shutil.rmtree(folder)

    def done(self):
        count = 100_000
        folder = self.project("done", 0, 0, 0)
        for k in range(count):
            open(f"{folder}/chromat_dir/trace{k:06}.ab1", "w").close()
            open(f"{folder}/phd_dir/trace{k:06}.phd.1", "w").close()
        runs = measure(folder, {
            "Quillet": [self.quillet],
            "listing and asking alone": [self.floor, "ask", folder],
        }, self.rounds, keep_results=True)
        print_table(f"Nothing left to do, {count:,} files:", count, runs,
                    "listing and asking alone")
        shutil.rmtree(folder)

    def grow(self, title, sizes):
        print(f"\n{title}\n")
        print("| Files | Samples | Bases | CPU per file, µs | of that above the files alone "
              "| Peak memory, MiB |")
        print("|---:|---:|---:|---:|---:|---:|")
        for files, samples, bases in sizes:
            folder = self.project("grown", files, samples, bases)
            runs = measure(folder, {
                "own": [self.quillet],
                "floor": [self.floor, "copy", folder, self.tasks(folder)],
            }, self.rounds)
            own, floor = (1e6 * median(runs[name], "cpu") / files for name in ("own", "floor"))
            print(f"| {files:,} | {samples:,} | {bases:,} | {own:.1f} | {own - floor:.1f} "
                  f"| {median(runs['own'], 'peak') / 1024:.1f} |", flush=True)
            shutil.rmtree(folder)

    def growth(self):
        self.grow("More files:", [(count, 12000, 900) for count in (200, 2000, 20_000)])
        self.grow("Longer traces:", [(2000, 6000, 450), (2000, 12000, 900), (2000, 24000, 1800)])

    def reports(self):
        for title, files, kind in (("Plain traces", 2000, "plain"), ("Gzipped traces", 200, "packed"),
                                   ("Many plain traces", 20_000, "plain")):
            folder = self.project("reported", files, 12000, 900, kind)
            tables = [self.report, "--tsv", folder + "/tsv", "--json", folder + "/json"]
            programs = {
                "quillet": [self.quillet],
                "quillet-report, TSV and JSON": tables,
                "quillet-report, FASTQ too": [*tables, "--fastq", folder + "/fastq"],
            }
            runs = {name: [] for name in programs}
            for _ in range(self.rounds):
                empty_results(folder)  # the first program makes what the others look at
                for name, command in programs.items():
                    runs[name].append(Run(command, folder))
            print_table(f"{title}, {files:,} files of 12,000 samples and 900 bases:", files, runs,
                        "quillet")
            shutil.rmtree(folder)

    def divided(self):
        """Seconds that `all -j 1` takes for a gzipped trace."""
        seconds = {}
        for title, files, kind in (("Gzipped traces", 2000, "packed"), ("Plain traces", 10_000, "plain")):
            folder = self.project("divided", files, 12000, 900, kind)
            everything = [self.shards, "all", "-d", folder, "-j"]
            runs = measure(folder, {
                "quillet": [self.quillet],
                "quillet-shards all -j 1": [*everything, "1"],
                "quillet-shards all -j 2": [*everything, "2"],
            }, self.rounds)
            print_table(f"{title}, {files:,} files of 12,000 samples and 900 bases:", files, runs,
                        "quillet")
            plain, one, two = runs.values()
            print(f"\n-j 1 takes {ratio(one, plain, 'seconds'):.2f} times as long as quillet and is "
                  f"{ratio(plain, one, 'seconds'):.2f} times as fast, -j 2 is "
                  f"{ratio(one, two, 'seconds'):.2f} times as fast as -j 1.", flush=True)
            seconds[kind] = median(one, "seconds") / files
            shutil.rmtree(folder)
        return seconds["packed"]

    def steps(self):
        """What the steps of a divided run cost beside the conversion: seconds that plan and join
        take for a gzipped trace, and that a shard takes before its first."""
        print("\n| Step | Names | Time, ms | of that for a name, µs |")
        print("|---|---:|---:|---:|")
        found = []

        def print_step(title, names, runs):
            seconds = median(runs, "seconds")
            found.append(seconds / names)
            print(f"| {title} | {names:,} | {1e3 * seconds:,.1f} | {1e6 * seconds / names:,.1f} |",
                  flush=True)

        count = 100_000
        for kind in ("plain", "packed"):
            folder = self.project("planned", 50, 12000, 900, kind)
            chromats = os.path.join(folder, "chromat_dir")
            for k, name in zip(range(50, count), 2000 * sorted(os.listdir(chromats))):
                os.link(f"{chromats}/{name}", f"{chromats}/trace{k:05}{name[10:]}")
            runs = []
            for _ in range(self.rounds):
                shutil.rmtree(os.path.join(folder, "shards"), ignore_errors=True)
                runs.append(Run([self.shards, "plan", "-d", folder, "-n", "100"], folder))
            print_step(f"plan, 100 shards, {kind} traces", count, runs)
            shutil.rmtree(folder)

        count = 2000
        folder = self.project("joined", count, 12000, 900)
        single, joined = [], []
        for _ in range(self.rounds):
            for shard in self.planned(folder, size=1)[:20]:
                single.append(Run([self.shards, "run", shard], folder))
            for shard in self.planned(folder, size=500):
                Run([self.shards, "run", shard], folder)
            joined.append(Run([self.shards, "join", "-d", folder], folder))
        print_step("run, a shard of one plain trace", 1, single)
        print_step("join, four shards", count, joined)
        shutil.rmtree(folder)
        _, plan, start, join = found
        return plan, start, join

    def simulate(self, whole, plan, start, join):
        """A million gzipped traces on paper: plan and join in one process, the runs in one process
        on each node. `whole`: seconds for a trace in all three steps."""
        names, shards = 1_000_000, 500
        print(f"\n{names:,} gzipped traces in {shards} shards, computed from the figures above:\n")
        print("| Nodes | plan, s | run, s | join, s | Together, min |")
        print("|---:|---:|---:|---:|---:|")
        for nodes in (1, 10, 100):
            run = -(-shards // nodes) * (start + names / shards * (whole - plan - join))
            steps = names * plan, run, names * join
            print(f"| {nodes} | {' | '.join(f'{step:,.0f}' for step in steps)} "
                  f"| {sum(steps) / 60:.1f} |")

    def planned(self, folder, size):
        """Shards of `size` traces, of the whole project, in place of those that are there."""
        empty_results(folder)
        Run([self.shards, "plan", "-f", "-d", folder, "--size", str(size)], folder)
        return sorted(entry.path for entry in os.scandir(os.path.join(folder, "shards"))
                      if entry.is_dir())


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("build")
    parser.add_argument("what", nargs="?", default="programs",
                        choices=["programs", "growth", "report", "shards"])
    parser.add_argument("--rounds", type=int, default=7)
    options = parser.parse_args()

    place = in_memory()
    if place is None:
        place = tempfile.gettempdir()
        print(f"No memory-backed folder here: the files lie in {place}, whose speed is measured too.")
    with tempfile.TemporaryDirectory(dir=place) as folder:
        bench = Bench(os.path.abspath(options.build), folder, options.rounds)
        print(f"Medians over {options.rounds} rounds; ratios are taken within each round.")
        if options.what == "growth":
            bench.growth()
        elif options.what == "report":
            bench.reports()
        elif options.what == "shards":
            whole = bench.divided()
            bench.simulate(whole, *bench.steps())
        else:
            bench.plain()
            bench.packed()
            bench.done()


main()
