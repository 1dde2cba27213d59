"""What the tests of shards share: copies of the trap project, what a plain run makes of them, and
the programs in a fixed environment.

QUILLET_BUILD is the folder of the built programs.
"""

import atexit
import os
import shutil
import subprocess
import tempfile
import unittest

from compare_projects import Layout, compare_results, differences

BUILD = os.path.abspath(os.environ["QUILLET_BUILD"])
SOURCE = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
WORKFLOW = os.path.join(SOURCE, "workflow")
FOLDER = tempfile.mkdtemp(prefix="engines.")  # of all files of one run of tests
HOME = os.path.join(FOLDER, "home")
BASE = os.path.join(FOLDER, "base")
PATH = BUILD + ":/usr/bin:/bin:/usr/sbin:/sbin"
DEADLINE = 300  # seconds for one program


def prepare():
    atexit.register(shutil.rmtree, FOLDER, ignore_errors=True)
    os.mkdir(HOME)
    subprocess.run([os.path.join(BUILD, "tests", "engines", "make_trap_project"), BASE], check=True)


prepare()


def environment(folder, **more):
    return {"PATH": PATH, "HOME": HOME, "PWD": folder, "TZ": "UTC", "LC_ALL": "C.UTF-8", **more}


def start(command, folder, output=subprocess.PIPE, **more):
    """Starts a program in a folder, with both streams in one."""
    return subprocess.Popen(command, cwd=folder, env=environment(folder, **more),
                            stdin=subprocess.DEVNULL, stdout=output, stderr=subprocess.STDOUT)


def run(command, folder, status=0, **more):
    """Runs a program and returns its output. Fails unless it has the status; None: any will do."""
    child = start(command, folder, **more)
    output, _ = child.communicate(timeout=DEADLINE)
    if status is not None and child.returncode != status:
        raise AssertionError(f"{command} has status {child.returncode}:\n"
                             + output.decode(errors="replace")[-3000:])
    return output


class Variant:
    """A way to convert the trap project: the flags and what lies in the project before."""

    def __init__(self, flags=(), names=None, folders=("chromat_dir", "phd_dir", "poly_dir"),
                 change=lambda project: None, strip=None, packed=False):
        self.flags = list(flags)
        self.list = names  # file in notes/
        self.folders = folders
        self.change = change
        self.strip = "-s" not in self.flags if strip is None else strip
        self.packed = packed  # whether gzipped traces stay packed
        self.plain = None  # project and output of the plain run

    def new_project(self):
        project = tempfile.mkdtemp(dir=FOLDER)
        # cp keeps links, the pipe and the permissions.
        subprocess.run(["cp", "-a", BASE + "/.", project], check=True)
        self.change(project)
        return project

    def flags_in(self, project):
        """The flags of quillet, which quillet-shards takes too."""
        listed = ["-l", os.path.join(project, "notes", self.list)] if self.list else []
        return ["-d", project, *self.flags, *listed]

    def layout(self, project):
        names = None
        if self.list:
            with open(os.path.join(project, "notes", self.list), "rb") as lines:
                names = lines.read().splitlines()
        return Layout(project, self.strip, names, self.folders)

    def plain_run(self):
        if self.plain is None:
            project = self.new_project()
            self.plain = project, run(["quillet", *self.flags_in(project)], project)
        return self.plain


PLAIN = Variant()


class ShardsTest(unittest.TestCase):
    maxDiff = 4000

    def assert_as_plain(self, project, output, variant=PLAIN, beside=()):
        """Results and messages are those of the plain run; nothing else is left in the project but
        the entries `beside`."""
        plain, plain_output = variant.plain_run()
        layout, plain_layout = variant.layout(project), variant.layout(plain)
        found = list(differences(plain_layout, plain_output, layout, output, variant.packed))
        self.assertEqual(found[:10], [], f"{len(found)} differences")
        self.assertEqual(sorted(os.listdir(project)), sorted([*os.listdir(plain), *beside]))

    def assert_results_as_plain(self, project, beside=(), variant=PLAIN):
        """The same without messages, where several programs have printed them."""
        plain, _ = variant.plain_run()
        layout, plain_layout = variant.layout(project), variant.layout(plain)
        found = list(compare_results(plain_layout, layout, plain_layout.torn()))
        self.assertEqual(found[:10], [], f"{len(found)} differences")
        self.assertEqual(sorted(os.listdir(project)), sorted([*os.listdir(plain), *beside]))


def plan(project, count, variant=PLAIN):
    run(["quillet-shards", "plan", *variant.flags_in(project), "-n", str(count)], project)
    return shards_of(project)


def shards_of(project):
    folder = os.path.join(project, "shards")
    return sorted(entry.path for entry in os.scandir(folder) if entry.is_dir())


def is_done(shard):
    return os.path.exists(os.path.join(shard, "result", "messages"))


def join(project):
    return run(["quillet-shards", "join", "-d", project], project)
