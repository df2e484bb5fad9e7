#ifndef QAL_KINEMATICS_DIAGNOSTICS_H_
#define QAL_KINEMATICS_DIAGNOSTICS_H_

#include <string_view>

namespace qal {

// Raw bytes to standard error.
constexpr std::string_view kQuaternionError = "Error while converting to quaternion!\n";
constexpr std::string_view kUnsolvedError = "Failed to get  ik solution ArmJointIK \n";
constexpr std::string_view kInadmissibleError = "Failed to get joint ik solution\n";
constexpr std::string_view kJogUnsolvedError = "2 Failed to get  ik solution\n";
constexpr std::string_view kJogInadmissibleError = "Failed to get  ik solution\n";
constexpr std::string_view kEndPointError = "the end point is error!\n";
constexpr std::string_view kLineEndsError = "s_point and e_point Ik error!\n";
constexpr std::string_view kJointStepError = "Check Robot Joint Step Error!\n";
constexpr std::string_view kSmallAccelerationError = "max_acc is too small can't reach!\n";
constexpr std::string_view kFirstPhaseNotice = "can't go to mast ver!\n";

// Lines on standard output; some are followed directly by a number.
constexpr std::string_view kUnreachableLine = "ARM IK is error";
constexpr std::string_view kFixedLinePairLine = "CountLineSize error the point data is";
constexpr std::string_view kFixedLineIkLine = "CountLineToBuffer ik error at";
constexpr std::string_view kRampedLinePairLine = "CountLineToBuffer error the point data is";
constexpr std::string_view kRampedLineIkLine = "ik error joint at";
constexpr std::string_view kBigStepLine = "the big diff is";
constexpr std::string_view kSmallStepLine = "the small diff is";
constexpr std::string_view kStepLimitLine = "max speed step";
constexpr std::string_view kShortestProfileLine = "Smin distance is";
constexpr std::string_view kLineLengthLine = "length distance is";
constexpr std::string_view kShortRunLine = "the all joint count is true";
constexpr std::string_view kRunLine = "the joint num is";

/// Writes `message` to standard error as it stands.
void WriteError(std::string_view message);

/// Writes a line to standard output through `std::cout`, flushed.
void WriteLine(std::string_view text);
/// The same with a number right behind the text, in decimal whatever the stream's settings.
void WriteLine(std::string_view text, int number);
/// The same with six significant digits, a stream's default format, whatever its settings.
void WriteLine(std::string_view text, double number);

}  // namespace qal

#endif  // QAL_KINEMATICS_DIAGNOSTICS_H_
