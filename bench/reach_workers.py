#!/usr/bin/env python3
"""What a reach study gains by a second worker, and what its shards cost: the figures of docs/cluster.md.

Needs Dask (Debian: python3-distributed) and the package, as by PYTHONPATH=build/release/python. One thread of
this process, a cluster of one worker and one of two, each worker one thread, take turns with one study.
Seconds of a processor are those of the processes, which other work on the machine doesn't change much; bytes
are the loopback device's: without those of others only by

    unshare -rn sh -c 'ip link set lo up; PYTHONPATH=build/release/python bench/reach_workers.py'
"""

import os
import pickle
import statistics
import subprocess
import sys
import tempfile
import time
from contextlib import ExitStack, contextmanager

import psutil
from distributed import Client

from qal_kinematics import Arm, ReachStudy, reach

ROUNDS = 7
SHARD_POSES = 10_000_000
BOX = ([0.1, -0.6, 0], [1.3, 0.6, 1.2])  # [m]


@contextmanager
def cluster(workers):
    """A client, and the processes of a scheduler and of so many workers."""
    with ExitStack() as stack:
        file = os.path.join(stack.enter_context(tempfile.TemporaryDirectory()), "scheduler.json")
        kinds = [["scheduler", "--host", "127.0.0.1", "--port", "0"]]
        kinds += [["worker", "--host", "127.0.0.1", "--nthreads", "1", "--no-nanny"]] * workers
        processes = []
        for kind, *options in kinds:
            process = stack.enter_context(subprocess.Popen(
                [sys.executable, "-m", f"distributed.cli.dask_{kind}", "--scheduler-file", file, "--no-dashboard",
                 *options], cwd=os.path.dirname(file), stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL))
            stack.callback(process.kill)
            processes.append(psutil.Process(process.pid))
        client = stack.enter_context(Client(scheduler_file=file, set_as_default=False))
        client.wait_for_workers(workers)
        yield client, processes


def loopback():
    return psutil.net_io_counters(pernic=True)["lo"].bytes_sent


def cpu(process):
    times = process.cpu_times()
    return times.user + times.system


class Run:
    """A study by a cluster, or where there is none by a thread of this process: seconds; of each shard the bytes,
    and the milliseconds of processors."""

    def __init__(self, study, arm, shards, client=None, processes=()):
        everyone = [psutil.Process(), *processes]
        before, sent, begin = [cpu(process) for process in everyone], loopback(), time.perf_counter()
        reach(study, arm, **({"client": client, "shards": shards} if client else {"threads": 1}))
        self.seconds = time.perf_counter() - begin
        self.bytes = (loopback() - sent) / shards
        used = [1e3 * (cpu(process) - first) / shards for process, first in zip(everyone, before)]
        if client is None:
            self.work = used[0]
        else:
            self.client, self.scheduler, self.work = used[0], used[1], sum(used[2:])


def scaling(arm, one, two):
    study = ReachStudy(*BOX, 1.2 / 34, directions=1000)
    shards = -(-study.pose_count // SHARD_POSES)
    print(f"{study.pose_count / 1e6:.1f} million poses in {shards} shards, load {os.getloadavg()[0]:.1f} before")
    runs = {"this process": [], "1 worker": [], "2 workers": []}
    for _ in range(ROUNDS):
        for (name, done), made in zip(runs.items(), ((), one, two)):
            done.append(Run(study, arm, shards, *made))
    for name, done in runs.items():
        print(f"{name:12} {statistics.median(run.seconds for run in done):6.1f} s; a shard "
              f"{statistics.median(run.work for run in done) / 1e3:.2f} s of a processor")
    ratios = [a.seconds / b.seconds for a, b in zip(runs["1 worker"], runs["2 workers"])]
    print(f"1 worker takes {statistics.median(ratios):.2f} times as long as 2 (median; {min(ratios):.2f} to "
          f"{max(ratios):.2f} in {ROUNDS} rounds); load {os.getloadavg()[0]:.1f} after")


def overhead(arm, one):
    """Shards of one cell, so that nearly all is overhead; and shards with as many cells as 10 million poses have with
    1000 directions, and with 100, but of a single direction, so that they come quickly."""
    print("of a shard:  cells   bytes moved   client ms   scheduler ms   worker ms")
    for cells, shards in ((1, 2000), (10_000, 100), (100_000, 20)):
        step = 0.5 / (cells * shards)
        study = ReachStudy([0.3, 0, 0.4], [0.8 - step / 2, 0, 0.4], step, directions=1, tilt_axis=[1, 0, 0])
        run = Run(study, arm, shards, *one)
        print(f"{study.cell_count / shards:18.0f} {run.bytes:13.0f} {run.client:11.2f} {run.scheduler:14.2f} {run.work:11.2f}")


def main():
    arm = Arm.from_file(os.path.join(os.path.dirname(__file__), "../arms/reference.urdf"))
    print(f"the arm: {len(pickle.dumps(arm))} bytes")
    with cluster(1) as one, cluster(2) as two:
        overhead(arm, one)
        scaling(arm, one, two)


if __name__ == "__main__":
    main()
