#include "reach_file.h"

#include <fmt/format.h>

#include <algorithm>
#include <numeric>

#include "error.h"
#include "files.h"
#include "hdf5_file.h"
#include "reach_study.h"

namespace qal::io {

namespace {

constexpr const char* kFormat = "qal reach study, version 1";
constexpr size_t kLargestReachFile = size_t{16} << 30;  // [bytes] 200 million cells

template <class T, class Value>
std::vector<T> ValuesOf(const ReachFile& file, Value value) {
  std::vector<T> values;
  values.reserve(file.cells.size());
  for (const ReachCell& cell : file.cells) values.push_back(value(cell));
  return values;
}

// What datasets of both kinds of studies say.
struct CellTexts {
  const char* share;
  const char* directions;
  const char* solutions;
  const char* margin;
  const char* singular;
  const char* orientation;
  const char* joints;
};

constexpr CellTexts kOfBox = {
    "share of the directions that are reached",
    "how many directions are reached, in at least one of their spins",
    "admissible solutions of all orientations together",
    "how far the best solution's joints stay from their limits, with a line on all of it; NaN: "
    "none",
    "of the Jacobian in metres and radians, at the best solution, with a line the smallest on it",
    "the best solution's, as a row of orientations from 0; -1: none",
    "the best solution, joint 1 first; NaN: none"};

constexpr CellTexts kOfPlacement = {
    "share of the poses that are reached from this position of the base",
    "how many poses are reached",
    "admissible solutions of all poses together",
    "the margin of the reached pose that has the least: how far its best solution's joints stay "
    "from their limits, with a line on all of it; NaN: no pose is reached",
    "of the Jacobian in metres and radians, the smallest of the reached poses' best solutions",
    "the pose with the least margin, as a row of poses from 0; -1: none",
    "the best solution of the pose with the least margin, joint 1 first; NaN: none"};

void WriteCells(Hdf5Writer& hdf5, const ReachFile& file) {
  const auto& [share, reached, all, margin, singular, orientation, solution] =
      file.study.poses.empty() ? kOfBox : kOfPlacement;
  const double directions = DirectionsOf(file.study);
  hdf5.Dataset(
      "reached_share",
      ValuesOf<double>(file, [=](const ReachCell& cell) { return cell.directions / directions; }),
      1, {"1", share});
  hdf5.Dataset("reached_directions",
               ValuesOf<uint32_t>(file, [](const ReachCell& cell) { return cell.directions; }),
               {"1", reached});
  hdf5.Dataset("solutions",
               ValuesOf<uint32_t>(file, [](const ReachCell& cell) { return cell.solutions; }),
               {"1", all});
  hdf5.Dataset("margin",
               ValuesOf<double>(file, [](const ReachCell& cell) { return cell.margin_rad; }), 1,
               {"rad", margin});
  hdf5.Dataset(
      "smallest_singular_value",
      ValuesOf<double>(file, [](const ReachCell& cell) { return cell.smallest_singular_value; }), 1,
      {"1", singular});
  hdf5.Dataset("orientation",
               ValuesOf<int32_t>(file, [](const ReachCell& cell) { return cell.orientation; }),
               {"1", orientation});
  std::vector<double> joints;
  joints.reserve(file.cells.size() * 6);
  for (const ReachCell& cell : file.cells) {
    joints.insert(joints.end(), cell.joints.begin(), cell.joints.end());
  }
  hdf5.Dataset("joints", joints, 6, {"rad", solution});
}

void WritePoses(Hdf5Writer& hdf5, const std::vector<Pose>& poses) {
  std::vector<double> numbers;
  numbers.reserve(poses.size() * 7);
  for (const auto& [p, q] : poses) {
    numbers.insert(numbers.end(), {p.x, p.y, p.z, q.w, q.x, q.y, q.z});
  }
  hdf5.Dataset("poses", numbers, 7,
               {"m, 1", "what is to be reached: x y z, then qw qx qy qz, in the box's frame"});
}

std::vector<Pose> PosesFrom(const Hdf5Reader& hdf5, size_t count) {
  if (count > kMostReachPoses) throw UsageError(fmt::format("{} poses are too many", count));
  const std::vector<double> n = hdf5.Doubles("poses", count * 7);
  std::vector<Pose> poses;
  for (size_t i = 0; i < n.size(); i += 7) {
    poses.push_back({{n[i], n[i + 1], n[i + 2]}, {n[i + 3], n[i + 4], n[i + 5], n[i + 6]}});
  }
  return poses;
}

void WriteGrid(Hdf5Writer& hdf5, const ReachStudy& study) {
  const ReachGrid grid = *GridOf(study);
  hdf5.Dataset("grid_count", std::vector<uint32_t>(grid.count.begin(), grid.count.end()),
               {"1", "cells along x, y and z; they are in this order, along x first"});
  hdf5.Dataset("grid_first", {grid.first.x, grid.first.y, grid.first.z}, 1,
               {"m", "centre of cell 0 in the box's frame; the next ones are a step away"});
  hdf5.Dataset("grid_step", {grid.step_m}, 1, {"m", "edge of a cell"});
  const std::vector<Quat> tried = *OrientationsOf(study);
  std::vector<double> orientations;
  orientations.reserve(tried.size() * 4);
  for (const Quat& q : tried) {
    orientations.insert(orientations.end(), {q.w, q.x, q.y, q.z});
  }
  hdf5.Dataset("orientations", orientations, 4,
               {"1", "what is tried in each cell: w x y z, tool to base, spin by spin"});
}

ReachFile ReadFrom(const Hdf5Reader& hdf5) {
  if (const std::string format = hdf5.Text("format"); format != kFormat) {
    throw UsageError(fmt::format("its format is '{}', '{}' is expected", format, kFormat));
  }
  ReachFile file;
  file.description = hdf5.Text("study");
  file.study =
      ReadReachStudy(file.description, [&hdf5](size_t count) { return PosesFrom(hdf5, count); });
  file.first = hdf5.Number("first_cell");
  const uint64_t end = hdf5.Number("end_cell");
  if (file.first > end || end > GridOf(file.study)->cells()) {
    throw UsageError(fmt::format("the study has no cells {} to {}", file.first, end));
  }
  const size_t count = end - file.first;
  const auto directions = hdf5.Unsigned("reached_directions", count);
  const auto solutions = hdf5.Unsigned("solutions", count);
  const auto orientations = hdf5.Signed("orientation", count);
  const auto margins = hdf5.Doubles("margin", count);
  const auto singular = hdf5.Doubles("smallest_singular_value", count);
  const auto joints = hdf5.Doubles("joints", count * 6);
  file.cells.resize(count);
  for (size_t i = 0; i < count; ++i) {
    ReachCell& cell = file.cells[i];
    cell.directions = directions[i];
    cell.solutions = solutions[i];
    cell.orientation = orientations[i];
    cell.margin_rad = margins[i];
    cell.smallest_singular_value = singular[i];
    std::copy_n(&joints[i * 6], 6, cell.joints.begin());
  }
  return file;
}

}  // namespace

void WriteReachFile(const std::string& path, const ReachFile& file) {
  Hdf5Writer hdf5;
  hdf5.Attribute("format", kFormat);
  hdf5.Attribute("study", file.description);
  hdf5.Attribute("first_cell", file.first);
  hdf5.Attribute("end_cell", file.end());
  WriteGrid(hdf5, file.study);
  if (!file.study.poses.empty()) WritePoses(hdf5, file.study.poses);
  WriteCells(hdf5, file);
  WriteFile(path, hdf5.Bytes());
}

ReachFile ReadReachFile(const std::string& path) {
  const std::string bytes = ReadFile(path, kLargestReachFile);
  try {
    return ReadFrom(Hdf5Reader(bytes));
  } catch (const UsageError& error) {
    throw UsageError(fmt::format("{}: no file of a reach study: {}", path, error.what()));
  }
}

ReachFile MergeReachFiles(std::vector<ReachFile> files, const std::vector<std::string>& names) {
  std::vector<size_t> order(files.size());
  std::iota(order.begin(), order.end(), size_t{0});
  std::stable_sort(order.begin(), order.end(),
                   [&](size_t a, size_t b) { return files[a].first < files[b].first; });
  ReachFile whole = {files[0].description, files[0].study};
  const auto expect_next = [&](size_t first, const std::string& where) {
    if (first == whole.end()) return;
    throw UsageError(fmt::format("{}: cells {} to {} are {}", where, std::min(first, whole.end()),
                                 std::max(first, whole.end()) - 1,
                                 first < whole.end() ? "in another file as well" : "in no file"));
  };
  for (const size_t i : order) {
    if (files[i].description != whole.description) {
      throw UsageError(fmt::format("{}: of another study than {}", names[i], names[0]));
    }
    if (files[i].cells.empty()) continue;
    expect_next(files[i].first, names[i]);
    whole.cells.insert(whole.cells.end(), files[i].cells.begin(), files[i].cells.end());
    files[i].cells = {};
  }
  expect_next(GridOf(whole.study)->cells(), "the end is missing");
  return whole;
}

}  // namespace qal::io
