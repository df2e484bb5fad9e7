#include <fmt/format.h>
#include <qal/plan/line.h>
#include <qal/plan/sampled.h>

#include <cmath>

#include "../../io/error.h"
#include "../../io/messages.h"
#include "../../io/plan_text.h"
#include "limited.h"
#include "line_arguments.h"

namespace qal::tools {

using namespace io;

LineLimits ReadLineLimits(const LineArguments& a) {
  const Units& units = a.plan.common.units;
  LineLimits limits;
  const auto length = [&units](const NumberOption& option, double& limit) {
    if (!option.given()) return;
    limit = units.Metres(option.ReadWithin(units.Length(kLeastLimit), units.Length(kMostLimit)));
  };
  const auto angle = [&units](const NumberOption& option, double least, double most,
                              double& limit) {
    if (!option.given()) return;
    limit = units.Radians(option.ReadWithin(units.Angle(least), units.Angle(most)));
  };
  length(a.speed, limits.speed_m_s);
  length(a.acc, limits.acceleration_m_s2);
  length(a.jerk, limits.jerk_m_s3);
  angle(a.turn_speed, kLeastLimit, kMostLimit, limits.turn_speed_rad_s);
  angle(a.turn_acc, kLeastLimit, kMostLimit, limits.turn_acceleration_rad_s2);
  angle(a.turn_jerk, kLeastLimit, kMostLimit, limits.turn_jerk_rad_s3);
  limits.scale = ReadScale(a.scale);
  constexpr double kMostErrorRad = 0.5;
  angle(a.max_orientation_error, 0, kMostErrorRad, limits.max_orientation_error_rad);
  constexpr double kFastMS = 10;  // beyond any arm of six axes
  if (!units.text().millimetres && limits.speed_m_s > kFastMS) {
    Note(fmt::format("--speed: {:.9g} m/s is fast; are these millimetres? --mm reads them",
                     limits.speed_m_s));
  }
  return limits;
}

std::optional<Error> ArrivesElsewhere(const LineMotion& motion, const classic::Ends& ends) {
  if (!ends.end_joints) return std::nullopt;
  constexpr double kSameRad = 1e-6;
  const Joints arrived = motion.At(motion.duration_s()).joints;
  for (size_t j = 0; j < arrived.size(); ++j) {
    const double off = (*ends.end_joints)[j] - arrived[j];
    if (std::fabs(off) <= kSameRad) continue;
    return Error{Reason::kConfiguration, static_cast<int>(j), off, kSameRad};
  }
  return std::nullopt;
}

namespace {

std::string PathRows(const LineMotion& motion, const Units& units) {
  std::string rows = ValueRow(fmt::format("turn of the tool [{}]", units.angle()),
                              Decimal(units.Angle(motion.angle_rad()), AngleDecimals(units)));
  if (motion.orientation_error_rad() > 0) {
    rows += ValueRow(fmt::format("orientation off the line [{}]", units.angle()),
                     fmt::format("{:.3g}", units.Angle(motion.orientation_error_rad())));
  }
  return rows;
}

}  // namespace

LimitedLine PlanLimitedLine(const LineArguments& a, const Arm& arm) {
  const Units& units = a.plan.common.units;
  const LineLimits limits = ReadLineLimits(a);
  const classic::Ends ends = a.ends.Read(units, arm);
  auto motion = PlanLine(arm, ends.start, ends.end, limits);
  if (!motion) throw Failure(RefusalText(motion.error(), "line", "line", units));
  if (const auto error = ArrivesElsewhere(*motion, ends)) {
    const double wanted = (*ends.end_joints)[static_cast<size_t>(error->joint)];
    throw Failure(fmt::format(
        "the line arrives with other joints than --to has: joint {} at {:.6g} {}, not {:.6g}; a "
        "joint move gets there, or --to-pose takes the joints as they come",
        error->joint + 1, units.Angle(wanted - error->value), units.angle(), units.Angle(wanted)));
  }
  auto samples = Sampled(arm, *motion);
  if (!samples) throw Failure(PlanFailureText(samples.error(), "line", units.text()));
  return {*std::move(motion), *std::move(samples)};
}

void RunLimitedLine(const LineArguments& a) {
  const LoadedArm loaded = a.plan.common.arm->Load();
  const auto [motion, samples] = PlanLimitedLine(a, loaded.arm);
  WriteLimited(a.plan, loaded,
               {samples, motion.bindings(),
                [&motion = motion](double time_s) { return motion.AlongAt(time_s); }},
               PathRows(motion, a.plan.common.units),
               {{"length_m", motion.length_m()},
                {"angle_rad", motion.angle_rad()},
                {"orientation_error_rad", motion.orientation_error_rad()}});
}

}  // namespace qal::tools
