#!/usr/bin/python3
"""Holds what qal writes for ROS 2 against the interface definitions, and compiles the docs' script.

usage: ros_files.py QAL DOCUMENT ARM

ROS 2 reads such files by PyYAML, whose YAML 1.1 takes 1e-09 for a text, so this does as well.
"""

import pathlib
import py_compile
import re
import subprocess
import sys
import tempfile

import yaml

# The public definitions; X[] is a list of X, and what is left out has its type's default.
DEFINITIONS = {
    "Time": {"sec": "int32", "nanosec": "uint32"},
    "Duration": {"sec": "int32", "nanosec": "uint32"},
    "Header": {"stamp": "Time", "frame_id": "string"},
    "JointTrajectoryPoint": {"positions": "float64[]", "velocities": "float64[]",
                             "accelerations": "float64[]", "effort": "float64[]",
                             "time_from_start": "Duration"},
    "JointTrajectory": {"header": "Header", "joint_names": "string[]",
                        "points": "JointTrajectoryPoint[]"},
    "FollowJointTrajectory_Goal": {
        "trajectory": "JointTrajectory", "multi_dof_trajectory": "MultiDOFJointTrajectory",
        "path_tolerance": "JointTolerance[]", "component_path_tolerance": "JointComponentTolerance[]",
        "goal_tolerance": "JointTolerance[]", "component_goal_tolerance": "JointComponentTolerance[]",
        "goal_time_tolerance": "Duration"},
}
PRIMITIVES = {
    "float64": lambda value: type(value) is float,
    "string": lambda value: type(value) is str,
    "int32": lambda value: type(value) is int and -2**31 <= value < 2**31,
    "uint32": lambda value: type(value) is int and 0 <= value < 2**32,
}


def check(value, kind, where):
    if kind.endswith("[]"):
        assert type(value) is list, f"{where} is no list"
        for i, entry in enumerate(value):
            check(entry, kind[:-2], f"{where}[{i}]")
    elif kind in PRIMITIVES:
        assert PRIMITIVES[kind](value), f"{where}: {value!r} is no {kind}"
    else:
        for field, entry in value.items():
            check(entry, DEFINITIONS[kind][field], f"{where}.{field}")


def nanoseconds(point):
    time = point["time_from_start"]
    assert time["nanosec"] < 10**9, time
    return time["sec"] * 10**9 + time["nanosec"]


qal, document, arm = sys.argv[1:]
own_folder = tempfile.TemporaryDirectory()
folder = pathlib.Path(own_folder.name)


def run(*arguments):
    subprocess.run([qal, *arguments, "--arm", arm], cwd=folder, check=True, stdout=subprocess.DEVNULL)


# Past a second, and with joints that move by less than 1e-5 rad in a cycle.
run("joint", "--from", *"0 0 0 0 1.2 0".split(), "--to", *"0.6 -0.3 1e-7 0 1 0".split(), "--scale",
    "50", "--csv", "move.csv")
run("convert", "move.csv", "motion.yaml")
run("convert", "move.csv", "goal.yaml", "--ros", "goal")
message, goal = (yaml.safe_load((folder / name).read_text()) for name in ("motion.yaml", "goal.yaml"))
check(message, "JointTrajectory", "message")
check(goal, "FollowJointTrajectory_Goal", "goal")
assert goal == {"trajectory": message}
assert message["joint_names"] == re.findall(r'<joint name="([^"]*)" type="revolute"',
                                            pathlib.Path(arm).read_text())
points = message["points"]
times = [nanoseconds(point) for point in points]
assert times == [5000000 * i for i in range(len(points))] and times[-1] > 10**9
rows = [line.split(",") for line in (folder / "move.csv").read_text().split()[1:]]
for point, row in zip(points, rows, strict=True):
    assert point["positions"] == [float(value) for value in row[1:7]]
    assert {len(point[key]) for key in ("positions", "velocities", "accelerations")} == {6}
for end in points[0], points[-1]:
    assert end["velocities"] == end["accelerations"] == [0] * 6

script = folder / "send_motion.py"
script.write_text(re.search(r"```python\n(.*?)```", pathlib.Path(document).read_text(), re.S)[1])
py_compile.compile(script, doraise=True)
