"""The same line by two arms: how fast, and what holds each up.

    python3 compare_arms.py ARM OTHER
"""

import sys

import numpy as np

from qal_kinematics import Arm, QalError

START = [0, 0.3, 0.2, 0, 1, 0]


def main() -> None:
    for file in sys.argv[1:]:
        arm = Arm.from_file(file)
        print(arm)
        try:
            line = arm.plan_line(START, by=[0, 0.2, 0.05], speed=0.5)
        except QalError as error:
            print(f"  no motion ({error.reason}): {error}")
            continue
        trajectory = line.trajectory()
        ratio = np.abs(line.at(trajectory.time)["velocities"]).max(axis=0) / arm.velocity
        print(f"  {line.duration:.3f} s, mostly at its {line.bindings[0]['limit']}")
        print(f"  joint {ratio.argmax() + 1} comes nearest its speed limit: {ratio.max():.0%}")


if __name__ == "__main__":
    main()
