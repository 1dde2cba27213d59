"""Compares what quillet-report says of traces with what Biopython makes of them, and reads its
tables with Python's own csv and json.

usage: biopython_test.py QUILLET_REPORT ALIKE_PROJECT REAL_TRACES

ALIKE_PROJECT makes the traces. REAL_TRACES is a folder of further ones, used where it exists. Calls
count where those numbered 1, which Quillet reads, and 2, which Biopython reads, are alike.
Status 77: Biopython is not installed.
"""

import csv
import json
import os
import shutil
import subprocess
import sys
import tempfile
import unittest
import warnings

try:
    from Bio import BiopythonParserWarning, SeqIO
except ImportError:
    print("skipped: no Biopython for", sys.executable)
    sys.exit(77)

REPORT, MAKER, REAL_TRACES = map(os.path.abspath, sys.argv[1:])

ODD_NAMES = {"tab\there.ab1": "tab\\there", "quote\".ab1": "quote\"", "it's.ab1": "it's",
             "back\\slash.ab1": "back\\\\slash", "line\nfeed\r.ab1": "line\\nfeed\\r",
             "caf\u00e9.ab1": "caf\u00e9", "vertical\x0btab\x1c.ab1": "vertical\x0btab\x1c"}
NUMBERS = ("bases", "q20", "contiguous", "trim_start", "trim_end", "no_calls", "mixed")


def read_abi(path, trimmed=False):
    with warnings.catch_warnings():
        warnings.simplefilter("ignore", BiopythonParserWarning)
        return SeqIO.read(path, "abi-trim" if trimmed else "abi")


def calls_are_alike(path):
    try:
        raw = read_abi(path).annotations["abif_raw"]
    except (ValueError, OSError, AssertionError):
        return False
    return (raw["PBAS1"], raw["PCON1"]) == (raw["PBAS2"], raw["PCON2"])


def qualities(record):
    return record.letter_annotations.get("phred_quality", [])


class ReportTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        root = os.path.join(cls.folder.name, "project")
        subprocess.run([MAKER, root], check=True)
        cls.chromats = os.path.join(root, "chromat_dir")
        cls.made = sorted(os.listdir(cls.chromats))
        cls.real = []
        if os.path.isdir(REAL_TRACES):
            cls.real = [name for name in sorted(os.listdir(REAL_TRACES)) if name.endswith(".ab1")
                        and calls_are_alike(os.path.join(REAL_TRACES, name))]
            for name in cls.real:
                shutil.copy(os.path.join(REAL_TRACES, name), cls.chromats)
        for name in ODD_NAMES:
            shutil.copy(os.path.join(cls.chromats, cls.made[100]),
                        os.path.join(cls.chromats, name))
        cls.outputs = {kind: os.path.join(cls.folder.name, kind)
                       for kind in ("tsv", "json", "fastq", "fasta", "trimmed")}
        run = [REPORT, "-d", root]
        for kind in ("tsv", "json", "fastq", "fasta"):
            run += ["--" + kind, cls.outputs[kind]]
        environment = {**os.environ, "HOME": cls.folder.name, "PWD": cls.folder.name}
        status = subprocess.run(run, cwd=cls.folder.name, env=environment,
                                stdout=subprocess.DEVNULL, check=False).returncode
        assert status == 2, status  # no trace has a result
        subprocess.run([REPORT, "-d", root, "--trim", "--fastq", cls.outputs["trimmed"]],
                       cwd=cls.folder.name, env=environment, stdout=subprocess.DEVNULL,
                       check=False)
        with open(cls.outputs["tsv"], encoding="utf-8", newline="") as table:
            cls.header, *lines = csv.reader(table, delimiter="\t", quoting=csv.QUOTE_NONE)
        cls.lines = lines
        cls.rows = {line[1]: dict(zip(cls.header, line)) for line in lines}

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def compared(self):
        """The row, the whole record and the trimmed one of each trace whose calls are alike."""
        for name in self.made + self.real:
            path = os.path.join(self.chromats, name)
            yield self.rows[name], read_abi(path), read_abi(path, trimmed=True)

    def test_there_are_traces_to_compare(self):
        self.assertEqual(len(self.made), 200)
        for name in self.made:
            self.assertTrue(calls_are_alike(os.path.join(self.chromats, name)), name)
        middle_zeros = 0
        for name in self.made:
            values = qualities(read_abi(os.path.join(self.chromats, name)))
            middle_zeros += len(values) > 100 and values[len(values) // 2] == 0
        self.assertGreater(middle_zeros, 10)
        if os.path.isdir(REAL_TRACES):
            self.assertGreater(len(self.real), 0)
        else:
            print("skipped: no real traces at", REAL_TRACES)

    def test_figures_are_those_of_biopython(self):
        for row, record, trimmed in self.compared():
            with self.subTest(trace=row["trace"]):
                values = qualities(record)
                self.assertEqual(row["bases"], str(len(record)))
                self.assertEqual(row["mean_quality"], "%.1f" % (sum(values) / len(values)))
                self.assertEqual(row["q20"], str(sum(value >= 20 for value in values)))
                start, end = int(row["trim_start"]), int(row["trim_end"])
                self.assertEqual(str(record.seq[start:end]), str(trimmed.seq))
                self.assertEqual(values[start:end], qualities(trimmed))
                if len(trimmed) == 0:
                    self.assertEqual((start, end), (0, 0))

    def test_fastq_holds_what_biopython_reads_in_the_trace(self):
        reads = {read.id: read for read in SeqIO.parse(self.outputs["fastq"], "fastq")}
        letters = {read.id: read for read in SeqIO.parse(self.outputs["fasta"], "fasta")}
        count = 0
        for row, record, _ in self.compared():
            with self.subTest(trace=row["trace"]):
                values = qualities(record)
                if not any(10 <= value <= 127 for value in values):
                    self.assertNotIn(row["sample"], reads)
                    continue
                count += 1
                read = reads[row["sample"]]
                self.assertEqual(str(read.seq), str(record.seq))
                self.assertEqual(qualities(read), values)
                self.assertEqual(str(letters[row["sample"]].seq), str(record.seq))
        self.assertGreater(count, 190)

    def test_trimmed_fastq_holds_what_biopython_leaves(self):
        reads = {read.id: read for read in SeqIO.parse(self.outputs["trimmed"], "fastq")}
        for row, record, trimmed in self.compared():
            with self.subTest(trace=row["trace"]):
                if len(trimmed) == 0 or not any(10 <= value <= 127 for value in qualities(record)):
                    self.assertNotIn(row["sample"], reads)
                    continue
                self.assertEqual(str(reads[row["sample"]].seq), str(trimmed.seq))
                self.assertEqual(qualities(reads[row["sample"]]), qualities(trimmed))

    def test_csv_reads_the_table(self):
        self.assertEqual(len(self.lines), len(self.made) + len(self.real) + len(ODD_NAMES))
        for line in self.lines:
            self.assertEqual(len(line), len(self.header), line)
        for name, sample in ODD_NAMES.items():
            self.assertEqual([line[0] for line in self.lines].count(sample), 1, name)

    def test_json_holds_the_same_rows(self):
        with open(self.outputs["json"], encoding="utf-8") as table:
            whole = json.load(table)
        self.assertEqual(list(whole), ["quillet", "project", "samples", "counts"])
        self.assertEqual(sum(whole["counts"].values()), len(self.lines))
        self.assertEqual(len(whole["samples"]), len(self.lines))
        for line, sample in zip(self.lines, whole["samples"]):
            self.assertEqual(list(sample), self.header)
            row = dict(zip(self.header, line))
            for column in NUMBERS:
                found = "" if sample[column] is None else str(sample[column])
                self.assertEqual(found, row[column])
            mean = sample["mean_quality"]
            self.assertEqual("" if mean is None else f"{mean:.1f}", row["mean_quality"])
            positions = sample["mixed_positions"]
            self.assertEqual(",".join(map(str, positions or [])), row["mixed_positions"])
            escaped = sample["sample"].replace("\\", "\\\\").replace("\t", "\\t")
            self.assertEqual(escaped.replace("\n", "\\n").replace("\r", "\\r"), row["sample"])
        self.assertEqual({sample["trace"] for sample in whole["samples"]} & set(ODD_NAMES),
                         set(ODD_NAMES))


unittest.main(argv=sys.argv[:1])
