"""Compares a project that was converted in shards with one that a plain run has converted: results,
their permissions, and messages in their order.

usage: compare_projects.py PLAIN PLAIN_OUTPUT SHARDED SHARDED_OUTPUT

PLAIN and SHARDED are two copies of a project of make_trap_project. PLAIN_OUTPUT holds both streams
of the plain run, SHARDED_OUTPUT what quillet-shards printed. The files must have the same bytes but
for the text after "TIME: ". Status 1: there are differences, which are printed.

Gzipped traces whose names the shell takes for something else are compared with their twins: a plain
run can not convert them, and shards do.
"""

import os
import re
import stat
import sys
from collections import Counter

LONGEST_NAME = 255  # bytes, of a file
TIME = re.compile(rb"^TIME: [^\n]*$", re.MULTILINE)
BANNER = re.compile(rb"\nQUILLET   Version [^\n]*\n-+\n(Reading file [^\n]*\n)?")
METER = re.compile(rb" *\d+% done\n")
# What gunzip says of a file, and what the shell around it says.
GUNZIP = re.compile(rb"\n?gzip: ([^\n]*?)(:| is encrypted)[^\n]*\n")
SHELL = re.compile(rb"(sh|rm): [^\n]*\n")
# What shards say where a plain run says nothing: after a name, and in place of its results.
NO_ROOM = b" gives nothing: its .phd.1 would have a name of more than 255 bytes\n"
NOT_FOR_A_SHELL = b" is left out: gunzip would get a path that is not for a shell\n"
OWN = b"quillet-shards: @/"


def without_gz(name):
    return name[:-3] if name.endswith(b".gz") else name


def sample_of(name, strip):
    """The sample of a name, with strip as the converter has it without -s."""
    sample = without_gz(name) if name != b".gz" else name
    dot = sample.rfind(b".")
    if strip and dot >= 0 and sample[dot:] in b" .abi .ab1 .scf ":
        sample = sample[:dot]
    return sample


class Layout:
    """Where a run finds its traces and puts its results, and its flags."""

    def __init__(self, root, strip=True, names=None,
                 folders=("chromat_dir", "phd_dir", "poly_dir")):
        self.root = os.fsencode(os.path.realpath(root))
        self.chromats, self.phds, self.polys = (
            os.path.join(self.root, os.fsencode(folder)) for folder in folders)
        self.strip = strip
        self.listed = names is not None
        self.names = names if self.listed else self.files()

    def files(self):
        """The names of a run without a list, in its order."""
        with os.scandir(self.chromats) as entries:
            return sorted(entry.name for entry in entries
                          if not entry.name.startswith(b".") and os.path.exists(entry.path)
                          and not entry.is_dir())

    def torn(self):
        """(name, twin) of the names that a shell tears and that this run converts."""
        if self.listed:
            return []
        with open(os.path.join(self.root, b"notes", b"torn_by_shell"), "rb") as notes:
            texts = notes.read().split(b"\0")[:-1]
        return list(zip(texts[::2], texts[1::2]))

    def unnameable(self):
        """Names whose sample has no room for ".phd.1"."""
        return {name for name in self.names
                if len(sample_of(name, self.strip)) + len(b".phd.1") > LONGEST_NAME}

    def path_of(self, name):
        return os.path.join(self.chromats, name)

    def messages(self, output):
        """The messages of an output, gunzip's too, in their order: texts with "@" for the traces'
        folder. Also what remains of the output.

        Messages are looked for as whole texts, since names hold line feeds.
        """
        packed = {self.chromats + b"/" + without_gz(name) + b".gz" for name in self.names}
        packed -= {self.chromats + b"/" + name for name, _ in self.torn()}
        texts = {}  # by first line, longest first
        for name in set(self.names):
            cut, whole = self.path_of(without_gz(name)), self.path_of(name)
            skipped = cut + b" - skipping.\n"
            for text in (b"ERROR: invalid trace file " + skipped,
                         b"Warning: missing quality values in trace file " + skipped,
                         b"quillet-shards: " + whole + NO_ROOM,
                         b"quillet-shards: " + whole + NOT_FOR_A_SHELL):
                texts.setdefault(text[:text.index(b"\n")], []).append(text)
        for alike in texts.values():
            alike.sort(key=len, reverse=True)
        found, rest, position = [], [], 0
        banner = BANNER.match(output)
        if banner:
            position = banner.end()
        while position < len(output):
            end = output.find(b"\n", position)
            end = len(output) if end < 0 else end
            for text in texts.get(output[position:end], []):
                if output.startswith(text, position):
                    found.append(text.replace(self.chromats, b"@"))
                    position += len(text)
                    break
            else:
                complaint = GUNZIP.match(output, position)
                if complaint and complaint[1] in packed:
                    found.append(complaint[0].replace(self.chromats, b"@"))
                noise = (complaint or METER.match(output, position)
                         or SHELL.match(output, position))
                if noise:
                    position = noise.end()
                else:
                    rest.append(output[position:end + 1])
                    position = end + 1
        return found, rest


def read(path):
    with open(path, "rb") as file:
        return file.read()


def permissions(path):
    return oct(stat.S_IMODE(os.stat(path).st_mode))


def result_of(layout, sample):
    """Both files of a sample, without the time and with "@" for its name."""
    files = []
    for folder, ending in ((layout.phds, b".phd.1"), (layout.polys, b".poly")):
        path = os.path.join(folder, sample + ending)
        files.append(TIME.sub(b"TIME:", read(path)).replace(sample, b"@")
                     if os.path.exists(path) else None)
    return files


def compare_results(plain, sharded, torn):
    """`torn`: names and twins whose results the shards have."""
    torn_samples = {sample_of(name, plain.strip) for name, _ in torn}
    for plain_folder, sharded_folder, ending in (
            (plain.phds, sharded.phds, b".phd.1"), (plain.polys, sharded.polys, b".poly")):
        here, there = (set(os.listdir(folder)) - {sample + ending for sample in torn_samples}
                       for folder in (plain_folder, sharded_folder))
        yield from (f"missing: {name}" for name in sorted(here - there))
        yield from (f"too many: {name}" for name in sorted(there - here))
        for name in sorted(here & there):
            one, other = os.path.join(plain_folder, name), os.path.join(sharded_folder, name)
            if TIME.sub(b"TIME:", read(one)) != TIME.sub(b"TIME:", read(other)):
                yield f"differs: {name}"
            if permissions(one) != permissions(other):
                yield f"permissions: {name}: {permissions(other)} instead of {permissions(one)}"
    for name, twin in torn:
        expected = result_of(plain, sample_of(twin, plain.strip))
        if None in expected:
            yield f"no result of the twin: {twin}"
        if result_of(sharded, sample_of(name, plain.strip)) != expected:
            yield f"not as its twin: {name}"


def compare_messages(plain, plain_output, sharded, sharded_output, left_out):
    expected, rest = plain.messages(plain_output)
    if rest:
        yield f"the plain run's output holds something unknown: {rest[:3]}"
    for name, _ in plain.torn():
        message = b"ERROR: invalid trace file @/" + without_gz(name) + b" - skipping.\n"
        if message in expected:
            expected.remove(message)
        else:
            yield f"the shell has taken the name as it is: {name}"
    # Where the plain run says nothing and gives nothing, shards say why.
    unnameable = sharded.unnameable()
    expected_own = [OWN + name + NOT_FOR_A_SHELL for name in sharded.names if name in left_out]
    expected_own += [OWN + name + NO_ROOM for name in sharded.names if name in unnameable and
                     not any(b" @/" + without_gz(name) + b" - " in text for text in expected)]

    found, rest = sharded.messages(sharded_output)
    own = [text for text in found if text.startswith(OWN)]
    found = [text for text in found if not text.startswith(OWN)]
    for here, there in ((expected, found), (expected_own, own)):
        yield from (f"message is missing: {text}" for text in Counter(here) - Counter(there))
        yield from (f"message too many: {text}" for text in Counter(there) - Counter(here))
    if found != expected and Counter(found) == Counter(expected):
        yield "the messages are in another order"
    yield from (f"unknown output: {text}" for text in rest)


def differences(plain, plain_output, sharded, sharded_output, packed=False):
    """What differs, a text each. The layouts belong to two copies of a project. `packed`: gzipped
    traces were to stay packed, so those whose names a shell tears are left out."""
    torn = plain.torn()
    yield from compare_results(plain, sharded, [] if packed else torn)
    yield from compare_messages(plain, plain_output, sharded, sharded_output,
                                {name for name, _ in torn} if packed else set())


def main():
    plain, plain_output, sharded, sharded_output = sys.argv[1:]
    found = list(differences(Layout(plain), read(plain_output), Layout(sharded),
                             read(sharded_output)))
    print("\n".join(found))
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
