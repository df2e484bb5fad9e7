"""How much of a box the tool reaches within 30 degrees of straight down, layer by layer.

    python3 reach_of_a_box.py
"""

import numpy as np

from qal_kinematics import Arm, ReachStudy, reach


def main() -> None:
    study = ReachStudy([0.2, -0.4, 0], [0.9, 0.4, 0.8], 0.05, directions=50, tilt_cone=np.radians(30))
    result = reach(study, Arm.reference())
    print("height [m]  reached from every direction  from at least one")
    for centres, share in zip(result.centres, result.reached_share):
        print(f"{centres[0, 0, 2]:10.3f}  {(share == 1).mean():28.1%}  {(share > 0).mean():17.1%}")


if __name__ == "__main__":
    main()
