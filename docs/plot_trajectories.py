#!/usr/bin/python3
"""Draws docs/figures/*.svg from real output: plot_trajectories.py BIN_DIR

BIN_DIR holds qal, as built. Needs Debian's python3-matplotlib.
"""

import csv
import json
import pathlib
import subprocess
import sys
import tempfile
import xml.etree.ElementTree

import matplotlib

matplotlib.use("svg")
import matplotlib.pyplot as plt
import numpy as np

ROOT = pathlib.Path(__file__).resolve().parent.parent
FIGURES = ROOT / "docs" / "figures"
CYCLE_S = 0.005
# Tool down, in front of the arm.
START = "0 -0.2 0.2 0 1.5707963267948966 0".split()

plt.rcParams.update({
    "svg.hashsalt": "qal",  # the same file from the same data
    "font.size": 9, "axes.grid": True, "grid.alpha": 0.3, "axes.spines.top": False,
    "axes.spines.right": False, "lines.linewidth": 1.3, "legend.frameon": False,
})


def read(path):
    """Columns of a CSV by name."""
    with open(path, newline="") as file:
        rows = list(csv.reader(file))
    numbers = np.array(rows[1:], dtype=float)
    return {name: numbers[:, i] for i, name in enumerate(rows[0])}


def plan(bin_dir, *arguments):
    with tempfile.TemporaryDirectory() as folder:
        path = pathlib.Path(folder) / "plan.csv"
        subprocess.run([bin_dir / "qal", *arguments, "--csv", path, "--full"], check=True,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        return read(path)


def save(figure, name):
    handles = [line for axis in figure.axes for line in axis.get_lines()
               if line.get_label().startswith("joint ")][:6]
    if handles:  # one legend above all, where it hides no curve
        figure.legend(handles=handles, loc="upper center", ncol=6, fontsize=8)
    figure.tight_layout(rect=(0, 0, 1, 0.93 if handles else 1))
    figure.savefig(FIGURES / name, metadata={"Date": None})
    plt.close(figure)


def joints(data, prefix, unit):
    return [data[f"{prefix}{j}_{unit}"] for j in range(1, 7)]


def draw_joints(axis, time, curves, label):
    for j, curve in enumerate(curves):
        axis.plot(time, curve, label=f"joint {j + 1}")
    axis.set(xlabel="time [s]", ylabel=label)


def draw_line(data, name):
    """Tool speed and joint speeds."""
    figure, (left, right) = plt.subplots(1, 2, figsize=(8.5, 2.8))
    left.plot(data["time_s"], data["tcp_speed_m_s"], color="black")
    left.set(xlabel="time [s]", ylabel="tool speed [m/s]", ylim=(0, None))
    draw_joints(right, data["time_s"], joints(data, "qd", "rad_s"), "joint speed [rad/s]")
    save(figure, name)


def draw_joint_move(data, name, prefix="qd", unit="rad_s", label="joint speed [rad/s]"):
    """Joint angles and speeds."""
    figure, (left, right) = plt.subplots(1, 2, figsize=(8.5, 2.8))
    draw_joints(left, data["time_s"], joints(data, "q", "rad"), "joint angle [rad]")
    draw_joints(right, data["time_s"], joints(data, prefix, unit), label)
    save(figure, name)


def draw_limited(data, name, tool):
    """Speeds and accelerations as planned; the tool's speed or the joint angles beside them."""
    figure, axes = plt.subplots(1, 3, figsize=(10.5, 2.8))
    time = data["time_s"]
    if tool:
        position = np.stack([data[f"{axis}_m"] for axis in "xyz"], axis=1)
        speed = np.linalg.norm(np.gradient(position, time, axis=0), axis=1)
        axes[0].plot(time, speed, color="black")
        axes[0].set(xlabel="time [s]", ylabel="tool speed [m/s]", ylim=(0, None))
    else:
        draw_joints(axes[0], time, joints(data, "q", "rad"), "joint angle [rad]")
    draw_joints(axes[1], time, joints(data, "qd", "rad_s"), "joint speed [rad/s]")
    draw_joints(axes[2], time, joints(data, "qdd", "rad_s2"), "joint acceleration [rad/s²]")
    save(figure, name)


def draw_s_curve(data, length, name):
    """Fraction of the way, speed and acceleration of the tool."""
    position = np.stack([data[f"{axis}_m"] for axis in "xyz"], axis=1)
    way = np.linalg.norm(position - position[0], axis=1)
    time = data["time_s"]
    speed = np.diff(way) / CYCLE_S
    figure, axes = plt.subplots(1, 3, figsize=(8.5, 2.6))
    curves = [(time, 100 * way / length, "way [% of the line]"),
              (time[1:], speed, "tool speed [m/s]"),
              (time[2:], np.diff(speed) / CYCLE_S, "tool acceleration [m/s²]")]
    for axis, (x, y, label) in zip(axes, curves):
        axis.plot(x, y, color="black", marker=".", markersize=3)
        axis.set(xlabel="time [s]", ylabel=label)
    save(figure, name)


def rotation(axis, angle):
    x, y, z = axis
    k = np.array([[0, -z, y], [z, 0, -x], [-y, x, 0]])
    return np.eye(3) + np.sin(angle) * k + (1 - np.cos(angle)) * k @ k


def arm_origins(angles):
    """Where the joints of arms/reference.urdf and its tool are."""
    frame, origin, points, index = np.eye(3), np.zeros(3), [], 0
    for joint in xml.etree.ElementTree.parse(ROOT / "arms" / "reference.urdf").iter("joint"):
        # The links of this arm are turned by nothing but their joints.
        offset = np.array(joint.find("origin").get("xyz").split(), dtype=float)
        origin = origin + frame @ offset
        points.append(origin)
        if joint.get("type") == "revolute":
            axis = np.array(joint.find("axis").get("xyz").split(), dtype=float)
            frame = frame @ rotation(axis, angles[index])
            index += 1
    return np.array(points)


def plan_program(bin_dir, program):
    made = subprocess.run([bin_dir / "qal", "plan", ROOT / "examples" / program, "--json"], check=True,
                          stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
    return json.loads(made.stdout)


def draw_speed(axis, plan, steps=None):
    """The tool's speed, of steps from one to before another; in red the corners that it passes without
    a stop. Which samples these are."""
    time, position = np.array(plan["time_s"]), np.array(plan["position_m"])
    begin, end = (plan["steps"][step]["begin_s"] for step in steps) if steps else (0, time[-1])
    shown = (time >= begin) & (time <= end)
    speed = np.linalg.norm(np.gradient(position[shown], time[shown], axis=0), axis=1)
    axis.plot(time[shown], speed, color="black")
    axis.set(xlabel="time [s]", ylabel="tool speed [m/s]", ylim=(0, None), xlim=(begin, end))
    for corner in plan["corners"]:
        if corner["end_s"] > begin and corner["begin_s"] < end:
            axis.axvspan(corner["begin_s"], corner["end_s"], color="tab:red", alpha=0.2, linewidth=0)
    return shown


def in_corners(plan):
    """For each corner, which samples are in it."""
    time = np.array(plan["time_s"])
    return [(time >= corner["begin_s"]) & (time <= corner["end_s"]) for corner in plan["corners"]]


def draw_program(plan, name, axes, steps=None):
    """The tool's way in a plane, and its speed."""
    figure, (left, right) = plt.subplots(1, 2, figsize=(9, 3.4), width_ratios=(1, 1.5))
    shown = draw_speed(right, plan, steps)
    across, up = (np.array(plan["position_m"])[:, "xyz".index(axis)] for axis in axes)
    left.plot(across[shown], up[shown], color="black")
    for inside in in_corners(plan):
        left.plot(across[inside & shown], up[inside & shown], color="tab:red", linewidth=2.2)
    left.set(xlabel=f"{axes[0]} [m]", ylabel=f"{axes[1]} [m]", aspect="equal")
    save(figure, name)


def draw_palletising(plan, name):
    """The reference arm at its ends, the tool's way of all cycles, and its speed in two of them."""
    figure = plt.figure(figsize=(10, 4.2))
    left = figure.add_subplot(1, 2, 1, projection="3d")
    position, angles = np.array(plan["position_m"]), np.array(plan["joints_rad"])
    begins = [step["begin_s"] for step in plan["steps"]]
    for time, shade in [(begins[3], 0.35), (begins[-3], 1.0)]:  # picks the first, sets the last down
        sample = int(np.searchsorted(plan["time_s"], time + CYCLE_S))
        chain = np.vstack([[0, 0, 0], arm_origins(angles[sample]), position[sample]])
        left.plot(*chain.T, color="tab:blue", marker="o", markersize=3, linewidth=2.5, alpha=shade)
    thin = slice(None, None, 8)  # of 51,000 samples
    left.plot(*position[thin].T, color="black", linewidth=0.6, alpha=0.7)
    for inside in in_corners(plan):
        left.plot(*position[inside][thin].T, color="tab:red", linewidth=1.2)
    left.set(xlabel="x [m]", ylabel="y [m]", zlabel="z [m]", xlim=(0, 0.6), ylim=(-0.3, 0.4),
             zlim=(0, 0.8), xticks=[0, 0.2, 0.4, 0.6], yticks=[-0.2, 0, 0.2, 0.4])
    left.set_box_aspect((0.6, 0.7, 0.8))
    left.view_init(elev=18, azim=-50)
    draw_speed(figure.add_subplot(1, 2, 2), plan, (9, 25))
    save(figure, name)


def main():
    bin_dir = pathlib.Path(sys.argv[1]).resolve()
    FIGURES.mkdir(exist_ok=True)

    line = ["line", "--from", *START, "--by", "0.05", "0.15", "-0.2"]
    draw_line(plan(bin_dir, *line, "--profile", "fixed", "--speed", "20"), "line_fixed.svg")
    draw_line(plan(bin_dir, *line, "--profile", "ramp", "--speed", "40"), "line_ramp.svg")
    s_curve = plan(bin_dir, "line", "--from", *START, "--by", "0", "0.2", "0", "--profile", "s-curve",
                   "--acc", "1", "--jerk", "10", "--motor-rpm", "3000")
    draw_s_curve(s_curve, 0.2, "line_s_curve.svg")

    # Past the wrist's singularity at 2 degrees.
    past = ["line", "--from", *"0.35 -0.31 0.22 -0.04 0.29 1.72".split(), "--by", "0.1", "0", "-0.2"]
    draw_limited(plan(bin_dir, *past), "line_limited.svg", tool=True)
    draw_limited(plan(bin_dir, *past, "--max-orientation-error", "0.05"), "line_past_wrist.svg",
                 tool=True)

    move = ["joint", "--from", *START, "--to", *"0.9 0.1 -0.2 -0.6 1.2 0.4".split()]
    draw_limited(plan(bin_dir, *move), "joint_limited.svg", tool=False)
    draw_joint_move(plan(bin_dir, *move, "--profile", "fixed", "--speed", "40"), "joint_fixed.svg")
    draw_joint_move(plan(bin_dir, *move, "--profile", "ramp", "--speed", "80"), "joint_ramp.svg")
    draw_joint_move(plan(bin_dir, *move, "--profile", "trapezoid", "--speed", "40", "--acc", "5000"),
                    "joint_trapezoid.svg", "motor", "rpm", "motor speed [rpm]")

    draw_program(plan_program(bin_dir, "welding_seam.toml"), "program_welding_seam.svg", "xy", (4, 9))
    draw_program(plan_program(bin_dir, "inspection.toml"), "program_inspection.svg", "xy")
    draw_palletising(plan_program(bin_dir, "palletising.toml"), "program_palletising.svg")


if __name__ == "__main__":
    main()
