"""`quillet-shards all` gives what one plain run gives, whatever the flags and the project."""

import os
import shutil
import unittest

from trap import PLAIN, ShardsTest, Variant, join, plan, run


def put(project, path, text):
    with open(os.path.join(project, path), "w") as file:
        file.write(text)


def add_old_results(project):
    """Results of an earlier run, of every trace, whether it is converted now or not."""
    for name in os.listdir(os.fsencode(os.path.join(project, "chromat_dir"))):
        sample = name[:200].removesuffix(b".gz").rsplit(b".", 1)[0]
        for folder, ending in ((b"phd_dir", b".phd.1"), (b"poly_dir", b".poly")):
            path = os.path.join(os.fsencode(project), folder, sample + ending)
            with open(path, "w") as file:
                file.write("old\n")


def use_other_folders(project):
    shutil.move(os.path.join(project, "chromat_dir"), os.path.join(project, "traces"))
    os.makedirs(os.path.join(project, "results", "phd"))
    os.makedirs(os.path.join(project, "results", "poly"))
    put(project, ".quilletrc",
        f"chromatdir traces\nphddir results/phd\npolydir {project}/results/poly\nflag -s\n")


def convert_half(project):
    run(["quillet", "-d", project, "-l", os.path.join(project, "notes", "half.list")], project)


class AllTest(ShardsTest):
    def assert_all_as_plain(self, variant, processes=2):
        project = variant.new_project()
        output = run(["quillet-shards", "all", *variant.flags_in(project), "-j", str(processes)],
                     project)
        self.assert_as_plain(project, output, variant)

    def test_two_processes_give_what_a_plain_run_gives(self):
        self.assert_all_as_plain(PLAIN)

    def test_one_process_does(self):
        self.assert_all_as_plain(PLAIN, 1)

    def test_sixteen_processes_do_with_64_cuts(self):
        self.assert_all_as_plain(PLAIN, 16)

    def test_with_overwriting(self):
        self.assert_all_as_plain(Variant(["-o"], change=add_old_results))

    def test_with_extensions_kept(self):
        self.assert_all_as_plain(Variant(["-s"]))

    def test_with_a_shuffled_list(self):
        self.assert_all_as_plain(Variant(names="shuffled.list"))

    def test_with_a_shuffled_list_and_overwriting(self):
        self.assert_all_as_plain(Variant(["-o"], names="shuffled.list", change=add_old_results))

    def test_with_a_shuffled_list_and_extensions_kept(self):
        self.assert_all_as_plain(Variant(["-s", "-o"], names="shuffled.list"))

    def test_with_other_folders_from_a_resource_file(self):
        self.assert_all_as_plain(Variant(
            folders=("traces", "results/phd", "results/poly"), change=use_other_folders,
            strip=False))

    def test_of_a_half_converted_project(self):
        self.assert_all_as_plain(Variant(change=convert_half))

    def test_the_report_says_what_it_says_of_a_plain_run(self):
        project = PLAIN.new_project()
        run(["quillet-shards", "all", "-d", project, "-j", "2"], project)
        tables = []
        for root in (project, PLAIN.plain_run()[0]):
            table = run(["quillet-report", "-d", root, "--tsv", "-"], root, status=None)
            torn = [name.replace(b"\\", b"\\\\").replace(b"\t", b"\\t").replace(b"\n", b"\\n")
                    for name, _ in PLAIN.layout(root).torn()]
            # What shards can convert and a plain run can not is told apart.
            tables.append([row for row in table.splitlines() if row.split(b"\t")[1] not in torn])
        self.assertGreater(len(tables[0]), 3000)
        self.assertEqual(*tables)

    def test_gzipped_traces_may_stay_packed(self):
        variant = Variant(packed=True)
        project = variant.new_project()
        for shard in reversed(plan(project, 20)):
            run(["quillet-shards", "run", "--keep-gzip", shard], project)
        self.assert_as_plain(project, join(project), variant)


if __name__ == "__main__":
    unittest.main()
