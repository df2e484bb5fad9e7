#include "scripted_solver.h"

#include <algorithm>

#include "kinematics/ikfast.h"

SolverScript script;

SolverPose GantryForward(const Joints& joints) {
  return {joints[0], joints[1], joints[2], 1, 0, 0, 0, 1, 0, 0, 0, 1};
}

Answer GantryInverse(const SolverPose& target) {
  return Found({{target[0], target[1], target[2], 0, 0, 0}});
}

namespace ikfast {

bool ComputeIk(const IkReal* eetrans, const IkReal* eerot, const IkReal* pfree,
               IkSolutionListBase<IkReal>& solutions) {
  EXPECT_EQ(pfree, nullptr);
  SolverPose target;
  std::copy(eerot, eerot + 9, std::copy(eetrans, eetrans + 3, target.begin()));
  script.asked.push_back(target);

  const bool scripted = !script.answers.empty();
  const Answer answer = scripted ? script.answers.front() : script.inverse(target);
  if (scripted) script.answers.pop_front();
  for (const std::vector<double>& solution : answer.solutions) {
    std::vector<IkSingleDOFSolutionBase<IkReal>> joints(solution.size());
    for (size_t j = 0; j < joints.size(); ++j) joints[j].foffset = solution[j];
    (void)solutions.AddSolution(joints, {});
  }
  return answer.found;
}

void ComputeFk(const IkReal* joints, IkReal* eetrans, IkReal* eerot) {
  Joints question;
  std::copy(joints, joints + 6, question.begin());
  const SolverPose pose = script.forward(question);
  std::copy(pose.begin(), pose.begin() + 3, eetrans);
  std::copy(pose.begin() + 3, pose.end(), eerot);
}

}  // namespace ikfast
