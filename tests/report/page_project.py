"""Makes the projects whose pages the browser tests look at, and reads what the tests compare with:
the table of quillet-report, and traces by Biopython.

Traces are written here, byte by byte, by no code of Quillet's.
"""

import csv
import os
import shutil
import struct
import subprocess
import warnings

import numpy
from Bio import BiopythonParserWarning, SeqIO

import page_breaks

SOURCE = os.path.abspath(os.path.join(os.path.dirname(__file__), "..", ".."))
BUILD = os.environ.get("QUILLET_BUILD", os.path.join(SOURCE, "build", "dev"))
REAL_TRACES = os.path.join(
    os.environ.get("QUILLET_GOLDEN", os.path.join(SOURCE, "..", "shared", "golden")), "chromat_dir")

LETTERS = "ACGT"
CHAR, SHORT, DATE, PASCAL_TEXT, TERMINATED_TEXT = 2, 4, 10, 18, 19  # types of ABIF entries


def as_bytes(text):
    """The bytes of a text in which surrogates stand for invalid UTF-8, as Python has it."""
    return os.fsencode(text)


def abif(entries):
    """An ABIF file of entries (name, number, type, element size, data)."""
    data = b""
    directory = b""
    for name, number, kind, size, content in sorted(entries):
        field = content.ljust(4, b"\0")
        if len(content) > 4:
            field = struct.pack(">I", 128 + len(data))
            data += content
        directory += struct.pack(">4sIHHII4sI", name.encode(), number, kind, size,
                                 len(content) // size, len(content), field, 0)
    header = struct.pack(">4sH4sIHHIII", b"ABIF", 101, b"tdir", 1, 1023, 28, len(entries),
                         len(directory), 128 + len(data))
    return header.ljust(128, b"\0") + data + directory


def pascal(text):
    return bytes([len(as_bytes(text))]) + as_bytes(text)


class MadeTrace:
    """A trace that looks like a real one: peaks about 12 samples apart, noise, fading qualities.

    `mixed` are 1-based bases with a second peak under the call, `tall` maps 1-based bases to
    heights. Without `has_calls` the file holds no bases.
    """

    def __init__(self, seed, base_count, mixed=(), tall=None, highest_quality=58, has_calls=True):
        dice = numpy.random.RandomState(seed)
        self.bases = "".join(LETTERS[i] for i in dice.randint(0, 4, base_count))
        self.positions = 20 + numpy.cumsum(dice.randint(11, 14, base_count))
        index = numpy.arange(base_count)
        best = numpy.minimum(6 + index * 1.5, 6 + (base_count - 1 - index) * 0.4)
        self.qualities = numpy.clip(
            numpy.minimum(best, highest_quality) + dice.randint(-2, 3, base_count), 2, 62)
        point_count = int(self.positions[-1]) + 30
        x = numpy.arange(point_count)
        signals = numpy.zeros((4, point_count))
        for i, (base, position) in enumerate(zip(self.bases, self.positions)):
            height = dice.uniform(700, 1300) * (1 - 0.4 * i / base_count)
            height = (tall or {}).get(i + 1, height)
            near = slice(max(0, position - 20), position + 21)
            peak = numpy.exp(-0.5 * ((x[near] - position) / 3.1) ** 2)
            signals[LETTERS.index(base), near] += height * peak
            if i + 1 in mixed:
                second = (LETTERS.index(base) + 1) % 4
                signals[second, near] += 0.6 * height * peak
        noise = dice.uniform(0, 25, signals.shape)
        self.samples = numpy.minimum(signals + noise, 32000).astype(int)
        self.has_calls = has_calls

    def file(self, plate=None, well=None, capillary=None, date=None, instrument=None,
             caller="KB 1.4"):
        """The bytes of the file, with what the instrument notes where it is given."""
        order = "GATC"
        entries = [("FWO_", 1, CHAR, 1, order.encode()),
                   ("SPAC", 2, PASCAL_TEXT, 1, pascal(caller))]
        for i, letter in enumerate(order):
            samples = self.samples[LETTERS.index(letter)].astype(">i2").tobytes()
            entries.append(("DATA", 9 + i, SHORT, 2, samples))
        if self.has_calls:
            for number in (1, 2):
                entries += [("PBAS", number, CHAR, 1, self.bases.encode()),
                            ("PCON", number, CHAR, 1, self.qualities.astype("u1").tobytes()),
                            ("PLOC", number, SHORT, 2, self.positions.astype(">i2").tobytes())]
        if plate is not None:
            entries.append(("CTNM", 1, TERMINATED_TEXT, 1, as_bytes(plate) + b"\0"))
        if well is not None:
            entries.append(("TUBE", 1, PASCAL_TEXT, 1, pascal(well)))
        if capillary is not None:
            entries.append(("LANE", 1, SHORT, 2, struct.pack(">h", capillary)))
        if instrument is not None:
            entries.append(("MCHN", 1, PASCAL_TEXT, 1, pascal(instrument)))
        if date is not None:
            year, month, day = map(int, date.split("-"))
            entries.append(("RUND", 1, DATE, 4, struct.pack(">hBB", year, month, day)))
        return abif(entries)


class StoredTrace:
    """A trace file as Biopython reads it: letters, 0-based positions, samples by letter."""

    def __init__(self, path):
        with warnings.catch_warnings():
            warnings.simplefilter("ignore", BiopythonParserWarning)
            raw = SeqIO.read(path, "abi").annotations["abif_raw"]
        self.bases = raw["PBAS1"].decode()
        self.positions = list(raw["PLOC1"])
        self.qualities = list(raw["PCON1"])
        order = raw["FWO_1"].decode()
        self.samples = {letter: raw[f"DATA{9 + i}"] for i, letter in enumerate(order)}

    def median_called(self):
        return numpy.median([self.samples[base][position]
                             for base, position in zip(self.bases, self.positions)
                             if base in LETTERS])


class Project:
    """A project folder with its results, and the reports on it."""

    def __init__(self, folder, name="lab_run"):
        self.root = os.path.join(folder, name)
        self.page = os.path.join(folder, "report.html")
        self.table = os.path.join(folder, "report.tsv")
        for part in ("chromat_dir", "phd_dir", "poly_dir", "edit_dir"):
            os.makedirs(os.path.join(self.root, part))

    def path(self, *names):
        return os.path.join(self.root, *names)

    def trace(self, name):
        return self.path("chromat_dir", name)

    def phd(self, sample):
        return self.path("phd_dir", sample + ".phd.1")

    def poly(self, sample):
        return self.path("poly_dir", sample + ".poly")

    def add(self, name, content):
        with open(as_bytes(self.trace(name)), "wb") as file:
            file.write(content)

    def _run(self, command, **settings):
        environment = {**os.environ, "HOME": self.root, "PWD": self.root, "TZ": "UTC"}
        return subprocess.run(command, cwd=self.root, env=environment, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, check=False, **settings)

    def convert(self, names=None, flags=()):
        """Runs the converter over all traces, or over these in this order."""
        command = [os.path.join(BUILD, "quillet"), *flags]
        given = None
        if names is not None:
            command += ["-l", "-"]
            given = "".join(name + "\n" for name in names).encode()
        done = self._run(command, input=given)
        assert done.returncode == 0, done.stderr

    def report(self, *flags, names=None):
        """Makes table and page, and returns the rows."""
        command = [os.path.join(BUILD, "quillet-report"), "--tsv", self.table, "-o", self.page,
                   *flags]
        given = None
        if names is not None:
            command += ["-l", "-"]
            given = b"".join(as_bytes(name) + b"\n" for name in names)
        done = self._run(command, input=given)
        assert done.returncode in (0, 2, 3), (done.returncode, done.stderr)
        assert done.stderr == b"", done.stderr
        if "QUILLET_PAGE_BREAK" in os.environ:
            page_breaks.edit(self.page, os.environ["QUILLET_PAGE_BREAK"])
        self.rows = self.read_table()
        return self.rows

    def read_table(self):
        """The rows of the table: a text for each column, escapes resolved."""
        escapes = {"\\t": "\t", "\\n": "\n", "\\r": "\r", "\\\\": "\\", "\\0": "\0"}

        def plain(text):
            parts = []
            while text:
                size = 2 if text[:2] in escapes else 1
                parts.append(escapes.get(text[:size], text[:size]))
                text = text[size:]
            return "".join(parts)

        with open(self.table, encoding="utf-8", errors="replace", newline="\n") as table:
            header, *lines = csv.reader(table, delimiter="\t", quoting=csv.QUOTE_NONE)
        self.columns = header
        return [dict(zip(header, map(plain, line))) for line in lines]

    def change_phd(self, sample, changes):
        """Gives bases (1-based) of a result other letters."""
        with open(self.phd(sample), encoding="ascii") as file:
            lines = file.read().split("\n")
        start = lines.index("BEGIN_DNA")
        for base, letter in changes.items():
            _, rest = lines[start + base].split(" ", 1)
            lines[start + base] = letter + " " + rest
        with open(self.phd(sample), "w", encoding="ascii") as file:
            file.write("\n".join(lines))


# The states of the samples of every_state(), by how it makes them.
STATES = {
    "P01_A01_F": "differs", "P01_A02_F": "differs", "P01_A03_F": "borrowed", "P01_A04_F": "cut",
    "P01_A05_F": "cut", "P01_A06_F": "no-poly", "P01_A07_F": "invalid", "P01_A08_F": "invalid",
    "P01_A09_F": "refused", "P01_A10_F": "waiting", "P01_A11_F": "waiting", "gone_1": "orphan",
    "gone_2": "orphan", "silent": "converted",
}
# Bases (1-based) of P01_A01_F whose letters another run gave: none is an A or a T before or after.
OTHER_LETTERS = (150, 153, 160)


def every_state(folder):
    """A project with each of the ten states, three plates and three runs.

    P01: 96 wells, one of them with two samples. "Run 7": 384 wells. P02: good, fair and poor reads.
    """
    project = Project(folder)

    def add(name, trace, plate, well, capillary, date="2026-11-20", instrument="SEQ-A"):
        project.add(name + ".ab1", trace.file(plate, well, capillary, date, instrument))

    project.traces = {}
    for number in range(1, 13):
        name = f"P01_A{number:02}_F"
        trace = MadeTrace(number, 320 + 40 * number, has_calls=number not in (3, 9),
                          mixed=(200,) if number == 12 else ())
        project.traces[name] = trace
        add(name, trace, "P01", f"A{number}", number)
    for number, length in enumerate((700, 130, 450, 820, 640, 250), 1):
        name = f"P02_B{number:02}_R"
        quality = 12 if number == 6 else 58
        tall = {120: 2900, 140: 8000} if number == 1 else None
        trace = MadeTrace(100 + number, length, tall=tall, highest_quality=quality,
                          mixed=(90, 210, 330) if number == 1 else ())
        project.traces[name] = trace
        add(name, trace, "P02", f"B{number:02}", 40 + number, "2026-11-21")
    for number, well, capillary in ((1, "A1", 94), (2, "J13", 95), (10, "P24", 96)):
        trace = MadeTrace(200 + number, 640 + number)
        add(f"r7_{number}", trace, "Run 7", well, capillary, "2026-11-21", "SEQ-B")
    add("P01_A12_again", MadeTrace(300, 500), "P01", "A12", 20)
    # No notes: the well is the end of the name, or there is none.
    project.add("bare_C05.ab1", MadeTrace(301, 350).file(caller="KB 1.3"))
    project.add("bare.ab1", MadeTrace(302, 350).file(caller="KB 1.3"))
    project.add("silent.ab1", MadeTrace(303, 350, has_calls=False).file())
    project.add("P01_A07_F.ab1", b"nothing that is a trace")
    whole = MadeTrace(8, 640).file("P01", "A8", 8, "2026-11-20", "SEQ-A")
    project.add("P01_A08_F.ab1", whole[:3000])
    late = ("P01_A10_F.ab1", "P01_A11_F.ab1")
    for name in late:
        os.rename(project.trace(name), project.path(name))

    project.convert(["silent.ab1"])  # alone, it borrows nothing
    project.convert(["P01_A02_F.ab1", "P01_A03_F.ab1"])
    project.convert(["P01_A09_F.ab1"])
    os.remove(project.phd("P01_A09_F"))
    os.remove(project.poly("P01_A09_F"))
    project.convert([name for name in sorted(os.listdir(project.path("chromat_dir")))
                     if name != "P01_A09_F.ab1"])

    for name in late:
        os.rename(project.path(name), project.trace(name))
    others = dict(zip(LETTERS, "GAAG"))
    trace = project.traces["P01_A01_F"]
    project.change_phd("P01_A01_F", {base: others[trace.bases[base - 1]].lower()
                                     for base in OTHER_LETTERS})
    replaced = MadeTrace(400, 400)
    project.traces["P01_A02_F"] = replaced
    add("P01_A02_F", replaced, "P01", "A2", 2)
    os.truncate(project.phd("P01_A04_F"), 2000)
    os.truncate(project.poly("P01_A05_F"), 3000)
    os.remove(project.poly("P01_A06_F"))
    shutil.copy(project.phd("P02_B01_R"), project.phd("gone_1"))
    shutil.copy(project.poly("P02_B01_R"), project.poly("gone_1"))
    with open(project.phd("gone_2"), "w", encoding="ascii"):
        pass
    shutil.copy(project.trace("bare.ab1"), project.trace("bare.scf"))  # the same sample
    return project


IMAGE = "<img src=x onerror=window.hacked=1>"
SCRIPT = "</script><script>window.hacked=1</script>"
HOSTILE_SAMPLES = [
    IMAGE, "--><!--<script>", "__proto__", "constructor", "a:12%41#b", "line\u2028separator",
    "bad\udcff\udcfe", "&lt;b&gt; & \"quotes\" 'too'", "{{script}}", "]]>", "\u202eturned",
    "tab\tand\nline", "back\\slash", "\u00e9\U0001f9ec", "<style>*{display:none}<", "100%", "#",
    ":", "\x1b[31m",
]
HOSTILE_PLATES = [SCRIPT, "<!--<script>", "__proto__", IMAGE, "bad\udcff", "\u2028",
                  'a "b" c', "toString"]


def shown_name(name):
    """A name as a page shows it: each invalid byte is a replacement character."""
    return as_bytes(name).decode("utf-8", "replace")


def hostile(folder):
    """A project `<b>` whose names and plates are markup, all of them whole."""
    project = Project(folder, "<b>")
    for number, sample in enumerate(HOSTILE_SAMPLES):
        plate = HOSTILE_PLATES[number % len(HOSTILE_PLATES)]
        trace = MadeTrace(number, 90, mixed=(50,))
        project.add(sample + ".ab1",
                    trace.file(plate, f"A{number + 1}" if number < 12 else IMAGE, number + 1,
                               "2026-11-20", SCRIPT, caller=IMAGE))
    project.convert()
    return project


HOSTILE_LIST = [SCRIPT, "<!--<script>", "__proto__", "a:12%41#b", "<b>", "{{rows}}", "\udcfe",
                "\u2028"]


def many(folder, count=1200):
    """A project of `count` traces of which one is cut, one damaged and 250 have no result."""
    project = Project(folder)
    trace = MadeTrace(7, 120)
    names = [f"S{number:05}" for number in range(count)]
    project.add(names[0] + ".ab1", trace.file())
    for name in names[1:]:
        os.link(project.trace(names[0] + ".ab1"), project.trace(name + ".ab1"))
    os.remove(project.trace(names[20] + ".ab1"))
    project.add(names[20] + ".ab1", b"nothing")
    project.convert([name + ".ab1" for name in names[250:]])
    os.truncate(project.phd(names[300]), 500)
    return project


def real(folder):
    """A project of real traces; none where there are none."""
    if not os.path.isdir(REAL_TRACES):
        return None
    project = Project(folder)
    for name in sorted(os.listdir(REAL_TRACES)):
        shutil.copy(os.path.join(REAL_TRACES, name), project.path("chromat_dir"))
    os.chmod(project.path("chromat_dir"), 0o755)
    project.convert()
    return project


def empty(folder):
    """A project without traces."""
    return Project(folder)


def single(folder):
    """A project of one trace, without notes."""
    project = Project(folder)
    project.add("only.ab1", MadeTrace(1, 300).file())
    project.convert()
    return project
