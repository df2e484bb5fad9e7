#!/usr/bin/env python3
"""What a call from Python costs on top of C++'s, in turns with it: python_overhead.py FLOOR

Single calls: microseconds more. 100,000 rows at once: times as long, on all cores. The median of the
rounds; both sides of a round run one right after the other, so that other work hits both.
"""

import statistics
import subprocess
import sys
import time

import numpy as np

from qal_kinematics import Arm

COUNT = 100_000
ROUNDS = 15
ALLOWED = {"forward": 1.5, "nearest": 1.5, "forward of 100,000": 1.05, "nearest of 100,000": 1.05}


def seconds(work):
    begin = time.perf_counter()
    work()
    return time.perf_counter() - begin


def main():
    arm = Arm.reference()
    joints = np.random.default_rng(1).uniform(-2.5, 2.5, (COUNT, 6))
    poses = arm.forward(joints)
    few = list(joints[:COUNT // 10])
    few_poses = [poses[i] for i in range(len(few))]

    def each_forward():
        for one in few:
            arm.forward(one)

    def each_nearest():
        for pose, near in zip(few_poses, few):
            arm.nearest(pose, near)

    differences = {name: [] for name in ALLOWED}
    with subprocess.Popen(sys.argv[1], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True) as floor:
        for _ in range(ROUNDS):
            floor.stdin.write("x")
            floor.stdin.flush()
            ones = [float(number) for number in floor.stdout.readline().split()]
            for name, theirs, work in zip(ALLOWED, ones, (each_forward, each_nearest)):
                differences[name].append(1e6 * (seconds(work) / len(few) - theirs / COUNT))
            for name, theirs, work in zip(list(ALLOWED)[2:], ones[2:], (
                    lambda: arm.forward(joints), lambda: arm.nearest(poses, joints))):
                differences[name].append(seconds(work) / theirs)
    for name, values in differences.items():
        median, allowed = statistics.median(values), ALLOWED[name]
        unit = "times as long" if "of" in name else "us more"
        verdict = "met" if median <= allowed else "NOT MET"
        print(f"{name:20} {median:6.3f} {unit:14} (best {min(values):.3f}, at most {allowed}: {verdict})")


if __name__ == "__main__":
    main()
