#include "wrist_pass.h"

#include <algorithm>
#include <cmath>

#include "../solve/kinematics.h"
#include "path_failure.h"

namespace qal {

namespace {

// Joints 4 to 6 as a polynomial says, joints 1 to 3 so that the tool's centre is on the path.
class WristSolver final : public PlaceSolver {
 public:
  WristSolver(const Screws& screws, const PlacedPath& path, const PathPoint& from,
              const PathPoint& to)
      : screws_(screws), path_(path), wrist_(from) {
    wrist_.Append(to);
  }
  std::optional<PathPoint> Solve(double s, const Joints& guess) const override;
  double Deviation(double s, const Joints& joints) const override {
    return Length(CentreAt(s) - screws_.At(joints).tool.position);
  }

 private:
  Vector3 CentreAt(double s) const { return ToVector(path_.tool.PoseAt(s - path_.begin).position); }

  const Screws& screws_;
  const PlacedPath& path_;
  JointPath wrist_;  // of which joints 4 to 6 count
};

// How the tool's centre moves with a twist.
Vector3 VelocityOf(const Twist& twist, const Vector3& centre) {
  return twist.linear + Cross(twist.angular, centre);
}

// Three equations for what joints 1 to 3 add to the velocity of the tool's centre (Cramer's rule).
class CentreEquations {
 public:
  explicit CentreEquations(const PlacedArm& placed) {
    for (size_t j = 0; j < 6; ++j) column_[j] = VelocityOf(placed.axes[j], placed.tool.position);
    determinant_ = Dot(column_[0], Cross(column_[1], column_[2]));
  }
  bool singular() const {
    // [m^3]: far below what moves an arm of any size.
    constexpr double kNone = 1e-9;
    return !(std::fabs(determinant_) > kNone);
  }
  // Sets joints 1 to 3 so that all six make up `velocity`.
  void Solve(Vector3 velocity, Joints& joints) const {
    for (size_t j = 3; j < 6; ++j) velocity = velocity - joints[j] * column_[j];
    joints[0] = Dot(velocity, Cross(column_[1], column_[2])) / determinant_;
    joints[1] = Dot(velocity, Cross(column_[2], column_[0])) / determinant_;
    joints[2] = Dot(velocity, Cross(column_[0], column_[1])) / determinant_;
  }

 private:
  Vector3 column_[6];
  double determinant_;
};

// The centre p moves with p' = sum q_j' c_j, c_j = v_j + w_j x p of the axes' twists; derived twice
// more
//
//     p''  = sum q_j'' c_j + q_j' c_j'
//     p''' = sum q_j''' c_j + 2 q_j'' c_j' + q_j' c_j''
//
//     c_j'  = v_j' + w_j' x p + w_j x p'      c_j'' = v_j'' + w_j'' x p + 2 w_j' x p' + w_j x p''
void SetDerivatives(const PlacedArm& placed, const CentreEquations& equations,
                    const ToolRates& tool, PathPoint& point) {
  const Vector3& p = placed.tool.position;
  const Vector3& along = tool.velocity;
  MovingAxes moving(placed.axes);
  equations.Solve(along, point.first);
  moving.SetFirst(point.first);
  Vector3 changes[6];
  Vector3 rest = tool.acceleration;
  for (size_t j = 0; j < 6; ++j) {
    changes[j] = VelocityOf(moving.change(j), p) + Cross(moving.axis(j).angular, along);
    rest = rest - point.first[j] * changes[j];
  }
  equations.Solve(rest, point.second);
  moving.SetSecond(point.second);
  rest = tool.jerk;
  for (size_t j = 0; j < 6; ++j) {
    const Vector3 second = VelocityOf(moving.second_change(j), p) +
                           2.0 * Cross(moving.change(j).angular, along) +
                           Cross(moving.axis(j).angular, tool.acceleration);
    rest = rest - 2 * point.second[j] * changes[j] - point.first[j] * second;
  }
  equations.Solve(rest, point.third);
}

std::optional<PathPoint> WristSolver::Solve(double s, const Joints& guess) const {
  PathPoint point = wrist_.At(s, 0);
  std::copy_n(guess.begin(), 3, point.value.begin());
  const Vector3 target = CentreAt(s);
  constexpr int kMostSteps = 8;
  constexpr double kLastStepRad = 1e-9;
  for (int step = 0; step < kMostSteps; ++step) {
    const PlacedArm placed = screws_.At(point.value);
    const CentreEquations equations(placed);
    if (equations.singular()) return std::nullopt;
    Joints change = {};
    equations.Solve(target - placed.tool.position, change);
    double size = 0;
    for (size_t j = 0; j < 3; ++j) {
      point.value[j] += change[j];
      size = Larger(size, std::fabs(change[j]));
    }
    if (!(size <= 1)) return std::nullopt;
    if (size > kLastStepRad) continue;
    SetDerivatives(placed, equations, path_.tool.RatesAt(s - path_.begin), point);
    return point;
  }
  return std::nullopt;
}

// The angle between axes 4 and 6.
double WristAngle(const Screws& screws, const Joints& joints) {
  const PlacedArm placed = screws.At(joints);
  return std::asin(std::min(1.0, Length(Cross(placed.axes[3].angular, placed.axes[5].angular))));
}

// Where a followed path has its wrist nearest to the singularity, after a place; and how near.
std::pair<double, double> NearestPlace(const Screws& screws, const JointPath& joints,
                                       double after) {
  constexpr int kLooks = 4;
  double place = joints.last().s;
  double least = WristAngle(screws, joints.last().value);
  for (size_t piece = joints.PieceAt(after); piece < joints.size(); ++piece) {
    for (int i = 0; i < kLooks; ++i) {
      const double s = joints.begin(piece) + joints.length(piece) * i / kLooks;
      const double angle = WristAngle(screws, joints.At(s, piece).value);
      if (!(angle < least) || s <= after) continue;
      least = angle;
      place = s;
    }
  }
  return {place, least};
}

double OrientationError(const Screws& screws, const PlacedPath& path, const JointPath& joints,
                        double from, double to) {
  constexpr int kLooks = 64;
  double largest = 0;
  for (int i = 0; i <= kLooks; ++i) {
    const double s = std::min(to, from + (to - from) * i / kLooks);
    const Matrix3 rotation = screws.At(joints.At(s).value).tool.rotation;
    largest = Larger(largest, AngleBetween(path.tool.FrameAt(s - path.begin).rotation, rotation));
  }
  return largest;
}

}  // namespace

std::optional<WristPass> PassWrist(const Arm& arm, const Screws& screws, const PlacedPath& path,
                                   double max_error_rad, JointPath& joints) {
  if (joints.size() == 0) return std::nullopt;
  const auto [place, nearest] = NearestPlace(screws, joints, path.after);
  // Farther away the wrist would have to be bent through more than the error.
  if (nearest > max_error_rad) return std::nullopt;
  const ToolSolver solver(screws, path.tool, path.begin);
  constexpr double kLongest = 0.25;
  constexpr double kShortest = 1e-6;
  const double span = path.tool.span();
  double half = std::min({kLongest * span, place - path.after, path.end - place});
  while (half > kShortest * span) {
    const double begin = place - half;
    const double end = place + half;
    half /= 2;
    JointPath led = joints;
    led.CutAfter(begin);
    // Beyond the singularity the joints next to those before it are those of the flipped wrist.
    const auto solution = Nearest(arm, path.tool.PoseAt(end - path.begin), led.last().value);
    const auto to = solution ? solver.Solve(end, solution->joints) : std::nullopt;
    if (!to) continue;
    const WristSolver wrist(screws, path, led.last(), *to);
    if (Follow(wrist, end, led) < end) continue;
    const double error = OrientationError(screws, path, led, begin, end);
    if (!(error <= max_error_rad)) continue;
    joints = std::move(led);
    return WristPass{begin, end, error};
  }
  return std::nullopt;
}

std::optional<PlanFailure> FollowTool(const Arm& arm, const Screws& screws, const PlacedPath& path,
                                      double max_error_rad, JointPath& joints,
                                      std::vector<WristPass>& passes) {
  const ToolSolver solver(screws, path.tool, path.begin);
  PlacedPath rest = path;
  // A path has few places where the wrist is bent straight.
  constexpr int kMostPasses = 8;
  for (int pass = 0;; ++pass) {
    const bool arrived = Follow(solver, path.end, joints) >= path.end;
    if (max_error_rad > 0 && pass < kMostPasses) {
      if (const auto passed = PassWrist(arm, screws, rest, max_error_rad, joints)) {
        passes.push_back(*passed);
        rest.after = passed->end;
        continue;
      }
    }
    if (arrived) return std::nullopt;
    // What fails first is told.
    if (auto failure = LeavesRange(arm, joints)) return failure;
    return NoWayOn(arm, path.tool, path.begin, joints.last());
  }
}

}  // namespace qal
