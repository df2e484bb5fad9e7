#include <algorithm>
#include <cmath>
#include <optional>

#include "../../../solver/closed_form/angles.h"
#include "../model/rotations.h"
#include "../solve/solver_calls.h"
#include "reach.h"

namespace qal {

namespace {

using closed_form::kPi;

constexpr int kMostDirections = 100000;
constexpr int kMostSpins = 36;
// A shorter tilt axis is what rounding has left of components that were to cancel.
constexpr double kShortestAxis = 1e-6;

std::array<double, 3> ExtentsOf(const ReachStudy& study) {
  return {study.box_max.x - study.box_min.x, study.box_max.y - study.box_min.y,
          study.box_max.z - study.box_min.z};
}

// How many cells cover an extent. The last digits of an extent that is a whole number of steps
// don't add one.
double CellsAlong(double extent_m, double step_m) {
  constexpr double kRoundingShare = 1e-6;
  return std::max(1.0, std::ceil(extent_m / step_m - kRoundingShare));
}

double CellsOf(const std::array<double, 3>& extents_m, double step_m) {
  return CellsAlong(extents_m[0], step_m) * CellsAlong(extents_m[1], step_m) *
         CellsAlong(extents_m[2], step_m);
}

bool StepWorks(const std::array<double, 3>& extents_m, double step_m) {
  // Written so that NaN fails.
  return step_m > 0 && std::isfinite(step_m) &&
         CellsOf(extents_m, step_m) <= static_cast<double>(kMostReachCells);
}

// The next number of three digits.
double RoundedUp(double value) {
  const double scale = std::pow(10, 2 - std::floor(std::log10(value)));
  return std::ceil(value * scale) / scale;
}

// The smallest step that works and is short to write.
double SmallestStep(const std::array<double, 3>& extents_m) {
  double fails = 0;
  double works = std::max({extents_m[0], extents_m[1], extents_m[2], 1e-3});
  constexpr int kHalvings = 40;  // to 1e-12 of the extent
  for (int i = 0; i < kHalvings; ++i) {
    const double middle = (fails + works) / 2;
    (StepWorks(extents_m, middle) ? works : fails) = middle;
  }
  return RoundedUp(works);
}

double LengthOf(const Vec3& v) { return std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z); }

std::optional<Error> RefusedBox(const ReachStudy& study) {
  const auto& [low, high] = std::pair(study.box_min, study.box_max);
  for (const double value : {low.x, low.y, low.z, high.x, high.y, high.z}) {
    if (!std::isfinite(value)) return Error{Reason::kNotFinite, -1, value};
  }
  static constexpr std::array<const char*, 3> kNames = {
      "box_extent_along_x_m", "box_extent_along_y_m", "box_extent_along_z_m"};
  const std::array<double, 3> extents_m = ExtentsOf(study);
  for (size_t i = 0; i < extents_m.size(); ++i) {
    if (extents_m[i] < 0) return Error{Reason::kSetting, -1, extents_m[i], 0, kNames[i]};
    if (!std::isfinite(extents_m[i])) return Error{Reason::kNotFinite, -1, extents_m[i]};
  }
  if (StepWorks(extents_m, study.step_m)) return std::nullopt;
  return Error{Reason::kSetting, -1, study.step_m, SmallestStep(extents_m), "step_m"};
}

std::optional<Error> RefusedOrientations(const ReachStudy& study) {
  const auto refused = [](double value, double least, double most, const char* name) {
    return Error{Reason::kSetting, -1, value, value > most ? most : least, name};
  };
  if (study.directions < 1 || study.directions > kMostDirections) {
    return refused(study.directions, 1, kMostDirections, "number_of_directions");
  }
  if (study.spins < 1 || study.spins > kMostSpins) {
    return refused(study.spins, 1, kMostSpins, "number_of_spins");
  }
  if (!(study.tilt_cone_rad >= 0 && study.tilt_cone_rad <= kPi)) {
    return refused(study.tilt_cone_rad, 0, kPi, "tilt_cone_rad");
  }
  const double length = LengthOf(study.tilt_axis);
  if (!std::isfinite(length)) return Error{Reason::kNotFinite, -1, length};
  if (length < kShortestAxis) return refused(length, 1, 1, "length_of_the_tilt_axis");
  return std::nullopt;
}

std::optional<Error> RefusedLine(const ReachStudy& study) {
  if (!std::isfinite(study.line_m)) return Error{Reason::kNotFinite, -1, study.line_m};
  if (study.line_m < 0) return Error{Reason::kSetting, -1, study.line_m, 0, "line_m"};
  if (!study.line_direction) return std::nullopt;
  const double length = LengthOf(*study.line_direction);
  if (!std::isfinite(length)) return Error{Reason::kNotFinite, -1, length};
  if (length >= kShortestAxis) return std::nullopt;
  return Error{Reason::kSetting, -1, length, 1, "length_of_the_line_direction"};
}

std::optional<Error> RefusedPoses(const ReachStudy& study) {
  if (study.poses.size() > kMostReachPoses) {
    return Error{Reason::kSetting, -1, static_cast<double>(study.poses.size()),
                 static_cast<double>(kMostReachPoses), "number_of_poses"};
  }
  for (const Pose& pose : study.poses) {
    if (auto refused = RefusedPose(pose)) return refused;
  }
  return std::nullopt;
}

// The orientation that takes z to a unit vector by the shortest way; to -z about x.
Quat FromZTo(const Vec3& v) {
  // Nearer -z than this the sum below has lost its digits.
  constexpr double kOpposite = 1e-12;
  if (v.z <= kOpposite - 1) return {0, 1, 0, 0};
  const double w = 1 + v.z;
  const double length = std::sqrt(w * w + v.x * v.x + v.y * v.y);
  return {w / length, -v.y / length, v.x / length, 0};
}

closed_form::SinCos<double> SinCosOf(double angle_rad) {
  // Not the C library's, which differ from processor to processor.
  const auto both = closed_form::SinCosOf(closed_form::Lanes{angle_rad, angle_rad});
  return {both.sine[0], both.cosine[0]};
}

// Direction `k` of a cap about z.
Vec3 CapDirection(int k, int count, double one_less_cos_cone) {
  constexpr double kGoldenSection = 0.61803398874989485;
  if (count == 1) return {0, 0, 1};
  const double z = 1 - one_less_cos_cone * ((k + 0.5) / count);
  const double turns = k * kGoldenSection;
  const auto angle = SinCosOf(2 * kPi * (turns - std::floor(turns)));
  const double radius = std::sqrt(std::max(0.0, 1 - z * z));
  return {radius * angle.cosine, radius * angle.sine, z};
}

}  // namespace

Vec3 ReachGrid::Centre(size_t cell) const {
  const size_t row = cell / count[0];
  const size_t layer = row / count[1];
  return {first.x + static_cast<double>(cell % count[0]) * step_m,
          first.y + static_cast<double>(row % count[1]) * step_m,
          first.z + static_cast<double>(layer) * step_m};
}

Result<ReachGrid> GridOf(const ReachStudy& study) {
  if (const auto refused = RefusedBox(study)) return *refused;
  if (const auto refused = RefusedLine(study)) return *refused;
  if (const auto refused = study.poses.empty() ? RefusedOrientations(study) : RefusedPoses(study)) {
    return *refused;
  }
  const std::array<double, 3> extents_m = ExtentsOf(study);
  ReachGrid grid = {{}, {}, study.step_m};
  std::array<double, 3> firsts_m = {study.box_min.x, study.box_min.y, study.box_min.z};
  for (size_t i = 0; i < extents_m.size(); ++i) {
    const double cells = CellsAlong(extents_m[i], study.step_m);
    grid.count[i] = static_cast<size_t>(cells);
    firsts_m[i] += (extents_m[i] - (cells - 1) * study.step_m) / 2;
  }
  grid.first = {firsts_m[0], firsts_m[1], firsts_m[2]};
  return grid;
}

int DirectionsOf(const ReachStudy& study) {
  return study.poses.empty() ? study.directions : static_cast<int>(study.poses.size());
}

Result<std::vector<Quat>> OrientationsOf(const ReachStudy& study) {
  if (const auto grid = GridOf(study); !grid) return grid.error();
  std::vector<Quat> orientations;
  for (const Pose& pose : study.poses) orientations.push_back(pose.orientation);
  if (!study.poses.empty()) return orientations;
  const double length = LengthOf(study.tilt_axis);
  const Quat to_axis =
      FromZTo({study.tilt_axis.x / length, study.tilt_axis.y / length, study.tilt_axis.z / length});
  const double one_less_cos_cone = 1 - SinCosOf(study.tilt_cone_rad).cosine;
  for (int k = 0; k < study.directions; ++k) {
    const Quat direction = to_axis * FromZTo(CapDirection(k, study.directions, one_less_cos_cone));
    for (int r = 0; r < study.spins; ++r) {
      const auto half = SinCosOf(kPi * r / study.spins);
      orientations.push_back(direction * Quat{half.cosine, 0, 0, half.sine});
    }
  }
  return orientations;
}

}  // namespace qal
