#include <cstdio>
#include <cstdlib>
#include <nlohmann/json.hpp>

#include "seeded_moves.h"

// Writes the rows that move_optimum.py reads: move_rows COUNT, moves of one joint.

namespace qal::bench {
namespace {

void WriteRow(Random& random, int number) {
  const Arm arm = RandomArm(random);
  SeededMove move = RandomMove(random, arm);
  KeepJoints(move, 1);
  const double quickest_s = PlanJoint(arm, move.from, move.to)->duration_s();
  const double least_s = number % 3 == 0 ? random(0, 2) * quickest_s : 0;
  const auto [velocity, acceleration, jerk] = LimitsOf(arm, 0);
  const nlohmann::json row = {
      {"name", number},
      {"limits", {velocity, acceleration, jerk}},
      {"from", {move.from.velocities[0], move.from.accelerations[0]}},
      {"to", {move.to.velocities[0], move.to.accelerations[0]}},
      {"way", move.to.joints[0] - move.from.joints[0]},
      {"least_s", least_s},
      {"duration_s", PlanJoint(arm, move.from, move.to, {{}, least_s})->duration_s()}};
  std::printf("%s\n", row.dump().c_str());
}

}  // namespace
}  // namespace qal::bench

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  qal::bench::Random random(20261125);
  for (int i = 0; i < std::atoi(argv[1]); ++i) qal::bench::WriteRow(random, i);
  return 0;
}
