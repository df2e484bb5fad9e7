#include <benchmark/benchmark.h>
#include <qal/plan/joint_move.h>

#include <memory>
#include <random>
#include <vector>

#include "case.h"

namespace qal::bench {

namespace {

constexpr unsigned kSeed = 20261125;
constexpr size_t kMoves = 1000;
constexpr size_t kSamplesOfMove = 100;

struct Move {
  MotionState from, to;
};

// The reference arm's speeds; its joints turn without end, so that no moving end is in the way of a
// limit of range.
Arm EndlessArm() {
  ArmDescription description;
  ArmSettings settings;
  for (size_t j = 0; j < 6; ++j) {
    description.joints[j].continuous = true;
    settings.joints[j].velocity_rad_s = Arm::Reference().joints()[j].velocity_rad_s.value;
  }
  return *Arm::FromSolver(Arm::Reference().solver(), description, settings);
}

// What is planned over and over.
struct Moves {
  Arm arm = EndlessArm();
  std::vector<Move> one_joint, from_rest, moving;
  std::vector<JointMotion> planned;  // some of `moving`
  std::vector<double> part;          // of a motion's duration
};

std::shared_ptr<const Moves> MakeMoves() {
  Moves moves;
  std::mt19937 engine(kSeed);
  std::uniform_real_distribution<double> part(-1, 1);
  for (size_t i = 0; i < kMoves; ++i) {
    Move one = {};
    one.to.joints[0] = 3 * part(engine);
    moves.one_joint.push_back(one);
    Move rest;
    for (size_t j = 0; j < 6; ++j) {
      rest.from.joints[j] = 3 * part(engine);
      rest.to.joints[j] = 3 * part(engine);
    }
    moves.from_rest.push_back(rest);
    Move moving = rest;
    for (size_t j = 0; j < 6; ++j) {
      // Half of each limit is a state that can be braked, and come from.
      const JointModel& joint = moves.arm.joints()[j];
      for (MotionState* state : {&moving.from, &moving.to}) {
        state->velocities[j] = joint.velocity_rad_s.value / 2 * part(engine);
        state->accelerations[j] = joint.acceleration_rad_s2.value / 2 * part(engine);
      }
    }
    moves.moving.push_back(moving);
    if (i % kSamplesOfMove == 0) {
      moves.planned.push_back(*PlanJoint(moves.arm, moving.from, moving.to));
    }
    moves.part.push_back((part(engine) + 1) / 2);
  }
  return std::make_shared<const Moves>(std::move(moves));
}

Case Planned(const char* name, const std::shared_ptr<const Moves>& moves,
             std::vector<Move> Moves::*kind) {
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
