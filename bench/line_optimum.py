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
           joint on its way from start to end; discretised as well: on 25 random paths it was at
           most 0.035 % below what 1600 intervals gave, and above on none
  grid     by how much time every other value of s left out would change the limits kept, as a
           share: beyond 0.1 the grid is too coarse

The optimum is a local one of a discretised problem, that of time_optimum.py. --self-check measures
how far it is from cases of known optimum, from four times as many intervals (fails beyond 0.1 %)
and from what random starts lead to (0.001 %). With 400 intervals it was 0.0013 % at most above the
known optima and 0.007 % above four times the intervals; on 24 random paths with up to three bends
as sharp as 1e-4 of their length, 0.06 % above, where the column said 0.11 %. Needs Debian's
python3-scipy.
"""

import argparse
import json
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
                raise ValueError(f"dq, ddq, dddq have rows and joints {shapes}")
            if row["s"][0] != 0 or row["s"][-1] != 1 or not row["duration_s"] > 0:
                raise ValueError("s must go from 0 to 1, and duration_s be positive")
            path = optimum.Path(row)
            if not (np.isfinite(path.dq.c).all() and np.min(path.limits) > 0):
                raise ValueError("derivatives must be finite, and limits positive")
            yield row["name"], row, path
        except KeyError as error:
            sys.exit(f"line_optimum: row {number} lacks {error}; --help says what a row holds")
        except (TypeError, ValueError) as error:
            sys.exit(f"line_optimum: row {number}: {error}; --help says what a row holds")


def compare(row, path, intervals):
    """Figures of COLUMNS."""
    duration, knots, x, error = optimum.shortest(path, intervals)
    coarse = optimum.Problem(optimum.Path(row, 2), knots, optimum.BY_JERK, optimum.EVENLY)
    return (row["duration_s"], duration, row["duration_s"] / duration, error, optimum.bound(path),
            abs(coarse.excess(x).max() - 1))


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


def integrated(problem, path, knots, x):
    """Joint 4's way, and its velocity and acceleration at the end, from its jerk over time."""
    y = problem.values(x)
    b, loads = y[..., 0].ravel(), problem.bounds_and_loads(y)[1]
    jerks = loads[..., problem.is_jerk][..., 4].ravel() * path.limits[2][4] * b**0.5
    u = (knots[:-1, None] + np.diff(knots)[:, None] * optimum.EVENLY[0]).ravel()

    def integral(f, over):
        return np.append(0, np.cumsum((f[1:] + f[:-1]) / 2 * np.diff(over)))

    t = integral(b**-0.5, u)
    acceleration = integral(jerks, t)
    velocity = integral(acceleration, t)
    return integral(velocity, t)[-1], velocity[-1], acceleration[-1]


def starts(knots, count):
    """Smooth random b above 0."""
    random = np.random.default_rng(1)
    for _ in range(count):
        waves = np.polynomial.Chebyshev(random.normal(size=6), [0, 1])
        b = np.exp(waves(knots))
        yield np.stack([b, b * waves.deriv()(knots)], 1).ravel()


def known_optima(intervals):
    """(share by which it is off, most, what) of motions of one joint, or of s, alone."""
    lax, turn = (1e4, 1e6, 1e8), 2 * np.arctan(5)
    for limits in ((1, 4, 40), (10, 4, 40), (10, 40, 40), (0.5, 40, 40)):
        for what, path, way in (("s", example("still", limits), 1),
                                ("joint 3, evenly", example("even", lax, limits), 5),
                                ("joint 4 past a point", example("turn", lax, limits), turn)):
            known = optimum.seven_phases(way, *limits)
            found = optimum.shortest(path, intervals)[0]
            yield found / known - 1, 1e-3, f"{what}, limits {limits}: to {known:.6f} s"


def bends(intervals):
    """Likewise of three joints past a point."""
    for delta in (0.1, 0.01, 0.001, 0.0001):
        path = example("bend", delta=delta)
        duration, knots, x, _ = optimum.shortest(path, intervals)
        fine = optimum.shortest(path, 4 * intervals)[0]
        yield (duration / fine - 1, 1e-3,
               f"past {delta}: {duration:.6f} s to {fine:.6f} s of four times the intervals")
        between = optimum.Problem(path, knots, optimum.BY_JERK, optimum.EVENLY)
        way, velocity, acceleration = integrated(between, path, knots, x)
        yield way / (-2 * np.arctan(0.5 / delta)) - 1, 1e-3, "  joint 4's way by its jerk"
        yield (max(abs(velocity) / 3, abs(acceleration) / 10), 1e-3,
               "  its velocity and acceleration at the end, of the limits")
        problem = optimum.Problem(path, knots, optimum.BY_JERK)
        ends = [problem.durations(problem.values(optimum.minimise(problem, start))).sum()
                for start in (x, *starts(knots, 4))]
        yield max(ends) / min(ends) - 1, 1e-5, "  between where it and four random starts lead"
        bound = optimum.bound(path)
        yield max(0, bound / fine - 1), 0, f"  bound of {bound:.6f} s above it"
    path = example("bend", (1, 4, 1e6), (3, 10, 1e6), delta=0.01)
    found = optimum.shortest(path, intervals)[0]
    yield optimum.bound(path) / found - 1, 1e-3, f"bound, to {found:.6f} s where jerks hardly count"


def self_check(intervals):
    failures = 0
    for check in (known_optima, bends):
        for off, most, what in check(intervals):
            failures += not abs(off) <= most
            print(f"{'ok  ' if abs(off) <= most else 'FAIL'} {off:9.1e} {what}", flush=True)
    if failures:
        sys.exit(f"line_optimum: {failures} checks FAILED")


def main():
    parser = argparse.ArgumentParser(
        description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("file", nargs="?", type=argparse.FileType(), default=sys.stdin)
    parser.add_argument("--intervals", type=int, default=400, help="at least 80 (%(default)s)")
    parser.add_argument("--self-check", action="store_true")
    arguments = parser.parse_args()
    if arguments.intervals < 80:
        parser.error("--intervals: at least 80")
    try:
        if arguments.self_check:
            self_check(arguments.intervals)
        else:
            optimum.report("lines", COLUMNS, read(arguments.file),
                           lambda *row: compare(*row, arguments.intervals))
    except KeyboardInterrupt:
        sys.exit("line_optimum: stopped")


if __name__ == "__main__":
    main()
