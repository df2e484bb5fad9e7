"""Plans, their files and their verdicts are those of the tools."""

import json
import pickle
import re

import numpy as np
import pytest
from conftest import ARMS, START, tool

import qal_kinematics as qal
from qal_kinematics import Pose, Trajectory

EXAMPLES = ARMS.parent / "examples"
BY = [0, 0.3, 0.1]


@pytest.mark.parametrize("ending, full", [("csv", False), ("csv", True), ("json", False), ("yaml", False)])
def test_a_line_is_that_of_the_tool_in_every_format(reference, tmp_path, ending, full):
    line = reference.plan_line(START, by=BY, speed=0.5, scale=[0.8, 0.8, 0.8])
    theirs, ours = tmp_path / f"theirs.{ending}", tmp_path / f"ours.{ending}"
    csv = theirs.with_suffix(".csv")
    tool("line", "--from", *START, "--by", *BY, "--speed", 0.5, "--scale", 80, "--csv", csv, *["--full"] * full)
    trajectory = line.trajectory()
    trajectory.save(ours, reference, full=full)
    if ending != "csv":
        tool("convert", csv, theirs)
    assert ours.read_text() == theirs.read_text()
    read = Trajectory.load(ours)
    assert np.array_equal(read.time, trajectory.time) and np.array_equal(read.joints, trajectory.joints)


def test_a_program_is_that_of_the_tool(reference, tmp_path):
    path = EXAMPLES / "inspection.toml"
    told = []
    program = reference.plan_program(path, progress=told.append)
    tool("plan", path, "-o", tmp_path / "theirs.csv")
    program.trajectory().save(tmp_path / "ours.csv", reference)
    assert (tmp_path / "ours.csv").read_text() == (tmp_path / "theirs.csv").read_text()
    assert sum(told) == len(program.step_begins) and len(program.corners) > 0
    stop, planned = program.stop(1.0)
    rest = program.resume(planned)
    assert stop.joints[0] == pytest.approx(program.at(1.0)["joints"])
    assert stop.joints[-1] == pytest.approx(rest.joints[0], abs=1e-9)
    assert rest.joints[-1] == pytest.approx(program.at(program.duration)["joints"], abs=1e-9)
    assert program.override(lambda time: 0.5).duration > 1.8 * program.duration


def test_a_motion_has_its_states_at_any_times(reference):
    move = reference.plan_joint(START, reference.forward([0.5, 0.2, 0.1, 0, 0.9, 0.3]), duration=4)
    assert move.duration == pytest.approx(4) and move.at(-1)["joints"].tolist() == START
    times = np.linspace(0, 4, 400)
    states = move.at(times)
    slopes = np.gradient(states["joints"], times, axis=0)
    assert slopes[1:-1] == pytest.approx(states["velocities"][1:-1], abs=1e-4)
    assert {"limit", "share", "begin", "end"} == set(reference.plan_line(START, by=BY).bindings[0])
    with pytest.raises(TypeError, match="motion of a program"):
        move.stop(1)


def test_a_program_of_numbers_is_planned_like_its_file(reference, tmp_path):
    program = {
        "start": "a",
        "points": {"a": {"joints_rad": START}, "b": {"joints_rad": [0.4, 0.2, 0.3, 0, 1, 0]}},
        "step": [{"joint": "b"}],
    }
    path = tmp_path / "program.json"
    path.write_text(json.dumps(program))
    assert reference.plan_program(program).duration == reference.plan_program(str(path)).duration
    with pytest.raises(qal.FileError, match="program, step 1: unknown entry .sped.; expected .*speed_m_s"):
        reference.plan_program({**program, "step": [{"line": "b", "sped": 1}]})


def test_what_a_trajectory_holds_is_looked_at_where_it_lies(reference):
    trajectory = reference.plan_line(START, by=BY).trajectory()
    whole = [trajectory.time, trajectory.joints, trajectory.velocities, trajectory.accelerations, trajectory.pose.positions]
    for name, view in zip(("time", "joints", "velocities", "accelerations"), whole):
        assert np.shares_memory(view, getattr(trajectory, name)) and not view.flags.writeable
    assert np.shares_memory(whole[-1], trajectory.pose.positions)
    kept = [view.copy() for view in whole]
    del trajectory
    others = [reference.plan_line(START, by=[0, 0.01 * i, 0.1]).trajectory() for i in range(9)]  # where it lay
    assert all(np.array_equal(view, copy) for view, copy in zip(whole, kept)) and others
    slopes = np.gradient(whole[1], whole[0], axis=0)
    assert slopes[1:-1] == pytest.approx(whole[2][1:-1], abs=0.05)
    bare = Trajectory([0, 1], [START, START])
    assert bare.velocities is None and bare.accelerations is None and bare.pose is None


# Played as a controller does: the set points are those of the stop, and of the rest, as a whole.
def test_a_playback_takes_a_stop_and_goes_on(reference):
    program = reference.plan_program(EXAMPLES / "inspection.toml")
    cycle = reference.cycle
    playback = qal.Playback(program)
    points = [playback.next() for _ in range(201)]
    assert points[-1]["time"] == pytest.approx(200 * cycle) and playback.planned == pytest.approx(200 * cycle)
    assert points[100]["joints"] == pytest.approx(program.at(100 * cycle)["joints"], abs=1e-12)
    playback.stop()
    stopping = [points[-1]]
    while not playback.at_rest:
        stopping.append(playback.next())
    whole, planned = program.stop(200 * cycle)
    assert playback.planned == pytest.approx(planned, abs=1e-9)
    for name in ("joints", "velocities", "accelerations"):
        assert np.array([point[name] for point in stopping]) == pytest.approx(getattr(whole, name), abs=1e-9)
    playback.override(0.5)
    playback.resume()
    count = 0
    while not playback.done:
        last = playback.next()
        count += 1
    assert last["joints"] == pytest.approx(program.at(program.duration)["joints"], abs=1e-9)
    assert count * cycle > 1.8 * (program.duration - planned)  # waits take as long as ever
    assert qal.Playback.from_rest(program, planned).next()["joints"] == pytest.approx(whole.joints[-1], abs=1e-9)
    with pytest.raises(TypeError, match="cannot pickle"):
        pickle.dumps(playback)
    with pytest.raises(TypeError, match="motion of a program"):
        qal.Playback(reference.plan_line(START, by=BY))


def test_files_for_ros_have_the_names_of_the_arms_joints(tmp_path):
    arm = qal.Arm.from_file(ARMS / "foundry_spherical.urdf")
    names = re.findall(r'<joint name="([^"]+)" type="revolute"', (ARMS / "foundry_spherical.urdf").read_text())
    assert arm.joint_names == names and len(set(names)) == 6
    path = tmp_path / "motion.yaml"
    arm.plan_joint(np.zeros(6), np.full(6, 0.1)).trajectory().save(path, arm, ros="goal")
    text = path.read_text()
    assert [text.count(name) for name in names] == [1] * 6
    assert sorted(names, key=text.index) == names and text.index("trajectory:") < text.index(names[0])
    with pytest.raises(ValueError, match="'message' or 'goal'"):
        arm.plan_joint(np.zeros(6), np.full(6, 0.1)).trajectory().save(path, arm, ros="topic")


def test_verdicts_are_those_of_the_tool(reference, tmp_path):
    good = reference.plan_line(START, by=BY).trajectory()
    fast = Trajectory(good.time / 9, good.joints)
    for trajectory, ok in ((good, True), (fast, False)):
        path = tmp_path / "motion.csv"
        trajectory.save(path, reference)
        assert trajectory.verify(reference)["ok"] is ok
        assert ("no violation" in tool("verify", path)) if ok else tool("verify", path, status=1)
        if not ok:
            broken = {check["key"] for check in trajectory.verify(reference)["checks"] if check["state"] == "violation"}
            assert "joint_speed_rad_s" in broken


def test_a_failing_line_tells_how_far_it_gets_as_the_tool_does(reference):
    with pytest.raises(qal.OutOfReachError) as caught:
        reference.plan_line(START, by=[0.6, 0, 0])
    error = caught.value
    assert str(error) == tool("line", "--from", *START, "--by", 0.6, 0, 0, status=1)
    assert error.reason == "out_of_reach" and error.along == pytest.approx(0.4639, abs=1e-4)
    reached = reference.forward(error.before_joints).positions
    assert reached == pytest.approx(error.before_pose.positions, abs=1e-9)
    assert reached[0] == pytest.approx(reference.forward(START).positions[0] + 0.6 * error.along, abs=1e-4)


FAILURES = [
    (lambda arm: qal.Arm.from_file("none.urdf"), qal.FileError, "none", None),
    (lambda arm: qal.Arm.from_solver("none.so"), qal.ArmError, "library_not_loaded", None),
    (lambda arm: arm.forward([np.nan, 0, 0, 0, 0, 0]), qal.RequestError, "not_finite", 1),
    (lambda arm: arm.nearest(Pose([0, 0, 0], quat_wxyz=[0, 0, 0, 0]), START), qal.RequestError, "not_an_orientation", None),
    (lambda arm: arm.plan_joint(START, [0, 9, 0, 0, 0, 0]), qal.JointRangeError, "joint_range", 2),
    (lambda arm: arm.plan_line(START, by=BY, speed=0), qal.RequestError, "setting", None),
    (lambda arm: arm.nearest(arm.forward(START), np.zeros(6), step_bound=0.1), qal.StepBoundError, "step_bound", 2),
    (lambda arm: Trajectory([0, 1], [START]), ValueError, None, None),
    (lambda arm: Trajectory.load(ARMS / "reference.urdf"), qal.FileError, "none", None),
]


@pytest.mark.parametrize("call, kind, reason, joint", FAILURES)
def test_failures_are_exceptions_of_their_kind_with_their_numbers(reference, call, kind, reason, joint):
    with pytest.raises(kind) as caught:
        call(reference)
    assert "\n" not in str(caught.value)
    if reason is not None:
        assert isinstance(caught.value, qal.QalError)
        assert (caught.value.reason, caught.value.joint) == (reason, joint)
