"""Runs programs for the measuring scripts."""

import os
import subprocess
import sys
import time


class Run:
    """Time and memory of one run of a program."""

    def __init__(self, command, folder, allowed=(0,)):
        note = os.path.join(folder, "peak")
        start = time.perf_counter()
        # Through `time`: the peak memory of a forked child includes that of this process.
        child = subprocess.Popen(
            ["/usr/bin/time", "-q", "-f", "%M", "-o", note, *command],
            cwd=folder, env={**os.environ, "PWD": folder},
            stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        _, status, usage = os.wait4(child.pid, 0)
        child.returncode = os.waitstatus_to_exitcode(status)
        self.seconds = time.perf_counter() - start
        self.cpu = usage.ru_utime + usage.ru_stime
        with open(note) as peak:
            self.peak = int(peak.read())  # KiB
        if child.returncode not in allowed:
            sys.exit(f"{' '.join(command)} has failed with status {child.returncode}")


def in_memory():
    """A folder in memory, so that no disk is measured; None when there is none."""
    mounts = [line.split() for line in open("/proc/mounts")]
    shm = "/dev/shm"
    backed = any(mount[1] == shm and mount[2] == "tmpfs" for mount in mounts)
    return shm if backed and os.access(shm, os.W_OK) else None
