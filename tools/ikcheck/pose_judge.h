#ifndef QAL_TOOLS_IKCHECK_POSE_JUDGE_H_
#define QAL_TOOLS_IKCHECK_POSE_JUDGE_H_

#include <vector>

#include "frame_offset.h"
#include "measures.h"
#include "session.h"

namespace qal::ikcheck {

/// Solves poses and judges each of them; sums up what it has seen.
class PoseJudge {
 public:
  explicit PoseJudge(Session& session) : session_(session), report_(session.report) {}

  /// What came of one pose.
  struct PoseResult {
    bool answered = false;  ///< the call returned, and what it returned fits what it added
    bool solved = false;
    bool complete = false;  ///< all of its solutions are known, and right
    bool lax = false;       ///< some are in a singular branch, and free or only nearly right
    std::vector<Joints> solutions = {};
    double error = 0.0;  ///< the largest of its solutions [m or matrix element]
  };

  /// A pose that may have solutions or not.
  PoseResult JudgePose(const IkRequest& request);

  /// A pose made from joints: it has to be solved, and the joints to be found again.
  /// @param self_motion also judge singular sets where two axes are one line: the joints may come
  ///                    back with these two turned against each other. Not for sets that are
  ///                    singular in several ways, where there is more to choose from.
  void JudgeJoints(const Joints& joints, bool self_motion = false);

  /// Sums up. Where most solutions are off by one and the same fixed frame, the report says by
  /// which.
  void Fill(Row& row);

 private:
  void JudgeSolution(const IkRequest& request, const Solution& given, PoseResult& result);
  bool JudgeError(const IkRequest& request, const Solution& given, const PoseDifference& difference,
                  bool singular);
  void NoteFarOff(const Frame& asked, const Frame& met);
  void JudgeRange(const IkRequest& request, const Joints& solution);
  void JudgeDuplicates(const IkRequest& request, const std::vector<Joints>& solutions);
  void JudgeOriginal(const IkRequest& original, double smallest,
                     const std::optional<Joints>& self_motion, const PoseResult& result);

  Session& session_;
  Report& report_;
  size_t poses_ = 0;
  size_t solved_ = 0;
  size_t solutions_ = 0;
  size_t wrong_ = 0;
  size_t missed_ = 0;
  double largest_error_ = 0.0;
  // The frames of solutions that are far off: those of some poses, and those they lead to.
  size_t far_off_ = 0;
  std::vector<Frame> asked_;
  std::vector<Frame> met_;
};

}  // namespace qal::ikcheck

#endif  // QAL_TOOLS_IKCHECK_POSE_JUDGE_H_
