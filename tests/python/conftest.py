"""Arms and joints that the tests take. ctest says where things are: QAL_ARMS, QAL_TOOL."""

import os
import re
import subprocess
from pathlib import Path

import numpy as np
import pytest

from qal_kinematics import Arm

ARMS = Path(os.environ["QAL_ARMS"])
START = [0, 0.3, 0.2, 0, 1, 0]


def tool(*arguments, status=0, output=False):
    """What `qal` prints: its output, or where it fails its message, without the command that says more."""
    run = subprocess.run([os.environ["QAL_TOOL"], *map(str, arguments)], capture_output=True, text=True)
    assert run.returncode == status, run.stderr
    message = run.stderr.strip().split(": ", 1)[-1]
    return run.stdout if status == 0 or output else re.sub(r"; qal explain \w+ says more$", "", message)


@pytest.fixture(scope="session")
def reference():
    return Arm.reference()


@pytest.fixture(scope="session", params=["reference.urdf", "laboratory_offset.urdf", "service_parallel.urdf"])
def arm(request):
    return Arm.from_file(ARMS / request.param)


@pytest.fixture(scope="session")
def joints(reference):
    return np.random.default_rng(7).uniform(0.9 * reference.lower, 0.9 * reference.upper, (2000, 6))
