#!/usr/bin/env python3
"""Counts the instructions of every benchmark of the library and compares them with the figures kept
in instructions.json. Times are noisy, counts are not: they are the guard against regressions."""

import argparse
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile

FIGURES = pathlib.Path(__file__).with_name("instructions.json")
TOLERANCE = 0.05
# So that counts depend neither on the variant of libm that the processor would get, nor on when the
# loader resolves a symbol, nor on the order in which malloc finds its free blocks.
ENVIRONMENT = {
    "GLIBC_TUNABLES": "glibc.cpu.hwcaps=-AVX2,-FMA,-FMA4,-AVX:glibc.malloc.tcache_count=64",
    "LD_BIND_NOW": "1",
}


# A second time with the lanes that AVX2 gives, for what makes use of them; valgrind has no AVX-512.
WIDE_ENVIRONMENT = {
    **ENVIRONMENT, "GLIBC_TUNABLES": "glibc.cpu.hwcaps=-FMA,-FMA4:glibc.malloc.tcache_count=64"}
WIDE = re.compile("^(ik|batch)/")
WIDE_SUFFIX = " in four lanes"


def count(program):
    """Instructions for each operation or waypoint, by benchmark."""
    counts = count_in(program, "--once", ENVIRONMENT)
    if "avx2" in pathlib.Path("/proc/cpuinfo").read_text():
        wide = count_in(program, "--once=lanes", WIDE_ENVIRONMENT)
        counts |= {name + WIDE_SUFFIX: figure for name, figure in wide.items() if WIDE.match(name)}
    return dict(sorted(counts.items()))


def count_in(program, which, environment):
    counts = {}
    with tempfile.TemporaryDirectory() as directory:
        subprocess.run(
            ["valgrind", "-q", "--tool=callgrind", "--collect-atstart=no",
             f"--callgrind-out-file={directory}/dump", program, which],
            check=True, env={**os.environ, **environment})
        for dump in pathlib.Path(directory).glob("dump.*"):
            text = dump.read_text()
            trigger = re.search(r"^desc: Trigger: Client Request: (.*)/(\d+)$", text, re.M)
            total = re.search(r"^totals: (\d+)$", text, re.M)
            counts[trigger[1]] = round(int(total[1]) / int(trigger[2]))
    return counts


def compare(kept, counts):
    """Prints a line for each benchmark and returns whether all are within the tolerance."""
    good = True
    for name in sorted(kept | counts):
        if name.endswith(WIDE_SUFFIX) and not any(n.endswith(WIDE_SUFFIX) for n in counts):
            continue  # on a processor without AVX2
        if name not in kept or name not in counts:
            print(f"{name}: {'no figure is kept' if name in counts else 'is gone'}")
            good = False
            continue
        change = counts[name] / kept[name] - 1
        verdict = ""
        if change > TOLERANCE:
            verdict = "  TOO MANY"
            good = False
        elif change < -TOLERANCE:
            verdict = "  fewer: keep the new figure"
        print(f"{name:24} {kept[name]:8} {counts[name]:8} {change:+7.1%}{verdict}")
    return good


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("program", help="the benchmark program")
    parser.add_argument("--update", action="store_true", help="keep the counts as the new figures")
    arguments = parser.parse_args()
    counts = count(arguments.program)
    if arguments.update:
        FIGURES.write_text(json.dumps(counts, indent=2) + "\n")
        return 0
    print(f"{'instructions':24} {'kept':>8} {'now':>8}  change")
    if compare(json.loads(FIGURES.read_text()), counts):
        return 0
    print(f"More than {TOLERANCE:.0%} over the kept figures, or not the same benchmarks. If that is "
          "meant: check.py --update, with the reason in the commit.")
    return 1


if __name__ == "__main__":
    sys.exit(main())
