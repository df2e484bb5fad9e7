#include <benchmark/benchmark.h>
#include <qal/plan/joint_move.h>

#include <memory>
#include <vector>

#include "case.h"
#include "seeded_moves.h"

namespace qal::bench {

namespace {

constexpr unsigned kSeed = 20261125;
constexpr size_t kMoves = 1000;
constexpr size_t kSamplesOfMove = 100;

// The reference arm's limits; its joints turn without end, so that no moving end is in the way of a
// limit of range.
Arm ArmToMove() {
  const Arm arm = Arm::Reference();
  return EndlessArm([&](size_t j) { return LimitsOf(arm, j); });
}

// What is planned over and over.
struct Moves {
  Arm arm = ArmToMove();
  std::vector<SeededMove> one_joint, from_rest, moving;
  std::vector<JointMotion> planned;  // some of `moving`
  std::vector<double> part;          // of a motion's duration
};

std::shared_ptr<const Moves> MakeMoves() {
  Moves moves;
  Random random(kSeed);
  for (size_t i = 0; i < kMoves; ++i) {
    SeededMove one = {};
    one.to.joints[0] = random(-3, 3);
    moves.one_joint.push_back(one);
    SeededMove rest;
    for (size_t j = 0; j < 6; ++j) {
      rest.from.joints[j] = random(-3, 3);
      rest.to.joints[j] = random(-3, 3);
    }
    moves.from_rest.push_back(rest);
    SeededMove moving = rest;
    for (size_t j = 0; j < 6; ++j) {
      // Half of each limit is a state that can be braked, and come from.
      const JointModel& joint = moves.arm.joints()[j];
      for (MotionState* state : {&moving.from, &moving.to}) {
        state->velocities[j] = joint.velocity_rad_s.value / 2 * random(-1, 1);
        state->accelerations[j] = joint.acceleration_rad_s2.value / 2 * random(-1, 1);
      }
    }
    moves.moving.push_back(moving);
    if (i % kSamplesOfMove == 0) {
      moves.planned.push_back(*PlanJoint(moves.arm, moving.from, moving.to));
    }
    moves.part.push_back(random(0, 1));
  }
  return std::make_shared<const Moves>(std::move(moves));
}

Case Planned(const char* name, const std::shared_ptr<const Moves>& moves,
             std::vector<SeededMove> Moves::*kind) {
  return {name, Kind::kOurs, kMoves, [moves, kind] {
            size_t done = 0;
            for (const auto& [from, to] : (*moves).*kind) {
              const auto motion = PlanJoint(moves->arm, from, to);
              benchmark::DoNotOptimize(motion);
              done += motion ? 1 : 0;
            }
            return done;
          }};
}

}  // namespace

void AddMoves(Cases& cases) {
  const auto moves = MakeMoves();
  cases.push_back(Planned("plan/one joint", moves, &Moves::one_joint));
  cases.push_back(Planned("plan/six from rest", moves, &Moves::from_rest));
  cases.push_back(Planned("plan/six moving", moves, &Moves::moving));
  // As a controller does: many samples of a motion, then of the next; at random moments.
  cases.push_back({"plan/sample", Kind::kOurs, kMoves, [moves] {
                     for (size_t i = 0; i < kMoves; ++i) {
                       const JointMotion& motion = moves->planned[i / kSamplesOfMove];
                       const MotionState state = motion.At(moves->part[i] * motion.duration_s());
                       benchmark::DoNotOptimize(state);
                     }
                     return kMoves;
                   }});
}

}  // namespace qal::bench
