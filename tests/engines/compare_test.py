"""The comparison with a plain run fails where shards are made carelessly, and not otherwise.

Shards are made here in Python, from nothing but `quillet` and `gunzip`.
"""

import os
import subprocess
import tempfile
import unittest
import zlib

from trap import FOLDER, PLAIN, ShardsTest, run


def by_gunzip(path):
    return subprocess.run(["gunzip", "-c", "-f", path], stdout=subprocess.PIPE,
                          stderr=subprocess.DEVNULL).stdout


def by_gzread(path):
    """What gzread() of zlib gives up to the first error. A piece with an error in it is lost."""
    with open(path, "rb") as file:
        packed = file.read()
    if not packed.startswith(b"\x1f\x8b"):
        return packed
    content = b""
    while packed.startswith(b"\x1f\x8b"):  # gzread passes over what follows the last member
        member = zlib.decompressobj(15 + 16)
        try:
            content += member.decompress(packed)
        except zlib.error:
            break
        packed = member.unused_data
    return content


def unpack_all(name, before):
    return name.endswith(b".gz")


def unpack_in_place(name, before):
    """Whether the unpacked name keeps its place in the order."""
    return name.endswith(b".gz") and not name[:-3].endswith(b".gz") and name[:-3] > before


def convert(count, is_unpacked=unpack_in_place, unpack=by_gunzip):
    """A project that is converted in shards of `count` names."""
    project = PLAIN.new_project()
    layout = PLAIN.layout(project)
    torn = {name for name, _ in layout.torn()}
    names = layout.files()
    for start in range(0, len(names), count):
        attempt = tempfile.mkdtemp(dir=FOLDER)
        chromats = os.path.join(os.fsencode(attempt), b"chromat_dir")
        os.mkdir(chromats)
        for folder in ("phd_dir", "poly_dir"):
            os.symlink(os.path.join(project, folder), os.path.join(attempt, folder))
        before = b""
        for name in names[start:start + count]:
            path = os.path.join(layout.chromats, name)
            if name in torn or is_unpacked(name, before):
                before = name[:-3]
                with open(os.path.join(chromats, before), "wb") as file:
                    file.write(unpack(path))
            else:
                before = name
                os.symlink(path, os.path.join(chromats, name))
        run(["quillet", "-d", attempt], attempt)
    return project


class CompareTest(ShardsTest):
    """The first test shows that the others fail for what they change."""

    def test_one_careful_shard_is_as_the_plain_run(self):
        self.assert_results_as_plain(convert(10**6))

    def test_cuts_anywhere_are_noticed(self):
        with self.assertRaisesRegex(AssertionError, "differs: "):
            self.assert_results_as_plain(convert(16))

    def test_unpacking_out_of_order_is_noticed(self):
        with self.assertRaisesRegex(AssertionError, "differs: "):
            self.assert_results_as_plain(convert(10**6, unpack_all))

    def test_unpacking_damaged_files_by_zlib_is_noticed(self):
        with self.assertRaisesRegex(AssertionError, "differs: |missing: "):
            self.assert_results_as_plain(convert(10**6, unpack_in_place, by_gzread))


if __name__ == "__main__":
    unittest.main()
