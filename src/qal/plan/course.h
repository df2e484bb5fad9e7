#ifndef QAL_PLAN_COURSE_H_
#define QAL_PLAN_COURSE_H_

#include <array>

#include "time_law.h"

// Internal: how a motion that is played goes on.
namespace qal {

/// Where the playing of a planned motion is: on the path, and the plan's own time there, which runs
/// at a pace: 1 as planned, 0 at rest.
struct PlayMoment {
  PathMoment path;
  double clock_s;
  double pace;
  double pace_rate;  ///< its derivative by time
};

/// A stretch of a course. Along the path the jerk is constant; by the clock the pace's second
/// derivative is.
struct Leg {
  PlayMoment from;
  double length_s;
  bool by_clock = false;
  double pace_bend = 0;  // by the clock alone
};

/// How a motion goes on, keeping every limit: legs, and then a constant pace, at which the plan
/// keeps them.
struct Course {
  static constexpr size_t kMostLegs = 96;

  size_t legs = 0;
  std::array<Leg, kMostLegs> leg;
  double clock_s = 0;  ///< of the plan, where the legs end
  double pace = 1;     ///< from there on

  bool Append(const Leg& next) {
    if (legs == kMostLegs) return false;
    leg[legs++] = next;
    return true;
  }
  /// Of the legs after the first ones.
  double LengthAfter(size_t first) const {
    double length_s = 0;
    for (size_t i = first; i < legs; ++i) length_s += leg[i].length_s;
    return length_s;
  }
};

/// Plays the legs of a law.
class LegPlayer {
 public:
  explicit LegPlayer(const TimeLaw& law) : law_(law) {}

  /// @param after_s since the leg's beginning
  PlayMoment At(const Leg& leg, double after_s);
  /// On the plan, at a constant pace.
  PlayMoment At(double clock_s, double pace);
  /// The plan's time at a place, and what it is there.
  /// @param clock_s about then
  PathMoment PlanAt(double s, double& clock_s);
  PathMoment PlanAt(double clock_s);
  /// How long the law's piece lasts on at a time of the plan.
  double PieceLeft(double clock_s);

 private:
  const TimeLaw& law_;
  size_t piece_ = 0;  // the one used last
};

}  // namespace qal

#endif  // QAL_PLAN_COURSE_H_
