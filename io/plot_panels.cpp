#include "plot_panels.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "finite_differences.h"
#include "units.h"

namespace qal::io {

const std::vector<std::string> kPanelNames = {"angle", "velocity", "acceleration", "jerk",
                                              "motor", "tool",     "range",        "singularity"};

namespace {

// Makes the panels of one motion.
class PanelMaker {
 public:
  PanelMaker(const Findings& findings, const MotionSeries& series, const TextUnits& units)
      : findings_(findings),
        series_(series),
        angle_(units.degrees ? 180 / kPi : 1),
        length_(units.millimetres ? 1000 : 1),
        angle_unit_(units.degrees ? "deg" : "rad"),
        length_unit_(units.millimetres ? "mm" : "m") {}

  PlotPanel Make(const std::string& name) const {
    if (name == "angle") return Angle();
    const bool intervals = !series_.own_rates;
    if (name == "velocity") {
      return OfJoints({"joint speed", angle_unit_ + "/s", intervals}, series_.velocities,
                      kJointSpeed);
    }
    if (name == "acceleration") {
      return OfJoints({"joint acceleration", angle_unit_ + "/s\u00b2"}, series_.accelerations,
                      kJointAcceleration);
    }
    if (name == "jerk") {
      return OfJoints({"joint jerk", angle_unit_ + "/s\u00b3", true}, series_.jerks, kJointJerk);
    }
    if (name == "motor") return Motor(intervals);
    if (name == "tool") {
      PlotPanel panel = OfAll({"tool speed", length_unit_ + "/s", intervals, true},
                              series_.tool_speed_m_s, length_);
      for (const Bound& limit : findings_.limits[kToolSpeed]) {
        panel.limits.push_back({limit.value * length_, {}});
      }
      AddMarks(kToolSpeed, length_, panel);
      return panel;
    }
    if (name == "range") {
      PlotPanel panel = OfAll({"distance to the nearest joint limit", angle_unit_, false, true},
                              series_.limit_margin_rad, angle_);
      panel.limits = {{0, {}}};
      return panel;
    }
    return OfAll({"smallest singular value of the Jacobian", "m, rad", false, true},
                 series_.singular_value, 1);
  }

 private:
  static PlotPanel OfAll(PlotPanel panel, const std::vector<double>& values, double factor) {
    panel.curves.push_back({-1, values});
    for (double& value : panel.curves[0].values) value *= factor;
    return panel;
  }

  template <typename Factor>
  PlotPanel Curves(PlotPanel panel, const std::vector<Joints>& values, Factor factor) const {
    for (size_t j = 0; j < 6; ++j) {
      PlotCurve curve = {static_cast<int>(j), {}};
      for (const Joints& joints : values) curve.values.push_back(joints[j] * factor(j));
      panel.curves.push_back(std::move(curve));
    }
    return panel;
  }

  // One limit, of each joint that has it.
  static void AddLimit(double value, size_t joint, bool assumed, PlotPanel& panel) {
    if (!std::isfinite(value)) return;
    const auto same =
        std::find_if(panel.limits.begin(), panel.limits.end(), [&](const PlotLimit& limit) {
          return std::fabs(limit.value - value) <= 1e-9 * std::fabs(value) &&
                 limit.assumed == assumed;
        });
    if (same != panel.limits.end()) {
      same->joints.push_back(static_cast<int>(joint));
    } else {
      panel.limits.push_back({value, {static_cast<int>(joint)}, assumed});
    }
  }

  PlotPanel OfJoints(const PlotPanel& empty, const std::vector<Joints>& values,
                     MetricIndex metric) const {
    PlotPanel panel = Curves(empty, values, [this](size_t) { return angle_; });
    for (size_t j = 0; j < findings_.limits[metric].size(); ++j) {
      const auto& [value, origin] = findings_.limits[metric][j];
      AddLimit(value * angle_, j, origin == Origin::kAssumed, panel);
      AddLimit(-value * angle_, j, origin == Origin::kAssumed, panel);
    }
    AddMarks(metric, angle_, panel);
    return panel;
  }

  PlotPanel Angle() const {
    PlotPanel panel =
        Curves({"joint angle", angle_unit_}, series_.joints, [this](size_t) { return angle_; });
    for (size_t j = 0; j < 6; ++j) {
      const JointModel& joint = findings_.loaded.arm.joints()[j];
      AddLimit(joint.upper_rad.value * angle_, j, !joint.upper_rad.described, panel);
      AddLimit(joint.lower_rad.value * angle_, j, !joint.lower_rad.described, panel);
    }
    AddMarks(kBeyondRange, angle_, panel);
    return panel;
  }

  PlotPanel Motor(bool intervals) const {
    const Arm& arm = findings_.loaded.arm;
    PlotPanel panel = Curves({"motor speed", "rpm", intervals}, series_.velocities,
                             [&arm](size_t j) { return MotorRpm(arm, j, 1); });
    const std::vector<Bound>& asked = findings_.limits[kMotorSpeed];
    for (size_t j = 0; j < 6; ++j) {
      const JointModel& joint = arm.joints()[j];
      const bool described = joint.velocity_rad_s.described && joint.gear_ratio.described;
      const double limit = asked.empty() ? joint.motor_speed_rpm() : asked[j].value;
      AddLimit(limit, j, asked.empty() && !described, panel);
      AddLimit(-limit, j, asked.empty() && !described, panel);
    }
    AddMarks(kMotorSpeed, 1, panel);
    return panel;
  }

  void AddMarks(MetricIndex metric, double factor, PlotPanel& panel) const {
    for (const std::vector<Violation>* list : {&findings_.violations, &findings_.notes}) {
      for (const Violation& violation : *list) {
        if (violation.metric != metric) continue;
        AddMark(violation, list == &findings_.violations, factor, panel);
      }
    }
  }

  // At the side where the curve is; of a range, at the angle itself.
  void AddMark(const Violation& violation, bool is_violation, double factor,
               PlotPanel& panel) const {
    const std::optional<Peak>& peak = findings_.metrics[violation.metric][violation.entry];
    if (!peak || !std::isfinite(peak->value)) return;
    const PlotCurve& curve = panel.curves[violation.entry];
    const double drawn = curve.values[peak->sample];
    PlotMark mark = {series_.time_s[peak->sample], drawn, "", is_violation};
    if (curve.joint >= 0) mark.text = fmt::format("joint {}", curve.joint + 1);
    if (violation.metric != kBeyondRange) {
      mark.value = std::copysign(peak->value * factor, drawn);
      constexpr double kMostShare = 100;
      const double share = peak->value / violation.limit.value;
      if (share < kMostShare) {
        mark.text += fmt::format("{}{:.4g} %", mark.text.empty() ? "" : ": ", 100 * share);
      }
    }
    panel.marks.push_back(mark);
  }

  const Findings& findings_;
  const MotionSeries& series_;
  double angle_, length_;  // of the unit that is shown, to one of rad and m
  std::string angle_unit_, length_unit_;
};

}  // namespace

std::vector<PlotPanel> PanelsOf(const Findings& findings, const MotionSeries& series,
                                const std::vector<std::string>& names, const TextUnits& units) {
  const PanelMaker maker(findings, series, units);
  std::vector<PlotPanel> panels;
  panels.reserve(names.size());
  for (const std::string& name : names) panels.push_back(maker.Make(name));
  return panels;
}

}  // namespace qal::io
