#include <benchmark/benchmark.h>

#include <memory>

#include "../solver/reference_arm.h"
#include "../src/qal/model/block_functions.h"
#include "../src/qal/solve/batch.h"
#include "case.h"

// The reference arm's solver by number of lanes, as far as the processor has them, and batches.

namespace qal::bench {

namespace {

using closed_form::Frame;
using closed_form::RunInLanes;

// Targets, as they are and in blocks, and the joints that they are of.
struct Targets {
  std::vector<Frame> frames;
  std::vector<FrameBlock> blocks;
  std::vector<Pose> poses;
  std::vector<Joints> joints;
};

Targets TargetsOf(const Workload& work) {
  const size_t blocks = work.joints.size() / kBlock;
  Targets targets;
  targets.joints.assign(work.joints.begin(),
                        work.joints.begin() + static_cast<std::ptrdiff_t>(blocks * kBlock));
  targets.blocks.resize(blocks);
  const Arm arm = Arm::Reference();
  for (size_t i = 0; i < targets.joints.size(); ++i) {
    const Frame frame = Forward(reference_arm::kArm, targets.joints[i].data());
    FrameBlock& block = targets.blocks[i / kBlock];
    for (int k = 0; k < 3; ++k) block.position[k][i % kBlock] = frame.position[k];
    for (int k = 0; k < 9; ++k) block.rotation[k][i % kBlock] = frame.rotation[k / 3][k % 3];
    targets.frames.push_back(frame);
    targets.poses.push_back(*Forward(arm, targets.joints[i]));
  }
  return targets;
}

// What batches take of them, so many times.
Targets Repeated(const Targets& targets, int times) {
  Targets repeated;
  for (int i = 0; i < times; ++i) {
    repeated.poses.insert(repeated.poses.end(), targets.poses.begin(), targets.poses.end());
    repeated.joints.insert(repeated.joints.end(), targets.joints.begin(), targets.joints.end());
  }
  return repeated;
}

Case OnePose(int lanes, const std::shared_ptr<const Targets>& targets) {
  return {"lanes/one pose in " + std::to_string(lanes), Kind::kPeer, targets->frames.size(),
          [lanes, targets] {
            size_t done = 0;
            const closed_form::KnownArm<reference_arm::kArm> held;
            for (const Frame& frame : targets->frames) {
              closed_form::Solutions solutions;
              bool unsettled = false;
              RunInLanes<closed_form::FirstChoice, 4>(lanes, held, frame, solutions, unsettled);
              done += solutions.Count() > 0 ? 1 : 0;
            }
            return done;
          }};
}

Case Block(int lanes, const std::shared_ptr<const Targets>& targets) {
  return {"lanes/a pose each in " + std::to_string(lanes), Kind::kPeer, targets->frames.size(),
          [lanes, targets] {
            size_t done = 0;
            for (const FrameBlock& block : targets->blocks) {
              WaysBlock ways;
              RunInLanes<closed_form::SolveBlock, kBlock>(lanes, reference_arm::kArm, block, ways);
              benchmark::DoNotOptimize(ways);
              done += kBlock;
            }
            return done;
          }};
}

}  // namespace

void AddLanes(const Workload& work, Cases& cases) {
  const auto targets = std::make_shared<const Targets>(TargetsOf(work));
  const size_t count = targets->poses.size();
  for (int lanes = 2; lanes <= closed_form::WidestLanes(); lanes *= 2) {
    if (lanes <= 4) cases.push_back(OnePose(lanes, targets));
    cases.push_back(Block(lanes, targets));
  }
  const Arm arm = Arm::Reference();
  // What they write to is there: fresh memory would take a part of the time, on one core.
  const auto nearest = [arm, found = std::make_shared<std::vector<Joints>>()](
                           const Targets& of, const BatchOptions& options) {
    found->resize(of.poses.size());
    return Nearest(arm, of.poses, of.joints, *found, {}, {}, options).refused;
  };
  const auto add = [&](const char* name, auto batch) {
    cases.push_back({name, Kind::kOurs, count, [=] {
                       const size_t refused = batch(*targets, BatchOptions{1});
                       return count - refused;
                     }});
  };
  add("batch/nearest", nearest);
  add("batch/all", [arm](const Targets& of, const BatchOptions& options) {
    const BatchSolutions all = Inverse(arm, of.poses, of.joints, {}, options);
    return of.poses.size() - all.done;
  });
  add("batch/forward", [arm, found = std::make_shared<std::vector<Pose>>()](
                           const Targets& of, const BatchOptions& options) {
    found->resize(of.joints.size());
    return Forward(arm, of.joints, *found, {}, options).refused;
  });
  // Long enough that what it takes to begin threads doesn't show.
  const auto many = std::make_shared<const Targets>(Repeated(*targets, 20));
  for (const unsigned threads : {1U, 2U}) {
    cases.push_back({"threads/batch of Nearest/" + std::to_string(threads), Kind::kBatches,
                     many->poses.size(),
                     [=] { return many->poses.size() - nearest(*many, BatchOptions{threads}); }});
  }
}

}  // namespace qal::bench
