#!/usr/bin/python3
"""Holds how long stops take against the shortest that the same path and limits allow.

Reads a JSON object a row: name; stop_s, how long a stop took; start {s, speed, acceleration}, where
it began, by the path's parameter s; acceleration, what d2s/dt2 was at even parts of stop_s, from 0
to all of it; s, a grid along the path; rates, a list: of each joint or vector of the tool d1, d2,
d3, its derivatives by s at the grid's values, a list of numbers or of 3 of them, and velocity,
acceleration, jerk, the limits of their lengths. Prints for each, durations in seconds:

  stop     as the row says
  optimum  the shortest way to rest that is found
  ratio    stop / optimum
  excess   by how much the optimum exceeds limits where it was held to them, as a share

The jerk of s is constant in each of N parts of an unknown duration, and limits hold at both ends and
in the middle of each. Whether there are such jerks for a duration is asked of linear programs, each about the
motion that the one before has led to, within a distance from it that adapts; the first is about the
stop itself. So the optimum is a local one; durations are halved between. The limits are taken as 1.001 times what they are, as
that is how far a stop may exceed them between samples. --self-check measures how far it is from
stops whose optimum is known (fails beyond 0.2 %). Needs Debian's python3-scipy.
"""

import argparse
import json
import statistics
import sys

try:
    import numpy as np
    from scipy.interpolate import CubicSpline
    from scipy.optimize import linprog
except ImportError as error:
    sys.exit(f"stop_optimum: {error}: install python3-scipy and run this with /usr/bin/python3")

COLUMNS = ("stop", "optimum", "ratio", "excess")
TOLERANCE = 1.001
ENOUGH = 1e-4  # beyond that, a share of a limit, which is no more than looks between may find


class Path:
    """Derivatives of joints and of the tool by s: an array of points, rates, dimensions."""

    def __init__(self, row):
        s = np.array(row["s"], float)
        columns, self.groups = [[], [], []], []
        for rate in row["rates"]:
            by_s = [np.array(rate[key], float).reshape(len(s), -1) for key in ("d1", "d2", "d3")]
            self.groups.append(by_s[0].shape[1])
            for column, values in zip(columns, by_s):
                column.append(np.pad(values, ((0, 0), (0, 3 - values.shape[1]))))
        self.splines = [CubicSpline(s, np.stack(column, 1)) for column in columns]
        self.splines.append(self.splines[2].derivative())
        self.end = s[-1]
        self.limits = TOLERANCE * np.array([[rate[key] for rate in row["rates"]] for key in
                                            ("velocity", "acceleration", "jerk")], float)

    def derivatives(self, s):
        inside = np.clip(s, self.splines[0].x[0], self.end)
        return [spline(inside) for spline in self.splines]


class Motion:
    """s over time from 0 to T, in N parts: linear in the jerks, by which T^3 jerk is meant."""

    def __init__(self, start, parts):
        self.start = start
        at = np.repeat(np.arange(parts), 3), np.tile([0, 0.5, 1], parts)  # part, place in it
        self.time = (at[0] + at[1]) / parts
        whole = np.clip(at[0][:, None] - np.arange(parts), 0, 1) > 0
        t = self.time[:, None] - np.arange(parts) / parts
        h = 1 / parts
        inside = at[0][:, None] == np.arange(parts)
        self.jerk = inside.astype(float)
        self.acceleration = np.where(whole, h, np.where(inside, t, 0))
        self.speed = np.where(whole, h * (t - h / 2), np.where(inside, t**2 / 2, 0))
        self.place = np.where(whole, h * (t**2 - t * h + h**2 / 3) / 2,
                              np.where(inside, t**3 / 6, 0))

    def moments(self, duration, jerks):
        """s and its first three derivatives by t / T."""
        s, v, a = self.start
        t = self.time
        return (s + v * duration * t + a * duration**2 * t**2 / 2 + self.place @ jerks,
                v * duration + a * duration**2 * t + self.speed @ jerks,
                a * duration**2 + self.acceleration @ jerks, self.jerk @ jerks)

    def scale(self, duration):
        """Of the jerks."""
        _, v, a = self.start
        return 10 * (abs(v) * duration + abs(a) * duration**2)


def linearised(path, motion, duration, jerks):
    """Rates as shares of their limits, and their derivatives by the jerks: a row for each point,
    kind and rate."""
    s, v, a, j = motion.moments(duration, jerks)
    slopes = motion.place, motion.speed, motion.acceleration, motion.jerk
    r1, r2, r3, r4 = path.derivatives(s)
    v, a, j = (x[:, None, None] for x in (v, a, j))
    kinds = ((r1 * v, (r2 * v, r1)),
             (r2 * v**2 + r1 * a, (r3 * v**2 + r2 * a, 2 * r2 * v, r1)),
             (r3 * v**3 + 3 * r2 * v * a + r1 * j,
              (r4 * v**3 + 3 * r3 * v * a + r2 * j, 3 * r3 * v**2 + 3 * r2 * a, 3 * r2 * v, r1)))
    loads, gradients = [], []
    for power, (limit, (vector, partials)) in enumerate(zip(path.limits, kinds), 1):
        most = limit * duration**power
        length = np.linalg.norm(vector, axis=2)
        direction = vector / np.maximum(length, 1e-30)[..., None]
        gradient = sum(np.einsum("prd,prd->pr", direction, partial)[..., None] * slope[:, None, :]
                       for partial, slope in zip(partials, slopes)) / most[:, None]
        # The start is what it is, but for its jerk.
        first = 0 if power == 3 else 1
        loads.append((length / most)[first:].ravel())
        gradients.append(gradient[first:].reshape(-1, gradient.shape[-1]))
    return np.concatenate(loads), np.concatenate(gradients)


def kept(path, motion, duration, jerks):
    """Jerks with which limits are kept best in a duration, and the largest share of a limit."""
    reach, best = 4.0, np.inf
    for _ in range(25):
        loads, gradients = linearised(path, motion, duration, jerks)
        _, v, a, _ = motion.moments(duration, jerks)
        most = loads.max() if max(abs(v[-1]), abs(a[-1])) < 1e-9 * motion.scale(duration) else np.inf
        if most < best - 1e-5:
            best, kept_jerks = most, jerks
            kept_loads, kept_gradients = loads, gradients
            reach = min(2 * reach, 4)
        elif np.isfinite(best):
            reach *= 0.3
        if best <= 1 + ENOUGH or reach < 0.02:
            break
        if np.isfinite(best):
            jerks, loads, gradients = kept_jerks, kept_loads, kept_gradients
        _, v, a, _ = motion.moments(duration, jerks)
        scale = motion.scale(duration)
        rows = gradients * scale
        change = reach * np.abs(rows).sum(1)
        # A length is one of some direction, which may turn around.
        above, below = loads + change > 0.9, change - loads > 0.9
        found = linprog(
            np.append(np.zeros(len(jerks)), 1),
            A_ub=np.column_stack([np.concatenate([rows[above], -rows[below]]),
                                  -np.ones(above.sum() + below.sum())]),
            b_ub=np.concatenate([-loads[above], loads[below]]),
            A_eq=np.column_stack([np.stack([motion.speed[-1], motion.acceleration[-1]]),
                                  np.zeros(2)]),
            b_eq=-np.array([v[-1], a[-1]]) / scale,
            bounds=[(-reach, reach)] * len(jerks) + [(0.95, None)], method="highs")
        if found.status != 0:
            break
        if np.isfinite(best) and found.x[-1] > best - 1e-5:
            break
        jerks = jerks + scale * found.x[:-1]
    return (kept_jerks, best) if np.isfinite(best) else (jerks, np.inf)


def shortest(path, start, guess_s, accelerations, parts=60):
    """Duration of the shortest stop, and by how much limits are exceeded."""
    motion = Motion(start, parts)
    times = np.linspace(0, 1, len(accelerations))
    nodes = np.interp(np.linspace(0, 1, parts + 1), times, accelerations)
    jerks, excess = kept(path, motion, guess_s, np.diff(nodes) * parts * guess_s**2)
    long = guess_s
    while excess > 1 + 10 * ENOUGH:  # the guess isn't one
        long *= 1.1
        if long > 10 * guess_s:
            raise ArithmeticError("no stop is found")
        jerks, excess = kept(path, motion, long, jerks)
    short = 0.5 * long
    while long - short > 2e-4 * long:
        middle = (long + short) / 2
        # As much of the stop's shape as is left.
        trial, over = kept(path, motion, middle, jerks * (middle / long)**3)
        if over <= 1 + ENOUGH:
            long, jerks, excess = middle, trial, over
        else:
            short = middle
    return long, excess - 1


def read(stream):
    for number, line in enumerate(stream, 1):
        try:
            row = json.loads(line)
            start = [float(row["start"][key]) for key in ("s", "speed", "acceleration")]
            yield row["name"], float(row["stop_s"]), start, row["acceleration"], Path(row)
        except KeyError as error:
            sys.exit(f"stop_optimum: row {number} lacks {error}; --help says what a row holds")
        except (TypeError, ValueError) as error:
            sys.exit(f"stop_optimum: row {number}: {error}; --help says what a row holds")


def report(rows, parts):
    table = []
    for name, stop, start, accelerations, path in rows:
        optimum, excess = shortest(path, start, stop, accelerations, parts)
        table.append((stop / optimum, stop - optimum, excess, name))
        if len(table) == 1:
            print("".join(f"{column:>10}" for column in COLUMNS), " name")
        print(f"{stop:10.4f}{optimum:10.4f}{stop / optimum:10.4f}{excess:10.1e}  {name}", flush=True)
    if not table:
        sys.exit("stop_optimum: no stop to compare")
    ratios = sorted(ratio for ratio, *_ in table)
    worst = max(table)
    print(f"\n{len(table)} stops: ratio median {statistics.median(ratios):.4f}, "
          f"0.95 quantile {ratios[int(0.95 * (len(ratios) - 1))]:.4f}, "
          f"worst {worst[0]:.4f} ({worst[3]}); beyond 1.1: {sum(r > 1.1 for r in ratios)}; "
          f"excess at most {max(excess for _, _, excess, _ in table):.1e}")


def self_check(parts):
    """Stops of a joint that turns evenly with s, whose optimum is known; from bad guesses."""
    failures = 0
    for limit_a, limit_j in ((4, 40), (40, 40), (2, 40)):
        for v, a in ((1, 0), (1, 0.9 * limit_a), (0.3, -0.5 * min(limit_a, (0.6 * limit_j)**0.5)),
                     (0.01, 0.1)):
            s = np.linspace(0, 10, 50)
            row = {"s": s, "rates": [{"d1": 2 + 0 * s, "d2": 0 * s, "d3": 0 * s, "velocity": 100,
                                      "acceleration": 2 * limit_a, "jerk": 2 * limit_j}]}
            acc, jerk = limit_a * TOLERANCE, limit_j * TOLERANCE
            peak = min(acc, (jerk * v + a * a / 2)**0.5)
            known = (a + 2 * peak) / jerk + (v + a * a / (2 * jerk) - peak**2 / jerk) / peak
            guess = np.interp(np.linspace(0, 1, 50), [0, 0.3, 0.6, 1], [a, -v / known, -v / known, 0])
            found, excess = shortest(Path(row), (0, v, a), 1.5 * known, guess, parts)
            good = abs(found / known - 1) < 2e-3 and excess < 1e-3
            failures += not good
            print(f"{'ok  ' if good else 'FAIL'} limits {limit_a}, {limit_j} from {v}, {a}: "
                  f"{found:.6f} s, to {known:.6f} s, excess {excess:.1e}")
    if failures:
        sys.exit(f"stop_optimum: {failures} checks FAILED")


def main():
    parser = argparse.ArgumentParser(
        description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("file", nargs="?", type=argparse.FileType(), default=sys.stdin)
    parser.add_argument("--parts", type=int, default=60, help="of a stop (%(default)s)")
    parser.add_argument("--self-check", action="store_true")
    arguments = parser.parse_args()
    try:
        if arguments.self_check:
            self_check(arguments.parts)
        else:
            report(read(arguments.file), arguments.parts)
    except KeyboardInterrupt:
        sys.exit(130)


if __name__ == "__main__":
    main()
