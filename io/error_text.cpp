#include "error_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <string_view>

#include "../solver/closed_form/angles.h"
#include "messages.h"

namespace qal::io {

namespace {

// The words of one error.
class Words {
 public:
  Words(const Error& error, const TextUnits& units) : error_(error), units_(units) {}

  std::string OfRequest() const;
  std::string OfSolving() const;
  std::string OfArm() const;
  std::string OfMove() const;

 private:
  std::string Angle(double rad) const { return AngleText(rad, units_); }
  std::string Length(double metres) const {
    return fmt::format("{:.9g} {}", units_.millimetres ? metres * 1000 : metres, LengthUnit());
  }
  const char* LengthUnit() const { return units_.millimetres ? "mm" : "m"; }
  std::string Joint() const { return fmt::format("joint {}", error_.joint + 1); }
  std::string Setting() const;
  std::string Limit() const;
  std::string Named(double value) const;
  std::string Name() const;

  const Error& error_;
  const TextUnits& units_;
};

// The endings of a number's name, and its unit: the longest first.
constexpr struct {
  std::string_view ending;
  const char* unit;
  bool angle;
} kUnits[] = {{"_rad_s3", "/s^3", true}, {"_rad_s2", "/s^2", true},   {"_rad_s", "/s", true},
              {"_rad", "", true},        {"_rpm_s", " rpm/s", false}, {"_rpm", " rpm", false},
              {"_m", " m", false},       {"_s", " s", false},         {"", "", false}};

const auto& UnitOf(std::string_view name) {
  return *std::find_if(std::begin(kUnits), std::end(kUnits), [name](const auto& unit) {
    const std::string_view ending = unit.ending;
    return name.size() >= ending.size() && name.substr(name.size() - ending.size()) == ending;
  });
}

// What `detail` names, as words: "step bound" for step_bound_rad.
std::string Words::Name() const {
  std::string name =
      error_.detail.substr(0, error_.detail.size() - UnitOf(error_.detail).ending.size());
  std::replace(name.begin(), name.end(), '_', ' ');
  return name;
}

// A number of what `detail` names, with its unit.
std::string Words::Named(double value) const {
  const auto& [ending, unit, angle] = UnitOf(error_.detail);
  if (ending == "_m") return Length(value);
  return angle ? Angle(value) + unit : fmt::format("{:.9g}{}", value, unit);
}

std::string Words::Setting() const {
  if (error_.detail == "base" || error_.detail == "tool") {
    return fmt::format(
        "the {} frame is none: its axes have length 1 and right angles, its position is finite",
        error_.detail);
  }
  return fmt::format("the {} is {}; the nearest that works is {}", Name(), Named(error_.value),
                     Named(error_.bound));
}

std::string Words::Limit() const {
  const std::string whose = error_.joint < 0 ? "" : Joint() + ": ";
  const bool is_range = error_.detail == "lower_rad" || error_.detail == "upper_rad";
  if (!is_range || !std::isfinite(error_.value)) {
    return fmt::format("{}the {}{} is {}; a finite number{} is expected", whose, Name(),
                       is_range ? " limit" : "", Named(error_.value), is_range ? "" : " above 0");
  }
  return fmt::format("{}the lower limit, {}, lies above the upper one, {}", whose,
                     Named(error_.value), Named(error_.bound));
}

std::string Words::OfRequest() const {
  switch (error_.reason) {
    case Reason::kNotFinite:
      return fmt::format("{}{} is no finite number", error_.joint < 0 ? "" : Joint() + ": ",
                         error_.value);
    case Reason::kNotAnOrientation:
      return fmt::format(
          "the quaternion has the length {:.3g}; qw qx qy qz of length 1 are expected",
          error_.value);
    case Reason::kSetting:
      return Setting();
    default:
      return "";
  }
}

std::string Words::OfSolving() const {
  const double over = std::fabs(error_.value - error_.bound);
  switch (error_.reason) {
    case Reason::kNoPose:
      return "the solver's forward kinematics gives no pose; ikcheck tells more about the solver";
    case Reason::kOutOfReach:
      return "out of reach, the solver finds no joints for it";
    case Reason::kJointRange:
      return fmt::format(
          "{} at {}, {} outside its limit of {}{}", Joint(), Angle(error_.value), Angle(over),
          Angle(error_.bound),
          error_.detail == "classic" ? ", which this operation has for any arm" : "");
    case Reason::kStepBound:
      return fmt::format("{} moves {}, {} over the step bound of {}", Joint(), Angle(error_.value),
                         Angle(over), Angle(error_.bound));
    case Reason::kSolverFault:
      return fmt::format("the solver breaks its contract ({}); ikcheck tells more about it",
                         error_.detail);
    case Reason::kSolverThrows:
      return fmt::format("the solver throws an exception ({}); ikcheck tells more about it",
                         error_.detail);
    case Reason::kInterrupted:
      return "interrupted";
    default:
      return "";
  }
}

std::string Words::OfArm() const {
  switch (error_.reason) {
    case Reason::kLibraryNotLoaded:
      return fmt::format("cannot be loaded as a solver library: {}", error_.detail);
    case Reason::kFunctionMissing:
      return fmt::format("no solver library: it has no function {}", error_.detail);
    case Reason::kNotSixJoints:
      return fmt::format("the solver has {} joints, {} are expected", error_.value, error_.bound);
    case Reason::kFreeParameters:
      return fmt::format("the solver has free parameters ({}), none is expected", error_.value);
    case Reason::kSolverType:
      return fmt::format("the solver is of type {:#x}; one for full poses, {:#x}, is expected",
                         static_cast<int64_t>(error_.value), static_cast<int64_t>(error_.bound));
    case Reason::kSingularEverywhere:
      return "the arm is singular everywhere; mkik says what its axes are like";
    case Reason::kNoFamily:
      return "the arm is near no family, and has no nearest member";
    case Reason::kLimits:
      return Limit();
    default:
      return "";
  }
}

std::string Words::OfMove() const {
  switch (error_.reason) {
    case Reason::kEndsApart:
      return fmt::format("the end is {} away on an axis; a line may be {} long on each",
                         Length(error_.value), Length(error_.bound));
    case Reason::kEndsTurned:
      return fmt::format(
          "the tool would have to turn: a quaternion component differs by {:.6g} from start to "
          "end; "
          "a straight line keeps each within {:g}",
          error_.value, error_.bound);
    case Reason::kTooShort:
      return fmt::format(
          "the line is too short for its ramps: {}, and the shortest that works is {}; lower the "
          "speed",
          Length(error_.value), Length(error_.bound));
    case Reason::kConfiguration:
      return fmt::format(
          "the line arrives with other joints than the end's: {} would jump {} to the last point, "
          "at most {} are one step",
          Joint(), Angle(error_.value), Angle(error_.bound));
    case Reason::kMotorSpeed:
      return fmt::format("{} would need its motor at {:.0f} rpm; {:.9g} rpm are the limit", Joint(),
                         std::fabs(error_.value), error_.bound);
    case Reason::kAccelerationTooLow:
      // It was given in single precision.
      return fmt::format(
          "the acceleration, {:.6g} {}/s^2, is built up within 20 ms; it has to be above {:.6g} "
          "{}/s^2",
          units_.millimetres ? error_.value * 1000 : error_.value, LengthUnit(),
          units_.millimetres ? error_.bound * 1000 : error_.bound, LengthUnit());
    case Reason::kTooManyPoints:
      return fmt::format("{:.9g} points, at most {:.9g} are planned", error_.value, error_.bound);
    case Reason::kEndRate:
      return fmt::format("{}: the {} is {}; {} are allowed", Joint(), Name(), Named(error_.value),
                         Named(error_.bound));
    case Reason::kSingularity:
      return fmt::format(
          "the path leads through {}singularity, where joints would have to turn at once",
          error_.detail.empty()          ? "a "
          : error_.detail.front() == 'e' ? "an " + error_.detail + ' '
                                         : "a " + error_.detail + ' ');
    case Reason::kNoArc:
      return "there is no such arc: " + error_.detail;
    default:
      return "";
  }
}

}  // namespace

std::string AngleText(double rad, const TextUnits& units) {
  return fmt::format("{:.6g} {}", units.degrees ? rad * 180 / closed_form::kPi : rad,
                     units.degrees ? "deg" : "rad");
}

std::string ErrorText(const Error& error, const TextUnits& units) {
  const Words words(error, units);
  for (auto of : {&Words::OfRequest, &Words::OfSolving, &Words::OfArm, &Words::OfMove}) {
    if (std::string text = (words.*of)(); !text.empty()) return OneLine(text);
  }
  return "no reason is given";
}

}  // namespace qal::io
