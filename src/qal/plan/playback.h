#ifndef QAL_PLAN_PLAYBACK_H_
#define QAL_PLAN_PLAYBACK_H_

/// @file
/// A program's motion as it is played: soft stop, resume, speed override.

#include <functional>
#include <memory>

#include "program.h"

namespace qal {

/// Plays a program's motion cycle by cycle: as planned, slower, or to a stop and on from there,
/// always on the planned path and within the limits that it was planned for. Allocates nothing
/// once it is made. Not to be copied; may be moved.
class QAL_API Playback {
 public:
  /// From a moment of the motion on, as it moves there.
  /// @param motion is shared, not copied
  /// @param from_s where to begin, in motion as planned at that time; before 0 the start
  explicit Playback(const ProgramMotion& motion, double from_s = 0);
  /// From rest at the place where a motion was stopped.
  /// @param motion    is shared, not copied
  /// @param planned_s when the motion is there as planned
  static Playback FromRest(const ProgramMotion& motion, double planned_s);
  ~Playback();
  /// Goes on with another's motion; the other can only be assigned to or destroyed.
  Playback(Playback&& other) noexcept;
  /// Likewise, in place of its own.
  Playback& operator=(Playback&& other) noexcept;
  Playback(const Playback&) = delete;
  Playback& operator=(const Playback&) = delete;

  /// From now on: to rest, as soon as the limits allow it.
  void Stop();
  /// From now on: to the speed of the last `Override`, the planned one if there was none.
  void Resume();
  /// How much of the planned speed to go at from now on, from 0 to 1; 0 is a stop. Waits take as
  /// long as they are planned. What is less than 0, or not a number, is 0; what is more than 1
  /// is 1.
  void Override(double factor);

  /// The sample of the next cycle; the first one is where it begins, at time 0.
  Sample Next();

  /// Whether the arm stands still at the last sample.
  bool at_rest() const;
  /// Whether it stands at the end for good.
  bool done() const;
  /// Where the motion is: at this time it would be there as planned.
  double planned_s() const;

 private:
  struct Held;
  explicit Playback(std::unique_ptr<Held> held);
  std::unique_ptr<Held> held_;
};

/// A motion's stop, as by `Playback`.
struct Stopped {
  Trajectory trajectory;  ///< from the moment at which it begins, which is its time 0, to rest
  double planned_s;       ///< where it stands: `Resume` goes on from there
};

/// From a moment of a motion, along its path, to rest.
/// @return kNotFinite; kTooManyPoints for more than `kMostSamples`
QAL_API Result<Stopped, PlanFailure> Stop(const ProgramMotion& motion, double at_s);

/// From rest where a motion was stopped to its end.
/// @return likewise
QAL_API Result<Trajectory, PlanFailure> Resume(const ProgramMotion& motion, double planned_s);

/// All of a motion at the speed that a function of the time says, asked once a cycle.
/// @return likewise: a factor that stays 0 has no end
QAL_API Result<Trajectory, PlanFailure> Override(
    const ProgramMotion& motion, const std::function<double(double time_s)>& factor);

}  // namespace qal

#endif  // QAL_PLAN_PLAYBACK_H_
