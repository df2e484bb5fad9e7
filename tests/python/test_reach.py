"""Reach studies: the file of the tool, in this process and by a cluster that loses a worker."""

import os
import pickle
import re
import shutil
import signal
import subprocess
import sys

import numpy as np
import pytest
from distributed import Client
from conftest import ARMS, tool

from qal_kinematics import Arm, Pose, ReachStudy, RequestError, _core, reach

BOX = ([0.1, -0.2, 0.2], [1.3, 0.2, 1.0])
TOOL = np.array([[1, 0, 0, 0.01], [0, 1, 0, 0], [0, 0, 1, 0.1], [0, 0, 0, 1]])


def file_of_the_tool(folder, *options):
    path = folder / "tool.h5"
    tool("reach", "--box", *BOX[0], *BOX[1], "-o", path, *options)
    return path.read_bytes()


def saved(result, folder):
    result.save(folder / "saved.h5")
    return (folder / "saved.h5").read_bytes()


@pytest.mark.parametrize("keywords, options", [
    ({"directions": 30}, ["--directions", 30]),
    ({"directions": 20, "spins": 3, "tilt_axis": [1, 0, -1], "tilt_cone": 1.1},
     ["--directions", 20, "--spins", 3, "--toward", 1, 0, -1, "--tilt", 1.1]),
    ({"directions": 3, "line": 0.1, "line_direction": [0, 0, -2]},
     ["--directions", 3, "--line", 0.1, "--along", 0, 0, -2]),
    ({"spins": 2, "poses": Pose([[0.6, 0.1, 0.3], [0.7, 0, 0.4]], quat_wxyz=[[0, 1, 0, 0], [0, 0.6, 0.8, 0]])},
     ["--poses", "poses.csv"]),
])
def test_a_result_has_the_bytes_of_the_tools_file(tmp_path, keywords, options):
    study = ReachStudy(*BOX, 0.17, **keywords)
    assert pickle.loads(pickle.dumps(study)) == study != ReachStudy(*BOX, 0.16, **keywords)
    (tmp_path / "poses.csv").write_text("x_m,y_m,z_m,qw,qx,qy,qz\n0.6,0.1,0.3,0,1,0,0\n0.7,0,0.4,0,0.6,0.8,0\n")
    path = ARMS / "service_parallel.urdf"
    told = []
    result = reach(study, Arm.from_file(path).with_tool(TOOL), threads=2, progress=told.append)
    assert sum(told) == study.pose_count == study.cell_count * len(study.orientations)
    options = [tmp_path / option if option == "poses.csv" else option for option in options]
    expected = file_of_the_tool(tmp_path, "--step", 0.17, "--arm", path, "--tool", 0.01, 0, 0.1, 0, 0, 0, *options)
    assert saved(result, tmp_path) == expected
    assert all(name.encode() in expected for name in (
        "reached_share", "reached_directions", "solutions", "margin", "smallest_singular_value", "joints",
        "orientation", "orientations", "grid_count", "grid_first"))


# One cell beside the middle, solved pose by pose.
def test_arrays_are_indexed_by_z_y_x(reference):
    study = ReachStudy(*BOX, 0.2, directions=25)
    result = reach(study, reference)
    at = (1, 0, 2)
    assert study.grid_count == [6, 2, 4] and result.margin.shape == (4, 2, 6) and result.joints.shape == (4, 2, 6, 6)
    centre = study.grid_first + np.array([2, 0, 1]) * 0.2
    assert np.array_equal(result.centres[at], centre)
    poses = Pose(np.tile(centre, (25, 1)), quat_wxyz=result.orientations)
    found = reference.inverse(poses, (reference.lower + reference.upper) / 2)
    counts = np.add.reduceat(np.append(found.admissible, 0), found.first[:-1]) * (np.diff(found.first) > 0)
    assert 0 < result.solutions[at] == counts.sum() and result.reached_directions[at] == (counts > 0).sum()
    margins = np.minimum(found.joints - reference.lower, reference.upper - found.joints).min(axis=1)
    assert result.margin[at] == margins[found.admissible].max()
    assert reference.singularities(result.joints[at])["smallest_singular_value"] == result.smallest_singular_value[at]
    reached = reference.forward(result.joints[at])
    assert np.allclose(reached.positions, centre, atol=1e-9)
    assert abs(reached.quat_wxyz @ result.orientations[result.orientation[at]]) > 1 - 1e-9
    assert np.isnan(result.margin[result.orientation < 0]).all() and (result.orientation < 0).any()


@pytest.mark.parametrize("made", [
    lambda: ReachStudy(BOX[1], BOX[0]), lambda: ReachStudy(*BOX, directions=0), lambda: ReachStudy(*BOX, tilt_cone=4)])
def test_a_study_that_is_none_is_refused_when_it_is_made(made):
    with pytest.raises(RequestError, match="^the (box|number of directions|tilt cone)"):
        made()


@pytest.fixture(scope="module")
def cluster(tmp_path_factory):
    """A client of a scheduler with three workers of one thread each, processes of their own."""
    folder = tmp_path_factory.mktemp("cluster")
    file = folder / "scheduler.json"

    def start(kind, *arguments):
        return subprocess.Popen(
            [sys.executable, "-m", f"distributed.cli.dask_{kind}", "--scheduler-file", file, "--no-dashboard",
             *arguments], cwd=folder, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    processes = [start("scheduler", "--host", "127.0.0.1", "--port", "0")]
    processes += [start("worker", "--host", "127.0.0.1", "--nthreads", "1", "--no-nanny") for _ in range(3)]
    try:
        with Client(scheduler_file=file, timeout=30, set_as_default=False) as client:
            client.wait_for_workers(3, timeout=30)
            yield client
    finally:
        for process in processes:
            process.kill()
            process.wait()


def test_a_cluster_that_loses_a_worker_gives_the_same_bytes(cluster, tmp_path):
    arm = Arm.from_file(ARMS / "reference.urdf").with_tool(TOOL)
    study = ReachStudy(*BOX, 0.04, directions=100, spins=2)
    told = []

    def kill_one(done):
        told.append(done)
        if len(told) == 1:
            address = next(worker for worker, keys in cluster.processing().items() if keys)
            os.kill(cluster.run(os.getpid)[address], signal.SIGKILL)

    result = reach(study, arm, client=cluster, shards=20, progress=kill_one)
    assert len(told) == 20 and sum(told) == study.pose_count
    assert len(cluster.nthreads()) == 2
    assert saved(result, tmp_path) == saved(reach(study, arm), tmp_path)


def test_the_code_of_the_guide_runs(cluster, tmp_path, monkeypatch):
    code = re.search(r"```python\n(.*?)```", (ARMS.parent / "docs" / "cluster.md").read_text(), re.S)[1]
    shutil.copy(ARMS / "reference.urdf", tmp_path / "arm.urdf")
    monkeypatch.chdir(tmp_path)
    exec(code.replace("tcp://scheduler:8786", cluster.scheduler.address), {})
    tool("reach", "--box", 0.2, -0.4, 0, 0.8, 0.4, 0.8, "--step", 0.1, "--arm", "arm.urdf", "-o", "tool.h5")
    assert (tmp_path / "reach.h5").read_bytes() == (tmp_path / "tool.h5").read_bytes()


def test_a_cluster_forgets_a_study_that_is_stopped(cluster, reference, monkeypatch):
    def stop(_):
        raise KeyboardInterrupt

    with pytest.raises(KeyboardInterrupt):
        reach(ReachStudy(*BOX, 0.1), reference, client=cluster, progress=stop)
    assert not cluster.futures
    with pytest.raises(ValueError, match="^threads: "):
        reach(ReachStudy(*BOX, 0.1), reference, client=cluster, threads=2)
    monkeypatch.setattr(_core, "__version__", "0.1")
    with pytest.raises(RuntimeError, match=r"^worker tcp://\S+ has qal_kinematics \S+, this process 0.1"):
        reach(ReachStudy(*BOX, 0.1), reference, client=cluster)


def test_no_client_is_said_in_a_line(reference, monkeypatch):
    study = ReachStudy(*BOX, 0.5)
    with pytest.raises(TypeError, match="^client: a dask.distributed.Client is expected.* not 'here'$"):
        reach(study, reference, client="here")
    monkeypatch.setitem(sys.modules, "distributed", None)
    with pytest.raises(ImportError, match=r"^client= needs Dask: [^\n]*python3-distributed[^\n]*$"):
        reach(study, reference, client="here")
