#ifndef QAL_PLAN_RUN_PATH_H_
#define QAL_PLAN_RUN_PATH_H_

#include <optional>

#include "corner.h"
#include "program.h"
#include "step_path.h"
#include "way.h"

// Internal: the path of a program's steps from one stop to the next.
namespace qal {

/// Makes the path of a run, step by step.
class RunPath {
 public:
  /// @param first the run's first step, a motion
  /// @param start where the arm stands
  RunPath(const Arm& arm, const Program& program, size_t first, const State& start)
      : arm_(arm), program_(program), start_(start), next_(first), pose_(start.pose) {}

  /// One more step, up to where it has gone over into the next one, or stops. Steps of no length
  /// are none.
  std::optional<ProgramFailure> Extend();
  /// Whether the run stops where the path ends. A run of steps of no length has no path.
  bool done() const { return done_; }
  /// The first step that isn't on the path.
  size_t next_step() const { return next_; }
  /// Where the tool is at the end of a run that is done.
  const Pose& end_pose() const { return pose_; }

  StepPath& made() { return made_; }

 private:
  using Failure = std::optional<ProgramFailure>;

  Failure Begin();
  Failure FindWay(const WayStart& start, std::optional<Way>& way);
  Failure Follow(const Way& way, double begin, double to, JointPath& joints);
  Failure Round(const Way& next, const JointPath& to_corner);
  Failure MakeZone(const Way& next, const Rounding& rounding, const JointPath& to_corner,
                   const JointPath& from_corner, JointPath& zone,
                   std::shared_ptr<const ToolPath>& tool);
  double FarthestFromCorner(const JointPath& around, const JointPath& to_corner) const;
  void AppendZone(const Way& next, const Rounding& rounding, const JointPath& zone,
                  const std::shared_ptr<const ToolPath>& tool);
  std::optional<Rounding> FirstRounding(const Way& next, const JointPath& to_corner,
                                        const JointPath& from_corner) const;
  Failure Stop(JointPath joints, double reached);
  Failure AppendWay(JointPath joints, double to);
  Pose WayEnd() const;
  std::optional<JointPath> PathFrom(const Way& way, double begin, const Joints& joints) const;

  const Arm& arm_;
  const Program& program_;
  State start_;
  std::optional<Screws> screws_;
  StepPath made_;
  std::optional<Way> way_;  // the one that the path is on
  double way_begin_ = 0;    // where on the path that way itself would begin
  double passed_ = 0;       // how much of the way the path has behind it
  size_t next_;
  Pose pose_;
  bool done_ = false;
};

}  // namespace qal

#endif  // QAL_PLAN_RUN_PATH_H_
