#ifndef QAL_KINEMATICS_SOLVE_OBSERVER_H_
#define QAL_KINEMATICS_SOLVE_OBSERVER_H_

#include "../../core/roadpoint.h"

namespace qal {

/// What a classic operation has to tell. The members of `Report` that belong to it are named.
enum class Event {
  // ---- Solving ----
  kNoPose,           ///< forward kinematics gives a matrix with a NaN
  kUnsolved,         ///< a step-bounded query: the solver finds nothing, fallbacks included
  kInadmissible,     ///< the same: it does, but nothing within range and bound
  kJogUnsolved,      ///< a jog: the solver finds nothing, twice
  kJogInadmissible,  ///< a jog: nothing within range and bound
  kUnreachable,      ///< neither a pose nor one close to its joints has a solution

  // ---- Straight lines ----
  kFixedLineNoPair,    ///< `point` and `other` are no ends of a line with fixed steps
  kLinePointUnsolved,  ///< `point`, number `index` of the line, has no solution when counted, or on
                       ///< the way up or in the cruise of a ramp
  kLineEndUnsolved,    ///< the end has none; `point` is the last of the line
  kFixedLineUnsolved,  ///< `point`, number `index` of a line with fixed steps, has none
  kPointHeld,          ///< `point`, number `index`, has none and keeps the joints before it
  kRampedLineNoPair,   ///< `point` and `other` are no ends of a ramped line
  kRampDownUnsolved,   ///< `point`, number `index` of the way down a ramp, has none

  // ---- S-curve ----
  kLineEndsUnsolved,    ///< an end can't be reached, nor a pose close to it
  kShortLine,           ///< the shortest profile is `value` [m] long, the line `bound` [m]
  kJointStepTooLarge,   ///< `joint` would move by `value` [rad], `bound` [rad] are allowed
  kJointStepRefused,    ///< a line ends for that reason
  kAccelerationTooLow,  ///< it is built up within the shortest phase
  kFirstPhase,          ///< a first phase is planned

  // ---- Joint moves ----
  kUnprofiledRun,  ///< a move of `index` cycles, too few for a profile
  kRun,            ///< a move of `index` cycles
};

/// One event, as it happens.
struct Report {
  Event event;
  const RoadPoint* point = nullptr;
  const RoadPoint* other = nullptr;
  int index = -1;
  int joint = -1;  ///< from 0
  double value = 0.0;
  double bound = 0.0;
};

/// Hears what happens in a classic operation, at the moment when it does. May throw: the operation
/// then ends as with any exception, and leaves whole points only.
class Observer {
 public:
  virtual void Hear(const Report& report) const = 0;

 protected:
  constexpr Observer() = default;
  ~Observer() = default;
  Observer(const Observer&) = default;
  Observer& operator=(const Observer&) = default;
};

}  // namespace qal

#endif  // QAL_KINEMATICS_SOLVE_OBSERVER_H_
