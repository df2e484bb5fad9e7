#ifndef QAL_IO_TRAJECTORY_CSV_H_
#define QAL_IO_TRAJECTORY_CSV_H_

#include <qal/model/arm.h>

#include <string>
#include <string_view>

#include "trajectory.h"

namespace qal::io {

/// A trajectory as CSV: `time_s,q1_rad,...,q6_rad`, then, when every sample has them,
/// `x_m,y_m,z_m,qw,qx,qy,qz`, `qd1_rad_s..qd6_rad_s` and `qdd1_rad_s2..qdd6_rad_s2`. One header
/// line, one line a sample, numbers that read back to the same double.
std::string ToCsv(const FileTrajectory& trajectory);

/// The same with rates in any case, `tcp_speed_m_s` when there is a pose, and
/// `motor1_rpm..motor6_rpm`. Rates that samples don't have are differences: the mean speed since
/// the row before (0 in the first row), and the change from this speed to the next row's (the first
/// and the last row start from and come to rest). The tool's speed always is such a mean; the
/// motors' follow from the joints'. Times have to increase.
/// @param arm whose motors they are
std::string ToFullCsv(const FileTrajectory& trajectory, const Arm& arm);

/// Reads CSV, ours or from elsewhere: the columns in any order, others passed over; those of the
/// pose, of the speeds and of the accelerations all or none. Rates that are ToFullCsv's differences
/// are passed over as well. A byte order mark, CRLF line ends and blanks around fields are taken.
/// Times are not checked for their order.
/// @throw UsageError "line N: REASON" when a column is missing or a duplicate, a row has another
///        number of fields than the header, a field is no number, or there is no row
LocatedTrajectory ParseCsv(std::string_view text);

/// Rows of a CSV file that are no trajectory yet.
struct PointRows {
  LocatedTrajectory points;  ///< what the file doesn't have is 0, or no pose
  bool timed = false;        ///< whether there is a column of times
};

enum class PointKind { kJoints, kPoses };

/// Reads the columns of a trajectory file that hold joints, or those that hold poses, and the times
/// where there are any.
/// @throw UsageError as ParseCsv
PointRows ParsePointsCsv(std::string_view text, PointKind kind);

}  // namespace qal::io

#endif  // QAL_IO_TRAJECTORY_CSV_H_
