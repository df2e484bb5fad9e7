"""Pictures by matplotlib, which is imported when one is drawn."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any

import numpy as np

if TYPE_CHECKING:
    import numpy.typing as npt

    from . import _core

    _Floats = npt.NDArray[np.float64]

# Axes at a smaller angle [rad] are drawn as parallel ones: their common perpendicular is far away.
_PARALLEL = 0.05


def _axes(arm: _core.Arm, joints: _Floats) -> tuple[_Floats, _Floats, _Floats]:
    """The tool centre point; the feet of its perpendiculars on the six axes; their directions."""
    point = arm.forward(joints).positions
    jacobian = arm.jacobian(joints)
    # A joint moves the point by v = w x (p - r), r on its axis; so w x v leads from p to the foot.
    directions = jacobian[3:].T
    return point, point + np.cross(directions, jacobian[:3].T), directions


def _common_perpendicular(
    p: _Floats, d: _Floats, q: _Floats, e: _Floats, near: _Floats
) -> tuple[_Floats, _Floats]:
    """Where axis (q, e) is nearest to axis (p, d), on both; of parallel axes, beside `near`."""
    normal = np.cross(d, e)
    squared = normal @ normal
    on_first = near if squared < _PARALLEL**2 else p + d * (np.cross(q - p, e) @ normal / squared)
    return on_first, q + e * ((on_first - q) @ e)


def skeleton(arm: _core.Arm, joints: npt.ArrayLike) -> _Floats:
    """(n, 3) array [m, base frame]: from the base along the axes and their common perpendiculars to
    the tool centre point."""
    point, feet, directions = _axes(arm, np.asarray(joints, dtype=float))
    base = arm.base[:3, 3]
    points = [base, feet[0] + directions[0] * ((base - feet[0]) @ directions[0])]
    for i in range(5):
        points += _common_perpendicular(
            feet[i], directions[i], feet[i + 1], directions[i + 1], points[-1]
        )
    points += [feet[5], point]
    steps = np.linalg.norm(np.diff(points, axis=0), axis=1)
    return np.array([points[0], *np.array(points[1:])[steps > 1e-9]])


def plot_arm(self: _core.Arm, joints: npt.ArrayLike, ax: Any = None) -> Any:
    """Draws the arm in 3D, as lines along its axes and their common perpendiculars.

    Parameters
    ----------
    joints : (6,) or (n, 6) array_like
        [rad]; of many, the last is drawn in full and the others pale.
    ax : mpl_toolkits.mplot3d.axes3d.Axes3D, optional

    Returns
    -------
    Axes3D
    """
    import matplotlib.pyplot as plt  # type: ignore[import]

    if ax is None:
        ax = plt.figure().add_subplot(projection="3d")
    pose = self.forward(joints)  # refuses what aren't joints
    rows = np.atleast_2d(np.asarray(joints, dtype=float))
    for i, row in enumerate(rows):
        last = i == len(rows) - 1
        ax.plot(*skeleton(self, row).T, "o-" if last else "-", color="C0", linewidth=3 if last else 1,
                alpha=1 if last else 0.3, markersize=4)
    if len(rows) > 0:
        frame = np.atleast_3d(pose.homogeneous).reshape(-1, 4, 4)[-1]
        for axis, color in enumerate(("tab:red", "tab:green", "tab:blue")):
            ax.quiver(*frame[:3, 3], *(0.1 * frame[:3, axis]), color=color)
    ax.set(xlabel="x [m]", ylabel="y [m]", zlabel="z [m]", title=self.name)
    ax.set_aspect("equal")
    return ax


def plot_trajectory(self: _core.Trajectory, arm: _core.Arm | None = None) -> Any:
    """Draws joints, velocities and accelerations over time.

    Parameters
    ----------
    arm : Arm, optional
        Whose limits are drawn as dashed lines, where the motion comes near them.

    Returns
    -------
    matplotlib.figure.Figure
    """
    import matplotlib.pyplot as plt  # type: ignore[import]

    velocities, accelerations = self.velocities, self.accelerations
    if velocities is None and len(self) > 1:
        velocities = np.gradient(self.joints, self.time, axis=0)
    if accelerations is None and velocities is not None:
        accelerations = np.gradient(velocities, self.time, axis=0)
    curves = [("joints [rad]", self.joints, None if arm is None else (arm.lower, arm.upper))]
    for title, values, limit in (
        ("velocities [rad/s]", velocities, None if arm is None else arm.velocity),
        ("accelerations [rad/s²]", accelerations, None if arm is None else arm.acceleration),
    ):
        if values is not None:
            curves.append((title, values, None if limit is None else (-limit, limit)))
    names = [f"joint {j}" for j in range(1, 7)] if arm is None else arm.joint_names
    figure, panels = plt.subplots(len(curves), sharex=True, squeeze=False, layout="constrained")
    for panel, (title, values, limits) in zip(panels[:, 0], curves):
        lines = panel.plot(self.time, values)
        panel.set_ylabel(title)
        panel.grid(alpha=0.3)
        low, high = panel.get_ylim()
        for bound in () if limits is None else limits:
            for line, value in zip(lines, bound):
                if low <= value <= high:
                    panel.axhline(value, color=line.get_color(), linestyle="--", linewidth=0.8)
    panels[0, 0].legend(lines, names, ncols=6, fontsize="small", frameon=False, loc="lower center",
                        bbox_to_anchor=(0.5, 1))
    panels[-1, 0].set_xlabel("time [s]")
    return figure
