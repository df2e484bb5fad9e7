#include "reach_placement.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "../../io/error.h"
#include "../../io/error_text.h"
#include "../common/progress.h"
#include "tables.h"

namespace qal::tools {

using namespace io;

namespace {

// The best positions of a file, as cells of it: those with most poses first, then with the largest
// margin. Those that reach nothing are none.
std::vector<size_t> BestOf(const ReachFile& file) {
  constexpr size_t kTold = 5;
  std::vector<size_t> order;
  for (size_t i = 0; i < file.cells.size(); ++i) {
    if (file.cells[i].directions > 0) order.push_back(i);
  }
  const auto end = order.begin() + static_cast<std::ptrdiff_t>(std::min(kTold, order.size()));
  std::partial_sort(order.begin(), end, order.end(), [&file](size_t a, size_t b) {
    const ReachCell& one = file.cells[a];
    const ReachCell& other = file.cells[b];
    if (one.directions != other.directions) return one.directions > other.directions;
    if (one.margin_rad != other.margin_rad) return one.margin_rad > other.margin_rad;
    return a < b;
  });
  order.erase(end, order.end());
  return order;
}

size_t ReachingAll(const ReachFile& file) {
  return static_cast<size_t>(std::count_if(
      file.cells.begin(), file.cells.end(),
      [&file](const ReachCell& cell) { return cell.directions == file.study.poses.size(); }));
}

// "line 12", or where lines aren't known "pose 11", counted from 0.
std::string PoseName(const PlacementPoses& poses, size_t pose) {
  return poses.lines.empty() ? fmt::format("pose {}", pose)
                             : fmt::format("line {}", poses.lines[pose]);
}

std::string BestTable(const ReachFile& file, const std::vector<size_t>& best,
                      const PlacementPoses& poses, const Units& units) {
  const ReachGrid grid = *GridOf(file.study);
  const auto length = [&](const char* axis) {
    return fmt::format("{} [{}]", axis, units.length());
  };
  std::string table =
      fmt::format("best positions of the base\n{:>10} {:>10} {:>10} {:>9} {:>14} {:>15}  {}\n",
                  length("x"), length("y"), length("z"), "poses",
                  fmt::format("margin [{}]", units.angle()), "singular value", "least margin");
  for (const size_t i : best) {
    const ReachCell& cell = file.cells[i];
    const Vec3 centre = grid.Centre(file.first + i);
    table += fmt::format(
        "{:>10} {:>10} {:>10} {:>9} {:>14} {:>15}  {}\n", Decimal(units.Length(centre.x), 4),
        Decimal(units.Length(centre.y), 4), Decimal(units.Length(centre.z), 4), cell.directions,
        Decimal(units.Angle(cell.margin_rad), 4), Decimal(cell.smallest_singular_value, 4),
        PoseName(poses, static_cast<size_t>(cell.orientation)));
  }
  return table;
}

// How poses are named that the best position doesn't reach.
std::string MissedText(const ReachFile& file, size_t best, const PlacementPoses& poses) {
  const Vec3 at = GridOf(file.study)->Centre(file.first + best);
  if (!poses.missed) {
    return fmt::format(
        "for the poses missed at the best position: qal reach --poses FILE --box {0:.9g} {1:.9g} "
        "{2:.9g} {0:.9g} {1:.9g} {2:.9g} --step {3:.9g} -o best.h5",
        at.x, at.y, at.z, file.study.step_m);
  }
  constexpr size_t kTold = 20;
  std::string text = fmt::format("missed at the best position, of {}:", poses.file);
  const std::vector<size_t>& missed = *poses.missed;
  for (size_t i = 0; i < std::min(kTold, missed.size()); ++i) {
    text += (i > 0 ? ", " : " ") + PoseName(poses, missed[i]);
  }
  if (missed.size() > kTold) text += fmt::format(" and {} more", missed.size() - kTold);
  return text;
}

}  // namespace

std::vector<size_t> MissedPoses(const Arm& arm, const ReachFile& file) {
  const std::vector<size_t> best = BestOf(file);
  std::vector<size_t> missed;
  if (best.empty() || file.cells[best[0]].directions == file.study.poses.size()) return missed;
  const size_t cell = file.first + best[0];
  ReachStudy single = file.study;
  const size_t count = file.study.poses.size();
  const LateProgress progress;
  for (size_t i = 0; i < count; ++i) {
    if (i % 1000 == 0) progress.Show(fmt::format("missed poses: {} of {} looked at", i, count));
    single.poses = {file.study.poses[i]};
    const auto reached = Reach(arm, single, cell, cell + 1);
    if (!reached) throw Failure(ErrorText(reached.error()));
    if ((*reached)[0].directions == 0) missed.push_back(i);
  }
  return missed;
}

std::string PlacementTable(const ReachFile& file, const PlacementPoses& poses, const Units& units) {
  const size_t all = ReachingAll(file);
  const std::vector<size_t> best = BestOf(file);
  std::string table =
      TextRow(fmt::format("reaching all {} poses", file.study.poses.size()),
              fmt::format("{} of {} positions ({:.2f} %)", all, file.cells.size(),
                          100.0 * static_cast<double>(all) /
                              static_cast<double>(std::max<size_t>(1, file.cells.size()))));
  if (best.empty()) return table + "no pose is reached from any position\n";
  table += BestTable(file, best, poses, units);
  return all > 0 ? table : table + MissedText(file, best[0], poses) + '\n';
}

std::string PlacementJson(const ReachFile& file, const PlacementPoses& poses) {
  const std::vector<size_t> best = BestOf(file);
  const ReachGrid grid = *GridOf(file.study);
  const auto line = [&poses](size_t pose) {
    return poses.lines.empty() ? Json(nullptr) : Json(poses.lines[pose]);
  };
  Json positions = Json::array();
  for (const size_t i : best) {
    const ReachCell& cell = file.cells[i];
    const Vec3 centre = grid.Centre(file.first + i);
    const auto pose = static_cast<size_t>(cell.orientation);
    positions.push_back({{"cell", file.first + i},
                         {"position_m", {centre.x, centre.y, centre.z}},
                         {"poses_reached", cell.directions},
                         {"margin_rad", cell.margin_rad},
                         {"smallest_singular_value", cell.smallest_singular_value},
                         {"least_margin_pose", pose},
                         {"least_margin_line", line(pose)},
                         {"joints_rad", cell.joints}});
  }
  Json missed = nullptr;
  if (poses.missed) {
    missed = Json::array();
    for (const size_t pose : *poses.missed)
      missed.push_back({{"pose", pose}, {"line", line(pose)}});
  }
  const Json json = {{"study", Json::parse(file.description)},
                     {"first_cell", file.first},
                     {"end_cell", file.end()},
                     {"positions_reaching_all_poses", ReachingAll(file)},
                     {"best_positions", positions},
                     {"missed_at_the_best_position", missed}};
  return json.dump(2) + '\n';
}

}  // namespace qal::tools
