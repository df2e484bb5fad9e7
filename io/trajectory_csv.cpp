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

constexpr size_t kJointColumns = 7;  // time and joints, always there
constexpr size_t kPoseColumns = 14;  // the pose as well

// In the order of a file of ours.
constexpr std::array<std::string_view, kPoseColumns> kColumns = {
    "time_s", "q1_rad", "q2_rad", "q3_rad", "q4_rad", "q5_rad", "q6_rad",
    "x_m",    "y_m",    "z_m",    "qw",     "qx",     "qy",     "qz"};

std::string Header(size_t columns, bool full) {
  std::string header(kColumns[0]);
  for (size_t i = 1; i < columns; ++i) header.append(",").append(kColumns[i]);
  if (!full) return header;
  for (int joint = 1; joint <= 6; ++joint) header += fmt::format(",qd{}_rad_s", joint);
  for (int joint = 1; joint <= 6; ++joint) header += fmt::format(",qdd{}_rad_s2", joint);
  if (columns == kPoseColumns) header += ",tcp_speed_m_s";
  for (int joint = 1; joint <= 6; ++joint) header += fmt::format(",motor{}_rpm", joint);
  return header;
}

void AppendRates(const FileTrajectory& trajectory, size_t sample, bool poses, const Arm& arm,
                 std::vector<double>& row) {
  const FiniteDifferences rates(trajectory);
  for (size_t joint = 0; joint < 6; ++joint) row.push_back(rates.JointSpeed(sample, joint));
  for (size_t joint = 0; joint < 6; ++joint) row.push_back(rates.JointAcceleration(sample, joint));
  if (poses) {
    const size_t before = sample == 0 ? 0 : sample - 1;
    row.push_back(Distance(trajectory[before].pose->position, trajectory[sample].pose->position) /
                  rates.Duration(sample));
  }
  for (size_t joint = 0; joint < 6; ++joint) {
    row.push_back(MotorRpm(arm, joint, rates.JointSpeed(sample, joint)));
  }
}

// Where the columns of kColumns from `first` to before `last` stand in the header.
std::vector<size_t> FindColumns(const CsvFields& header, size_t first, size_t last,
                                const std::string& expected) {
  std::vector<size_t> places;
  for (size_t i = first; i < last; ++i) {
    places.push_back(FindColumn(header, kColumns[i], expected));
  }
  return places;
}

// All of kColumns, or the first kJointColumns.
std::vector<size_t> TrajectoryColumns(const CsvFields& header) {
  const bool pose =
      std::find_first_of(header.begin(), header.end(), kColumns.begin() + kJointColumns,
                         kColumns.end()) != header.end();
  return FindColumns(
      header, 0, pose ? kPoseColumns : kJointColumns,
      pose ? "time_s, q1_rad to q6_rad, x_m, y_m, z_m, qw, qx, qy, qz (the pose whole or not)"
           : "time_s, q1_rad to q6_rad");
}

// With rates when there is an arm.
std::string Csv(const FileTrajectory& trajectory, const Arm* arm) {
  const bool poses = HavePoses(trajectory);
  std::string csv = Header(poses ? kPoseColumns : kJointColumns, arm != nullptr) + "\n";
  std::vector<double> row;
  for (size_t i = 0; i < trajectory.size(); ++i) {
    const FileSample& sample = trajectory[i];
    row.assign({sample.time_s});
    row.insert(row.end(), sample.joints.begin(), sample.joints.end());
    if (poses) {
      const auto& [p, o] = *sample.pose;
      row.insert(row.end(), {p.x, p.y, p.z, o.w, o.x, o.y, o.z});
    }
    if (arm != nullptr) AppendRates(trajectory, i, poses, *arm, row);
    for (size_t k = 0; k < row.size(); ++k) {
      if (k > 0) csv += ',';
      csv += FormatNumber(row[k]);
    }
    csv += '\n';
  }
  return csv;
}

}  // namespace

std::string ToCsv(const FileTrajectory& trajectory) { return Csv(trajectory, nullptr); }

std::string ToFullCsv(const FileTrajectory& trajectory, const Arm& arm) {
  return Csv(trajectory, &arm);
}

LocatedTrajectory ParseCsv(std::string_view text) {
  LocatedTrajectory read;
  ReadCsvRows(text, TrajectoryColumns, [&read](const std::vector<double>& row, size_t line) {
    read.samples.push_back(SampleOf(row.data(), row.size() == kPoseColumns));
    read.lines.push_back(line);
  });
  return read;
}

PointRows ParsePointsCsv(std::string_view text, PointKind kind) {
  PointRows read;
  const bool poses = kind == PointKind::kPoses;
  const auto choose = [&read, poses](const CsvFields& header) {
    std::vector<size_t> places =
        poses ? FindColumns(header, kJointColumns, kPoseColumns, "x_m, y_m, z_m, qw, qx, qy, qz")
              : FindColumns(header, 1, kJointColumns, "q1_rad to q6_rad");
    read.timed = std::find(header.begin(), header.end(), kColumns[0]) != header.end();
    if (read.timed) places.push_back(FindColumn(header, kColumns[0], "time_s"));
    return places;
  };
  ReadCsvRows(text, choose, [&read, poses](const std::vector<double>& row, size_t line) {
    std::array<double, kPoseColumns> values{};
    if (read.timed) values[0] = row.back();
    const size_t first = poses ? kJointColumns : 1;
    std::copy(row.begin(), row.end() - (read.timed ? 1 : 0), values.begin() + first);
    read.points.samples.push_back(SampleOf(values.data(), poses));
    read.points.lines.push_back(line);
  });
  return read;
}

}  // namespace qal::io
