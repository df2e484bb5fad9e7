"""Examples run; they and the stubs have the types that are there; the code of the docs runs."""

import os
import re
import subprocess
import sys
from pathlib import Path

import numpy as np
import pytest
from conftest import ARMS, START

import qal_kinematics
from qal_kinematics import Arm
from qal_kinematics._plot import skeleton

ROOT = ARMS.parent
EXAMPLES = ROOT / "examples" / "python"
PROGRAM = ROOT / "examples" / "inspection.toml"


def run(*command, **kwargs):
    env = {**os.environ, "MPLBACKEND": "Agg", "PYTHONPATH": str(Path(qal_kinematics.__file__).parent.parent)}
    done = subprocess.run([sys.executable, *map(str, command)], env=env, capture_output=True, text=True, **kwargs)
    assert done.returncode == 0, done.stdout + done.stderr
    return done.stdout


@pytest.mark.parametrize("name, arguments, told", [
    ("point_cloud.py", [], r"of 20000 points are reached\n(  \d+: \w+\n)+largest error \d\.\de-1[0-9] m"),
    ("reach_of_a_box.py", [], r"(?m)^ +0\.025( +\d+\.\d%){2}$"),
    ("compare_arms.py", [ARMS / "foundry_spherical.urdf", ARMS / "bench_spherical.urdf"], r"(?s)foundry.*bench"),
    ("feed_controller.py", [PROGRAM], r"stopped within 0\.\d+ s, .*\nwent on to the end at half the speed: \d{4} cycles"),
    ("tour.py", [PROGRAM, "."], r"within every limit"),
])
def test_examples_run(name, arguments, told, tmp_path):
    assert re.search(told, run(EXAMPLES / name, *arguments, cwd=tmp_path))
    assert name != "tour.py" or all(
        (tmp_path / f"{picture}.png").stat().st_size > 20_000 for picture in ("ways", "curves", "path"))


def test_the_code_of_the_docs_runs(tmp_path):
    blocks = re.findall(r"```python\n(.*?)```", (ROOT / "docs" / "python.md").read_text(), re.S)
    assert len(blocks) >= 2
    (tmp_path / "arms").symlink_to(ARMS)
    run("-c", "\n".join(blocks), cwd=tmp_path)


def test_types_are_those_that_are_there(tmp_path):
    allowed = Path(__file__).parent / "stubtest.allow"
    run("-m", "mypy.stubtest", "qal_kinematics", "--concise", "--allowlist", allowed, cwd=tmp_path)
    scripts = [path for path in EXAMPLES.glob("*.py") if path.name != "tour.py"]
    mypy = ["-m", "mypy", "--strict", "--ignore-missing-imports", "--allow-any-generics"]
    run(*mypy, *scripts, cwd=tmp_path)
    wrong = tmp_path / "wrong.py"
    wrong.write_text("from qal_kinematics import Arm\nArm.reference().forward([0] * 6, thread=1)\n")
    with pytest.raises(AssertionError, match='Unexpected keyword argument "thread"'):
        run(*mypy, wrong, cwd=tmp_path)


# The reference arm's measures: shoulder 0.38 m up and 0.05 m out, upper arm 0.4 m; its wrist's axes meet.
def test_a_drawn_arm_has_the_measures_of_the_arm(arm):
    drawn = skeleton(arm, START)
    assert drawn[-1] == pytest.approx(arm.forward(START).positions, abs=1e-12)
    lengths = [np.diff(skeleton(arm, joints), axis=0) for joints in (START, np.array(START) + 0.2)]
    first, second = (np.linalg.norm(each, axis=1) for each in lengths)
    assert first == pytest.approx(second, abs=1e-9)  # rigid
    if arm.name == "reference":
        assert drawn[1] == pytest.approx([0, 0, 0.38]) and drawn[2] == pytest.approx([0.05, 0, 0.38])


def test_matplotlib_is_imported_when_something_is_drawn():
    run("-c", "import sys, qal_kinematics; assert 'matplotlib' not in sys.modules and 'scipy' not in sys.modules")
