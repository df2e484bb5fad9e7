#include "verdict.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "../../io/judgement.h"
#include "../../io/messages.h"
#include "../../io/metrics.h"

namespace qal::tools {

using namespace io;

namespace {

struct KindWords {
  const char* title;
  const char* unit;  // with "rad" where the caller's unit of angles goes
  const char* key;
};

constexpr std::array<KindWords, 5> kKinds = {{
    {"joint speed", "rad/s", "joint_speed_rad_s"},
    {"joint acceleration", "rad/s^2", "joint_acceleration_rad_s2"},
    {"joint jerk", "rad/s^3", "joint_jerk_rad_s3"},
    {"motor speed", "rpm", "motor_speed_rpm"},
    {"joint position", "rad", "joint_position_rad"},
}};

const KindWords& WordsOf(const Check& check) { return kKinds[static_cast<size_t>(check.kind)]; }

std::string UnitOf(const Check& check, const Units& units) {
  const std::string unit = WordsOf(check).unit;
  return unit.rfind("rad", 0) == 0 ? units.angle() + unit.substr(3) : unit;
}

double Shown(const Check& check, double value, const Units& units) {
  return check.kind == Check::Kind::kMotorSpeed ? value : units.Angle(value);
}

// The joint whose peak is the largest part of its limit.
Check Highest(Check::Kind kind, const Peaks& peaks, const std::vector<Bound>& limits) {
  const auto setting = [&limits](size_t j) {
    return Setting{limits[j].value, limits[j].origin == Origin::kDescribed};
  };
  Check highest = {kind, 0, 0, 0.0, setting(0), false};
  double largest = -1.0;
  for (size_t j = 0; j < limits.size(); ++j) {
    if (!peaks[j] || !(peaks[j]->value / limits[j].value > largest)) continue;
    largest = peaks[j]->value / limits[j].value;
    highest = {kind,
               j,
               peaks[j]->sample,
               peaks[j]->value,
               setting(j),
               IsBeyond(*peaks[j], limits[j].value)};
  }
  return highest;
}

std::vector<Bound> MotorLimits(const Arm& arm) {
  std::vector<Bound> limits;
  for (const JointModel& joint : arm.joints()) {
    const bool described = joint.velocity_rad_s.described && joint.gear_ratio.described;
    limits.push_back({joint.motor_speed_rpm(), described ? Origin::kDescribed : Origin::kAssumed});
  }
  return limits;
}

// The joint that stands farthest beyond its range, or nearest to an end of it.
Check NearestToRange(const FileTrajectory& plan, const Arm& arm) {
  constexpr double kSlackRad = 1e-9;  // the rounding of a solver
  Check nearest = {Check::Kind::kRange, 0, 0, plan[0].joints[0], arm.joints()[0].upper_rad, false};
  double farthest = -std::numeric_limits<double>::infinity();
  for (size_t i = 0; i < plan.size(); ++i) {
    for (size_t j = 0; j < 6; ++j) {
      const auto& [lower, upper] = std::tie(arm.joints()[j].lower_rad, arm.joints()[j].upper_rad);
      const double position = plan[i].joints[j];
      const bool is_upper = position - upper.value > lower.value - position;
      const Setting& limit = is_upper ? upper : lower;
      const double beyond = is_upper ? position - limit.value : limit.value - position;
      if (!(beyond > farthest)) continue;
      farthest = beyond;
      nearest = {Check::Kind::kRange, j, i, position, limit, beyond > kSlackRad};
    }
  }
  return nearest;
}

const char* Assumed(const Check& check) { return check.limit.described ? "" : " (assumed)"; }

}  // namespace

int Verdict::Exceeded() const {
  return static_cast<int>(std::count_if(checks.begin(), checks.end(),
                                        [](const Check& check) { return check.exceeded; }));
}

Verdict Judge(const FileTrajectory& plan, const Arm& arm) {
  const Limits limits = LimitsOf(arm);
  const Metrics metrics = Measure(plan, arm);
  const auto value_of = [&metrics](MetricIndex metric) -> std::optional<double> {
    const std::optional<Peak>& peak = metrics[metric][0];
    return peak ? std::optional<double>(peak->value) : std::nullopt;
  };
  Verdict verdict = {{},
                     value_of(kFirstStep).value_or(0.0),
                     value_of(kLastStep).value_or(0.0),
                     value_of(kEndStep)};
  const auto add = [&](Check::Kind kind, MetricIndex metric) {
    verdict.checks.push_back(Highest(kind, metrics[metric], limits[metric]));
  };
  add(Check::Kind::kSpeed, kJointSpeed);
  add(Check::Kind::kAcceleration, kJointAcceleration);
  // Without rates of its own a plan has steps of acceleration, as the classic operations do.
  if (HaveRates(plan)) add(Check::Kind::kJerk, kJointJerk);
  verdict.checks.push_back(
      Highest(Check::Kind::kMotorSpeed, metrics[kMotorSpeed], MotorLimits(arm)));
  verdict.checks.push_back(NearestToRange(plan, arm));
  return verdict;
}

std::string VerdictRows(const Verdict& verdict, const Units& units) {
  std::string rows = "highest, against the arm's limits\n";
  for (const Check& check : verdict.checks) {
    rows +=
        fmt::format("{:<32} {:>12} of {:>12}{}, joint {}, point {}{}\n",
                    fmt::format("{} [{}]", WordsOf(check).title, UnitOf(check, units)),
                    fmt::format("{:.6g}", Shown(check, check.value, units)),
                    fmt::format("{:.6g}", Shown(check, check.limit.value, units)), Assumed(check),
                    check.joint + 1, check.point, check.exceeded ? ": exceeded" : "");
  }
  const std::string ratio =
      verdict.end_step_ratio
          ? fmt::format(", at most {:.3g} times the largest other one", *verdict.end_step_ratio)
          : "";
  return rows + fmt::format("{:<32} {:>12} and {:>11}{}\n",
                            fmt::format("first and last step [{}]", units.angle()),
                            fmt::format("{:.6g}", units.Angle(verdict.first_step_rad)),
                            fmt::format("{:.6g}", units.Angle(verdict.last_step_rad)), ratio);
}

Json VerdictJson(const Verdict& verdict) {
  Json json = {{"exceeded", verdict.Exceeded()}};
  for (const Check& check : verdict.checks) {
    const double limit = check.limit.value;
    json[WordsOf(check).key] = {{"value", check.value},
                                {"joint", check.joint + 1},
                                {"point", check.point},
                                {"limit", std::isfinite(limit) ? Json(limit) : Json(nullptr)},
                                {"assumed", !check.limit.described},
                                {"exceeded", check.exceeded}};
  }
  json["first_step_rad"] = verdict.first_step_rad;
  json["last_step_rad"] = verdict.last_step_rad;
  json["end_step_ratio"] = verdict.end_step_ratio ? Json(*verdict.end_step_ratio) : Json(nullptr);
  return json;
}

void NoteExceeded(const Verdict& verdict, const Units& units) {
  for (const Check& check : verdict.checks) {
    if (!check.exceeded) continue;
    const std::string unit = UnitOf(check, units);
    Note(fmt::format("{} of joint {}: {:.6g} {} at point {}, the arm's limit is {:.6g} {}{}",
                     WordsOf(check).title, check.joint + 1, Shown(check, check.value, units), unit,
                     check.point, Shown(check, check.limit.value, units), unit, Assumed(check)));
  }
}

}  // namespace qal::tools
