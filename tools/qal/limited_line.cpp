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

namespace {

LineLimits ReadLimits(const LineArguments& a) {
  const Units& units = a.plan.common.units;
  LineLimits limits;
  const auto read = [](const NumberOption& option, double unit, double& limit) {
    if (option.given()) limit = option.ReadWithin(kLeastLimit / unit, kMostLimit / unit) * unit;
  };
  const double metres = units.Metres(1);
  const double radians = units.Radians(1);
  read(a.speed, metres, limits.speed_m_s);
  read(a.acc, metres, limits.acceleration_m_s2);
  read(a.jerk, metres, limits.jerk_m_s3);
  read(a.turn_speed, radians, limits.turn_speed_rad_s);
  read(a.turn_acc, radians, limits.turn_acceleration_rad_s2);
  read(a.turn_jerk, radians, limits.turn_jerk_rad_s3);
  limits.scale = ReadScale(a.scale);
  if (a.max_orientation_error.given()) {
    constexpr double kMostErrorRad = 0.5;
    limits.max_orientation_error_rad =
        a.max_orientation_error.ReadWithin(0, kMostErrorRad / radians) * radians;
  }
  constexpr double kFastMS = 10;  // beyond any arm of six axes
  if (!units.text().millimetres && limits.speed_m_s > kFastMS) {
    Note(fmt::format("--speed: {:.9g} m/s is fast; are these millimetres? --mm reads them",
                     limits.speed_m_s));
  }
  return limits;
}

// A line keeps the configuration that it begins in.
void ExpectEnd(const LineMotion& motion, const classic::Ends& ends, const Units& units) {
  if (!ends.end_joints) return;
  constexpr double kSameRad = 1e-6;
  const Joints arrived = motion.At(motion.duration_s()).joints;
  for (size_t j = 0; j < arrived.size(); ++j) {
    const double wanted = (*ends.end_joints)[j];
    if (std::fabs(arrived[j] - wanted) <= kSameRad) continue;
    throw Failure(fmt::format(
        "the line arrives with other joints than --to has: joint {} at {:.6g} {}, not {:.6g}; a "
        "joint move gets there, or --to-pose takes the joints as they come",
        j + 1, units.Angle(arrived[j]), units.angle(), units.Angle(wanted)));
  }
}

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

void RunLimitedLine(const LineArguments& a) {
  const Units& units = a.plan.common.units;
  const LineLimits limits = ReadLimits(a);
  const LoadedArm loaded = a.plan.common.arm->Load();
  const classic::Ends ends = a.ends.Read(units, loaded.arm);
  const auto motion = PlanLine(loaded.arm, ends.start, ends.end, limits);
  if (!motion) throw Failure(PlanFailureText(motion.error(), "line", units.text()));
  ExpectEnd(*motion, ends, units);
  auto trajectory = Sampled(loaded.arm, *motion);
  if (!trajectory) throw Failure(PlanFailureText(trajectory.error(), "line", units.text()));
  WriteLimited(a.plan, loaded,
               {*std::move(trajectory), motion->bindings(),
                [&motion](double time_s) { return motion->AlongAt(time_s); }},
               PathRows(*motion, units),
               {{"length_m", motion->length_m()},
                {"angle_rad", motion->angle_rad()},
                {"orientation_error_rad", motion->orientation_error_rad()}});
}

}  // namespace qal::tools
