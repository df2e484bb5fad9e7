#ifndef QAL_TOOLS_IKCHECK_POSE_JUDGE_H_
#define QAL_TOOLS_IKCHECK_POSE_JUDGE_H_

#include <vector>

#include "session.h"

namespace qal::ikcheck {

/// Solves poses and judges each of them; sums up what it has seen.
class PoseJudge {
 public:
  explicit PoseJudge(Session& session) : session_(session) {}

  /// What came of one pose.
  struct PoseResult {
    bool answered = false;  ///< the call returned
    bool solved = false;
    std::vector<Joints> solutions = {};
    double error = 0.0;  ///< the largest of its solutions that aren't wrong
  };

  /// Poses that may have solutions or not.
  std::vector<PoseResult> JudgePoses(const std::vector<IkRequest>& requests);

  /// Poses made from joints: they have to be solved, and the joints to be found again. Some
  /// thousand at a time: the answers of 1000 take 4 MB.
  /// @param self_motions also judge singular sets where two axes are one line: the joints may come
  ///                      back with these two turned against each other. Not for sets that are
  ///                      singular in several ways, where there is more to choose from.
  void JudgeJoints(const std::vector<Joints>& joints, bool self_motions = false);

  void Fill(Row& row) const;

 private:
  // The solution's error; 0 when that is judged already.
  double JudgeSolution(const IkRequest& request, const Solution& given, const FkAnswer& forward);
  void JudgeDuplicates(const IkRequest& request, const std::vector<Joints>& solutions);
  // A pose made from joints that are to be found again.
  struct Original {
    IkRequest request;
    double smallest;                    // singular value of the Jacobian
    std::optional<Joints> self_motion;  // they may come back moved by it
  };
  void JudgeOriginal(const Original& original, const PoseResult& result);

  Session& session_;
  size_t poses_ = 0;
  size_t solved_ = 0;
  size_t solutions_ = 0;
  size_t wrong_ = 0;
  size_t missed_ = 0;
  double largest_error_ = 0.0;
};

}  // namespace qal::ikcheck

#endif  // QAL_TOOLS_IKCHECK_POSE_JUDGE_H_
