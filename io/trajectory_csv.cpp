#include "trajectory_csv.h"

#include <fmt/format.h>
#include <qal/model/rotations.h>

#include <algorithm>
#include <array>
#include <string_view>

#include "csv_rows.h"
#include "finite_differences.h"
#include "numbers.h"

namespace qal::io {

namespace {

// In the order of a file of ours, and of SampleOf's values.
constexpr std::array<std::string_view, 26> kColumns = {
    "time_s",      "q1_rad",     "q2_rad",      "q3_rad",      "q4_rad",      "q5_rad",
    "q6_rad",      "x_m",        "y_m",         "z_m",         "qw",          "qx",
    "qy",          "qz",         "qd1_rad_s",   "qd2_rad_s",   "qd3_rad_s",   "qd4_rad_s",
    "qd5_rad_s",   "qd6_rad_s",  "qdd1_rad_s2", "qdd2_rad_s2", "qdd3_rad_s2", "qdd4_rad_s2",
    "qdd5_rad_s2", "qdd6_rad_s2"};

// Columns of kColumns that are there together.
struct ColumnGroup {
  size_t begin;
  size_t end;
  const char* names;  // for a message
};
constexpr ColumnGroup kMotion = {0, 7, "time_s, q1_rad to q6_rad"};
constexpr ColumnGroup kPose = {7, 14, "x_m, y_m, z_m, qw, qx, qy, qz (all or none)"};
constexpr ColumnGroup kVelocities = {14, 20, "qd1_rad_s to qd6_rad_s (all or none)"};
constexpr ColumnGroup kAccelerations = {20, 26, "qdd1_rad_s2 to qdd6_rad_s2 (all or none)"};
// What a file of points has of these.
constexpr ColumnGroup kJointsPoint = {1, 7, "q1_rad to q6_rad"};
constexpr ColumnGroup kPosePoint = {7, 14, "x_m, y_m, z_m, qw, qx, qy, qz"};

std::string Header(const SampleParts& parts) {
  std::string header;
  const auto add = [&header](const ColumnGroup& group) {
    for (size_t i = group.begin; i < group.end; ++i) header.append(kColumns[i]).append(",");
  };
  add(kMotion);
  if (parts.pose) add(kPose);
  if (parts.velocities) add(kVelocities);
  if (parts.accelerations) add(kAccelerations);
  header.pop_back();
  return header;
}

// The sample's numbers, in the order of kColumns.
void AppendSample(const FileSample& sample, const SampleParts& parts, std::vector<double>& row) {
  const auto append = [&row](const Joints& joints) {
    row.insert(row.end(), joints.begin(), joints.end());
  };
  row.push_back(sample.time_s);
  append(sample.joints);
  if (parts.pose) {
    const auto& [p, o] = *sample.pose;
    row.insert(row.end(), {p.x, p.y, p.z, o.w, o.x, o.y, o.z});
  }
  if (parts.velocities) append(*sample.velocities);
  if (parts.accelerations) append(*sample.accelerations);
}

// The mean speed since the sample before.
double ToolSpeed(const FileTrajectory& trajectory, size_t sample) {
  const size_t before = sample == 0 ? 0 : sample - 1;
  return Distance(trajectory[before].pose->position, trajectory[sample].pose->position) /
         FiniteDifferences(trajectory).Duration(sample);
}

// Adds where a group's columns stand in the header.
void FindColumns(const CsvFields& header, const ColumnGroup& group, std::vector<size_t>& places) {
  for (size_t i = group.begin; i < group.end; ++i) {
    places.push_back(FindColumn(header, kColumns[i], group.names));
  }
}

bool HasAny(const CsvFields& header, const ColumnGroup& group) {
  return std::find_first_of(header.begin(), header.end(), &kColumns[group.begin],
                            &kColumns[group.begin] + (group.end - group.begin)) != header.end();
}

void AppendRow(const std::vector<double>& row, std::string& csv) {
  for (const double number : row) csv.append(FormatNumber(number)).append(",");
  csv.back() = '\n';
}

}  // namespace

std::string ToCsv(const FileTrajectory& trajectory) {
  const SampleParts parts = PartsOf(trajectory);
  std::string csv = Header(parts) + '\n';
  std::vector<double> row;
  for (const FileSample& sample : trajectory) {
    row.clear();
    AppendSample(sample, parts, row);
    AppendRow(row, csv);
  }
  return csv;
}

std::string ToFullCsv(const FileTrajectory& trajectory, const Arm& arm) {
  const FileTrajectory full = WithRates(trajectory, &FiniteDifferences::JointSpeed);
  const SampleParts parts = PartsOf(full);
  std::string csv = Header(parts);
  if (parts.pose) csv += ",tcp_speed_m_s";
  for (int joint = 1; joint <= 6; ++joint) csv += fmt::format(",motor{}_rpm", joint);
  csv += '\n';
  std::vector<double> row;
  for (size_t i = 0; i < full.size(); ++i) {
    row.clear();
    AppendSample(full[i], parts, row);
    if (parts.pose) row.push_back(ToolSpeed(full, i));
    for (size_t joint = 0; joint < 6; ++joint) {
      row.push_back(MotorRpm(arm, joint, (*full[i].velocities)[joint]));
    }
    AppendRow(row, csv);
  }
  return csv;
}

LocatedTrajectory ParseCsv(std::string_view text) {
  LocatedTrajectory read;
  SampleParts parts;
  const auto choose = [&parts](const CsvFields& header) {
    parts = {HasAny(header, kPose), HasAny(header, kVelocities), HasAny(header, kAccelerations)};
    std::vector<size_t> places;
    FindColumns(header, kMotion, places);
    if (parts.pose) FindColumns(header, kPose, places);
    if (parts.velocities) FindColumns(header, kVelocities, places);
    if (parts.accelerations) FindColumns(header, kAccelerations, places);
    return places;
  };
  ReadCsvRows(text, choose, [&](const std::vector<double>& row, size_t line) {
    read.samples.push_back(SampleOf(row.data(), parts));
    read.lines.push_back(line);
  });
  DropDifferences(read.samples, &FiniteDifferences::JointSpeed);
  return read;
}

PointRows ParsePointsCsv(std::string_view text, PointKind kind) {
  PointRows read;
  const bool poses = kind == PointKind::kPoses;
  const auto choose = [&read, poses](const CsvFields& header) {
    std::vector<size_t> places;
    FindColumns(header, poses ? kPosePoint : kJointsPoint, places);
    read.timed = std::find(header.begin(), header.end(), kColumns[0]) != header.end();
    if (read.timed) places.push_back(FindColumn(header, kColumns[0], "time_s"));
    return places;
  };
  ReadCsvRows(text, choose, [&read, poses](const std::vector<double>& row, size_t line) {
    std::array<double, kPose.end> values{};
    if (read.timed) values[0] = row.back();
    const size_t first = poses ? kPosePoint.begin : kJointsPoint.begin;
    std::copy(row.begin(), row.end() - (read.timed ? 1 : 0), values.begin() + first);
    read.points.samples.push_back(SampleOf(values.data(), {poses, false, false}));
    read.points.lines.push_back(line);
  });
  return read;
}

}  // namespace qal::io
