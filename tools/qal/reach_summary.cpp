#include "reach_summary.h"

#include <fmt/format.h>

#include <algorithm>

#include "tables.h"

namespace qal::tools {

using namespace io;

namespace {

struct ReachSummary {
  size_t reached = 0;  // cells, in at least one direction
  size_t fully = 0;    // cells, in all of them
  double share = 0;    // of directions, mean of the cells
  size_t best = 0;     // cell of the file: most directions, then the largest margin
};

ReachSummary SummaryOf(const ReachFile& file) {
  ReachSummary summary;
  const auto directions = static_cast<uint32_t>(DirectionsOf(file.study));
  double sum = 0;
  for (size_t i = 0; i < file.cells.size(); ++i) {
    const ReachCell& cell = file.cells[i];
    const ReachCell& best = file.cells[summary.best];
    if (cell.directions > 0) ++summary.reached;
    if (cell.directions == directions) ++summary.fully;
    sum += cell.directions;
    if (cell.directions > best.directions ||
        (cell.directions == best.directions && cell.margin_rad > best.margin_rad)) {
      summary.best = i;
    }
  }
  if (!file.cells.empty())
    summary.share = sum / static_cast<double>(file.cells.size()) / directions;
  return summary;
}

}  // namespace

std::string ReachSummaryTable(const ReachFile& file, const Units& units) {
  const ReachSummary summary = SummaryOf(file);
  const auto cells = [&](size_t count) {
    return fmt::format("{} of {} ({:.2f} %)", count, file.cells.size(),
                       100.0 * static_cast<double>(count) /
                           static_cast<double>(std::max<size_t>(1, file.cells.size())));
  };
  std::string table = TextRow("cells reached", cells(summary.reached)) +
                      TextRow("from all directions", cells(summary.fully)) +
                      TextRow("mean share of directions", fmt::format("{:.4f}", summary.share));
  if (summary.reached == 0) return table;
  const ReachCell& best = file.cells[summary.best];
  const Vec3 centre = GridOf(file.study)->Centre(file.first + summary.best);
  return table +
         TextRow("best cell",
                 fmt::format("{}, {} of {} directions, {} solutions", file.first + summary.best,
                             best.directions, DirectionsOf(file.study), best.solutions)) +
         Row(fmt::format("  centre x y z [{}]", units.length()),
             {units.Length(centre.x), units.Length(centre.y), units.Length(centre.z)}, 4) +
         Row(fmt::format("  limit margin [{}]", units.angle()), {units.Angle(best.margin_rad)}, 4) +
         Row("  smallest singular value", {best.smallest_singular_value}, 4);
}

Json ReachSummaryJson(const ReachFile& file) {
  const ReachSummary summary = SummaryOf(file);
  Json json = {{"study", Json::parse(file.description)},
               {"first_cell", file.first},
               {"end_cell", file.end()},
               {"cells_reached", summary.reached},
               {"cells_reached_from_all_directions", summary.fully},
               {"mean_share_of_directions", summary.share},
               {"best_cell", nullptr}};
  if (summary.reached > 0) {
    const ReachCell& best = file.cells[summary.best];
    const Vec3 centre = GridOf(file.study)->Centre(file.first + summary.best);
    json["best_cell"] = {{"cell", file.first + summary.best},
                         {"centre_m", {centre.x, centre.y, centre.z}},
                         {"directions", best.directions},
                         {"solutions", best.solutions},
                         {"margin_rad", best.margin_rad},
                         {"smallest_singular_value", best.smallest_singular_value},
                         {"joints_rad", best.joints}};
  }
  return json;
}

}  // namespace qal::tools
