#include "path_follower.h"

#include <algorithm>

#include "linear_system.h"

namespace qal {

namespace {

// The joints' polynomials keep the path within this, in metres and radians.
constexpr double kPathTolerance = 5e-11;
// And their own values within this; more means another solution.
constexpr double kJointTolerance = 1e-8;
// A step of Newton's method after which the next one is rounding.
constexpr double kLastCorrectionRad = 1e-9;
// A step that leads somewhere else.
constexpr double kLargestStepRad = 1;
constexpr int kMostCorrections = 8;
// Below it the equations say nothing any more.
constexpr double kSingularPivot = 1e-12;
// Parts as short as this are needed only next to a singularity, or where the path ends.
constexpr double kShortestPart = 1e-8;
constexpr double kLongestPart = 0.25;

LinearSystem EquationsOf(const std::array<Twist, 6>& axes) {
  double matrix[6][6];
  for (int j = 0; j < 6; ++j) {
    for (int i = 0; i < 3; ++i) {
      matrix[i][j] = axes[static_cast<size_t>(j)].linear[i];
      matrix[i + 3][j] = axes[static_cast<size_t>(j)].angular[i];
    }
  }
  return LinearSystem(matrix);
}

Joints Solved(const LinearSystem& equations, const Twist& right) {
  const auto& [v, w] = right;
  return equations.Solve({v[0], v[1], v[2], w[0], w[1], w[2]});
}

// The tool's motion as that of the point at the origin, which moves with v = p' - w x p.
struct TwistRates {
  Twist first;
  Twist second;
  Twist third;
};

TwistRates TwistsOf(const Vector3& p, const ToolRates& r) {
  return {{r.velocity - Cross(r.turn, p), r.turn},
          {r.acceleration - Cross(r.turn_acceleration, p) - Cross(r.turn, r.velocity),
           r.turn_acceleration},
          {r.jerk - Cross(r.turn_jerk, p) - 2.0 * Cross(r.turn_acceleration, r.velocity) -
               Cross(r.turn, r.acceleration),
           r.turn_jerk}};
}

// The velocities of tool and joints are T = sum q_j' A_j; derived twice more
//
//     T'  = sum q_j'' A_j + q_j' A_j'
//     T'' = sum q_j''' A_j + 2 q_j'' A_j' + q_j' A_j''
PathPoint WithDerivatives(double s, const Joints& joints, const std::array<Twist, 6>& axes,
                          const LinearSystem& equations, const TwistRates& tool) {
  PathPoint point = {s, joints, {}, {}, {}};
  MovingAxes moving(axes);
  point.first = Solved(equations, tool.first);
  moving.SetFirst(point.first);
  Twist rest = tool.second;
  for (size_t j = 0; j < 6; ++j) rest = rest + -point.first[j] * moving.change(j);
  point.second = Solved(equations, rest);
  moving.SetSecond(point.second);
  rest = tool.third;
  for (size_t j = 0; j < 6; ++j) {
    rest =
        rest + -2 * point.second[j] * moving.change(j) + -point.first[j] * moving.second_change(j);
  }
  point.third = Solved(equations, rest);
  return point;
}

// Where the joints of `point` go, by its derivatives.
Joints Extrapolated(const PathPoint& point, double s) {
  const double h = s - point.s;
  Joints joints;
  for (size_t j = 0; j < joints.size(); ++j) {
    joints[j] =
        point.value[j] + h * (point.first[j] + h * (point.second[j] / 2 + h * point.third[j] / 6));
  }
  return joints;
}

}  // namespace

// An axis moves with the joints before it: A_j' = [W_j, A_j], W_j = sum of q_i' A_i before j.
void MovingAxes::SetFirst(const Joints& first) {
  first_ = first;
  Twist sum = {};
  for (size_t j = 0; j < 6; ++j) {
    before_[j] = sum;
    changes_[j] = Bracket(sum, axes_[j]);
    sum = sum + first[j] * axes_[j];
  }
}

void MovingAxes::SetSecond(const Joints& second) {
  Twist sum = {};
  for (size_t j = 0; j < 6; ++j) {
    second_changes_[j] = Bracket(sum, axes_[j]) + Bracket(before_[j], changes_[j]);
    sum = sum + second[j] * axes_[j] + first_[j] * changes_[j];
  }
}

std::optional<PathPoint> ToolSolver::Solve(double s, const Joints& guess) const {
  const Frame target = path_.FrameAt(s - begin_);
  Joints joints = guess;
  for (int step = 0; step < kMostCorrections; ++step) {
    const PlacedArm placed = screws_.At(joints);
    const LinearSystem equations = EquationsOf(placed.axes);
    if (!(equations.smallest_pivot() > kSingularPivot)) return std::nullopt;
    const Vector3 turn = AxialVector(target.rotation * Transposed(placed.tool.rotation));
    const Vector3 move = target.position - placed.tool.position;
    const Joints change = Solved(equations, {move - Cross(turn, placed.tool.position), turn});
    const double size = LargestDifference(change, Joints{});
    if (!(size <= kLargestStepRad)) return std::nullopt;
    for (size_t j = 0; j < joints.size(); ++j) joints[j] += change[j];
    // What is left to correct, the equations of the joints before are good for.
    if (size <= kLastCorrectionRad) {
      return WithDerivatives(s, joints, placed.axes, equations,
                             TwistsOf(target.position, path_.RatesAt(s - begin_)));
    }
  }
  return std::nullopt;
}

double ToolSolver::Deviation(double s, const Joints& joints) const {
  const Frame target = path_.FrameAt(s - begin_);
  const Frame tool = screws_.At(joints).tool;
  return std::max(Length(target.position - tool.position),
                  AngleBetween(tool.rotation, target.rotation));
}

double Follow(const PlaceSolver& solver, double to, JointPath& joints) {
  // Of what is to be followed.
  const double span = to - joints.last().s;
  double length = kLongestPart * span;
  while (joints.last().s < to) {
    const PathPoint& from = joints.last();
    const double left = to - from.s;
    // The last two pieces are of one length, so that none is very short.
    if (left < 2 * length) length = left <= length ? left : left / 2;
    const double end = left <= length ? to : from.s + length;
    double shrink = 0.25;
    if (const auto next = solver.Solve(end, Extrapolated(from, end))) {
      JointPath piece(from);
      piece.Append(*next);
      const double middle = (from.s + end) / 2;
      const Joints guess = piece.At(middle, 0).value;
      const double deviation = solver.Deviation(middle, guess);
      const auto exact = solver.Solve(middle, guess);
      // The error of such a piece goes with the eighth power of its length.
      const double fitting = 0.9 * std::pow(kPathTolerance / std::max(deviation, 1e-16), 0.125);
      if (exact && deviation <= kPathTolerance &&
          LargestDifference(exact->value, guess) <= kJointTolerance) {
        joints.Append(*next);
        length = std::min(length * std::clamp(fitting, 0.5, 3.0), kLongestPart * span);
        continue;
      }
      if (exact) shrink = std::clamp(fitting, 0.1, 0.8);
    }
    length *= shrink;
    if (length < kShortestPart * span) break;
  }
  return joints.last().s;
}

}  // namespace qal
