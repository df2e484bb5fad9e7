#include "plans.h"

#include "quiet.h"

namespace qal::bench {

namespace {

// The operations that go on when a point can't be solved keep the joints before, which then stay
// behind the pose.
bool HasFollowed(const RoadPoint& late_point) { return Ikfunc::ChekcArmPointok(late_point); }

}  // namespace

size_t RampedLine(const Move& line, int speed) {
  std::vector<RoadPoint> road;
  return Ikfunc::CountLineToBuffer(line.start, line.end, &road, speed) ? road.size() : 0;
}

size_t PrecisionLine(const Move& line, size_t waypoints, double precision) {
  std::vector<RoadPoint> array(waypoints);
  const size_t count =
      Count(Ikfunc::CountLineToBuffer(line.start, line.end, precision, array.data()));
  return HasFollowed(array[waypoints - 2]) ? count : 0;
}

size_t FirstPhase(const Move& line, float jerk) {
  constexpr float kNoEffect = 1.0f;
  constexpr float kAcceleration = 1.0f;
  constexpr int kMotorRpm = 3000;
  const Quiet quiet;  // it tells of the phase on standard error
  std::vector<RoadPoint> road;
  const int result = Ikfunc::CountSRunCurvelLineToBuffer(line.start, line.end, &road, kNoEffect,
                                                         kAcceleration, jerk, kMotorRpm);
  return result == 1 && HasFollowed(road.back()) ? road.size() : 0;
}

size_t JointRamp(const Move& move, int speed) {
  std::vector<RoadPoint> road;
  return Ikfunc::CountCurvelLineToBuffer(move.start, move.end, &road, speed) ? road.size() : 0;
}

size_t Trapezoid(const Move& move) {
  const Quiet quiet;  // it tells of the count on standard output
  std::vector<RoadPoint> road;
  const bool done =
      Ikfunc::CountRunCurvelLineToBuffer(move.start, move.end, &road, kRunSpeed, kRunAcceleration);
  return done ? road.size() : 0;
}

size_t RunCycles(const Move& move) {
  return Count(Ikfunc::CountRunCurvelLineSize(move.start, move.end, kRunSpeed, kRunAcceleration));
}

}  // namespace qal::bench
