"""Converts every trace of a folder to PHD with Biopython, in one process.

usage: biopython_convert.py CHROMAT_DIR PHD_DIR
"""

import os
import sys

from Bio import SeqIO

chromats, results = sys.argv[1:]
for name in sorted(os.listdir(chromats)):
    try:
        record = SeqIO.read(os.path.join(chromats, name), "abi")
    except (ValueError, OSError):
        continue  # no trace that Biopython can read
    sample = name.removesuffix(".ab1")
    with open(os.path.join(results, sample + ".phd.1"), "w") as out:
        SeqIO.write(record, out, "phd")
