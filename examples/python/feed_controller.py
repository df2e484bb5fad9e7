"""Feeds a controller one set point per cycle, and stops softly when somebody asks for it.

    python3 feed_controller.py PROGRAM
"""

import sys

import numpy as np

from qal_kinematics import Arm, Playback


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


def main() -> None:
    arm = Arm.reference()
    motion = arm.plan_program(sys.argv[1])
    controller = Controller(arm)
    playback = Playback(motion)
    while playback.planned < 0.4 * motion.duration:
        controller.send(playback.next()["joints"])
    playback.stop()  # somebody asks for it
    asked = controller.cycles
    while not playback.at_rest:
        controller.send(playback.next()["joints"])
    stopped = (controller.cycles - asked) * arm.cycle
    print(f"stopped within {stopped:.3f} s, at {playback.planned:.3f} s of the plan")
    playback.resume()
    playback.override(0.5)
    while not playback.done:
        controller.send(playback.next()["joints"])
    print(f"went on to the end at half the speed: {controller.cycles} cycles of {arm.cycle} s")


if __name__ == "__main__":
    main()
