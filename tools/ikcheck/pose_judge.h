#ifndef QAL_TOOLS_IKCHECK_POSE_JUDGE_H_
#define QAL_TOOLS_IKCHECK_POSE_JUDGE_H_

#include <vector>

#include "measures.h"
#include "session.h"

namespace qal::ikcheck {

/// Solves poses and judges each of them; sums up what it has seen.
class PoseJudge {
 public:
  explicit PoseJudge(Session& session) : session_(session) {}

  /// What came of one pose.
  struct PoseResult {
    bool answered = false;  ///< the call returned, and what it returned fits what it added
    bool solved = false;
    bool complete = false;  ///< all of its solutions are known, and right
    bool lax = false;       ///< some are in a singular branch, and free or only nearly right
    std::vector<Joints> solutions = {};
    double error = 0.0;  ///< the largest of its solutions [m or matrix element]
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
  // A solution of a pose.
  struct Found {
    const IkRequest* request;
    Solution given;
    std::optional<PoseDifference> error = {};  // none: where it leads isn't known
    Pose leads_to = {};
    bool singular = false;  // looked at only where it makes a difference
  };
  // Has ComputeFk say where they lead.
  void Follow(std::vector<Found>& all);
  // Where most are off by one and the same fixed frame: which.
  std::string CommonOffset(const std::vector<Found>& all) const;
  // Whether it is right.
  bool JudgeSolution(const Found& found, const std::string& offset);
  void JudgeRange(const IkRequest& request, const Joints& solution);
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
