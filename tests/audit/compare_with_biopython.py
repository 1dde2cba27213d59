"""compare_with_biopython.py PRINT_FIGURES: compares mean quality, q20 and trim of made qualities
with Biopython's. Status 77 when Biopython is not installed."""

import random
import subprocess
import sys

try:
    from Bio.Seq import Seq
    from Bio.SeqIO.AbiIO import _abi_trim
    from Bio.SeqRecord import SeqRecord
except ImportError:
    print("Biopython is not installed")
    sys.exit(77)


def made_qualities(number):
    """Reads of all lengths: believable, random, flat, with zeros, and of two hills."""
    source = random.Random(number)
    length = source.choice([1, 2, 19, 20, 21, 22, 40, 300, 900])
    kind = number % 5
    if kind == 0:
        return [source.randint(0, 93) for _ in range(length)]
    if kind == 1:
        return [source.choice([0, 5, 12, 13, 14, 20, 40]) for _ in range(length)]
    if kind == 2:
        return [source.randint(0, 30)] * length
    edge = max(1, length // 10)
    middle = [source.randint(25, 62) for _ in range(max(0, length - 2 * edge))]
    if kind == 3 and middle:
        for _ in range(3):
            middle[source.randrange(len(middle))] = 0
    ends = [source.randint(1, 14) for _ in range(2 * edge)]
    if kind == 4 and middle:
        middle[len(middle) // 2 : len(middle) // 2 + 12] = [1] * 12
    return ends[:edge] + middle + ends[edge:]


def trim_by_biopython(qualities):
    record = SeqRecord(Seq("A" * len(qualities)))
    record.letter_annotations["phred_quality"] = qualities
    record.letter_annotations["place"] = list(range(len(qualities)))
    places = _abi_trim(record).letter_annotations["place"]
    return (places[0], places[-1] + 1) if places else (0, 0)


def main():
    reads = [made_qualities(number) for number in range(600)]
    text = "".join(" ".join(map(str, read)) + "\n" for read in reads)
    printed = subprocess.run([sys.argv[1]], input=text, capture_output=True, text=True, check=True)
    lines = printed.stdout.splitlines()
    assert len(lines) == len(reads)
    trimmed = 0
    for read, line in zip(reads, lines):
        start, end = trim_by_biopython(read)
        q20 = sum(quality >= 20 for quality in read)
        expected = "%.1f %d %d %d" % (sum(read) / len(read), q20, start, end)
        assert line == expected, (read, line, expected)
        trimmed += 0 < start < end < len(read)
    assert trimmed > 100, trimmed
    print("%d reads agree, %d of them trimmed at both ends" % (len(reads), trimmed))


main()
