"""Copies, pickles, other threads and processes, a stop by Ctrl-C."""

import copy
import io
import multiprocessing
import pickle
import shutil
import signal
import subprocess
import sys
import threading
import time

import numpy as np
import pytest
from conftest import ARMS, START
from tqdm import tqdm

from qal_kinematics import Arm, Pose, QalError, Trajectory

TWO = [START, [0.1, 0.2, 0.3, 0.1, 0.9, 0]]


def outcome(value):
    """What makes two values the same."""
    if isinstance(value, Arm):
        return value.forward(START).positions.tolist(), repr(value), value.tool.tolist()
    if isinstance(value, QalError):
        return type(value), str(value), value.reason, value.along, value.before_joints.tolist(), repr(value.before_pose)
    if isinstance(value, Pose):
        return value.single, value.positions.tolist(), value.quat_wxyz.tolist()
    names = [name for name in dir(type(value)) if isinstance(getattr(type(value), name), property)]
    parts = {name: getattr(value, name) for name in names if not (name in ("corners", "step_begins"))}
    return {
        name: part.tolist() if isinstance(part, np.ndarray) else outcome(part) if isinstance(part, Pose) else part
        for name, part in parts.items()
    }


def failure(arm):
    try:
        arm.plan_line(START, by=[0.6, 0, 0])
    except QalError as error:
        return error


@pytest.mark.parametrize("make", [
    lambda arm: arm,
    lambda arm: arm.with_tool(np.diag([1.0, -1, -1, 1])),
    lambda arm: arm.forward(START),
    lambda arm: arm.forward(TWO),
    lambda arm: arm.inverse(arm.forward(START), START),
    lambda arm: arm.inverse(arm.forward(TWO), START),
    lambda arm: arm.nearest(arm.forward(TWO), START),
    lambda arm: arm.plan_line(START, by=[0, 0.1, 0], speed=0.2),
    lambda arm: arm.plan_joint(START, arm.forward(TWO[1]), scale=0.5),
    lambda arm: arm.plan_program(ARMS.parent / "examples" / "inspection.toml"),
    lambda arm: arm.plan_line(START, by=[0, 0.1, 0]).trajectory(),
    lambda arm: Trajectory([0, 1], TWO),
    failure,
])
def test_everything_can_be_copied_and_pickled(reference, tmp_path, monkeypatch, make):
    value = make(Arm.from_file(ARMS / "foundry_spherical.urdf") if make.__name__ == "failure" else reference)
    text = pickle.dumps(value)
    monkeypatch.chdir(tmp_path)  # files are found from any folder
    for other in (pickle.loads(text), copy.copy(value), copy.deepcopy(value)):
        assert type(other) is type(value) and outcome(other) == outcome(value)


# Where the files aren't any more, as on other machines.
def test_an_arm_goes_by_value(tmp_path):
    shutil.copy(ARMS / "laboratory_offset.urdf", tmp_path / "described.urdf")
    (tmp_path / "arm.toml").write_text('name = "copy"\ndescription = "described.urdf"\ncycle_s = 0.004\n')
    arm = Arm.from_file(tmp_path / "arm.toml").with_tool(np.diag([1.0, -1, -1, 1]))
    text = pickle.dumps(arm)
    for path in tmp_path.iterdir():
        path.unlink()
    other = pickle.loads(pickle.dumps(pickle.loads(text)))
    assert (other.name, other.cycle) == ("copy", 0.004) and outcome(other) == outcome(arm)
    poses = arm.forward(TWO)
    assert np.array_equal(other.inverse(poses, START).joints, arm.inverse(poses, START).joints)


def test_a_worker_process_gives_the_same_bits(joints):
    arm = Arm.from_file(ARMS / "laboratory_offset.urdf")
    poses = arm.forward(joints[:200])
    with multiprocessing.get_context("spawn").Pool(1) as pool:
        found = pool.apply(arm.nearest, (poses, joints[:200]))
    assert np.array_equal(found.joints, arm.nearest(poses, joints[:200]).joints, equal_nan=True)


def test_threads_share_an_arm_and_a_batch_lets_them_run(reference, joints):
    poses = reference.forward(joints)
    expected = reference.nearest(poses, joints).joints
    results = [None] * 4

    def work(i):
        results[i] = reference.nearest(poses, joints, threads=i + 1).joints

    threads = [threading.Thread(target=work, args=(i,)) for i in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert all(np.array_equal(result, expected, equal_nan=True) for result in results)


def test_progress_adds_up_and_what_it_raises_stops_the_batch(reference, joints):
    many = np.tile(joints, (200, 1))
    with tqdm(total=len(many), file=io.StringIO()) as bar:
        poses = reference.forward(many, progress=bar.update)
        assert bar.n == len(many)
    calls = []

    def refuse(done):
        calls.append(done)
        raise KeyError("enough")

    with pytest.raises(KeyError, match="enough"):
        reference.inverse(poses, many, progress=refuse, threads=2)
    assert len(calls) == 1 and calls[0] < len(many)


# With the lock held no thread ticks in the midst of a call; on a busy machine a free one may be late.
def test_what_a_program_plays_lets_other_threads_run(reference):
    program = reference.plan_program(ARMS.parent / "examples" / "palletising.toml")
    ticks = []
    done = threading.Event()

    def tick():
        while not done.wait(0.0005):
            ticks.append(time.monotonic())

    def ticks_in_the_midst(call):
        begin = time.monotonic()
        call()
        span = time.monotonic() - begin
        return any(begin + 0.1 * span < t < begin + 0.5 * span for t in ticks)

    thread = threading.Thread(target=tick)
    thread.start()
    try:
        for call in (lambda: program.resume(0), program.trajectory):
            assert any(ticks_in_the_midst(call) for _ in range(10))
    finally:
        done.set()
        thread.join()


LONG = """
import numpy as np, time
from qal_kinematics import Arm
arm = Arm.from_file({arm!r})
joints = np.zeros((10_000_000, 6)) + 0.3
poses = arm.forward(joints[:20_000])[np.arange(20_000).repeat({times})]
print("begun", flush=True)
try:
    arm.nearest(poses, joints[0])
except KeyboardInterrupt:
    print("stopped", flush=True)
"""


WORK = """
from qal_kinematics import Arm, QalError
arm = Arm.from_file({arm!r})
start = [0, 0.3, 0.2, 0, 1, 0]
poses = arm.forward([[0.1 + 0.000001 * i, 0.3, 0.2, 0, 1, 0] for i in range(10_000)])
there = [0.6, 0.5, 0.3, 0.2, 1.2, 0.5]
program = dict(start="a", points=dict(a=dict(joints_rad=start), b=dict(joints_rad=there)),
               step=[dict(line=name, speed_m_s=0.2) for name in "ba" * 10_000])
print("begun", flush=True)
try:
    arm.{call}
except KeyboardInterrupt:
    print("stopped", flush=True)
"""


# Each takes seconds: by continuation, by the search of a slow line's law in time, by many steps.
@pytest.mark.parametrize("name, call", [
    ("reference.urdf", "plan_line(start, there, speed=1e-4, scale=0.001)"),
    ("reference.urdf", "plan_program(program)"),
    ("painting_oblique.toml", "explain_program(program)"),
    ("painting_oblique.toml", "explain_line(start, by=[2, 0, 0])"),
    ("painting_oblique.toml", "explain_poses(poses, start)"),
])
def test_ctrl_c_stops_plans_and_explanations_within_a_second(name, call):
    stops_within_a_second(WORK.format(arm=str(ARMS / name), call=call))


def stops_within_a_second(code):
    process = subprocess.Popen([sys.executable, "-c", code], stdout=subprocess.PIPE, text=True)
    assert process.stdout.readline() == "begun\n"
    time.sleep(0.5)
    begin = time.monotonic()
    process.send_signal(signal.SIGINT)
    assert process.communicate(timeout=60)[0] == "stopped\n"
    assert time.monotonic() - begin < 2  # of which the interpreter's end is a part


# 10 million poses take seconds by a closed form; 20,000 by continuation take minutes.
@pytest.mark.parametrize("name, times", [("reference.urdf", 500), ("painting_oblique.toml", 1)])
def test_ctrl_c_stops_a_long_batch_within_a_second(name, times):
    stops_within_a_second(LONG.format(arm=str(ARMS / name), times=times))


STUDY = """
from qal_kinematics import Arm, ReachStudy, reach
arm = Arm.from_file({arm!r})
print("begun", flush=True)
try:
    reach(ReachStudy([-1, -1, -1], [1, 1, 1], 0.02), arm)
except KeyboardInterrupt:
    print("stopped", flush=True)
"""


# 100 million poses.
@pytest.mark.parametrize("name", ["reference.urdf", "painting_oblique.toml"])
def test_ctrl_c_stops_a_reach_study_within_a_second(name):
    stops_within_a_second(STUDY.format(arm=str(ARMS / name)))
