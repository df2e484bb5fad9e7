#!/usr/bin/python3
"""Holds the durations of planned moves of one joint against what linear programs allow.

Reads the rows of move_rows, a JSON object each. Knows nothing of the shape of a motion: the
acceleration at the ends of some hundred intervals is what it varies, straight between them, and the
intervals get smaller where the jerk isn't at a limit. Prints for each row, but for very long moves,
those without a duration and those on which scipy crashes:

  missed   how far the way is outside of what can be moved in the planned duration, as a share of
           the way at full speed in that time: above 0, the duration is too short
  spare    how far inside, where no longer duration was asked for: above 0, it isn't the shortest
  shorter  how many of eight shorter ones allow the way as well

Accelerations are exact, velocities are kept at the ends and in the middle of each interval. Needs
Debian's python3-scipy.
"""

import concurrent.futures
import json
import sys

try:
    import numpy as np
    from scipy.optimize import linprog
except ImportError as error:
    sys.exit(f"move_optimum: {error}: install python3-scipy and run this with /usr/bin/python3")

ROUNDS = 6
PARTS = 8  # that an interval is cut into
MOST_INTERVALS = 900
ROUNDING = 2e-5  # as a share; what the programs leave where a motion is far from its limits of
                 # acceleration: there their solvers differ by that
LONGEST = 1000  # in times that the acceleration takes to build up: beyond, intervals are too coarse


def farthest(start, end, top, grid):
    """The farthest displacement and its accelerations at the grid's times; None: no motion."""
    (v0, a0), (v1, a1) = start, end
    h = np.diff(grid)
    n = len(h)
    at = np.arange(n)
    gain = np.zeros((n + 1, n + 1))  # of velocity, by the accelerations
    gain[at + 1, at] = h / 2
    gain[at + 1, at + 1] += h / 2
    velocity = np.cumsum(gain, axis=0)
    middle = velocity[:-1].copy()
    middle[at, at] += 3 * h / 8
    middle[at, at + 1] += h / 8
    way = h @ velocity[:-1]
    way[:-1] += h**2 / 3
    way[1:] += h**2 / 6
    change = np.zeros((n, n + 1))
    change[at, at], change[at, at + 1] = -1, 1
    kept = np.vstack([velocity[1:-1], middle])
    bounds = [(-1, 1)] * (n + 1)
    bounds[0], bounds[-1] = (a0, a0), (a1, a1)
    room = np.full(len(kept), top * (1 + 1e-9))
    found = linprog(-way, A_ub=np.vstack([change, -change, kept, -kept]),
                    b_ub=np.concatenate([h, h, room - v0, room + v0]),
                    A_eq=velocity[-1:], b_eq=[v1 - v0], bounds=bounds, method="highs",
                    options={"presolve": False})  # with it, scipy 1.10 crashes more often
    return (way @ found.x + v0 * grid[-1], found.x) if found.status == 0 else None


def reach(start, end, top, time):
    """The farthest displacement in a time, on ever smaller intervals."""
    grid = np.linspace(0, time, 61)
    best = None
    for _ in range(ROUNDS):
        found = farthest(start, end, top, grid)
        if found is None:
            return best
        best, acceleration = found
        jerk = np.diff(acceleration) / np.diff(grid)
        level = np.round(jerk)
        cut = np.abs(jerk - level) > 1e-6
        cut[:-1] |= level[1:] != level[:-1]
        cut[1:] |= level[1:] != level[:-1]
        parts = [np.linspace(a, b, PARTS if c else 1, endpoint=False)
                 for a, b, c in zip(grid, grid[1:], cut)]
        grid = np.append(np.concatenate(parts), time)
        if len(grid) > MOST_INTERVALS:
            break
    return best


def room(row, time_s):
    """How far the way is from the ends of what can be moved in a time; below 0: outside."""
    velocity, acceleration, jerk = row["limits"]
    unit = acceleration / jerk
    start, end = (np.array(row[key]) / (acceleration * unit, acceleration) for key in ("from", "to"))
    top, time = velocity / acceleration / unit, time_s / unit
    far = reach(start, end, top, time)
    near = reach(-start, -end, top, time)
    if far is None or near is None:
        return None
    way = row["way"] / acceleration / unit**2
    return min(far - way, near + way) / (top * time)


def compare(row):
    """Figures of the columns; a share that no program gives is NaN."""
    planned, least = row["duration_s"], row["least_s"]
    inside = room(row, planned)
    shorter = [max(least, planned * part) for part in (*np.arange(1, 8) / 8, 1 - 1e-4)]
    rooms = [room(row, time_s) for time_s in shorter if time_s < planned]
    quicker = sum(1 for one in rooms if one is not None and one > ROUNDING)
    missed = np.nan if inside is None else max(0, -inside)
    spare = np.nan if inside is None or planned == least else max(0, inside)
    return missed, spare, quicker


def in_child(row):
    """The same; None where scipy 1.10 crashes, as it does on some."""
    try:
        with concurrent.futures.ProcessPoolExecutor(1) as child:
            return child.submit(compare, row).result()
    except concurrent.futures.process.BrokenProcessPool:
        return None


def main():
    print(f"{'missed':>10}{'spare':>10}{'shorter':>10}  name")
    compared = bad = 0
    for row in map(json.loads, sys.stdin):
        too_long = row["duration_s"] > LONGEST * row["limits"][1] / row["limits"][2]
        figures = None if row["duration_s"] == 0 or too_long else in_child(row)
        if figures is None:
            continue
        missed, spare, quicker = figures
        compared += not np.isnan(missed)
        bad += quicker > 0 or missed > ROUNDING or spare > ROUNDING
        print(f"{missed:10.1e}{spare:10.1e}{quicker:10d}  {row['name']}", flush=True)
    print(f"{compared} rows compared, {bad} with a fault")
    return 1 if bad else 0


if __name__ == "__main__":
    sys.exit(main())
