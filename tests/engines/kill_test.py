"""Whatever is killed, and whenever: afterwards the results are those of one plain run."""

import os
import random
import shutil
import signal
import subprocess
import tempfile
import time
import unittest

from engines_test import Slurm, new_workflow, read, recipes
from trap import (BUILD, DEADLINE, FOLDER, PATH, PLAIN, ShardsTest, Variant, environment, is_done,
                  join, plan, run, shards_of, start)

DIE_AT = os.path.join(BUILD, "tests", "engines", "die_at.so")
KILLED = -signal.SIGKILL


def wait_until(condition):
    end = time.monotonic() + DEADLINE
    while not condition():
        if time.monotonic() > end:
            raise AssertionError("waited too long")
        time.sleep(0.01)


def count_steps(command, folder, program="quillet-shards"):
    """How often a program changes the file system."""
    note = os.path.join(FOLDER, "steps")
    if os.path.exists(note):
        os.remove(note)
    run(command, folder, LD_PRELOAD=DIE_AT, DIE_PROGRAM=program, DIE_COUNT=note)
    with open(note) as counts:
        return max(map(int, counts))


def kill_at(step, command, folder, program="quillet-shards"):
    """Runs a command until its program's Nth change of the file system; status and output."""
    child = start(command, folder, LD_PRELOAD=DIE_AT, DIE_PROGRAM=program, DIE_AT=str(step))
    output, _ = child.communicate(timeout=DEADLINE)
    return child.returncode, output


def some_steps(count, chosen, seed=1):
    """The first, the last and a few steps in between."""
    between = random.Random(seed).sample(range(2, count), min(chosen, count - 2))
    return sorted({1, *between, count})


def run_all(project):
    for shard in shards_of(project):
        run(["quillet-shards", "run", shard], project)


def slow_programs(script):
    """A folder with quillet-shards, and in place of quillet a script that goes on to quillet."""
    folder = tempfile.mkdtemp(dir=FOLDER)
    shutil.copy(os.path.join(BUILD, "quillet-shards"), folder)
    path = os.path.join(folder, "quillet")
    with open(path, "w") as file:
        file.write(f"#!/bin/sh\n{script}\nexec {BUILD}/quillet \"$@\"\n")
    os.chmod(path, 0o755)
    return folder


class PlanKilledTest(ShardsTest):
    def test_a_plan_is_whole_or_absent(self):
        project = PLAIN.new_project()
        command = ["quillet-shards", "plan", "-d", project, "-n", "12"]
        steps = count_steps(command, project)
        shutil.rmtree(os.path.join(project, "shards"))

        for step in some_steps(steps, 8):
            status, _ = kill_at(step, command, project)
            self.assertEqual(status, KILLED)
            if os.path.exists(os.path.join(project, "shards")):
                self.assertEqual(len(shards_of(project)), 12)
                shutil.rmtree(os.path.join(project, "shards"))
        plan(project, 12)
        run_all(project)

        self.assert_as_plain(project, join(project))

    def test_removing_an_old_plan_may_be_killed(self):
        project = PLAIN.new_project()
        command = ["quillet-shards", "plan", "-d", project, "-n", "12", "-f"]
        plan(project, 12)
        run(["quillet-shards", "run", shards_of(project)[3]], project)
        steps = count_steps(command, project)

        for step in some_steps(steps, 8):
            status, _ = kill_at(step, command, project)
            self.assertEqual(status, KILLED)
        run(command, project)
        self.assertFalse(any(map(is_done, shards_of(project))))
        run_all(project)

        self.assert_as_plain(project, join(project))


class RunKilledTest(ShardsTest):
    def test_a_killed_run_leaves_nothing_that_counts(self):
        counted, project = PLAIN.new_project(), PLAIN.new_project()
        plan(counted, 8)
        plan(project, 8)
        killed = 0

        for shard in shards_of(project):
            twin = os.path.join(counted, "shards", os.path.basename(shard))
            steps = count_steps(["quillet-shards", "run", twin], counted)
            for step in some_steps(steps, 2, seed=shard):
                status, output = kill_at(step, ["quillet-shards", "run", shard], project)
                # Two runs can make a few steps more or less: messages come in pieces.
                self.assertIn(status, (KILLED, 0), output)
                killed += status == KILLED
            run(["quillet-shards", "run", shard], project)
        self.assertGreaterEqual(killed, 3 * 8)

        self.assert_as_plain(project, join(project))

    def test_a_run_whose_converter_is_killed_fails(self):
        project = PLAIN.new_project()
        shards = plan(project, 6)

        for number, shard in enumerate(shards):
            status, output = kill_at(100 * number + 1, ["quillet-shards", "run", shard], project,
                                     "quillet")
            self.assertEqual(status, 1, output)
            self.assertIn(b"quillet-shards: ", output)
            self.assertFalse(is_done(shard))
            self.assertEqual(sorted(os.listdir(shard)), ["chromat_dir", "names", "settings"])
        run_all(project)

        self.assert_as_plain(project, join(project))

    def test_a_killed_all_is_continued_by_its_steps(self):
        project = PLAIN.new_project()
        child = start(["quillet-shards", "all", "-d", project, "-j", "2"], project,
                      output=subprocess.DEVNULL)
        folder = os.path.join(project, "shards")
        wait_until(lambda: os.path.exists(folder) and any(map(is_done, shards_of(project))))
        child.kill()
        child.wait()

        run_all(project)
        join(project)

        self.assert_results_as_plain(project)


class JoinKilledTest(ShardsTest):
    def assert_whole_or_absent(self, project, variant, old):
        """No sample that a run would take for done has another .poly than the plain run's, or, with
        an old .phd.1, an old one."""
        plain, layout = variant.layout(variant.plain_run()[0]), variant.layout(project)
        for name in os.listdir(layout.phds):
            poly = name.removesuffix(b".phd.1") + b".poly"
            expected = read(plain.polys, poly) if os.path.exists(
                os.path.join(plain.polys, poly)) else None
            if read(layout.phds, name) == old:
                expected = old
            if expected is not None:  # None: the shell tears the name in a plain run
                self.assertEqual(read(layout.polys, poly), expected, name)

    def kill_joins(self, variant, old=None):
        counted, project = variant.new_project(), variant.new_project()
        for folder in (counted, project):
            plan(folder, 8, variant)
            run_all(folder)
        steps = count_steps(["quillet-shards", "join", "-d", counted], counted)

        messages, killed = b"", 0
        for step in [1, 2, 3, 5, 50, 51, *some_steps(steps // 4, 6)]:
            status, output = kill_at(step, ["quillet-shards", "join", "-d", project], project)
            messages += output
            if status != KILLED:
                break  # those that were killed have done all the work together
            killed += 1
            self.assert_whole_or_absent(project, variant, old)
        self.assertGreaterEqual(killed, 8)
        messages += run(["quillet-shards", "join", "-d", project], project)
        return project, messages

    def test_a_killed_join_is_repeated(self):
        project, messages = self.kill_joins(PLAIN)

        self.assert_results_as_plain(project)
        plain, plain_output = PLAIN.plain_run()
        torn = [name.removesuffix(b".gz") for name, _ in PLAIN.layout(project).torn()]
        expected, _ = PLAIN.layout(plain).messages(plain_output)
        found, _ = PLAIN.layout(project).messages(messages)
        self.assertEqual({text for text in expected if not any(name in text for name in torn)},
                         {text for text in found if not text.startswith(b"quillet-shards: ")})

    def test_old_results_are_never_mixed_with_new_ones(self):
        old = b"old\n"

        def add_old(project):
            plain, _ = PLAIN.plain_run()
            for folder in ("phd_dir", "poly_dir"):
                for name in os.listdir(os.fsencode(os.path.join(plain, folder))):
                    path = os.path.join(os.fsencode(project), os.fsencode(folder), name)
                    with open(path, "wb") as file:
                        file.write(old)

        variant = Variant(["-o"], change=add_old)
        project, _ = self.kill_joins(variant, old)

        self.assert_results_as_plain(project, variant=variant)


class EngineKilledTest(ShardsTest):
    def test_parallel_goes_on_with_resume_failed(self):
        project = PLAIN.new_project()
        plan(project, 24)
        path = slow_programs("sleep 0.1") + ":" + PATH
        line, = (line for line in recipes("GNU parallel")[0].splitlines()
                 if line.startswith("parallel"))
        line = line.replace("../plate17.jobs", project + ".jobs")
        line = line.replace("parallel", "parallel -j 2", 1)

        # Killed alone its jobs live on; killed with them, they die in the middle.
        for kill, done in ((os.kill, 4), (os.killpg, 10)):
            child = subprocess.Popen(["bash", "-c", "exec " + line], cwd=project,
                                     env=environment(project, PATH=path), start_new_session=True,
                                     stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            wait_until(lambda: sum(map(is_done, shards_of(project))) >= done)
            kill(child.pid, signal.SIGKILL)
            self.assertEqual(child.wait(), KILLED)
            line = line.replace("--joblog", "--resume-failed --joblog") if kill is os.kill else line
        self.assertFalse(all(map(is_done, shards_of(project))))
        run(["bash", "-c", line], project, PATH=path)

        self.assert_as_plain(project, join(project))

    def test_snakemake_goes_on_after_unlock(self):
        project, workflow = PLAIN.new_project(), new_workflow()
        path = slow_programs("sleep 0.1") + ":" + PATH
        line = recipes("Snakemake")[0].replace("-c 8", "-c 2").replace("/data/plate17", project)
        line = line.strip() + " shards=24"

        child = subprocess.Popen(["bash", "-c", "exec " + line], cwd=workflow,
                                 env=environment(workflow, PATH=path), start_new_session=True,
                                 stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        wait_until(lambda: os.path.exists(os.path.join(project, "shards")) and
                   sum(map(is_done, shards_of(project))) >= 4)
        os.killpg(child.pid, signal.SIGKILL)
        self.assertEqual(child.wait(), KILLED)
        self.assertFalse(all(map(is_done, shards_of(project))))
        run(["bash", "-c", line + " --unlock"], workflow, PATH=path)
        run(["bash", "-c", line + " --rerun-incomplete"], workflow, PATH=path)

        self.assert_results_as_plain(project, ["marks", "report.tsv"])

    def test_slurm_requeues_the_jobs_of_a_node_that_died(self):
        project = PLAIN.new_project()
        path = slow_programs("sleep 1") + ":" + PATH
        with Slurm() as slurm:
            child = start(["bash", "slurm-array.sh", project, "4"], new_workflow(),
                          SLURM_CONF=slurm.conf, SBATCH_WAIT="1", PATH=path)
            wait_until(lambda: slurm.jobs_on("n1"))
            slurm.crash("n1")
            output, _ = child.communicate(timeout=DEADLINE)
            self.assertEqual(child.returncode, 0, output)
            self.assertIn("Requeuing JobId=", slurm.log())

        self.assert_results_as_plain(project, ["logs"])


class ZombieTest(ShardsTest):
    """An attempt that its engine believes dead, and that finishes after its successor."""

    def start_zombie(self, project, shard, *flags):
        """Starts an attempt and returns, with its converter waiting, a function that lets it go on
        and gives its status and output."""
        folder = tempfile.mkdtemp(dir=FOLDER)
        started, gate = (os.path.join(folder, name) for name in ("started", "gate"))
        programs = slow_programs(f"touch {started}; while [ ! -e {gate} ]; do sleep 0.05; done")
        child = start(["quillet-shards", "run", *flags, shard], project, PATH=programs + ":" + PATH)
        wait_until(lambda: os.path.exists(started))

        def finish():
            with open(gate, "w"):
                pass
            output, _ = child.communicate(timeout=DEADLINE)
            return child.returncode, output
        return finish

    def test_it_gives_way_to_its_successor(self):
        project = PLAIN.new_project()
        zombies = [self.start_zombie(project, shard) for shard in plan(project, 4)]
        run_all(project)

        for zombie in zombies:
            status, output = zombie()
            self.assertEqual(status, 0, output)

        for shard in shards_of(project):
            self.assertEqual(sorted(os.listdir(shard)),
                             ["chromat_dir", "names", "result", "settings"])
        self.assert_as_plain(project, join(project))

    def test_it_does_no_harm_after_the_join(self):
        for flags in ([], ["--scratch", FOLDER]):
            with self.subTest(flags=flags):
                project = PLAIN.new_project()
                zombies = [self.start_zombie(project, shard, *flags) for shard in plan(project, 4)]
                run_all(project)
                messages = join(project)

                for zombie in zombies:
                    zombie()

                self.assert_as_plain(project, messages)

    def test_it_does_no_harm_to_a_later_plan(self):
        for flags in ([], ["--scratch", FOLDER]):
            with self.subTest(flags=flags):
                project = PLAIN.new_project()
                zombies = [self.start_zombie(project, shard, *flags) for shard in plan(project, 4)]
                run(["quillet-shards", "plan", "-d", project, "-f", "-n", "9"], project)

                for zombie in zombies:
                    zombie()
                self.assertFalse(any(map(is_done, shards_of(project))))
                run_all(project)

                self.assert_as_plain(project, join(project))

    def test_it_may_be_the_first_to_finish(self):
        project = PLAIN.new_project()
        shard, = plan(project, 1)
        zombie = self.start_zombie(project, shard)
        successor = self.start_zombie(project, shard)

        self.assertEqual(zombie()[0], 0)
        self.assertEqual(successor()[0], 0)

        self.assert_as_plain(project, join(project))


if __name__ == "__main__":
    unittest.main()
