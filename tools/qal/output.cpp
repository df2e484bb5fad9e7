#include "output.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cmath>

#include "../../io/error.h"
#include "../../io/files.h"
#include "../../io/trajectory_csv.h"
#include "waypoints.h"

namespace qal::tools {

using namespace io;

void Output::AddTo(CLI::App& command) {
  command.add_flag("--json", json_, "JSON instead of the table, always in rad and m");
  CLI::Option* csv = command.add_option(
      "--csv", csv_,
      "also write a CSV file, always in s, rad and m;\n-: on standard output instead");
  csv->type_name("FILE");
  command.add_flag("--full", full_, "with --csv: speeds, accelerations and motor speeds as well")
      ->needs(csv);
}

void Output::Write(const Trajectory& trajectory, const std::string& data) const {
  // By its name as well: written as a file, it could be one that standard output goes to.
  if (csv_ == "-" || csv_ == "/dev/stdout") {
    if (json_) throw UsageError("--csv - and --json: only one of them can have standard output");
    WriteStandardOutput((full_ ? ToFullCsv(trajectory, SolverArm()) : ToCsv(trajectory)));
    return;
  }
  if (!csv_.empty())
    WriteFile(csv_, (full_ ? ToFullCsv(trajectory, SolverArm()) : ToCsv(trajectory)));
  WriteStandardOutput(data);
}

void Output::WritePoint(const RoadPoint& point, const Units& units) const {
  Write(FromWaypoints({point}), json_ ? PointJson(point).dump(2) + '\n' : PointRows(point, units));
}

std::string Decimal(double value, int decimals) {
  const double half_a_digit = 0.5 * std::pow(10.0, -decimals);
  return fmt::format("{:.{}f}", std::fabs(value) < half_a_digit ? 0.0 : value, decimals);
}

std::string Row(const std::string& label, std::initializer_list<double> values, int decimals) {
  std::string row = fmt::format("{:<23}", label);
  for (const double value : values) row += fmt::format(" {:>13}", Decimal(value, decimals));
  return row + '\n';
}

int LengthDecimals(const Units& units) { return units.mm() ? 6 : 9; }

int AngleDecimals(const Units& units) { return units.deg() ? 7 : 9; }

std::string PointRows(const RoadPoint& point, const Units& units) {
  const double* q = point.jointpos;
  const auto angle = [&units](double radians) { return units.Angle(radians); };
  const Pos& p = point.position;
  const Ori& o = point.orientation;
  return Row(fmt::format("joints 1 to 6 [{}]", units.angle()),
             {angle(q[0]), angle(q[1]), angle(q[2]), angle(q[3]), angle(q[4]), angle(q[5])},
             AngleDecimals(units)) +
         Row(fmt::format("position x y z [{}]", units.length()),
             {units.Length(p.x), units.Length(p.y), units.Length(p.z)}, LengthDecimals(units)) +
         Row("orientation qw qx qy qz", {o.w, o.x, o.y, o.z}, 9);
}

Json PointJson(const RoadPoint& point) {
  const Pos& p = point.position;
  const Ori& o = point.orientation;
  return Json{{"joints_rad", std::vector<double>(point.jointpos, point.jointpos + 6)},
              {"position_m", {p.x, p.y, p.z}},
              {"orientation_wxyz", {o.w, o.x, o.y, o.z}}};
}

std::string PoseText(const RoadPoint& point, const Units& units) {
  const Pos& p = point.position;
  const Ori& o = point.orientation;
  return fmt::format("{:.6g} {:.6g} {:.6g} {} (orientation {:.6g} {:.6g} {:.6g} {:.6g})",
                     units.Length(p.x), units.Length(p.y), units.Length(p.z), units.length(), o.w,
                     o.x, o.y, o.z);
}

}  // namespace qal::tools
