"""What goes wrong, by kind.

Each exception has the text that the command-line tools print, and the numbers of the reason:

reason : str
    What it is, in one word: one of ``REASONS``.
joint : int or None
    The joint at fault, from 1.
value, bound : float
    What would be needed, and what is allowed; in rad, m and s.
detail : str
    A name, or what another program says; mostly empty.
"""


class QalError(Exception):
    """Any failure of this package."""

    reason = "none"
    joint = None
    value = 0.0
    bound = 0.0
    detail = ""
    along = None
    before_joints = None
    before_pose = None

    def __reduce__(self):
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
