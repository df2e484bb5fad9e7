"""Kinematics and motion planning of six-axis arms.

>>> from qal_kinematics import Arm
>>> arm = Arm.reference()
>>> pose = arm.forward([0, 0.3, 0.2, 0, 1, 0])

Lengths are in m, angles in rad, times in s. Poses are those of the tool in the base frame.
"""

from . import _plot
from ._core import (
    REASONS,
    Arm,
    Motion,
    Nearest,
    Playback,
    Pose,
    ReachStudy,
    Solutions,
    Trajectory,
    __version__,
)
from ._reach import ReachResult, reach
from .errors import (
    ArmError,
    FileError,
    JointRangeError,
    LimitError,
    OutOfReachError,
    QalError,
    RequestError,
    SingularityError,
    SolverError,
    StepBoundError,
)
# matplotlib is imported when something is drawn.
setattr(Arm, "plot", _plot.plot_arm)
setattr(Trajectory, "plot", _plot.plot_trajectory)

__all__ = [
    "REASONS",
    "Arm",
    "ArmError",
    "FileError",
    "JointRangeError",
    "LimitError",
    "Motion",
    "Nearest",
    "OutOfReachError",
    "Playback",
    "Pose",
    "QalError",
    "ReachResult",
    "ReachStudy",
    "RequestError",
    "SingularityError",
    "Solutions",
    "SolverError",
    "StepBoundError",
    "Trajectory",
    "__version__",
    "reach",
]
