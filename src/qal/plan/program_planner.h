#ifndef QAL_PLAN_PROGRAM_PLANNER_H_
#define QAL_PLAN_PROGRAM_PLANNER_H_

#include <deque>
#include <memory>
#include <optional>
#include <vector>

#include "program_stream.h"
#include "run_path.h"
#include "time_law.h"

// Internal: a program's motion, planned from its beginning on.
namespace qal {

/// A part of a program's motion: along a path, or at rest.
struct ProgramBlock {
  Arm arm;  ///< with the tool of the time
  double begin_s = 0;
  double duration_s = 0;
  StepPath made = {};
  TimeLaw law = {};   ///< along that path; none: it stands still
  size_t step = 0;    ///< that it stands still in
  State end = {};     ///< where it ends; or stands
  bool stops = true;  ///< it is at rest at its end

  bool moves() const { return law.size() > 0; }
  /// Whether it stands at its end, for good.
  bool IsOver(double time_s) const;
  /// From 0 to the duration.
  MotionState At(double time_s) const;
  Pose PoseAt(double time_s) const;
  Sample SampleAt(double time_s) const;
  /// At a place of its path, at any speed there; of time 0.
  Sample SampleOf(const PathMoment& moment) const;
};

/// Plans a program's blocks one after the other. The motion of a step is settled once some more
/// steps are known that it goes on with without a stop: a long run is planned in windows of steps,
/// each from where the one before is left in motion to rest.
class ProgramPlanner {
 public:
  /// @param program has to outlive this
  ProgramPlanner(const Arm& arm, const Program& program);

  /// Plans on until there is one more block, or no more.
  /// @return what went wrong, after all that was planned before it; that ends at rest
  std::optional<ProgramFailure> Next();
  /// Whether there are no more.
  bool done() const { return done_; }
  /// The next block; to be called once after each `Next` that neither failed nor ended.
  ProgramBlock Take();

  /// Where the arm stands first; after `Next`.
  const State& start() const { return begin_; }
  /// The first step that nothing was planned of.
  size_t next_step() const { return next_; }

 private:
  std::optional<ProgramFailure> Begin();
  std::optional<ProgramFailure> PlanStep();
  std::optional<Error> StandStill(const ProgramStep& step);
  std::optional<ProgramFailure> PlanWindow();
  size_t PieceToLeave(const StepPath& made, const TimeLaw& law) const;
  void ComeToRest();
  void EndInWholeCycles();
  void Add(ProgramBlock block);

  Arm arm_;
  const Program& program_;
  size_t next_ = 0;
  double time_s_ = 0;
  State begin_ = {};
  State state_ = {};  // where the last block ends, if it stops
  std::unique_ptr<RunPath> run_;
  StepPath stopping_;  // how the last window would have come to rest, from there on
  TimeLaw stopping_law_;
  std::deque<ProgramBlock> blocks_;
  std::optional<ProgramFailure> failure_;
  bool begun_ = false;
  bool planned_ = false;
  bool done_ = false;
};

}  // namespace qal

#endif  // QAL_PLAN_PROGRAM_PLANNER_H_
