"""The recipes of workflow/ give what one plain run gives. Each runs as its README says."""

import contextlib
import os
import re
import shutil
import signal
import subprocess
import tempfile
import unittest

from trap import FOLDER, PLAIN, WORKFLOW, ShardsTest, environment, run

README = os.path.join(WORKFLOW, "README.md")
PROJECT = "/data/plate17"  # as the README calls it


def recipes(title):
    """The blocks of code in a section of the README."""
    with open(README) as file:
        section = file.read().split(f"\n## {title}\n")[1].split("\n## ")[0]
    return re.findall(r"^```sh\n(.*?)^```$", section, re.MULTILINE | re.DOTALL)


def new_workflow():
    """A copy of workflow/: engines leave files where they run."""
    folder = tempfile.mkdtemp(dir=FOLDER)
    shutil.copytree(WORKFLOW, folder, dirs_exist_ok=True)
    return folder


def shell(recipe, project, folder, changes=(), **more):
    """Runs a recipe in a folder; `changes` are (text, text in its place) of the recipe."""
    for old, new in [(PROJECT, project), *changes]:
        if old not in recipe:
            raise AssertionError(f"no {old} in the recipe:\n{recipe}")
        recipe = recipe.replace(old, new)
    return run(["bash", "-e", "-c", recipe], folder, **more)


def read(*path):
    with open(os.path.join(*path), "rb") as file:
        return file.read()


def parent_of(process):
    fields = read("/proc", str(process), "stat").rpartition(b")")[2].split()
    return int(fields[1])


class Slurm:
    """A Slurm of two nodes, while the object is entered."""

    def __enter__(self):
        self.folder = tempfile.mkdtemp(dir=FOLDER)
        self.start = os.path.join(os.path.dirname(os.path.abspath(__file__)), "start_slurm")
        # Into a file: the daemons keep the streams that they were started with.
        with open(os.path.join(self.folder, "start.log"), "w+") as log:
            child = subprocess.run([self.start, self.folder], stdout=log, stderr=log,
                                   env=environment(self.folder))
            log.seek(0)
            if child.returncode != 0:
                raise AssertionError(log.read())
        self.conf = os.path.join(self.folder, "slurm.conf")
        return self

    def __exit__(self, *_):
        subprocess.run([self.start, "--stop", self.folder], check=True)

    def jobs_on(self, node):
        """The processes of jobs on a node."""
        found = []
        for entry in filter(str.isdigit, os.listdir("/proc")):
            try:
                words = read("/proc", entry, "environ").split(b"\0")
            except OSError:
                continue  # it has ended, or is another user's
            if {b"SLURM_CONF=" + os.fsencode(self.conf),
                    b"SLURMD_NODENAME=" + node.encode()} <= set(words):
                found.append(int(entry))
        return found

    def crash(self, node):
        """Kills the daemon of a node, then those of its jobs, then the jobs. Slurm is told at once;
        by itself it would wait for a while, in case the node answers again."""
        os.kill(int(read(self.folder, node + ".pid")), signal.SIGKILL)
        jobs = self.jobs_on(node)
        daemons = set()
        for job in jobs:
            with contextlib.suppress(OSError):  # it has ended
                parent = parent_of(job)
                if read("/proc", str(parent), "cmdline").startswith(b"slurmstepd"):
                    daemons.add(parent)
        for process in [*daemons, *jobs]:
            with contextlib.suppress(ProcessLookupError):  # it has ended
                os.kill(process, signal.SIGKILL)
        run(["scontrol", "update", "NodeName=" + node, "State=DOWN", "Reason=crash"], self.folder,
            SLURM_CONF=self.conf)

    def log(self):
        return read(self.folder, "slurmctld.log").decode(errors="replace")


class RecipeTest(unittest.TestCase):
    def test_no_recipe_is_longer_than_thirty_lines(self):
        blocks = [block for title in ("GNU parallel", "Snakemake", "Slurm")
                  for block in recipes(title)]
        files = [read(WORKFLOW, name).decode() for name in ("Snakefile", "slurm-array.sh")]
        self.assertLessEqual(max(text.count("\n") for text in blocks + files), 30)


class ParallelTest(ShardsTest):
    def assert_as_plain_by_parallel(self, count):
        project = PLAIN.new_project()
        recipe, = recipes("GNU parallel")
        output = shell(recipe, project, project, [
            ("-n 64", f"-n {count}"), ("../plate17.jobs", project + ".jobs"),
            ("shards/*/\n", "shards/*/ 2>../runs\n")])  # join prints their messages again
        self.assert_as_plain(project, output)

    def test_64_shards(self):
        self.assert_as_plain_by_parallel(64)

    def test_200_shards(self):
        self.assert_as_plain_by_parallel(200)


class SnakemakeTest(ShardsTest):
    def assert_as_plain_by_snakemake(self, recipe, **more):
        project = PLAIN.new_project()
        shell(recipe, project, new_workflow(), **more)
        self.assert_results_as_plain(project, ["marks", "report.tsv"])
        return project

    def test_on_this_machine(self):
        self.assert_as_plain_by_snakemake(recipes("Snakemake")[0].replace("-c 8", "-c 2"))

    def test_in_a_cluster(self):
        with Slurm() as slurm:
            self.assert_as_plain_by_snakemake(recipes("Snakemake")[1].rstrip() + " shards=12",
                                              SLURM_CONF=slurm.conf)

    def test_nothing_to_do(self):
        project = tempfile.mkdtemp(dir=FOLDER)
        for name in ("chromat_dir", "phd_dir", "poly_dir", "edit_dir"):
            os.mkdir(os.path.join(project, name))
        shell(recipes("Snakemake")[0], project, new_workflow())
        self.assertEqual(read(project, "report.tsv").count(b"\n"), 1)


class SlurmTest(ShardsTest):
    def test_an_array_of_32(self):
        project = PLAIN.new_project()
        recipe, = recipes("Slurm")
        with Slurm() as slurm:
            shell(recipe, project, new_workflow(), SLURM_CONF=slurm.conf, SBATCH_WAIT="1")
        logs = os.listdir(os.path.join(project, "logs"))
        joined, = (name for name in logs if name.startswith("join"))
        self.assert_as_plain(project, read(project, "logs", joined), beside=["logs"])
        self.assertEqual(len(logs), 32 + 1)


if __name__ == "__main__":
    unittest.main()
