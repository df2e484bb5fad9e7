"""The shortest motion along a path that keeps limits of velocity, acceleration and jerk.

With u a function of s and b = (du/dt)^2, accelerations are q'' b + q' b'/2 and jerks (q''' b +
3/2 q'' b' + 1/2 q' b'') sqrt(b). All but the root is linear in b, and the duration, the integral of
1/sqrt(b) over u, is convex (D. Verscheure et al., IEEE T-AC 54, 2009). Bounding the linear part of
a jerk by J/sqrt(b), convex in b, leaves a difference of convex functions (F. Debrouwere et al.,
IEEE T-RO 29, 2013). Here b is a cubic in each interval of u, its slope continuous, and a
primal-dual interior-point method with banded matrices finds it.
"""

import itertools

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

    def __init__(self, row, step=1):
        keep = np.unique(np.append(np.arange(0, len(row["s"]), step), len(row["s"]) - 1))
        joints = np.stack([np.array(row[key], float)[keep] for key in ("dq", "ddq", "dddq")], 1)
        self.s = np.array(row["s"], float)[keep]
        self.dq = BPoly.from_derivatives(self.s, joints)
        self.ddq, self.dddq = self.dq.derivative(), self.dq.derivative(2)
        orders = ("speed", "velocity"), ("acceleration", "acceleration"), ("jerk", "jerk")
        self.limits = [np.append(row["limits"][of_s], row["joints"][of_joints])
                       for of_s, of_joints in orders]

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

    Each row of a point says |row . y| <= bound; the bound is 1, or 1/sqrt(b) for a jerk.
    """

    def __init__(self, path, knots, s_of_u, at=LOBATTO):
        self.basis = hermite(knots, at[0])
        self.columns = 2 * np.arange(len(knots) - 1)[:, None] + np.arange(4)
        widths = np.diff(knots)[:, None]
        self.weights = widths * at[1]
        d1, d2, d3 = path.derivatives(knots[:-1, None] + widths * at[0], s_of_u)
        zero, (velocity, acceleration, jerk) = np.zeros_like(d1), path.limits
        kinds = [(d1**2, zero, zero, velocity**2), (d2, d1 / 2, zero, acceleration)]
        if s_of_u is BY_JERK:
            kinds.append((d3, 1.5 * d2, d1 / 2, jerk))
        self.rows = np.concatenate([np.stack(kind[:3], -1) / kind[3][:, None] for kind in kinds], 2)
        self.is_jerk = np.arange(self.rows.shape[2]) >= 2 * len(velocity)
        self.power = np.where(self.is_jerk, 3, 2)  # a motion slower by f needs 1/f^power of a limit

    def values(self, x):
        return np.einsum("nmdk,nk->nmd", self.basis, x[self.columns])

    def durations(self, y):
        return np.sum(self.weights * y[..., 0]**-0.5, 1)

    def bounds_and_loads(self, y):
        bounds = np.where(self.is_jerk, y[..., :1]**-0.5, 1)
        return bounds, np.einsum("nmrd,nmd->nmr", self.rows, y)

    def excess(self, x):
        """By interval, how many times slower it would have to be to keep limits at the points."""
        bounds, loads = self.bounds_and_loads(self.values(x))
        return np.max((np.abs(loads) / bounds)**(1 / self.power), (1, 2))

    def slacks(self, y):
        """What is left of each limit, up and down; None if any of it isn't positive."""
        if y[..., 0].min() <= 0:
            return None
        bounds, loads = self.bounds_and_loads(y)
        slacks = np.stack([bounds - loads, bounds + loads], 2)
        return slacks if slacks.min() > 0 else None

    def slopes(self, y):
        """Of the slacks by y."""
        slopes = np.stack([-self.rows, self.rows], 2)
        slopes[..., 0] += np.where(self.is_jerk, -0.5 * y[..., :1]**-1.5, 0)[:, :, None]
        return slopes

    def gradient(self, y, slopes, forces):
        """Of the duration less the sum of slacks times forces, by x."""
        by_y = -np.einsum("nmar,nmard->nmd", forces, slopes)
        by_y[..., 0] -= 0.5 * self.weights * y[..., 0]**-1.5
        by_x = np.zeros(2 * len(self.columns) + 2)
        np.add.at(by_x, self.columns, np.einsum("nmd,nmdk->nk", by_y, self.basis))
        return by_x

    def newton_step(self, y, slopes, stiffness, multipliers, gradient):
        b = y[..., 0]
        by_y = np.einsum("nmar,nmard,nmare->nmde", stiffness, slopes, slopes, optimize=True)
        by_y[..., 0, 0] += 0.75 * self.weights * b**-2.5
        concave = 0.75 * b**-2.5 * multipliers.sum(2)[..., self.is_jerk].sum(-1)
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
        changes = np.einsum("nmard,nmd->nmar", slopes, problem.values(dx))
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


def refine(path, s_of_u, sizes):
    """Knots, x and duration for each number of intervals in turn, started from the one before."""
    fine = np.linspace(0, 1, 20001)
    grid = np.interp(path.s, s_of_u(fine), fine)
    knots, density, b = grid, [grid], None
    for size in sizes:
        # Knots are dense where the grid is, where the motion is slow and where loads change.
        density = np.mean(density + [np.interp(knots, grid, np.linspace(0, 1, len(grid)))], 0)
        knots = np.interp(np.linspace(0, 1, size + 1), density, knots)
        knots[[0, -1]] = 0, 1
        problem = Problem(path, knots, s_of_u)
        constant = np.tile([1.0, 0], size + 1)
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
    for _ in range(2):  # where it exceeds limits between the points, it has to be slower
        excess = np.maximum(1, between.excess(x))[:, None]
        problem.rows *= (excess**problem.power)[:, None, :, None]
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
