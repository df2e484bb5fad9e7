"""Inverse kinematics of a cloud of points, all with the tool pointing down.

    python3 point_cloud.py [ARM]
"""

import sys

import numpy as np

from qal_kinematics import REASONS, Arm, Nearest, Pose


def main() -> None:
    arm = Arm.from_file(sys.argv[1]) if len(sys.argv) > 1 else Arm.reference()
    cloud = np.random.default_rng(1).uniform([0.2, -0.5, 0.0], [0.8, 0.5, 0.6], (20_000, 3))
    poses = Pose(cloud, quat_wxyz=[0, 0, 1, 0])  # one orientation for all
    found = arm.nearest(poses, near=[0, 0.3, 0.2, 0, 1, 0])
    assert isinstance(found, Nearest)  # of many poses, as type checkers can't know
    print(f"{found.ok.sum()} of {len(cloud)} points are reached")
    for code in np.unique(found.reasons[~found.ok]):
        print(f"  {(found.reasons == code).sum()}: {REASONS[code]}")
    reached = found.joints[found.ok]
    error = np.abs(arm.forward(reached).positions - cloud[found.ok]).max()
    print(f"largest error {error:.1e} m")
    clear = arm.singularities(reached)["smallest_singular_value"] > 0.05
    print(f"{clear.sum()} of them are well away from a singularity")


if __name__ == "__main__":
    main()
