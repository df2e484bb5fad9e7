#include "played_run.h"

#include <algorithm>
#include <utility>

namespace qal {

Sample PlayedRun::SampleOf(const PathMoment& moment) const {
  const auto after = std::upper_bound(
      blocks.begin() + 1, blocks.end(), moment.s,
      [](double s, const ProgramBlock* block) { return s < block->made.path.begin(); });
  return (*(after - 1))->SampleOf(moment);
}

std::vector<PlayedRun> RunsOf(const ProgramMotion& motion) {
  std::vector<PlayedRun> runs;
  bool stands = true;
  for (const ProgramBlock& block : BlocksOf(motion)) {
    if (!block.moves()) continue;
    const LimitedPath& path = block.made.path;
    if (stands) {
      runs.push_back({{}, {path.joints, {}}, {}});
    } else {
      runs.back().path.joints.Append(path.joints);
    }
    PlayedRun& run = runs.back();
    run.blocks.push_back(&block);
    run.path.sections.insert(run.path.sections.end(), path.sections.begin(), path.sections.end());
    run.law.Append(block.law);
    stands = block.stops;
  }
  return runs;
}

Player PlayerOf(const std::vector<PlayedRun>& runs, const ProgramMotion& motion, double from_s) {
  std::vector<PlayedBlock> blocks;
  blocks.reserve(runs.size());
  for (const PlayedRun& run : runs) {
    blocks.push_back({run.blocks.front()->begin_s, &run.path, &run.law});
  }
  return {std::move(blocks), motion.duration_s(), CycleOf(motion), from_s};
}

// Of a motion without a block, which takes no time, any.
double CycleOf(const ProgramMotion& motion) {
  const std::vector<ProgramBlock>& blocks = BlocksOf(motion);
  return blocks.empty() ? 1 : blocks.front().arm.cycle_s().value;
}

}  // namespace qal
