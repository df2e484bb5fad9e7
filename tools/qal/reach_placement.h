#ifndef QAL_TOOLS_QAL_REACH_PLACEMENT_H_
#define QAL_TOOLS_QAL_REACH_PLACEMENT_H_

#include <optional>
#include <string>
#include <vector>

#include "../../io/reach_file.h"
#include "units.h"

namespace qal::tools {

/// What is known of a placement's poses besides their numbers.
struct PlacementPoses {
  std::string file = {};           ///< as messages call it
  std::vector<size_t> lines = {};  ///< of each pose in it; empty: not known
  /// Those that are not reached from the best position; nothing: not known.
  std::optional<std::vector<size_t>> missed = {};
};

/// The poses that are not reached from the best of a placement's positions.
/// @throw Failure when the solver fails
std::vector<size_t> MissedPoses(const Arm& arm, const io::ReachFile& file);

/// What a placement comes to, as rows of a table: how many positions of the base reach all poses,
/// the best ones, and where none does, which poses are missed.
std::string PlacementTable(const io::ReachFile& file, const PlacementPoses& poses,
                           const Units& units);
/// The same as JSON, always in rad and m.
std::string PlacementJson(const io::ReachFile& file, const PlacementPoses& poses);

}  // namespace qal::tools

#endif  // QAL_TOOLS_QAL_REACH_PLACEMENT_H_
