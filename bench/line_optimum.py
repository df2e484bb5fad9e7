#!/usr/bin/python3
"""Holds the durations of planned lines against the shortest that the same limits allow.

Reads a JSON object a row: name, duration_s; limits {speed, acceleration, jerk} of the path's
parameter s; joints {velocity, acceleration, jerk}, a list each; s, a grid from 0 to 1 that is fine
where the path bends and at its ends; dq, ddq, dddq, the derivatives of the joints by s at each of
its values. Motions begin and end at rest. Prints for each, durations in seconds:

  planned  as the row says
  optimum  that of a motion which keeps every limit at 11 points of each interval
  ratio    planned / optimum
  error    how far the optimum seems above that of ever finer intervals, as a share
  bound    no motion is shorter, by velocities and accelerations alone or by the jerk of s or of a
           joint on its way from start to end
  grid     by how much time every other value of s left out would change the limits kept, as a share

The optimum is a local one of a discretised problem, that of time_optimum.py. --self-check measures
how far it is from cases of known optimum, from four times as many intervals and from what random
starts lead to, and fails where that is more than 0.1 %. Needs Debian's python3-scipy.
"""

import argparse
import json
import statistics
import sys

try:
    import numpy as np
    import time_optimum as optimum
except ImportError as error:
    sys.exit(f"line_optimum: {error}: install python3-scipy and run this with /usr/bin/python3")

COLUMNS = ("planned", "optimum", "ratio", "error", "bound", "grid")


def read(stream):
    for number, line in enumerate(stream, 1):
        try:
            row = json.loads(line)
            shapes = {np.shape(row[key]) for key in ("dq", "ddq", "dddq")}
            if shapes != {(len(row["s"]), len(row["joints"]["jerk"]))}:
                raise ValueError(f"dq, ddq, dddq need a row for each s, a number for each joint: {shapes}")
            if row["s"][0] != 0 or row["s"][-1] != 1 or row["duration_s"] <= 0:
                raise ValueError("s goes from 0 to 1, and duration_s is positive")
            yield row, optimum.Path(row)
        except KeyError as error:
            sys.exit(f"line_optimum: row {number}: {error} is missing")
        except (TypeError, ValueError) as error:
            sys.exit(f"line_optimum: row {number}: {error}")


def compare(row, path, intervals):
    """Figures of COLUMNS."""
    duration, knots, x, error = optimum.shortest(path, intervals)
    coarse = optimum.Problem(optimum.Path(row, 2), knots, optimum.BY_JERK, optimum.EVENLY)
    return (row["duration_s"], duration, row["duration_s"] / duration, error, optimum.bound(path),
            abs(coarse.excess(x).max() - 1))


def report(rows, intervals):
    print("".join(f"{column:>10}" for column in COLUMNS), " name")
    names, table = [], []
    for row, path in rows:
        try:
            table.append(compare(row, path, intervals))
        except ArithmeticError as error:
            sys.exit(f"line_optimum: {row['name']}: no optimum: {error}")
        names.append(row["name"])
        print("".join(f"{figure:10.2e}" if column in ("error", "grid") else f"{figure:10.4f}"
                      for column, figure in zip(COLUMNS, table[-1])), "", names[-1], flush=True)
    if not table:
        sys.exit("line_optimum: no rows to read")
    ratios, errors, grids = ([line[COLUMNS.index(c)] for line in table] for c in ("ratio", "error", "grid"))
    print(f"\n{len(table)} lines: ratio median {statistics.median(ratios):.4f}, least {min(ratios):.4f} "
          f"({names[np.argmin(ratios)]}), worst {max(ratios):.4f} ({names[np.argmax(ratios)]}); "
          f"error at most {max(errors):.1e}, grid {max(grids):.1e}")


def example(kind, limits=(1, 4, 40), joints=(3, 10, 60), delta=0.1):
    """A line on which no joint moves ("still"), joint 3 moves evenly, joint 4 turns past a point
    at the distance delta, or joint 6 with it, back, and joint 1 evenly ("bend")."""
    s = 0.5 + delta * np.sinh(np.linspace(-1, 1, 2001) * np.arcsinh(0.5 / delta))
    s[[0, -1]] = 0, 1
    x, dq = s - 0.5, np.zeros((3, len(s), 6))
    r = x**2 + delta**2
    turn = np.array([-delta / r, 2 * delta * x / r**2, 2 * delta / r**2 - 8 * delta * x**2 / r**3])
    dq[0, :, 2] = 5 * (kind == "even")
    dq[:, :, 3] = turn * (kind in ("turn", "bend"))
    dq[:, :, 5] = -turn * (kind == "bend")
    dq[0, :, 0] = kind == "bend"
    return optimum.Path({"s": s, "dq": dq[0], "ddq": dq[1], "dddq": dq[2],
                         "limits": dict(zip(("speed", "acceleration", "jerk"), limits)),
                         "joints": {order: [limit] * 6 for order, limit in
                                    zip(("velocity", "acceleration", "jerk"), joints)}})


def integrated(path, knots, x):
    """Joint 4's way, and its velocity and acceleration at the end, from its jerk over time."""
    problem = optimum.Problem(path, knots, optimum.BY_JERK, optimum.EVENLY)
    y = problem.values(x)
    b, jerk = y[..., 0].ravel(), problem.bounds_and_loads(y)[1][..., problem.is_jerk][..., 4].ravel()
    u = (knots[:-1, None] + np.diff(knots)[:, None] * optimum.EVENLY[0]).ravel()
    integral = lambda f, t: np.append(0, np.cumsum((f[1:] + f[:-1]) / 2 * np.diff(t)))
    t = integral(b**-0.5, u)
    acceleration = integral(jerk * path.limits[2][4] * b**0.5, t)
    velocity = integral(acceleration, t)
    return integral(velocity, t)[-1], velocity[-1], acceleration[-1]


def self_check(intervals):
    failed = False

    def check(what, figure, most=1e-3):
        nonlocal failed
        good = abs(figure) <= most
        failed |= not good
        print(f"{'ok  ' if good else 'FAIL'} {figure:10.2e} {what}", flush=True)

    for limits in ((1, 4, 40), (10, 4, 40), (10, 40, 40), (0.5, 40, 40)):
        lax = (1e4, 1e6, 1e8)
        for kind, path, way in (
                ("s alone", example("still", limits), 1), ("joint 3, even", example("even", lax, limits), 5),
                ("joint 4 past a point", example("turn", lax, limits), 2 * np.arctan(5))):
            known = optimum.seven_phases(way, *limits)
            check(f"{kind}, limits {limits}: to {known:.6f} s",
                  optimum.shortest(path, intervals)[0] / known - 1)
    random = np.random.default_rng(1)
    for delta in (0.1, 0.01, 0.001, 0.0001):
        path = example("bend", delta=delta)
        duration, knots, x, error = optimum.shortest(path, intervals)
        fine = optimum.shortest(path, 4 * intervals)[0]
        check(f"bend at {delta}: {duration:.6f} s to {fine:.6f} s of four times the intervals",
              duration / fine - 1)
        way, *rest = integrated(path, knots, x)
        check("  joint 4's way by its jerk, to the path's", way / (-2 * np.arctan(0.5 / delta)) - 1)
        check("  its speed and acceleration at the end, of the limits",
              max(abs(rest[0]) / 3, abs(rest[1]) / 10))
        problem = optimum.Problem(path, knots, optimum.BY_JERK)
        found = []
        for _ in range(4):
            waves = sum(size * np.polynomial.Chebyshev.basis(k, [0, 1]) for k, size in
                        enumerate(random.normal(size=6)))
            b = np.exp(waves(knots))
            y = problem.values(optimum.minimise(problem, np.stack([b, b * waves.deriv()(knots)], 1).ravel()))
            found.append(problem.durations(y).sum())
        check("  spread of what four random starts lead to", max(found) / min(found) - 1)
        check(f"  bound of {optimum.bound(path):.6f} s, by how much it is above", max(
            0, optimum.bound(path) / fine - 1))
    sys.exit(1 if failed else 0)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("file", nargs="?", type=argparse.FileType(), default=sys.stdin)
    parser.add_argument("--intervals", type=int, default=400, help="of s, at least 80 (%(default)s)")
    parser.add_argument("--self-check", action="store_true")
    arguments = parser.parse_args()
    try:
        if arguments.self_check:
            self_check(arguments.intervals)
        report(read(arguments.file), arguments.intervals)
    except KeyboardInterrupt:
        sys.exit("line_optimum: stopped")


if __name__ == "__main__":
    main()
