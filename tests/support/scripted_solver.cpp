#include "scripted_solver.h"

#include "kinematics/ikfast.h"

SolverScript script;

SolverPose GantryForward(const Joints& joints) {
  return {joints[0], joints[1], joints[2], 1, 0, 0, 0, 1, 0, 0, 0, 1};
}

bool ikfast::ComputeIk(const IkReal* eetrans, const IkReal* eerot, const IkReal* pfree,
                       IkSolutionListBase<IkReal>& solutions) {
  EXPECT_EQ(pfree, nullptr);
  SolverPose target;
  std::copy(eerot, eerot + 9, std::copy(eetrans, eetrans + 3, target.begin()));
  script.queries.push_back(target);

  // This query is among them; size_t wraps for the first ones.
  const bool silent = script.queries.size() - 1 - script.answered < script.unanswered;
  const Answer answer = silent ? Answer{} : script.inverse(target);
  for (const std::vector<double>& solution : answer.solutions) {
    std::vector<IkSingleDOFSolutionBase<IkReal>> joints(solution.size());
    for (size_t j = 0; j < joints.size(); ++j) joints[j].foffset = solution[j];
    (void)solutions.AddSolution(joints, {});
  }
  return answer.found;
}

void ikfast::ComputeFk(const IkReal* joints, IkReal* eetrans, IkReal* eerot) {
  Joints query;
  std::copy(joints, joints + 6, query.begin());
  const SolverPose pose = script.forward(query);
  std::copy(pose.begin(), pose.begin() + 3, eetrans);
  std::copy(pose.begin() + 3, pose.end(), eerot);
}
