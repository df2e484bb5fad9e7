#ifndef QAL_TOOLS_QAL_OUTPUT_H_
#define QAL_TOOLS_QAL_OUTPUT_H_

#include <CLI/App.hpp>
#include <initializer_list>
#include <nlohmann/json.hpp>
#include <string>

#include "../../io/trajectory.h"
#include "../../src/core/roadpoint.h"
#include "arguments.h"

namespace qal::tools {

using Json = nlohmann::ordered_json;

/// Where a command's answer goes.
class Output {
 public:
  /// Adds --json, --csv and --full.
  void AddTo(CLI::App& command);

  bool json() const { return json_; }
  /// Writes the CSV file if one is wanted, then `data`, the table or the JSON text, to standard
  /// output. The file comes first, so that a reader which closes the pipe early doesn't lose it.
  void Write(const io::Trajectory& trajectory, const std::string& data) const;
  /// The same for a single waypoint.
  void WritePoint(const RoadPoint& point, const Units& units) const;

 private:
  bool json_ = false;
  bool full_ = false;
  std::string csv_;
};

/// A number in plain decimals, without a "-0.000".
std::string Decimal(double value, int decimals);

/// One row of a table: the label, then numbers in columns.
std::string Row(const std::string& label, std::initializer_list<double> values, int decimals);

/// Decimals that show a nanometre or a nanoradian, and a little more in the larger units.
int LengthDecimals(const Units& units);
int AngleDecimals(const Units& units);

/// Rows of a waypoint: joints, position, orientation.
std::string PointRows(const RoadPoint& point, const Units& units);

/// A waypoint as JSON, in radians and metres.
Json PointJson(const RoadPoint& point);

/// "x y z [m] qw qx qy qz" for a message on one line.
std::string PoseText(const RoadPoint& point, const Units& units);

}  // namespace qal::tools

#endif  // QAL_TOOLS_QAL_OUTPUT_H_
