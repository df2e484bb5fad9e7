#include "report_reach.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>

#include "error.h"
#include "number_bytes.h"
#include "report_arm.h"
#include "report_bodies.h"

namespace qal::io {

namespace {

Vec3 PointOf(const Json& json) {
  return {json.at(0).get<double>(), json.at(1).get<double>(), json.at(2).get<double>()};
}

// Numbers in as many bytes each as the largest takes.
Json WholeJson(const std::vector<uint32_t>& values) {
  const uint32_t most = values.empty() ? 0 : *std::max_element(values.begin(), values.end());
  const size_t bytes = most < 1U << 8 ? 1 : most < 1U << 16 ? 2 : 4;
  NumberBytes numbers;
  for (const uint32_t value : values) numbers.AddBytes(value, bytes);
  return {{"bytes", bytes}, {"values", numbers.Text()}};
}

template <class Value>
Json WholeJson(const std::vector<ReachCell>& cells, Value value) {
  std::vector<uint32_t> values;
  values.reserve(cells.size());
  for (const ReachCell& cell : cells) values.push_back(value(cell));
  return WholeJson(values);
}

template <class Add>
std::string Floats(const std::vector<ReachCell>& cells, Add add) {
  NumberBytes bytes;
  for (const ReachCell& cell : cells) add(cell, bytes);
  return bytes.Text();
}

// What nothing reaches has no more than that to be told.
Json CellsJson(const ReachFile& file) {
  std::vector<ReachCell> reached;
  std::copy_if(file.cells.begin(), file.cells.end(), std::back_inserter(reached),
               [](const ReachCell& cell) { return cell.directions > 0; });
  const auto float_of = [](double ReachCell::*member) {
    return [member](const ReachCell& cell, NumberBytes& bytes) {
      bytes.Add(static_cast<float>(cell.*member));
    };
  };
  const auto add_joints = [](const ReachCell& cell, NumberBytes& bytes) {
    for (const double joint : cell.joints) bytes.Add(static_cast<float>(joint));
  };
  return {
      {"reached_directions",
       WholeJson(file.cells, [](const ReachCell& cell) { return cell.directions; })},
      {"solutions", WholeJson(reached, [](const ReachCell& cell) { return cell.solutions; })},
      {"orientation",
       WholeJson(reached,
                 [](const ReachCell& cell) { return static_cast<uint32_t>(cell.orientation); })},
      {"margin_rad", Floats(reached, float_of(&ReachCell::margin_rad))},
      {"smallest_singular_value", Floats(reached, float_of(&ReachCell::smallest_singular_value))},
      {"joints_rad", Floats(reached, add_joints)}};
}

std::string AboutArm(const Json& arm) {
  const std::string solver =
      arm.at("solver").is_string() ? "solver " + arm.at("solver").get<std::string>() : "";
  return fmt::format(
      "{}, {}, {}", arm.at("name").get<std::string>(),
      solver.empty() ? arm.at("family").get<std::string>() : solver,
      arm.at("hash").is_string() ? "hash " + arm.at("hash").get<std::string>() : "no hash");
}

// The study's own arm: the file alone says all that is drawn, but for looks.
Json ArmOfStudy(const Json& study, const LoadedArm& looks) {
  const Json& at_zero = study.at("at_zero");
  std::array<AxisLine, 6> axes;
  for (size_t j = 0; j < axes.size(); ++j) {
    const Json& axis = at_zero.at("axes").at(j);
    axes[j] = {PointOf(axis.at("point_m")), PointOf(axis.at("direction"))};
  }
  Json joints = Json::array();
  for (const Json& range : study.at("joint_ranges_rad")) {
    joints.push_back({{"name", fmt::format("joint {}", joints.size() + 1)},
                      {"lower_rad", range.at(0)},
                      {"upper_rad", range.at(1)}});
  }
  auto [bodies, notes] = ReportBodiesOf(looks, axes, "the study's arm");
  const Json& arm = study.at("arm");
  return {{"name", arm.at("name")},     {"about", AboutArm(arm)},     {"joints", joints},
          {"axes", at_zero.at("axes")}, {"tool", at_zero.at("tool")}, {"bodies", std::move(bodies)},
          {"notes", std::move(notes)}};
}

void ExpectWhole(const ReportReach& report) {
  const size_t cells = GridOf(report.file.study)->cells();
  const size_t count = report.file.cells.size();
  if (count < cells) {
    throw UsageError(fmt::format(
        "{}: it has {} of the study's {} cells; a report is of all: qal reach merge joins shards, "
        "qal reach --resume goes on from a .part",
        report.name, count, cells));
  }
  if (cells > kMostReportCells) {
    throw UsageError(fmt::format("{}: {} cells; a browser can open a report of {} at the most",
                                 report.name, cells, kMostReportCells));
  }
}

}  // namespace

bool LooksLikeHdf5(const std::string& path) {
  constexpr std::string_view kSignature = "\x89HDF\r\n\x1a\n";
  constexpr std::string_view kEnding = ".h5";
  if (path == "-") return false;
  if (path.size() >= kEnding.size() && path.substr(path.size() - kEnding.size()) == kEnding) {
    return true;
  }
  std::error_code none;
  if (!std::filesystem::is_regular_file(path, none)) return false;  // a pipe is read but once
  std::array<char, kSignature.size()> begin = {};
  std::ifstream file(path, std::ios::binary);
  file.read(begin.data(), begin.size());
  return std::string_view(begin.data(), begin.size()) == kSignature;
}

Json ReportReachJson(const ReportReach& report, const LoadedArm& looks) {
  ExpectWhole(report);
  const ReachGrid grid = *GridOf(report.file.study);
  Json reach = {{"summary", report.summary},
                {"grid",
                 {{"count", grid.count},
                  {"first_m", {grid.first.x, grid.first.y, grid.first.z}},
                  {"step_m", grid.step_m}}}};
  reach.update(CellsJson(report.file));
  if (const auto& poses = report.file.study.poses; !poses.empty()) {
    NumberBytes positions;
    for (const Pose& pose : poses) {
      for (const double value : {pose.position.x, pose.position.y, pose.position.z}) {
        positions.Add(static_cast<float>(value));
      }
    }
    reach["poses_m"] = positions.Text();
  }
  Json arm;
  try {
    arm = ArmOfStudy(Json::parse(report.file.description), looks);
  } catch (const Json::exception&) {
    throw UsageError(
        fmt::format("{}: its study doesn't say where the arm's axes are", report.name));
  }
  return {{"format", "qal-report-1"}, {"tool", report.tool},      {"title", report.title},
          {"arm", std::move(arm)},    {"motions", Json::array()}, {"explanation", nullptr},
          {"reach", std::move(reach)}};
}

}  // namespace qal::io
