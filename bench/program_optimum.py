#!/usr/bin/python3
"""Holds the durations of planned programs against the shortest that the same limits allow.

Reads a JSON object a row, as program_rows writes them: name, duration_s, rest_s (the time at rest) and
runs, the motions from rest to rest. Of each: duration_s; s, a grid that is fine where the path bends
and at its ends; dq, ddq, dddq, derivatives by s at each of its values, of the joints, of the tool's
position and of its turn, twelve columns; borders, where limits change; and limits {velocity,
acceleration, jerk}: for each part between borders those of six joints, of the length of the tool's
vector and of its turn's, null being none. Prints for each program, durations in seconds:

  planned  as the row says
  optimum  that of motions which keep every limit at 11 points of each interval, and the rests
  ratio    planned / optimum
  worst    the largest ratio of a run
  error    how far the optimum seems above that of ever finer intervals, as a share
  grid     by how much time every other value of s left out would change the limits kept, as a share

The optimum is a local one of a discretised problem, that of time_optimum.py. --self-check measures how
far it is from cases of known optimum (fails beyond 0.1 %) and from four times as many intervals.
Needs Debian's python3-scipy.
"""

import argparse
import json
import sys

try:
    import numpy as np
    import time_optimum as optimum
    from scipy.interpolate import BPoly
except ImportError as error:
    sys.exit(f"program_optimum: {error}: install python3-scipy and run this with /usr/bin/python3")

COLUMNS = ("planned", "optimum", "ratio", "worst", "error", "grid")
ORDERS = ("velocity", "acceleration", "jerk")
JOINTS = 6


class Run(optimum.Path):
    """The path of a run: joints, then the tool's position and turn as vectors."""

    vectors = 2

    def __init__(self, row, step=1):
        # Borders stay: what is beyond one may be without a tool's vector.
        keep = np.unique(np.concatenate([np.arange(0, len(row["s"]), step), [len(row["s"]) - 1],
                                         np.flatnonzero(np.isin(row["s"], row["borders"]))]))
        joints = np.stack([np.array(row[key], float)[keep] for key in ("dq", "ddq", "dddq")], 1)
        length = row["s"][-1] - row["s"][0]
        self.s = (np.array(row["s"], float)[keep] - row["s"][0]) / length
        joints *= length ** np.arange(1, 4)[:, None]
        self.dq = BPoly.from_derivatives(self.s, joints)
        self.ddq, self.dddq = self.dq.derivative(), self.dq.derivative(2)
        self.borders = (np.array(row["borders"], float) - row["s"][0]) / length
        self.sections = [np.array(row["limits"][order], float) for order in ORDERS]
        for limits in self.sections:
            limits[np.isnan(limits)] = np.inf

    def limits_in(self, begins, ends, s_of_u):
        section = np.searchsorted(self.borders, s_of_u((begins + ends) / 2))
        return [limits[section][:, None] for limits in self.sections]

    def derivatives(self, u, s_of_u):
        return [columns[..., 1:] for columns in super().derivatives(u, s_of_u)]


def read(stream):
    for number, line in enumerate(stream, 1):
        try:
            row = json.loads(line)
            runs = [(run["duration_s"], Run(run), run) for run in row["runs"]]
            for _, path, _ in runs:
                if path.dq.c.shape[2] != JOINTS + 3 * Run.vectors:
                    raise ValueError("dq has not twelve columns")
                if not (np.isfinite(path.dq.c).all() and min(map(np.min, path.sections)) > 0):
                    raise ValueError("derivatives must be finite, and limits positive")
            yield row["name"], row["duration_s"], row["rest_s"], runs
        except KeyError as error:
            sys.exit(f"program_optimum: row {number} lacks {error}; --help says what a row holds")
        except (TypeError, ValueError) as error:
            sys.exit(f"program_optimum: row {number}: {error}; --help says what a row holds")


def shortest(path, intervals):
    """As time_optimum's, with about so many intervals for each part between borders."""
    count = max(200, intervals * (len(path.borders) + 1))
    for factor in (1, 1.3, 0.7):  # other intervals help where a search gets stuck
        try:
            return optimum.shortest(path, round(factor * count))
        except ArithmeticError as error:
            stuck = error
    raise stuck


def compare(planned, rest, runs, intervals):
    """Figures of COLUMNS."""
    total, worst, error, grid = rest, 1, 0, 0
    for duration, path, row in runs:
        least, knots, x, off = shortest(path, intervals)
        coarse = optimum.Problem(Run(row, 2), knots, optimum.BY_JERK, optimum.EVENLY)
        total, worst = total + least, max(worst, duration / least)
        error, grid = max(error, off), max(grid, abs(coarse.excess(x).max() - 1))
    return planned, total, planned / total, worst, error, grid


def example(position, limits, length, borders=()):
    """A path of the tool alone: position are three derivatives of it by s, each of s."""
    s = np.linspace(0, length, 801)
    d = np.zeros((3, len(s), JOINTS + 6))
    for order, derivative in enumerate(position):
        d[order, :, JOINTS:JOINTS + 3] = derivative(s)
    lax = [1e6] * JOINTS
    return Run({"s": s, "dq": d[0], "ddq": d[1], "dddq": d[2], "borders": borders, "limits": {
        order: [lax + [limit, None] for limit in np.atleast_1d(limits[i])]
        for i, order in enumerate(ORDERS)}})


def circle(radius, limits, length):
    def derivative(order):
        # The sine's order-th derivative is itself a quarter of a turn further.
        def at(s):
            turn = s / radius + order * np.pi / 2
            return np.stack([np.cos(turn), np.sin(turn), 0 * s], 1) / radius**(order - 1)
        return at
    return example([derivative(order) for order in (1, 2, 3)], limits, length)


def line(direction, limits, length, borders=()):
    unit = np.array(direction) / np.linalg.norm(direction)
    return example([lambda s: np.tile(unit, (len(s), 1)), *[lambda s: np.zeros((len(s), 3))] * 2],
                   limits, length, borders)


def known_optima(intervals):
    """(share by which it is off, most, what)."""
    for limits in ((1, 4, 40), (10, 4, 40), (10, 40, 40)):
        for direction in ((1, 0, 0), (1, -2, 2)):
            known = optimum.seven_phases(2, *limits)
            found = shortest(line(direction, limits, 2), intervals)[0]
            yield found / known - 1, 1e-3, f"line along {direction}, limits {limits}: to {known:.6f} s"
    # v dv/ds = sqrt(A^2 - v^4/r^2) has v^2 = r A sin(2 s/r): after an eighth of a turn all is needed
    # to stay on the circle.
    radius, most, lax = 0.3, 2, 1e5
    rise = np.pi * radius / 4
    t = np.linspace(0, 1, 200001)[1:] ** 4 * rise
    t_of_rise = np.trapz(4 * t**0.75 * rise**0.25 / (radius * most * np.sin(2 * t / radius))**0.5,
                         (t / rise)**0.25)
    for length in (2 * rise, 2 * rise + 0.5):
        known = 2 * t_of_rise + (length - 2 * rise) / (radius * most)**0.5
        found = shortest(circle(radius, (1e3, most, lax), length), intervals)[0]
        yield found / known - 1, 2e-3, f"circle by acceleration, {length:.3f} m: to {known:.6f} s"
    # p''' of a circle is 1/r^2, so that its jerk is v^3/r^2 at a constant speed.
    jerk = 20
    short, long = (shortest(circle(radius, (1e3, 1e3, jerk), length), 2 * intervals)[0]
                   for length in (3, 4))
    known = (jerk * radius**2)**(-1 / 3)
    yield (long - short) / known - 1, 1e-3, f"circle by jerk, a metre more: {known:.6f} s"
    # To 1 m/s in 1/4 s on 1/8 m, then to 0.5 m/s in 1/8 s on 3/32 m; and back, 2 m each. Jerks hardly
    # count: where they do, it pays to be braking still beyond the border.
    found = shortest(line((1, 1, 1), ([1, 0.5, 1], [4] * 3, [1e5] * 3), 5, (2, 3)), intervals)[0]
    known = 2 * (1 / 4 + 1 / 8 + (2 - 1 / 8 - 3 / 32)) + 1 / 0.5
    yield found / known - 1, 1e-3, f"line of three speeds: to {known:.6f} s"


def finer(intervals):
    """Likewise, to four times the intervals."""
    for radius, limits in ((0.05, (1, 2, 10)), (0.3, (1, 4, 40)), (0.3, (0.5, 10, 30))):
        path = circle(radius, limits, 2)
        found, fine = shortest(path, intervals)[0], shortest(path, 4 * intervals)[0]
        yield (found / fine - 1, 1e-3,
               f"circle of {radius} m, {limits}: {found:.6f} s to {fine:.6f} s of four times the intervals")


def self_check(intervals):
    failures = 0
    for check in (known_optima, finer):
        for off, most, what in check(intervals):
            failures += not abs(off) <= most
            print(f"{'ok  ' if abs(off) <= most else 'FAIL'} {off:9.1e} {what}", flush=True)
    if failures:
        sys.exit(f"program_optimum: {failures} checks FAILED")


def main():
    parser = argparse.ArgumentParser(
        description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("file", nargs="?", type=argparse.FileType(), default=sys.stdin)
    parser.add_argument("--intervals", type=int, default=100,
                        help="for each part between borders, at least 20 (%(default)s)")
    parser.add_argument("--self-check", action="store_true")
    arguments = parser.parse_args()
    if arguments.intervals < 20:
        parser.error("--intervals: at least 20")
    try:
        if arguments.self_check:
            self_check(arguments.intervals)
        else:
            optimum.report("programs", COLUMNS, read(arguments.file),
                           lambda *row: compare(*row, arguments.intervals))
    except KeyboardInterrupt:
        sys.exit("program_optimum: stopped")


if __name__ == "__main__":
    main()
