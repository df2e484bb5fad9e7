#include "trajectory_csv.h"

#include <fmt/format.h>
#include <qal/model/rotations.h>

#include <algorithm>
#include <array>
#include <string_view>

#include "error.h"
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

void AppendRates(const Trajectory& trajectory, size_t sample, bool poses, const Arm& arm,
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

// Takes the first line off `text`, without its end.
std::string_view TakeLine(std::string_view& text) {
  const size_t end = std::min(text.find('\n'), text.size());
  std::string_view line = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
  return line;
}

std::string_view Trim(std::string_view field) {
  const size_t begin = field.find_first_not_of(" \t");
  if (begin == std::string_view::npos) return {};
  return field.substr(begin, field.find_last_not_of(" \t") + 1 - begin);
}

void SplitFields(std::string_view line, std::vector<std::string_view>& fields) {
  fields.clear();
  for (;;) {
    const size_t comma = line.find(',');
    fields.push_back(Trim(line.substr(0, comma)));
    if (comma == std::string_view::npos) return;
    line.remove_prefix(comma + 1);
  }
}

// Where the columns of kColumns stand in a row: all of them, or the first kJointColumns.
std::vector<size_t> FindColumns(const std::vector<std::string_view>& header) {
  const bool pose =
      std::find_first_of(header.begin(), header.end(), kColumns.begin() + kJointColumns,
                         kColumns.end()) != header.end();
  std::vector<size_t> places;
  for (size_t i = 0; i < (pose ? kPoseColumns : kJointColumns); ++i) {
    const auto found = std::find(header.begin(), header.end(), kColumns[i]);
    if (found == header.end()) {
      throw UsageError(fmt::format(
          "no column '{}'; a header with {} was expected, with commas between and no quotes",
          kColumns[i],
          pose ? "time_s, q1_rad to q6_rad, x_m, y_m, z_m, qw, qx, qy, qz (the pose whole or not)"
               : "time_s, q1_rad to q6_rad"));
    }
    if (std::count(found, header.end(), kColumns[i]) > 1) {
      throw UsageError(fmt::format("the column '{}' stands twice", kColumns[i]));
    }
    places.push_back(static_cast<size_t>(found - header.begin()));
  }
  return places;
}

// With rates when there is an arm.
std::string Csv(const Trajectory& trajectory, const Arm* arm) {
  const bool poses = HavePoses(trajectory);
  std::string csv = Header(poses ? kPoseColumns : kJointColumns, arm != nullptr) + "\n";
  std::vector<double> row;
  for (size_t i = 0; i < trajectory.size(); ++i) {
    const Sample& sample = trajectory[i];
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

std::string ToCsv(const Trajectory& trajectory) { return Csv(trajectory, nullptr); }

std::string ToFullCsv(const Trajectory& trajectory, const Arm& arm) {
  return Csv(trajectory, &arm);
}

LocatedTrajectory ParseCsv(std::string_view text) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (text.substr(0, kByteOrderMark.size()) == kByteOrderMark) {
    text.remove_prefix(kByteOrderMark.size());
  }
  LocatedTrajectory read;
  size_t line = 1;
  try {
    std::vector<std::string_view> fields;
    SplitFields(TakeLine(text), fields);
    const size_t field_count = fields.size();
    const std::vector<size_t> places = FindColumns(fields);
    if (text.empty()) throw UsageError("no row below the header");
    while (!text.empty()) {
      ++line;
      SplitFields(TakeLine(text), fields);
      if (fields.size() != field_count) {
        throw UsageError(fmt::format("{} fields were expected, as in the header; the row has {}",
                                     field_count, fields.size()));
      }
      std::array<double, kPoseColumns> values{};
      for (size_t i = 0; i < places.size(); ++i) {
        values[i] = ParseNumber(fields[places[i]], std::string(kColumns[i]));
      }
      read.samples.push_back(SampleOf(values.data(), places.size() == kPoseColumns));
      read.lines.push_back(line);
    }
  } catch (const UsageError& error) {
    throw UsageError(fmt::format("line {}: {}", line, error.what()));
  }
  return read;
}

}  // namespace qal::io
