"""The shortest motion along a path that keeps limits of velocity, acceleration and jerk.

With u a function of s and b = (du/dt)^2, accelerations are q'' b + q' b'/2 and jerks (q''' b +
3/2 q'' b' + 1/2 q' b'') sqrt(b). All but the root is linear in b, and the duration, the integral of
1/sqrt(b) over u, is convex (D. Verscheure et al., IEEE T-AC 54, 2009). Bounding the linear part of
a jerk by J/sqrt(b), convex in b, leaves a difference of convex functions (F. Debrouwere et al.,
IEEE T-RO 29, 2013). So is the length of a vector of such, a tool's acceleration or jerk. Here b is a cubic in each interval of u, its slope continuous, and a
primal-dual interior-point method with banded matrices finds it.
"""

import itertools
import statistics
import sys

import numpy as np
from scipy.interpolate import BPoly, CubicHermiteSpline
from scipy.linalg import LinAlgError, cho_solve_banded, cholesky_banded

# s of u. Near an end, s grows with the third (second) power of time under constant jerk
# (acceleration), as it does with u: du/dt is smooth and above 0, and s at rest whatever it is.
BY_JERK = np.polynomial.Polynomial([0, 0, 0, 10, -15, 6])
BY_ACCELERATION = np.polynomial.Polynomial([0, 0, 3, -2])
# Points of an interval and their weights in an integral. A jerk may jump between intervals, so that
# limits have to be kept at both ends of each.
LOBATTO = np.array([0, 0.5 - 0.05**0.5, 0.5 + 0.05**0.5, 1]), np.array([1, 5, 5, 1]) / 12
EVENLY = np.linspace(0, 1, 11), np.full(11, 1 / 11)


class Path:
    """Derivatives of s and of the joints by u, and the limits of both."""

    vectors = 0  # the last columns of derivatives are so many vectors of three, limited in length
    borders = ()  # s at which limits jump

    def __init__(self, row, step=1):
        keep = np.unique(np.append(np.arange(0, len(row["s"]), step), len(row["s"]) - 1))
        joints = np.stack([np.array(row[key], float)[keep] for key in ("dq", "ddq", "dddq")], 1)
        self.s = np.array(row["s"], float)[keep]
        self.dq = BPoly.from_derivatives(self.s, joints)
        self.ddq, self.dddq = self.dq.derivative(), self.dq.derivative(2)
        orders = ("speed", "velocity"), ("acceleration", "acceleration"), ("jerk", "jerk")
        self.limits = [np.append(row["limits"][of_s], row["joints"][of_joints])
                       for of_s, of_joints in orders]

    def limits_in(self, begins, ends, s_of_u):
        """Velocities, accelerations and jerks, from each u to another: the vectors' after those of
        the single columns."""
        return [limit[None, None] for limit in self.limits]

    def derivatives(self, u, s_of_u):
        s = np.clip(s_of_u(u), 0, 1)
        s1, s2, s3 = (s_of_u.deriv(k)(u)[..., None] for k in (1, 2, 3))
        q1, q2, q3 = self.dq(s), self.ddq(s), self.dddq(s)
        by_u = ((s1, q1 * s1), (s2, q2 * s1**2 + q1 * s2),
                (s3, q3 * s1**3 + 3 * q2 * s1 * s2 + q1 * s3))
        return [np.concatenate(d, -1) for d in by_u]


def hermite(knots, points):
    """What b, b', b'' at points of each interval are of b and b' at its ends."""
    h, p = np.broadcast_arrays(np.diff(knots)[:, None], points)
    rows = ((1 + 2 * p) * (1 - p)**2, p * (1 - p)**2 * h, p**2 * (3 - 2 * p), p**2 * (p - 1) * h,
            6 * p * (p - 1) / h, (1 - p) * (1 - 3 * p), 6 * p * (1 - p) / h, p * (3 * p - 2),
            (12 * p - 6) / h**2, (6 * p - 4) / h, (6 - 12 * p) / h**2, (6 * p - 2) / h)
    return np.stack(rows, -1).reshape(h.shape + (3, 4))


class Problem:
    """Limits over the unknowns x: b and b' at each knot in turn. y: b, b', b'' at each point.

    Each load of a point is at most its bound: 1, or 1/sqrt(b) for a jerk. Loads are row . y of
    rows, there both ways up, then the lengths of the vectors cone . y.
    """

    def __init__(self, path, knots, s_of_u, at=LOBATTO):
        self.basis = hermite(knots, at[0])
        self.columns = 2 * np.arange(len(knots) - 1)[:, None] + np.arange(4)
        widths = np.diff(knots)[:, None]
        self.weights = widths * at[1]
        d1, d2, d3 = path.derivatives(knots[:-1, None] + widths * at[0], s_of_u)
        velocity, acceleration, jerk = path.limits_in(knots[:-1], knots[1:], s_of_u)
        zero = np.zeros_like(d1)
        kinds = [(d1**2, zero, zero, velocity**2), (d2, d1 / 2, zero, acceleration)]
        if s_of_u is BY_JERK:
            kinds.append((d3, 1.5 * d2, d1 / 2, jerk))
        rows, cones = [], []
        for *by_y, limit in kinds:
            by_y, count = np.stack(by_y, -1), d1.shape[2] - 3 * path.vectors
            rows.append(by_y[:, :, :count] / limit[..., :count, None])
            vectors = by_y[:, :, count:].reshape(d1.shape[:2] + (path.vectors, 3, 3))
            cones.append(vectors / limit[..., count:, None, None])
        # Squares of velocities are linear in b, and those of a vector's sum up to that of its length.
        rows[0] = np.concatenate([rows[0], cones.pop(0).sum(3)], 2)
        jerks = [np.repeat(np.arange(first, len(kinds)) == 2, [kind.shape[2] for kind in parts])
                 for first, parts in ((0, rows), (1, cones))]
        rows = np.concatenate(rows, 2)
        self.rows = np.concatenate([rows, -rows], 2)
        self.cones = np.concatenate(cones, 2)
        self.is_jerk = np.concatenate([jerks[0], *jerks])
        self.power = np.where(self.is_jerk, 3, 2)  # a motion slower by f needs 1/f^power of a limit

    def slow_down(self, excess):
        """Makes every load of each interval that of a motion so many times as fast."""
        factors = (excess[:, None]**self.power)[:, None, :, None]
        count = self.rows.shape[2]
        self.rows = self.rows * factors[:, :, :count]
        self.cones = self.cones * factors[:, :, count:, :, None]

    def values(self, x):
        return np.einsum("nmdk,nk->nmd", self.basis, x[self.columns])

    def durations(self, y):
        return np.sum(self.weights * y[..., 0]**-0.5, 1)

    def vectors_of(self, y):
        """And the squares of their lengths."""
        vectors = np.einsum("nmcvd,nmd->nmcv", self.cones, y)
        return vectors, np.sum(vectors**2, -1)

    def bounds(self, y):
        return np.where(self.is_jerk, y[..., :1]**-0.5, 1)

    def bounds_and_loads(self, y):
        linear = np.einsum("nmrd,nmd->nmr", self.rows, y)
        return self.bounds(y), np.concatenate([linear, self.vectors_of(y)[1]**0.5], 2)

    def excess(self, x):
        """By interval, how many times slower it would have to be to keep limits at the points."""
        bounds, loads = self.bounds_and_loads(self.values(x))
        return np.max((np.maximum(loads, 0) / bounds)**(1 / self.power), (1, 2))

    def slacks(self, y):
        """What is left of each limit; None if any of it isn't positive. Of a vector v and its bound
        it is (bound - v^2 / bound) / 2, which bends evenly where v is 0."""
        if y[..., 0].min() <= 0:
            return None
        bounds, loads = self.bounds_and_loads(y)
        slacks = bounds - loads
        cones = slice(self.rows.shape[2], None)
        slacks[..., cones] *= (1 + loads[..., cones] / bounds[..., cones]) / 2
        return slacks if slacks.min() > 0 else None

    def slopes(self, y):
        """Of the slacks by y."""
        count, b = self.rows.shape[2], y[..., :1]
        vectors, squares = self.vectors_of(y)
        of_vectors = np.einsum("nmcv,nmcvd->nmcd", vectors, self.cones)
        slopes = np.concatenate(
            [-self.rows, -of_vectors / self.bounds(y)[..., count:, None]], 2)
        slopes[..., :count, 0] -= np.where(self.is_jerk[:count], 0.5 * b**-1.5, 0)
        slopes[..., count:, 0] -= np.where(self.is_jerk[count:],
                                           0.25 * (b**-1.5 + squares * b**-0.5), 0)
        return slopes

    def gradient(self, y, slopes, forces):
        """Of the duration less the sum of slacks times forces, by x."""
        by_y = -np.einsum("nmr,nmrd->nmd", forces, slopes)
        by_y[..., 0] -= 0.5 * self.weights * y[..., 0]**-1.5
        by_x = np.zeros(2 * len(self.columns) + 2)
        np.add.at(by_x, self.columns, np.einsum("nmd,nmdk->nk", by_y, self.basis))
        return by_x

    def curvature(self, y, multipliers):
        """Of the slacks less their concave part, times multipliers, and that part, which is of b."""
        count, b = self.rows.shape[2], y[..., :1]
        vectors, squares = self.vectors_of(y)
        is_jerk, forces = self.is_jerk[count:], multipliers[..., count:]
        convex = np.einsum("nmc,nmcvd,nmcve->nmde", forces / self.bounds(y)[..., count:], self.cones,
                           self.cones, optimize=True)
        of_jerks = np.where(is_jerk, forces, 0)
        across = np.einsum("nmc,nmcv,nmcvd->nmd", of_jerks / 2 * b**-0.5, vectors, self.cones)
        convex[..., 0, :] += across
        convex[..., :, 0] += across
        convex[..., 0, 0] += np.sum(of_jerks * squares * b**-1.5 / 4, -1)
        concave = 0.75 * b[..., 0]**-2.5 * multipliers[..., :count][..., self.is_jerk[:count]].sum(-1)
        concave += 0.375 * np.sum(of_jerks * (b**-2.5 + squares * b**-1.5), -1)
        return convex, concave

    def newton_step(self, y, slopes, stiffness, multipliers, gradient):
        by_y = np.einsum("nmr,nmrd,nmre->nmde", stiffness, slopes, slopes, optimize=True)
        convex, concave = self.curvature(y, multipliers)
        by_y += convex
        by_y[..., 0, 0] += 0.75 * self.weights * y[..., 0]**-2.5
        # With all curvature of the jerks' bounds it is soon there, without any it surely descends.
        for share in (1, 0.5, 0):
            bent = by_y.copy()
            bent[..., 0, 0] -= share * concave
            blocks = np.einsum("nmdk,nmde,nmel->nkl", self.basis, bent, self.basis, optimize=True)
            band = np.zeros((4, len(gradient)))
            for i, j in itertools.combinations_with_replacement(range(4), 2):
                np.add.at(band[j - i], self.columns[:, i], blocks[:, i, j])
            try:
                return cho_solve_banded((cholesky_banded(band, lower=True), True), -gradient)
            except LinAlgError:
                continue
        raise ArithmeticError("the limits leave no direction")


def minimise(problem, x):
    """The x of least duration. That to start from has b > 0; beyond limits, it is slowed down."""
    x = 0.8 * x / max(1, problem.excess(x).max())**2
    y = problem.values(x)
    slacks = problem.slacks(y)
    mu = problem.durations(y).sum() / slacks.size
    multipliers = mu / slacks
    for _ in range(300):
        slopes, gap = problem.slopes(y), np.sum(multipliers * slacks)
        imbalance = np.abs(problem.gradient(y, slopes, multipliers) * x).sum()
        if gap + imbalance < 1e-6 * problem.durations(y).sum():
            return x
        if imbalance < gap:
            mu = min(mu, 0.2 * gap / slacks.size)
        gradient = problem.gradient(y, slopes, mu / slacks)
        dx = problem.newton_step(y, slopes, multipliers / slacks, multipliers, gradient)
        changes = np.einsum("nmrd,nmd->nmr", slopes, problem.values(dx))
        change = (mu - multipliers * changes) / slacks - multipliers
        multipliers += min(1, 0.95 / max(1e-9, np.max(-change / multipliers))) * change
        x, y, slacks = descend(problem, mu, x, y, slacks, dx, gradient @ dx)
        multipliers = np.clip(multipliers, 1e-6 * mu / slacks, 1e6 * mu / slacks)
    raise ArithmeticError("300 steps did not reach it")


def descend(problem, mu, x, y, slacks, dx, slope):
    """x, y and slacks as far along dx as the barrier function decreases as its slope promises."""
    before, size = problem.durations(y).sum() - mu * np.log(slacks).sum(), 1
    while size > 1e-9:
        y_next = problem.values(x + size * dx)
        left = problem.slacks(y_next)
        if left is not None and np.all(left > 0.05 * slacks):
            barrier = problem.durations(y_next).sum() - mu * np.log(left).sum()
            if barrier < before + 1e-4 * size * slope + 1e-12 * abs(before):  # of rounding
                return x + size * dx, y_next, left
        size *= 0.7
    raise ArithmeticError("no step makes it shorter")


def with_borders(knots, borders):
    """Knots with one at each border, in place of those that are close to it."""
    if not len(borders):
        return knots
    widths = np.minimum(np.diff(knots)[:-1], np.diff(knots)[1:])
    near = np.abs(knots[1:-1, None] - borders).min(1) < 0.3 * widths
    return np.unique(np.concatenate([knots[:1], knots[1:-1][~near], borders, knots[-1:]]))


def refine(path, s_of_u, sizes):
    """Knots, x and duration for each number of intervals in turn, started from the one before."""
    fine = np.linspace(0, 1, 20001)
    grid = np.interp(path.s, s_of_u(fine), fine)
    borders = np.interp(path.borders, s_of_u(fine), fine)
    knots, density, b = grid, [grid], None
    for size in sizes:
        # Knots are dense where the grid is, where the motion is slow and where loads change.
        density = np.mean(density + [np.interp(knots, grid, np.linspace(0, 1, len(grid)))], 0)
        knots = np.interp(np.linspace(0, 1, size + 1), density, knots)
        knots[[0, -1]] = 0, 1
        knots = with_borders(knots, borders)
        problem = Problem(path, knots, s_of_u)
        constant = np.tile([1.0, 0], len(knots))
        x = constant if b is None else np.stack([b(knots), b(knots, 1)], 1).ravel()
        # A cubic may dip below 0 between the points that it was held to.
        x = minimise(problem, x if problem.values(x)[..., 0].min() > 0 else constant)
        b, y = CubicHermiteSpline(knots, x[::2], x[1::2]), problem.values(x)
        bounds, loads = problem.bounds_and_loads(y)
        changes = np.abs(np.diff(loads / bounds, axis=1)).sum(1).max(-1)**0.5
        durations = problem.durations(y)
        density = [np.append(0, np.cumsum(part)) / part.sum() for part in (durations, changes)]
        yield knots, x, durations.sum()


def shortest(path, intervals):
    """Duration, knots and x of a motion that keeps every limit at EVENLY's points; and by which
    share it seems longer than with ever more intervals."""
    *_, (_, _, coarse), (knots, x, fine) = refine(
        path, BY_JERK, (intervals // 8, intervals // 4, intervals // 2, intervals))
    problem, between = Problem(path, knots, BY_JERK), Problem(path, knots, BY_JERK, EVENLY)
    if between.values(x)[..., 0].min() <= 0:
        raise ArithmeticError("a cubic dips below 0, finer intervals are needed")
    for _ in range(2):  # where it exceeds limits between the points, it has to be slower
        problem.slow_down(np.maximum(1, between.excess(x)))
        x = minimise(problem, x)
    x /= between.excess(x).max()**2
    duration = problem.durations(problem.values(x)).sum()
    return duration, knots, x, duration / (2 * fine - coarse) - 1


def seven_phases(length, velocity, acceleration, jerk):
    """The shortest time from rest to rest along a straight line."""
    rise = acceleration / jerk
    ramp = (rise + velocity / acceleration if velocity > acceleration * rise
            else 2 * (velocity / jerk)**0.5)
    if length >= velocity * ramp:
        return length / velocity + ramp
    if length >= 2 * acceleration * rise**2:
        return rise + (rise**2 + 4 * length / acceleration)**0.5
    return 4 * (length / (2 * jerk))**(1 / 3)


def bound(path):
    """A duration below which there is no motion: velocities and accelerations are a convex problem,
    and s and each joint have to get to their ends."""
    *_, (_, _, coarse), (_, _, fine) = refine(path, BY_ACCELERATION, (50, 100, 200, 400))
    ways = np.abs(np.append(1, path.dq.integrate(0, 1)))
    return max(min(fine, 2 * fine - coarse), *map(seven_phases, ways, *path.limits))


def report(what, columns, rows, figures):
    """Prints a line for each row, a tuple with its name first, and what they amount to; "ratio", "error"
    and "grid" are among the columns. Exits where a row has no optimum."""
    names, table, without = [], [], 0
    for name, *row in rows:
        try:
            line = dict(zip(columns, figures(*row)))
        except ArithmeticError as error:
            without += 1
            print(f"{name}: no optimum found: {error}", file=sys.stderr)
            continue
        if not table:
            print("".join(f"{column:>10}" for column in columns), " name")
        names.append(name)
        table.append(line)
        print("".join(f"{figure:10.1e}" if column in ("error", "grid") else f"{figure:10.4f}"
                      for column, figure in line.items()), "", name, flush=True)
        if sys.stderr.isatty() and not sys.stdout.isatty():
            print(f"\r{len(table)} {what} ", end="", file=sys.stderr, flush=True)
    if not table:
        sys.exit(f"no {what} to compare")
    ratios, errors, grids = ([line[column] for line in table] for column in ("ratio", "error", "grid"))
    least, worst = np.argmin(ratios), np.argmax(ratios)
    print(f"\n{len(table)} {what}: ratio median {statistics.median(ratios):.4f}, "
          f"least {ratios[least]:.4f} ({names[least]}), "
          f"worst {ratios[worst]:.4f} ({names[worst]}); "
          f"error at most {max(errors):.1e}, grid {max(grids):.1e}")
    if without:
        sys.exit(f"{without} more without an optimum")
