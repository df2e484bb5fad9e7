"""How much of a box the tool reaches in any of several orientations, layer by layer.

    python3 reach_of_a_box.py
"""

import numpy as np
from scipy.spatial.transform import Rotation

from qal_kinematics import Arm, Nearest, Pose


def reached(arm: Arm, poses: Pose) -> np.ndarray:
    found = arm.nearest(poses, near=np.zeros(6))
    assert isinstance(found, Nearest)  # of many poses, as type checkers can't know
    return found.ok


def main() -> None:
    arm = Arm.reference()
    sides = [np.linspace(low, high, 21) for low, high in ((0.2, 0.9), (-0.4, 0.4), (0.0, 0.8))]
    points = np.stack(np.meshgrid(*sides, indexing="ij"), axis=-1).reshape(-1, 3)
    tilts = Rotation.from_euler("yx", [[180, 0], [150, 0], [210, 0], [180, 30], [180, -30]], degrees=True)
    share = np.mean([reached(arm, Pose(points, rotations=tilt)) for tilt in tilts], axis=0).reshape(21, 21, 21)
    print("height [m]  reached in every orientation  in at least one")
    for layer in range(0, 21, 4):
        every, some = (share[:, :, layer] == 1).mean(), (share[:, :, layer] > 0).mean()
        print(f"{sides[2][layer]:10.2f}  {every:28.1%}  {some:15.1%}")


if __name__ == "__main__":
    main()
