"""What a shared library costs before it does anything: size, relocations, functions run at load."""

import pathlib
import re
import subprocess
import tempfile


def _output(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def _stripped_size(path):
    with tempfile.TemporaryDirectory() as directory:
        copy = pathlib.Path(directory) / "stripped.so"
        subprocess.run(["strip", "-o", copy, path], check=True)
        return copy.stat().st_size


def _run_at_load(path):
    """Names of the library's initialisers, without the compiler's own frame_dummy."""
    section = re.search(r"\.init_array\s+INIT_ARRAY\s+([0-9a-f]+) [0-9a-f]+ ([0-9a-f]+)",
                        _output("readelf", "-SW", path))
    start, size = int(section[1], 16), int(section[2], 16)
    names = {int(address, 16): name for address, name in
             re.findall(r"^([0-9a-f]+) [tT] (\S+)$", _output("nm", path), re.M)}
    found = [names[int(target, 16)] for place, target in
             re.findall(r"^([0-9a-f]+) .*R_X86_64_RELATIV\w*\s+([0-9a-f]+)$",
                        _output("readelf", "-rW", path), re.M)
             if start <= int(place, 16) < start + size]
    return [name for name in found if name != "frame_dummy"]


def describe(path):
    relocations = re.findall(r"R_X86_64_", _output("readelf", "-rW", path))
    return {"library": pathlib.Path(path).name, "bytes": _stripped_size(path),
            "relocations": len(relocations),
            "run_at_load": ", ".join(_run_at_load(path)) or "nothing"}
