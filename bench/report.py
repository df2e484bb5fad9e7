#!/usr/bin/env python3
"""Times the library beside its peers and reports ratios: a table on standard output (also
bench.md), every figure in bench.json, the bars in bench.svg."""

import argparse
import datetime
import json
import os
import pathlib
import platform
import re
import statistics
import subprocess

import chart
import libraries

# What is compared with what, and the ratio that is to be kept (None: only reported). Those of
# whole arms are times, divided by the other's on the machine of docs/performance.md when idle:
# 2 us more than 0.333 and 0.364 us, 60 us and 2 ms beside 0.08 us. Those of lanes and batches are
# parts of what one pose took before there were lanes: 1.09 times what it takes in two.
RATIOS = [
    ("ArmFk", "fk/ArmFk", "solver's ComputeFk", "fk/solver", 1.05),
    ("ArmFk", "fk/ArmFk", "KDL with quaternion", "fk/KDL with quaternion", 0.28),
    ("ComputeFk", "fk/solver", "KDL", "fk/KDL", None),
    ("ComputeFk", "fk/solver", "floor", "fk/floor", None),
    ("ComputeIk", "ik/solver", "container alone", "ik/container", 2.5),
    ("ArmIk", "ik/ArmIk", "solver's ComputeIk", "ik/solver", 1.12),
    ("ArmJointIk", "ik/ArmJointIk", "solver's ComputeIk", "ik/solver", 1.12),
    ("ArmLineMoveIk", "ik/ArmLineMoveIk", "solver's ComputeIk", "ik/solver", 1.12),
    ("ArmJointIk, fallback", "ik/ArmJointIk fallback", "solver's ComputeIk", "ik/solver", None),
    ("ArmIk, pose known", "ik/ArmIk pose known", "solver's ComputeFk", "fk/solver", None),
    ("ArmIk", "ik/ArmIk", "KDL NR, wdls", "ik/KDL NR", None),
    ("ArmIk", "ik/ArmIk", "KDL LMA", "ik/KDL LMA", None),
    ("jog along an axis", "jog/along an axis", "solver's ComputeIk", "ik/solver", None),
    ("jog about an axis", "jog/about an axis", "solver's ComputeIk", "ik/solver", None),
    ("ramped line", "line/ramped", "KDL NR, wdls", "line/KDL NR", 1 / 12),
    ("ramped line", "line/ramped", "KDL LMA", "line/KDL LMA", 1 / 60),
    ("ramped line", "line/ramped", "ArmLineMoveIk", "ik/ArmLineMoveIk", None),
    ("line by count", "line/by count", "ramped line", "line/ramped", None),
    ("line by precision", "line/by precision", "ramped line", "line/ramped", None),
    ("CountLineSize", "line/count", "ramped line", "line/ramped", None),
    ("S-curve line", "line/S-curve", "ramped line", "line/ramped", None),
    ("trapezoid", "joint/trapezoid", "KDL trapezoid", "joint/KDL trapezoid", 0.28),
    ("trapezoid", "joint/trapezoid", "its ArmFk alone", "joint/ArmFk alone", 1.15),
    ("joint ramp", "joint/ramped", "its ArmFk alone", "joint/ArmFk alone", None),
    ("fixed-step joint move", "joint/fixed step", "its ArmFk alone", "joint/ArmFk alone", None),
    ("plan of one joint", "plan/one joint", "ArmFk", "fk/ArmFk", 1.6),
    ("plan of six from rest", "plan/six from rest", "ArmFk", "fk/ArmFk", 20),
    ("plan of six moving", "plan/six moving", "ArmFk", "fk/ArmFk", 45),
    ("sample of six joints", "plan/sample", "ArmFk", "fk/ArmFk", 0.35),
    ("cycle of a playback", "play/stop and resume", "ArmIk", "ik/ArmIk", 12),
    ("line within limits", "line/limited", "its waypoints' solves", "line/its solves", 3),
    ("one pose in 4 lanes", "lanes/one pose in 4", "in 2", "lanes/one pose in 2", None),
    ("a pose each in 2 lanes", "lanes/a pose each in 2", "one pose in 2", "lanes/one pose in 2",
     0.76),
    ("a pose each in 4 lanes", "lanes/a pose each in 4", "one pose in 2", "lanes/one pose in 2",
     0.39),
    ("a pose each in 8 lanes", "lanes/a pose each in 8", "one pose in 2", "lanes/one pose in 2",
     0.39),
    ("batch of Nearest", "batch/nearest", "one pose in 2 lanes", "lanes/one pose in 2", 0.38),
    ("batch of Inverse", "batch/all", "one pose in 2 lanes", "lanes/one pose in 2", 0.39),
    ("batch of Forward", "batch/forward", "ArmFk", "fk/ArmFk", 0.35),
    ("near a spherical wrist", "arm/spherical wrist", "its nearest member",
     "arm/spherical wrist nominal", 7.0),
    ("near three parallel axes", "arm/parallel axes", "its nearest member",
     "arm/parallel axes nominal", 6.5),
    ("offset wrist", "arm/offset wrist", "its forward", "arm/offset wrist forward", 750),
    ("no family", "arm/oblique wrist", "its forward", "arm/oblique wrist forward", 25000),
]
# Two threads on two cores give at least this many times the rate of one.
THREAD_RATE = 1.9


def run(program, selection, repetitions, core=None):
    """ns for each operation or waypoint in every repetition, by benchmark. With a core, all run on
    that one and repetitions alternate, so that what disturbs the machine disturbs them alike."""
    command = [program, f"--benchmark_filter={selection}", "--benchmark_min_time=0.02",
               f"--benchmark_repetitions={repetitions}", "--benchmark_format=json",
               "--benchmark_enable_random_interleaving=true"]
    pin = (lambda: os.sched_setaffinity(0, {core})) if core is not None else None
    output = subprocess.run(command, check=True, capture_output=True, text=True, preexec_fn=pin)
    times = {}
    for entry in json.loads(output.stdout)["benchmarks"]:
        if entry["run_type"] != "iteration":
            continue
        if entry.get("error_occurred"):
            raise SystemExit(f"{entry['run_name']}: {entry['error_message']}")
        times.setdefault(entry["run_name"], []).append(1e9 / entry["items_per_second"])
    return times


def spread(values):
    """Half the distance between the quartiles, as a fraction of the median."""
    low, middle, high = statistics.quantiles(values, n=4)
    return (high - low) / 2 / middle


def table(head, rows):
    lines = [head, ["---"] * len(head), *rows]
    return "\n".join("| " + " | ".join(str(cell) for cell in line) + " |" for line in lines)


def compare(times):
    ratios = []
    for what, ours, beside, other, target in RATIOS:
        if ours not in times and ours.startswith("lanes/"):
            continue  # the processor has not so many
        ratio = statistics.median(times[ours]) / statistics.median(times[other])
        ratios.append({"what": what, "beside": beside, "ratio": ratio, "target": target,
                       "spread": spread(times[ours]) + spread(times[other])})
    return ratios


def ratio_table(ratios):
    rows = []
    for r in ratios:
        target = "" if r["target"] is None else f"{r['target']:.3g}"
        met = "" if r["target"] is None else "met" if r["ratio"] <= r["target"] else "NOT MET"
        rows.append([r["what"], r["beside"], f"{r['ratio']:.3g}", f"±{r['spread']:.1%}", target,
                     met])
    return table(["time of", "beside", "ratio", "spread", "at most", ""], rows)


def scaling_table(times, memory):
    """Time for each waypoint relative to the shortest trajectory's, and the most bytes for each."""
    rows = {}
    for name, values in times.items():
        _, family, size = name.split("/")
        rows.setdefault(family, {})[int(size)] = statistics.median(values)
    # Where a waypoint takes little time, the system's for fresh pages shows.
    rows["joint ramp less memory alone"] = {
        size: rows["joint ramp"][size] - rows["memory alone"][size] for size in rows["joint ramp"]}
    sizes = sorted(rows["memory alone"])
    body = []
    for family, by_size in rows.items():
        longest = memory.get(f"scaling/{family}/{max(by_size)}")
        body.append([family,
                     *[f"{by_size[n] / by_size[sizes[0]]:.2f}" if n in by_size else "" for n in sizes],
                     f"{longest['peak_bytes'] / longest['items']:.0f}" if longest else ""])
    return table(["waypoints", *[f"{n:,}" for n in sizes], "peak bytes each"], body)


def thread_gains(times):
    """The rate of two threads in terms of that of one, by what they do."""
    ns = {}
    for name, values in times.items():
        what, threads = re.match(r"threads/(.*?)/\D*(\d)", name).groups()
        ns.setdefault(what, {})[threads] = statistics.median(values)
    return {what: by_threads["1"] / by_threads["2"] for what, by_threads in ns.items()}


def allocation_table(memory):
    return table(["one", "allocations"],
                 [[name, f"{entry['allocations'] / entry['items']:.2f}"]
                  for name, entry in memory.items() if not name.startswith("scaling/")])


def measure_memory(program):
    lines = subprocess.run([program], check=True, capture_output=True, text=True).stdout
    return {entry["name"]: entry for entry in map(json.loads, lines.splitlines())}


def table_of(program):
    return subprocess.run([program], check=True, capture_output=True, text=True).stdout.strip()


def machine(compiler):
    cpu = re.search(r"^model name\s*: (.*)$", pathlib.Path("/proc/cpuinfo").read_text(), re.M)
    return {"date": datetime.date.today().isoformat(), "processor": cpu[1] if cpu else "unknown",
            "cores": os.cpu_count(), "system": platform.freedesktop_os_release()["PRETTY_NAME"],
            "libc": " ".join(platform.libc_ver()), "compiler": compiler}


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--timer", required=True, help="qal_bench")
    parser.add_argument("--memory", required=True, help="qal_bench_memory")
    parser.add_argument("--solved", required=True, help="qal_bench_solved")
    parser.add_argument("--slowest", required=True, help="qal_bench_slowest")
    parser.add_argument("--reach", required=True, help="qal_bench_reach")
    parser.add_argument("--library", action="append", required=True)
    parser.add_argument("--compiler", required=True, help="its name, version and options")
    parser.add_argument("--out", required=True, type=pathlib.Path)
    parser.add_argument("--repetitions", type=int, default=15)
    arguments = parser.parse_args()

    times = run(arguments.timer, "^(fk|ik|jog|line|joint|arm|plan|play|lanes|batch)/", arguments.repetitions, core=0)
    scaling = run(arguments.timer, "^scaling/", 5, core=0)
    threads = run(arguments.timer, "^threads/", arguments.repetitions)
    memory = measure_memory(arguments.memory)
    solved = table_of(arguments.solved)
    slowest = table_of(arguments.slowest)
    reach = table_of(arguments.reach)
    gains = thread_gains(threads)
    ratios = compare(times)
    report = {"machine": machine(arguments.compiler), "ratios": ratios, "thread_gains": gains,
              "ns": {**times, **scaling, **threads}, "memory": list(memory.values()),
              "libraries": [libraries.describe(path) for path in arguments.library]}

    text = "\n\n".join([
        "\n".join(f"- {key}: {value}" for key, value in report["machine"].items()),
        ratio_table(ratios),
        "\n\n".join(f"Two threads on two cores, {what}: {gain:.2f} times the rate of one, at least "
                  f"{THREAD_RATE} ({'met' if gain >= THREAD_RATE else 'NOT MET'})."
                  for what, gain in gains.items()),
        solved, slowest, reach.replace("\n", "\n\n"),
        scaling_table(scaling, memory), allocation_table(memory),
        table(["library", "bytes, stripped", "relocations", "run at load"],
              [library.values() for library in report["libraries"]])])
    arguments.out.mkdir(parents=True, exist_ok=True)
    (arguments.out / "bench.json").write_text(json.dumps(report, indent=1) + "\n")
    (arguments.out / "bench.md").write_text(text + "\n")
    (arguments.out / "bench.svg").write_text(chart.bars(
        "Times faster than Orocos KDL, one core",
        [(f"{r['what']} beside {r['beside']}", 1 / r["ratio"])
         for r in ratios if r["beside"].startswith("KDL")]))
    print(text)


if __name__ == "__main__":
    main()
