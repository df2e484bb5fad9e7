# A tour with pictures, in cells as notebooks have them: an editor that knows `# %%` runs them one by
# one, and `python3 tour.py PROGRAM FOLDER` all of them.

# %% An arm, and a pose of it
import sys
from pathlib import Path

import numpy as np
from qal_kinematics import Arm

arm = Arm.reference()
start = np.array([0, 0.3, 0.2, 0, 1, 0])
pose = arm.forward(start)
print(arm)
print(pose)

# %% Every way to stand there, and which of them the limits allow
solutions = arm.inverse(pose, near=start)
for branch, text in zip(solutions.branches, solutions.texts):
    print(f"{branch}: {text or 'admissible'}")
ways = arm.plot(solutions.joints)

# %% A program, planned within every limit
motion = arm.plan_program(sys.argv[1])
print(motion)
for binding in motion.bindings[:3]:
    print(f"{binding['share']:6.1%} at {binding['limit']}")
trajectory = motion.trajectory()
curves = trajectory.plot(arm)

# %% Where it goes
path = arm.plot(trajectory.joints[:: len(trajectory) // 12])
path.plot(*trajectory.pose.positions.T, color="tab:orange")

# %% Does it keep the limits, by an own look at the samples?
verdict = trajectory.verify(arm)
print(verdict["headline"])
assert verdict["ok"]

# %% Pictures and data, for others
folder = Path(sys.argv[2])
for name, figure in (("ways", ways.figure), ("curves", curves), ("path", path.figure)):
    figure.savefig(folder / f"{name}.png")
trajectory.save(folder / "motion.csv", arm)
