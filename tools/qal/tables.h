#ifndef QAL_TOOLS_QAL_TABLES_H_
#define QAL_TOOLS_QAL_TABLES_H_

#include <qal/model/pose.h>

#include <string>
#include <vector>

#include "../../io/json.h"
#include "../../io/loaded_arm.h"
#include "units.h"

namespace qal::tools {

using io::Json;

/// A number in plain decimals, without a "-0.000".
std::string Decimal(double value, int decimals);

/// One row of a table: the label, then text.
std::string TextRow(const std::string& label, const std::string& text);

/// One row of a table: the label, then a value to the right.
std::string ValueRow(const std::string& label, const std::string& value);

/// One row of a table: the label, then numbers in columns.
std::string Row(const std::string& label, const std::vector<double>& values, int decimals);

/// Decimals that leave the numbers of an arm nine digits.
int LengthDecimals(const Units& units);
int AngleDecimals(const Units& units);
constexpr int kComponentDecimals = 8;  // of a quaternion

/// The heading of a table: which arm.
std::string ArmRow(const io::LoadedArm& loaded);

/// Rows of a state: joints, position, orientation.
std::string StateRows(const State& state, const Units& units);

/// A state as JSON, in radians and metres.
Json StateJson(const State& state);

/// "x y z m (orientation qw qx qy qz)" for a message on one line.
std::string PoseText(const Pose& pose, const Units& units);

}  // namespace qal::tools

#endif  // QAL_TOOLS_QAL_TABLES_H_
