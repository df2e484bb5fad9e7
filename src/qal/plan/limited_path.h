#ifndef QAL_PLAN_LIMITED_PATH_H_
#define QAL_PLAN_LIMITED_PATH_H_

#include <functional>
#include <limits>
#include <memory>
#include <vector>

#include "joint_path.h"
#include "pieces.h"
#include "tool_path.h"

// Internal: a path of the joints, and what a motion along it may do.
namespace qal {

constexpr double kNoLimit = std::numeric_limits<double>::infinity();

/// Limits of a tool's rates: of the lengths of the vectors.
struct ToolLimits {
  double speed = kNoLimit;
  double acceleration = kNoLimit;
  double jerk = kNoLimit;
  double turn_speed = kNoLimit;
  double turn_acceleration = kNoLimit;
  double turn_jerk = kNoLimit;
};

/// Limits along a stretch of a path: of each joint, and of the tool. Where the tool goes straight
/// on its limits are limits of the parameter s itself; where the joints do, theirs are too.
struct PathSection {
  double begin = 0;

  bool straight = false;
  double speed = kNoLimit;  ///< of s, where it is straight, as are the next two
  double acceleration = kNoLimit;
  double jerk = kNoLimit;
  Joints joint_velocity = {};
  Joints joint_acceleration = {};
  Joints joint_jerk = {};

  std::shared_ptr<const ToolPath> tool = nullptr;  ///< none: no limits of the tool
  double tool_begin = 0;                           ///< where on the path it begins
  ToolLimits tool_limits = {};

  ToolRates ToolAt(double s) const { return tool->RatesAt(s - tool_begin); }
};

/// The joints along a path, and its sections in their order.
struct LimitedPath {
  JointPath joints;
  std::vector<PathSection> sections;
  std::function<bool()> go_on = nullptr;  ///< the arm's watch; none: nobody watches

  double begin() const { return joints.begin(0); }
  double end() const { return joints.last().s; }
  /// The section at a place, the later one where two meet.
  size_t SectionAt(double s, size_t near = 0) const { return PieceHolding(sections, s, near); }
};

/// A rate of which a motion along a path has a limit: a joint's, or the tool's in some direction.
/// With s' and so on by time, it is
///
///     first s'      second s'^2 + first s''      third s'^3 + 3 second s' s'' + first s'''
struct LimitedRate {
  double first;
  double second;
  double third;
  double acceleration;  ///< the limit
  double jerk;          ///< likewise
};

/// All of those at a place. The tool's are a few directions that say nearly all of a vector's
/// length; its first derivative, and what is across that.
class LimitedRates {
 public:
  // What is beyond the rates that there are is neither set nor read.
  LimitedRates(const PathPoint& joints, const PathSection& section);  // NOLINT(*-member-init)

  /// Of a vector.
  static constexpr int kDirections = 8;
  static constexpr size_t kMost = 6 + 1 + 2 * kDirections;

  const LimitedRate* begin() const { return rate_; }
  const LimitedRate* end() const { return rate_ + count_; }
  /// By the limits of velocity alone.
  double most_speed() const { return most_speed_; }

 private:
  void AddVector(const Vector3& first, const Vector3& second, const Vector3& third, double speed,
                 double acceleration, double jerk);

  size_t count_ = 0;
  double most_speed_;
  LimitedRate rate_[kMost];
};

}  // namespace qal

#endif  // QAL_PLAN_LIMITED_PATH_H_
