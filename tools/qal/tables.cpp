#include "tables.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace qal::tools {

std::string Decimal(double value, int decimals) {
  const double half_a_digit = 0.5 * std::pow(10.0, -decimals);
  return fmt::format("{:.{}f}", std::fabs(value) < half_a_digit ? 0.0 : value, decimals);
}

std::string TextRow(const std::string& label, const std::string& text) {
  return fmt::format("{:<23}  {}\n", label, text);
}

std::string ValueRow(const std::string& label, const std::string& value) {
  return fmt::format("{:<32} {:>12}\n", label, value);
}

std::string Row(const std::string& label, const std::vector<double>& values, int decimals) {
  std::string row = fmt::format("{:<23}", label);
  for (const double value : values) row += fmt::format(" {:>12}", Decimal(value, decimals));
  return row + '\n';
}

int LengthDecimals(const Units& units) { return units.text().millimetres ? 5 : 8; }

int AngleDecimals(const Units& units) { return units.text().degrees ? 6 : 8; }

std::string ArmRow(const io::LoadedArm& loaded) { return TextRow("arm", io::ArmHeading(loaded)); }

std::string StateRows(const State& state, const Units& units) {
  std::vector<double> joints(state.joints.begin(), state.joints.end());
  for (double& joint : joints) joint = units.Angle(joint);
  const auto& [p, q] = state.pose;
  return Row(fmt::format("joints 1 to 6 [{}]", units.angle()), joints, AngleDecimals(units)) +
         Row(fmt::format("position x y z [{}]", units.length()),
             {units.Length(p.x), units.Length(p.y), units.Length(p.z)}, LengthDecimals(units)) +
         Row("orientation qw qx qy qz", {q.w, q.x, q.y, q.z}, kComponentDecimals);
}

Json StateJson(const State& state) {
  const auto& [p, q] = state.pose;
  return {{"joints_rad", state.joints},
          {"position_m", {p.x, p.y, p.z}},
          {"orientation_wxyz", {q.w, q.x, q.y, q.z}}};
}

std::string PoseText(const Pose& pose, const Units& units) {
  const auto& [p, q] = pose;
  return fmt::format("{:.6g} {:.6g} {:.6g} {} (orientation {:.6g} {:.6g} {:.6g} {:.6g})",
                     units.Length(p.x), units.Length(p.y), units.Length(p.z), units.length(), q.w,
                     q.x, q.y, q.z);
}

}  // namespace qal::tools
