#ifndef QAL_KINEMATICS_FACADE_MESSAGES_H_
#define QAL_KINEMATICS_FACADE_MESSAGES_H_

#include <algorithm>
#include <charconv>
#include <string_view>

#include "../solve/observer.h"

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

/// Says what an observer hears, in the texts above.
/// @param out has Error(text), for raw bytes to standard error; and, for standard output,
/// Line(text),
///            Line(text, int), Line(text, double), with the number right behind the text, and
///            Point(point)
template <typename Out>
void Say(const Report& report, const Out& out) {
  const auto line_and_points = [&](std::string_view line) {
    out.Line(line);
    out.Point(*report.point);
    out.Point(*report.other);
  };
  const auto line_and_point = [&](std::string_view line) {
    out.Line(line, report.index);
    out.Point(*report.point);
  };
  switch (report.event) {
    case Event::kNoPose:
      return out.Error(kQuaternionError);
    case Event::kUnsolved:
      return out.Error(kUnsolvedError);
    case Event::kInadmissible:
      return out.Error(kInadmissibleError);
    case Event::kJogUnsolved:
      return out.Error(kJogUnsolvedError);
    case Event::kJogInadmissible:
      return out.Error(kJogInadmissibleError);
    case Event::kUnreachable:
      return out.Line(kUnreachableLine);
    case Event::kFixedLineNoPair:
      return line_and_points(kFixedLinePairLine);
    case Event::kLinePointUnsolved:
      return out.Point(*report.point);
    case Event::kLineEndUnsolved:
      out.Error(kEndPointError);
      return out.Point(*report.point);
    case Event::kFixedLineUnsolved:
      return line_and_point(kFixedLineIkLine);
    case Event::kPointHeld:
      return;  // the query that found nothing has been told of
    case Event::kRampedLineNoPair:
      return line_and_points(kRampedLinePairLine);
    case Event::kRampDownUnsolved:
      return line_and_point(kRampedLineIkLine);
    case Event::kLineEndsUnsolved:
      return out.Error(kLineEndsError);
    case Event::kShortLine:
      out.Line(kShortestProfileLine, report.value);
      return out.Line(kLineLengthLine, report.bound);
    case Event::kJointStepTooLarge: {
      constexpr int kBigAxisCount = 3;  // joints 1 to 3 are the big axes
      out.Line(report.joint < kBigAxisCount ? kBigStepLine : kSmallStepLine, report.value);
      return out.Line(kStepLimitLine, report.bound);
    }
    case Event::kJointStepRefused:
      return out.Error(kJointStepError);
    case Event::kAccelerationTooLow:
      return out.Error(kSmallAccelerationError);
    case Event::kFirstPhase:
      return out.Error(kFirstPhaseNotice);
    case Event::kUnprofiledRun:
      return out.Line(kShortRunLine, report.index);
    case Event::kRun:
      return out.Line(kRunLine, report.index);
  }
}

/// A text and the number behind it, made apart from any stream and without memory of its own: whole
/// numbers in decimal, others with six significant digits, a stream's default format.
class NumberedText {
 public:
  NumberedText(std::string_view text, int number) { Make(text, number); }
  NumberedText(std::string_view text, double number) {
    Make(text, number, std::chars_format::general, 6);
  }

  std::string_view view() const { return {line_, static_cast<size_t>(end_ - line_)}; }

 private:
  template <typename... Number>
  void Make(std::string_view text, Number... number) {
    end_ = std::copy(text.begin(), text.end(), line_);
    end_ = std::to_chars(end_, line_ + sizeof(line_), number...).ptr;
  }

  char line_[128];  // the texts are short of 64
  char* end_ = line_;
};

}  // namespace qal

#endif  // QAL_KINEMATICS_FACADE_MESSAGES_H_
