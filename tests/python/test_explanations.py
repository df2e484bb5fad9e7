"""Explanations are those of `qal explain`, and what they offer works."""

import json

import numpy as np
import pytest
from conftest import START, tool

from qal_kinematics import Pose, QalError

FAR = [0.3, 0, 0]


def theirs(*arguments, status=1):
    """What `qal explain` prints as JSON; its message goes to standard error."""
    return json.loads(tool("explain", *arguments, "--json", status=status, output=True))["explanation"]


def expect_same(ours, told):
    for key in ("ok", "headline", "cause", "text", "duration_s", "before_rad", "way_back_m", "point", "solutions"):
        assert ours[key] == told[key], key


def test_a_line_is_explained_as_by_the_tool_and_each_remedy_works(reference):
    why = reference.explain_line(START, by=FAR)
    expect_same(why, theirs("line", "--from", *START, "--by", *FAR))
    kinds = {remedy["kind"] for remedy in why["remedies"]}
    assert {"end", "orientation", "shift"} <= kinds
    for remedy in why["remedies"]:
        if remedy["kind"] in ("end", "orientation"):
            motion = reference.plan_line(START, remedy["pose"])
        elif remedy["kind"] == "joint_move":
            motion = reference.plan_joint(START, remedy["joints"])
        elif remedy["kind"] == "start":
            motion = reference.plan_line(remedy["joints"], by=FAR)
        elif remedy["kind"] == "shift":
            motion = reference.plan_line(remedy["joints"], remedy["pose"])
        else:
            continue
        assert motion.duration == pytest.approx(remedy["duration"], rel=1e-6), remedy["kind"]
    assert reference.explain_line(START, by=[0, 0.1, 0])["ok"]


def test_start_configurations_are_those_of_the_tool(reference):
    by = [0, 0.2, 0]
    told = theirs("line", "--branches", "--from", *START, "--by", *by, status=0)["branches"]
    assert reference.branches(START, by=by) == told and told[0]["ok"]


def test_poses_moves_and_programs_are_explained_as_by_the_tool(reference, tmp_path):
    far = Pose([0.95, 0, 0.4], quat_wxyz=[0, 0, 1, 0])
    why = reference.explain_pose(far, np.zeros(6))
    expect_same(why, theirs("pose", "--pose", 0.95, 0, 0.4, 0, 0, 1, 0))
    back = Pose(far.positions + why["way_back_m"], quat_wxyz=far.quat_wxyz)
    assert np.isfinite(reference.nearest(back, np.zeros(6))).all()
    beyond = [0, 0, 0, 0, 1, 3.3]
    expect_same(reference.explain_joint(START, beyond), theirs("joint", "--from", *START, "--to", *beyond))
    poses = Pose([[0.5, 0, 0.5], [0.95, 0, 0.4]], quat_wxyz=[0, 0, 1, 0])
    assert reference.explain_poses(poses, START, time=[0, 5])["point"]["index"] == 1
    path = tmp_path / "cell.json"
    path.write_text(json.dumps({
        "start": "a",
        "points": {"a": {"joints_rad": START}, "b": {"xyz": [0.95, 0, 0.4], "rpy": [0, 3.14, 0]}},
        "step": [{"wait_s": 0.1}, {"line": "b"}],
    }))
    why = reference.explain_program(path)
    expect_same(why, theirs("program", path))
    assert why["step"] == 1
    with pytest.raises(QalError) as caught:
        reference.plan_program(path)
    assert str(caught.value) == tool("plan", path, "-o", tmp_path / "none.csv", status=1)
