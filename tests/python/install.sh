#!/usr/bin/env bash
# `pip install .` in a fresh environment, without the internet, of a copy of the source tree, with what
# is already compiled: install.sh PYTHON SOURCE BUILD FOLDER
set -euo pipefail
python=$1 source=$2 build=$3 folder=$4

rm -rf "$folder"
mkdir -p "$folder/source/docs"
cp -r "$source"/{CMakeLists.txt,LICENSE,pyproject.toml,setup.py,python} "$folder/source"
cp "$source/docs/python.md" "$folder/source/docs"
"$python" -m venv --system-site-packages "$folder/venv"
cd "$folder"
QAL_BUILD_DIR=$build venv/bin/pip install -q --no-build-isolation --no-index ./source
env -u PYTHONPATH venv/bin/python - "$folder" "$source/CMakeLists.txt" <<'END'
import pathlib, re, sys
import qal_kinematics as qal

assert qal.__file__.startswith(sys.argv[1]), qal.__file__
assert f"VERSION {qal.__version__} " in pathlib.Path(sys.argv[2]).read_text()
arm = qal.Arm.reference()
assert abs(arm.nearest(arm.forward([0.1] * 6), [0] * 6) - 0.1).max() < 1e-12
folder = pathlib.Path(qal.__file__).parent
assert (folder / "py.typed").exists() and (folder / "_core.pyi").exists()
END
