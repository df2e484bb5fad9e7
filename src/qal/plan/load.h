#ifndef QAL_PLAN_LOAD_H_
#define QAL_PLAN_LOAD_H_

#include "limited_path.h"
#include "time_law.h"

// Internal: what a motion along a path needs of its limits.
namespace qal {

/// Velocities, accelerations and jerks of the joints.
using JointRates = std::array<Joints, 3>;

/// What the joints do at a moment of a motion along a path: with s' and so on by time,
///
///     q_j' s'      q_j'' s'^2 + q_j' s''      q_j''' s'^3 + 3 q_j'' s' s'' + q_j' s'''
JointRates RatesOf(const PathPoint& joints, const PathMoment& moment);

/// How much of each limit is needed, as a multiple of it: the most of all that are of a kind.
struct Load {
  double velocity = 0;
  double acceleration = 0;
  double jerk = 0;

  /// How much slower a motion has to be to keep the limits; 1 when it does.
  double Slowdown() const;
};

Load Larger(const Load& a, const Load& b);

/// What a moment of a motion needs of the tool's limits, and of its turn's.
Load ToolLoad(const ToolRates& tool, const PathMoment& moment, const ToolLimits& limits);
Load TurnLoad(const ToolRates& tool, const PathMoment& moment, const ToolLimits& limits);

/// What a moment of a motion needs.
Load LoadAt(const PathPoint& joints, const PathMoment& moment, const PathSection& section);

/// Looks at a law's pieces, one after the other.
class LoadMeter {
 public:
  LoadMeter(const LimitedPath& path, const TimeLaw& law)
      : path_(path), law_(law), here_(path.joints.At(path.begin(), 0)) {}

  /// The most that the next piece needs, at its ends and at moments within it, so close that no
  /// piece of the path is passed over: there the joints bend most.
  Load Next();

 private:
  Load At(double time_s) const;
  Load MoveTo(double from_s, double to_s, Load& most);
  bool IsBeyond(double s) const;
  bool IsSteady() const;

  const LimitedPath& path_;
  const TimeLaw& law_;
  size_t piece_ = 0;
  size_t path_piece_ = 0;
  size_t section_ = 0;
  PathPoint here_;
};

}  // namespace qal

#endif  // QAL_PLAN_LOAD_H_
