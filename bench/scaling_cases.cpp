#include <algorithm>
#include <string>
#include <utility>

#include "case.h"
#include "plans.h"

namespace qal::bench {

namespace {

constexpr size_t kSizes[] = {100, 1000, 10000, 40000, 100000, 1000000};
// A ramped line of the lowest speed has so many in 0.8 m, and no synchronised joint move has more
// than 46340.
constexpr size_t kLongestLimited = 40000;

// A straight line along y through the workspace, at most 0.8 m. The tool points away from
// the base and down, so that none of its Euler angles is near its limit.
Move AcrossWorkspace(double length) {
  Move line;
  double joints[6] = {-0.7, 0.3, 0.0, 0.0, 0.5, 0.0};
  (void)Ikfunc::ArmFk(line.start.position, line.start.orientation, joints);
  line.start.position = Pos(0.45, -0.4, 0.4);
  (void)Ikfunc::ArmIk(line.start, joints);
  line.end = line.start;
  line.end.position.y += length;
  (void)Ikfunc::ArmIk(line.end, joints);
  return line;
}

// From joints and pose at 0.
Move TurnJoint1(double travel) {
  Move move;
  move.end.jointpos[0] = travel;
  return move;
}

// What a vector of so many waypoints costs by itself: the system hands out large ones page by page,
// cleared, each time anew.
size_t FreshVector(size_t count) {
  std::vector<RoadPoint> road;
  road.reserve(count);
  const RoadPoint point;
  for (size_t i = 0; i < count; ++i) road.push_back(point);
  return road.size();
}

}  // namespace

void AddScaling(Cases& cases) {
  const auto add = [&cases](const char* name, size_t waypoints, std::function<size_t()> run) {
    cases.push_back({std::string("scaling/") + name + "/" + std::to_string(waypoints),
                     Kind::kScaling, waypoints, std::move(run)});
  };
  for (const size_t n : kSizes) {
    add("memory alone", n, [n] { return FreshVector(n); });
    // All lengths are half a step longer than whole steps, so that no rounding changes the count.
    const double count = static_cast<double>(n);
    if (n <= kLongestLimited) {
      const Move line = AcrossWorkspace((count - 1.5) * 2e-5);  // 0.02 mm a step
      add("ramped line", n, [line] { return RampedLine(line, 1); });
      // 60 cycles of ramps, as far as 30 of cruise.
      const double cruise_step = kRunSpeed * 30 * 1.04719e-05 * 50 / 363;
      const Move run = TurnJoint1((count - 29.5) * cruise_step);
      add("trapezoid", n, [run] { return Trapezoid(run); });
    }
    const double length = std::min(count * 0.0005, 0.5);
    const Move line = AcrossWorkspace(length);
    const double precision = length / (count - 0.5) / 0.0002;
    add("precision line", n, [line, n, precision] { return PrecisionLine(line, n, precision); });
    const double phase_s = 0.005 * (count + 0.5);
    const float jerk = static_cast<float>(length / (2 * phase_s * phase_s * phase_s));
    add("S-curve line", n, [line, jerk] { return FirstPhase(line, jerk); });
    const Move ramp = TurnJoint1((count - 0.5) * 0.0001745329);
    add("joint ramp", n, [ramp] { return JointRamp(ramp, 2); });
  }
}

}  // namespace qal::bench
