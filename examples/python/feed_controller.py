"""Feeds a controller one set point per cycle, and stops softly when somebody asks for it.

    python3 feed_controller.py PROGRAM
"""

import sys
from typing import Iterator

import numpy as np

from qal_kinematics import Arm, Motion, Trajectory


class Controller:
    """Stands in for the real one: takes joints, and refuses what no arm could follow."""

    def __init__(self, arm: Arm) -> None:
        self._arm = arm
        self._last: np.ndarray | None = None
        self.cycles = 0

    def send(self, joints: np.ndarray) -> None:
        if self._last is not None:
            speed = np.abs(joints - self._last) / self._arm.cycle
            assert (speed <= 1.001 * self._arm.velocity).all()
        self._last = joints
        self.cycles += 1


def until(motion: Motion, time: float, cycle: float) -> Iterator[np.ndarray]:
    yield from motion.at(np.arange(0, time, cycle))["joints"]


def play(controller: Controller, trajectory: Trajectory) -> None:
    for joints in trajectory.joints:
        controller.send(joints)


def main() -> None:
    arm = Arm.reference()
    motion = arm.plan_program(sys.argv[1])
    controller = Controller(arm)
    asked = 0.4 * motion.duration
    for joints in until(motion, asked, arm.cycle):
        controller.send(joints)
    stop, planned = motion.stop(asked)
    play(controller, stop)
    print(f"stopped within {stop.duration:.3f} s, at {planned:.3f} s of the plan")
    play(controller, motion.resume(planned))
    print(f"went on to the end: {controller.cycles} cycles of {arm.cycle} s")


if __name__ == "__main__":
    main()
