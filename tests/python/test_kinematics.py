"""Values are those of the tools; batches are single calls; arrays of any layout are taken."""

import json
import os
import pickle

import numpy as np
import pytest
from conftest import ARMS, START, tool

from qal_kinematics import REASONS, Arm, OutOfReachError, Pose

FAR = Pose([3, 0, 0], quat_wxyz=[1, 0, 0, 0])


def test_values_are_those_of_the_tool(arm):
    path = ARMS / f"{arm.name}.urdf"
    joints = [0.1, -0.3, 0.4, 0.2, 0.6, -0.5]
    told = json.loads(tool("fk", "--joints", *joints, "--json", "--arm", path))
    pose = arm.forward(joints)
    assert pose.positions.tolist() == told["position_m"]
    assert pose.quat_wxyz.tolist() == told["orientation_wxyz"]
    numbers = [*told["position_m"], *told["orientation_wxyz"]]
    listed = json.loads(tool("ik", "--all", "--json", "--arm", path, "--pose", *numbers))["solutions"]
    found = arm.inverse(pose, near=np.zeros(6))
    # The tool normalises the quaternion that it reads.
    assert found.joints == pytest.approx(np.array([one["joints_rad"] for one in listed]), abs=1e-12)
    assert found.distances == pytest.approx([one["distance_rad"] for one in listed], abs=1e-12)
    assert found.admissible.tolist() == [one["admissible"] for one in listed]
    for text, one in zip(found.texts, listed):
        assert text == ("" if one["admissible"] else one["verdict"])


def test_batches_are_single_calls_for_any_number_of_threads(arm, joints):
    few = joints[:300]
    poses = arm.forward(few)
    missing = Pose(np.vstack([poses.positions, FAR.positions]), quat_wxyz=np.vstack([poses.quat_wxyz, FAR.quat_wxyz]))
    near = np.vstack([few, few[:1]]) + 0.2
    for threads in (1, 2, 5):
        assert arm.forward(few, threads=threads) == poses
        found = arm.nearest(missing, near, step_bound=0.5, threads=threads)
        every = arm.inverse(missing, near, step_bound=0.5, threads=threads)
        assert REASONS[found.reasons[-1]] == REASONS[every.reasons[-1]] == "out_of_reach"
        assert np.isnan(found.joints[-1]).all() and not found.ok[-1]
        assert found.ok.sum() > 200
        for i in range(0, 300, 7):
            assert arm.forward(few[i]) == poses[i]
            single = arm.inverse(poses[i], near[i], step_bound=0.5)
            rows = slice(every.first[i], every.first[i + 1])
            assert np.array_equal(every.joints[rows], single.joints)
            assert np.array_equal(every.refusals[rows], single.refusals)
            if found.ok[i]:
                assert np.array_equal(arm.nearest(poses[i], near[i], step_bound=0.5), found.joints[i])
            assert np.array_equal(arm.jacobian(few, threads=threads)[i], arm.jacobian(few[i]))
            for name, distances in arm.singularities(few, threads=threads).items():
                assert np.array_equal(distances[i], arm.singularities(few[i])[name], equal_nan=True)


def test_the_jacobian_is_that_of_finite_differences(arm):
    step = 1e-6
    middle = np.array(START)
    ahead, behind = (arm.forward(middle + sign * step * np.eye(6)) for sign in (1, -1))
    linear = (ahead.positions - behind.positions) / (2 * step)
    turn = (ahead.rotations * behind.rotations.inv()).as_rotvec() / (2 * step)
    assert np.allclose(arm.jacobian(middle), np.hstack([linear, turn]).T, atol=1e-8)


def test_arrays_of_any_layout_give_the_same_bits(reference, joints):
    expected = reference.forward(joints)
    wide = np.zeros((len(joints), 13))
    wide[:, ::2][:, :6] = joints
    shifted = np.frombuffer(b"\0" + joints.tobytes(), dtype=np.uint8)[1:].view(np.float64).reshape(-1, 6)
    layouts = [
        np.asfortranarray(joints), joints[::-1][::-1], wide[:, ::2][:, :6], joints.tolist(),
        joints.astype(">f8"), joints.astype(np.longdouble), shifted,
    ]
    for layout in layouts:
        assert reference.forward(layout) == expected
    assert reference.forward(joints[:, ::-1]) == reference.forward(joints[:, ::-1].copy())
    assert reference.forward(joints[:0]).positions.shape == (0, 3)
    assert reference.forward(np.zeros(6, dtype=int)) == reference.forward(np.zeros(6))


def test_orientations_are_taken_and_given_in_every_form(reference, joints):
    poses = reference.forward(joints)
    p = poses.positions
    assert Pose(p, quat_wxyz=-2 * poses.quat_wxyz).matrices == pytest.approx(poses.matrices, abs=1e-14)
    forms = {
        "quat_wxyz": poses.quat_wxyz, "quat_xyzw": poses.quat_xyzw,
        "matrices": poses.matrices, "rotations": poses.rotations,
    }
    assert np.array_equal(poses.quat_xyzw, poses.quat_wxyz[:, [1, 2, 3, 0]])
    assert poses.matrices == pytest.approx(poses.rotations.as_matrix(), abs=1e-14)
    for name, form in forms.items():
        made = Pose(p, **{name: form})
        assert made.matrices == pytest.approx(poses.matrices, abs=1e-14), name
        one = Pose(p[5], **{name: form[5]})
        assert one.single and one.matrices == pytest.approx(poses[5].matrices, abs=1e-14)
        spread = Pose(p[:4], **{name: form[5]})
        assert len(spread) == 4 and spread[3].positions.tolist() == p[3].tolist()
    assert poses[1].homogeneous == pytest.approx(
        np.block([[poses[1].matrices, p[1][:, None]], [np.zeros(3), 1]]))
    assert poses[p[:, 2] > 0.5] == Pose(p[p[:, 2] > 0.5], quat_wxyz=poses.quat_wxyz[p[:, 2] > 0.5])
    with pytest.raises(ValueError, match="read-only"):
        poses.positions[0] = 1


MIRROR = np.diag([1.0, 1, -1])
REFUSED = [
    (lambda arm: arm.forward([1, 2]), ValueError, r"joints: shape \(6,\) or \(n, 6\) is expected, not \(2,\)"),
    (lambda arm: arm.forward(np.zeros((2, 3, 6))), ValueError, r"not \(2, 3, 6\)"),
    (lambda arm: arm.forward("abc"), TypeError, "joints: numbers are expected, not dtype <U3"),
    (lambda arm: arm.forward(np.zeros(6, complex)), TypeError, "not dtype complex128"),
    (lambda arm: arm.forward([None] * 6), TypeError, "not dtype object"),
    (lambda arm: arm.nearest(np.eye(4), START), TypeError, "pose: a Pose is expected, as Pose"),
    (lambda arm: arm.nearest(FAR, [START, START]), ValueError, r"near: shape \(6,\) is expected for a pose"),
    (lambda arm: arm.nearest(arm.forward([START] * 3), [START] * 2), ValueError, r"or \(3, 6\) is expected for 3 poses"),
    (lambda arm: Pose([1, 2, 3]), TypeError, "one of quat_wxyz=, quat_xyzw=, matrices= and rotations="),
    (lambda arm: Pose([0, 0, 0], quat_wxyz=[1, 0, 0, 0], matrices=np.eye(3)), TypeError, "one of"),
    (lambda arm: Pose(np.zeros((2, 3)), quat_wxyz=np.eye(4)), ValueError, "2 positions, but 4 orientations"),
    (lambda arm: Pose([0, 0, 0], matrices=np.eye(4)), ValueError, r"\(3, 3\) or \(n, 3, 3\) is expected, not \(4, 4\)"),
    (lambda arm: Pose([0, 0, 0], matrices=MIRROR), ValueError, "matrix 0 is a reflection"),
    (lambda arm: Pose([0, 0, 0], matrices=2 * np.eye(3)), ValueError, "product of rows 0 and 0 is 4"),
    (lambda arm: arm.with_tool(np.eye(3)), ValueError, r"tool: a matrix of shape \(4, 4\)"),
    (lambda arm: arm.plan_line(START), TypeError, "one of to and by="),
    (lambda arm: arm.plan_joint(START, [START, START]), ValueError, r"to: shape \(6,\) is expected, not \(2, 6\)"),
]


@pytest.mark.parametrize("call, kind, message", REFUSED)
def test_what_is_refused_says_what_was_given_and_wanted(reference, call, kind, message):
    with pytest.raises(kind, match=message):
        call(reference)


def test_an_arm_tells_what_it_is():
    arm = Arm.from_file(ARMS / "foundry_spherical.urdf")
    assert arm.name == "foundry_spherical" and arm.family == "spherical wrist"
    assert len(arm.joint_names) == 6 and arm.upper[1] == pytest.approx(1.3)
    assert "foundry_spherical" in repr(arm) and arm.cycle > 0
    moved = np.eye(4)
    moved[:3, 3] = [0.1, 0.2, 0.3]
    tip = arm.forward(START)
    held = arm.with_tool(moved).forward(START)
    base = arm.forward(START).homogeneous @ np.linalg.inv(arm.tool) @ moved
    assert held.positions == pytest.approx(base[:3, 3]) and held != tip


def test_a_pose_out_of_reach_has_the_text_of_the_tool(reference):
    with pytest.raises(OutOfReachError) as caught:
        reference.nearest(FAR, np.zeros(6))
    assert str(caught.value) == tool("ik", "--pose", 3, 0, 0, 1, 0, 0, 0, status=1)


def test_a_solver_library_answers_with_the_bits_of_its_arm(reference, joints):
    arm = Arm.from_solver(os.environ["QAL_LIBIK"])
    assert arm.name == "libik.so" and arm.family == "libik.so"
    poses = arm.forward(joints)
    assert poses == reference.forward(joints)
    assert np.array_equal(arm.nearest(poses, joints, threads=1).joints, reference.nearest(poses, joints).joints, equal_nan=True)
    again = pickle.loads(pickle.dumps(arm))
    assert again.forward(joints[0]) == arm.forward(joints[0])
