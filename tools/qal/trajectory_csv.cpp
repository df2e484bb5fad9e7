#include "trajectory_csv.h"

#include <fmt/format.h>

#include <array>
#include <string_view>

#include "../common/numbers.h"
#include "differences.h"

namespace qal::tools {

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

void AppendRates(const Trajectory& trajectory, size_t sample, bool poses,
                 std::vector<double>& row) {
  const Differences rates(trajectory);
  for (size_t joint = 0; joint < 6; ++joint) row.push_back(rates.JointSpeed(sample, joint));
  for (size_t joint = 0; joint < 6; ++joint) row.push_back(rates.JointAcceleration(sample, joint));
  if (poses) {
    const size_t before = sample == 0 ? 0 : sample - 1;
    row.push_back(Distance(trajectory[before].pose->position, trajectory[sample].pose->position) /
                  rates.Duration(sample));
  }
  for (size_t joint = 0; joint < 6; ++joint) {
    row.push_back(MotorRpm(rates.JointSpeed(sample, joint), joint));
  }
}

}  // namespace

std::string ToCsv(const Trajectory& trajectory, bool full) {
  const bool poses = HavePoses(trajectory);
  std::string csv = Header(poses ? kPoseColumns : kJointColumns, full) + "\n";
  std::vector<double> row;
  for (size_t i = 0; i < trajectory.size(); ++i) {
    const Sample& sample = trajectory[i];
    row.assign({sample.time_s});
    row.insert(row.end(), sample.joints_rad.begin(), sample.joints_rad.end());
    if (poses) {
      const auto& [p, o] = *sample.pose;
      row.insert(row.end(), {p.x, p.y, p.z, o.w, o.x, o.y, o.z});
    }
    if (full) AppendRates(trajectory, i, poses, row);
    for (size_t k = 0; k < row.size(); ++k) {
      if (k > 0) csv += ',';
      csv += FormatNumber(row[k]);
    }
    csv += '\n';
  }
  return csv;
}

}  // namespace qal::tools
