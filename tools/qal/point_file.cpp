#include "point_file.h"

#include <fmt/format.h>

#include <algorithm>

#include "../../io/error.h"
#include "../../io/files.h"
#include "../../io/limits.h"
#include "../../io/numbers.h"

namespace qal::tools {

using namespace io;

namespace {

// The rows of a file, and what became of each.
struct SolvedRows {
  PointRows read;
  std::vector<Result<State>> states;

  int Unsolved() const {
    return static_cast<int>(std::count_if(states.begin(), states.end(),
                                          [](const auto& state) { return !state.has_value(); }));
  }
};

std::string Table(const SolvedRows& rows, const Units& units) {
  std::string table = fmt::format("{:>5}", "line");
  for (int j = 1; j <= 6; ++j) {
    table += fmt::format(" {:>11}", fmt::format("q{} [{}]", j, units.angle()));
  }
  for (const char* axis : {"x", "y", "z"}) {
    table += fmt::format(" {:>11}", fmt::format("{} [{}]", axis, units.length()));
  }
  for (const char* component : {"qw", "qx", "qy", "qz"}) table += fmt::format(" {:>9}", component);
  table += '\n';
  for (size_t i = 0; i < rows.states.size(); ++i) {
    table += fmt::format("{:>5}", rows.read.points.lines[i]);
    if (!rows.states[i]) {
      table += fmt::format("  no solution: {}\n", ErrorText(rows.states[i].error(), units.text()));
      continue;
    }
    const auto& [joints, pose] = *rows.states[i];
    const auto& [p, q] = pose;
    const int angle = AngleDecimals(units) - 2;
    const int length = LengthDecimals(units) - 2;
    for (const double joint : joints) {
      table += fmt::format(" {:>11}", Decimal(units.Angle(joint), angle));
    }
    for (const double axis : {p.x, p.y, p.z}) {
      table += fmt::format(" {:>11}", Decimal(units.Length(axis), length));
    }
    for (const double component : {q.w, q.x, q.y, q.z}) {
      table += fmt::format(" {:>9}", Decimal(component, kComponentDecimals - 2));
    }
    table += '\n';
  }
  return table;
}

std::string JsonText(const SolvedRows& rows, const LoadedArm& loaded) {
  Json list = Json::array();
  for (size_t i = 0; i < rows.states.size(); ++i) {
    Json row = {{"line", rows.read.points.lines[i]}};
    if (rows.read.timed) row["time_s"] = rows.read.points.samples[i].time_s;
    row["solved"] = rows.states[i].has_value();
    if (rows.states[i]) {
      row.update(StateJson(*rows.states[i]));
    } else {
      row["reason"] = ErrorText(rows.states[i].error());
    }
    list.push_back(row);
  }
  return Json{{"arm", ArmJson(loaded)}, {"unsolved", rows.Unsolved()}, {"rows", list}}.dump() +
         '\n';
}

// The columns of a trajectory file; a row without a solution has its reason in place of numbers.
std::string Csv(const SolvedRows& rows) {
  std::string csv = rows.read.timed ? "time_s," : "";
  csv += "q1_rad,q2_rad,q3_rad,q4_rad,q5_rad,q6_rad,x_m,y_m,z_m,qw,qx,qy,qz,reason\n";
  for (size_t i = 0; i < rows.states.size(); ++i) {
    if (rows.read.timed) csv += FormatNumber(rows.read.points.samples[i].time_s) + ',';
    if (rows.states[i]) {
      const auto& [joints, pose] = *rows.states[i];
      const auto& [p, q] = pose;
      for (const double joint : joints) csv += FormatNumber(joint) + ',';
      for (const double value : {p.x, p.y, p.z, q.w, q.x, q.y, q.z}) {
        csv += FormatNumber(value) + ',';
      }
    } else {
      std::string reason = ErrorText(rows.states[i].error());
      std::replace(reason.begin(), reason.end(), ',', ';');
      csv += std::string(13, ',') + reason;
    }
    csv += '\n';
  }
  return csv;
}

}  // namespace

PointRows ReadPointFile(const std::string& path, PointKind kind) {
  const std::string text = ReadFile(path, kLargestTrajectory);
  try {
    return ParsePointsCsv(text, kind);
  } catch (const UsageError& error) {
    throw UsageError(fmt::format("{}: {}", NameOf(path), error.what()));
  }
}

void SolveFile(const std::string& path, PointKind kind, const LoadedArm& loaded,
               const CommonOptions& options, const RowSolver& solve) {
  SolvedRows rows = {ReadPointFile(path, kind), {}};
  for (const FileSample& row : rows.read.points.samples) rows.states.push_back(solve(row));
  options.output.Write(
      options.output.json() ? JsonText(rows, loaded) : ArmRow(loaded) + Table(rows, options.units),
      [&rows] { return Csv(rows); });
  if (const int unsolved = rows.Unsolved(); unsolved > 0) {
    throw Failure(fmt::format("{}: {} of {} rows without a solution", NameOf(path), unsolved,
                              rows.states.size()));
  }
}

}  // namespace qal::tools
