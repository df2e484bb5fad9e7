"""What goes wrong, by kind. Each exception has the text that the command-line tools print, and the
numbers of the reason.
"""

from __future__ import annotations

from typing import TYPE_CHECKING, Any

if TYPE_CHECKING:
    import numpy as np
    import numpy.typing as npt

    from . import _core


class QalError(Exception):
    """Any failure of this package."""

    #: What it is, in one word: one of `REASONS`.
    reason: str = "none"
    #: The joint at fault, from 1; None: not one joint's.
    joint: int | None = None
    #: What there is, or would be needed; in rad, m and s.
    value: float = 0.0
    #: What is allowed or expected; in rad, m and s.
    bound: float = 0.0
    #: A name, or what another program says; mostly empty.
    detail: str = ""
    #: Of a plan: how much of its way works, from 0 to 1.
    along: float | None = None
    #: Of a plan: the last joints that work, (6,) [rad].
    before_joints: npt.NDArray[np.float64] | None = None
    #: Of a plan: the pose of these joints.
    before_pose: _core.Pose | None = None

    def __reduce__(self) -> tuple[Any, ...]:
        return (type(self), self.args, self.__dict__)


class FileError(QalError, ValueError):
    """A file that is missing, or that says something else than expected."""


class RequestError(QalError, ValueError):
    """A number of the request is none, or a setting doesn't work."""


class ArmError(QalError):
    """A description or a solver that makes no arm."""


class SolverError(QalError):
    """The solver breaks its contract."""


class OutOfReachError(QalError):
    """No joints have the pose."""


class JointRangeError(QalError):
    """A joint would leave its range."""


class StepBoundError(QalError):
    """A joint would move further than allowed."""


class LimitError(QalError):
    """A limit of speed or acceleration."""


class SingularityError(QalError):
    """The path leads through a singularity."""
