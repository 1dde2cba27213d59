"""On a full disk and in a folder that takes no files, `run` and `join` say so and leave nothing half
done. With room, or the right, they can be repeated."""

import os
import subprocess
import tempfile
import unittest

from trap import FOLDER, PLAIN, ShardsTest, Variant, is_done, join, plan, run, shards_of

LACK = "mounting a file system needs root, and a container that allows it"


class Mount:
    """A small file system in memory, while the object is entered."""

    def __init__(self, size):
        self.size = size  # KiB

    def __enter__(self):
        self.path = tempfile.mkdtemp(dir=FOLDER)
        if os.geteuid() != 0 or subprocess.run(
                ["mount", "-t", "tmpfs", "-o", f"size={self.size}k", "tmpfs", self.path],
                stderr=subprocess.DEVNULL).returncode != 0:
            raise unittest.SkipTest(LACK)
        return self

    def __exit__(self, *_):
        subprocess.run(["umount", "--lazy", self.path], check=True)

    def remount(self, options):
        subprocess.run(["mount", "-o", "remount," + options, self.path], check=True)


def entries(folder):
    return sorted(os.listdir(os.fsencode(folder)))


def kibibytes(folder):
    sizes = subprocess.run(["du", "-sk", folder], check=True, capture_output=True).stdout
    return int(sizes.split()[0])


class ResultsElsewhere:
    """A variant whose results lie on another file system than the project."""

    def __init__(self, mount):
        self.folders = [os.path.join(mount.path, name) for name in ("phd_dir", "poly_dir")]
        for folder in self.folders:
            os.mkdir(folder)
        self.variant = Variant(folders=("chromat_dir", *self.folders), change=self.use)

    def use(self, project):
        with open(os.path.join(project, ".quilletrc"), "w") as file:
            file.write("phddir {}\npolydir {}\n".format(*self.folders))


class RunTest(ShardsTest):
    def fail_all(self, project, shards, word):
        failed = 0
        for shard in shards:
            before = entries(shard)
            child_output = run(["quillet-shards", "run", shard], project, status=None)
            if not is_done(shard):
                failed += 1
                self.assertEqual(entries(shard), before)
                self.assertIn(b"quillet-shards: ", child_output)
                self.assertIn(word, child_output)
        return failed

    def move_to(self, mount):
        project = PLAIN.new_project()
        subprocess.run(["cp", "-a", project, mount.path], check=True)
        return os.path.join(mount.path, os.path.basename(project))

    def test_a_full_disk(self):
        with Mount(2**20) as mount:
            project = self.move_to(mount)
            shards = plan(project, 4)
            # Room for one of the four.
            room = kibibytes(PLAIN.plain_run()[0]) // 3
            mount.remount(f"size={kibibytes(mount.path) + room}k")

            failed = self.fail_all(project, shards, b"")
            self.assertGreater(failed, 0)

            mount.remount("size=1g")
            for shard in shards:
                run(["quillet-shards", "run", shard], project)
            self.assert_as_plain(project, join(project))

    def test_a_full_scratch_folder(self):
        project = PLAIN.new_project()
        shards = plan(project, 4)
        with Mount(512) as mount:
            for shard in shards:
                output = run(["quillet-shards", "run", "--scratch", mount.path, shard], project, 1)
                self.assertIn(b"quillet-shards: ", output)
                self.assertEqual(entries(mount.path), [])
                self.assertFalse(is_done(shard))
            mount.remount("size=1g")
            for shard in shards:
                run(["quillet-shards", "run", "--scratch", mount.path, shard], project)
                self.assertEqual(entries(mount.path), [])
        self.assert_as_plain(project, join(project))

    def test_a_project_that_takes_no_files(self):
        with Mount(2**20) as mount:
            project = self.move_to(mount)
            shards = plan(project, 4)
            mount.remount("ro")

            failed = self.fail_all(project, shards, b"Read-only file system")
            self.assertEqual(failed, len(shards))

            mount.remount("rw")
            for shard in shards:
                run(["quillet-shards", "run", shard], project)
            self.assert_as_plain(project, join(project))


class JoinTest(ShardsTest):
    def planned_and_run(self, variant):
        project = variant.new_project()
        for shard in plan(project, 6, variant):
            run(["quillet-shards", "run", shard], project)
        return project

    def assert_no_half_results(self, phds, polys):
        """Each .phd.1 is whole, with its .poly, as in the plain run, and nothing else is there."""
        plain = PLAIN.layout(PLAIN.plain_run()[0])
        samples = {name.removesuffix(b".phd.1") for name in entries(phds)}
        for folder, whole, ending, at in ((phds, plain.phds, b".phd.1", b"TIME: "),
                                          (polys, plain.polys, b".poly", None)):
            for sample in samples:
                with open(os.path.join(os.fsencode(folder), sample + ending), "rb") as file:
                    found = file.read()
                if not os.path.exists(os.path.join(whole, sample + ending)):
                    continue  # the shell tears its name in a plain run
                with open(os.path.join(whole, sample + ending), "rb") as file:
                    expected = file.read()
                if at:
                    found, expected = (
                        text.split(at)[0] + text.split(at)[-1].partition(b"\n")[2]
                        for text in (found, expected))
                self.assertEqual(found, expected, sample)
        self.assertTrue(all(name.endswith(b".poly") for name in entries(polys)))

    def test_a_full_disk(self):
        with Mount(2**20) as mount:
            elsewhere = ResultsElsewhere(mount)
            project = self.planned_and_run(elsewhere.variant)
            mount.remount(f"size={kibibytes(PLAIN.plain_run()[0]) // 4}k")

            output = run(["quillet-shards", "join", "-d", project], project, 1)
            self.assertIn(b"quillet-shards: ", output)
            self.assertIn(b"No space left on device", output)
            self.assert_no_half_results(*elsewhere.folders)
            self.assertGreater(len(entries(elsewhere.folders[0])), 0)
            self.assertLess(len(shards_of(project)), 6)

            mount.remount("size=1g")
            join(project)
            self.assert_results_elsewhere(elsewhere)
            self.assertNotIn("shards", os.listdir(project))

    def test_a_results_folder_that_takes_no_files(self):
        with Mount(2**20) as mount:
            elsewhere = ResultsElsewhere(mount)
            project = self.planned_and_run(elsewhere.variant)
            mount.remount("ro")

            output = run(["quillet-shards", "join", "-d", project], project, 1)
            self.assertIn(b"quillet-shards: ", output)
            self.assertIn(b"Read-only file system", output)
            self.assertEqual(entries(elsewhere.folders[0]) + entries(elsewhere.folders[1]), [])
            self.assertEqual(len(shards_of(project)), 6)

            mount.remount("rw")
            join(project)
            self.assert_results_elsewhere(elsewhere)
            self.assertNotIn("shards", os.listdir(project))

    def assert_results_elsewhere(self, elsewhere):
        plain = PLAIN.layout(PLAIN.plain_run()[0])
        torn = len(plain.torn())
        self.assert_no_half_results(*elsewhere.folders)
        self.assertEqual(len(entries(elsewhere.folders[0])), len(entries(plain.phds)) + torn)
        self.assertEqual(len(entries(elsewhere.folders[1])), len(entries(plain.polys)) + torn)


if __name__ == "__main__":
    unittest.main()
