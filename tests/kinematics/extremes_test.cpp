#include <climits>

#include "captured.h"
#include "kinematics/ikfunc.h"
#include "waypoints.h"

namespace {

// No number may crash an operation, keep it for ever or be converted to an int that it doesn't fit
// (the sanitizers tell). What comes of it is checked elsewhere.
void TryEverything(RoadPoint s, RoadPoint e, double value) {
  std::vector<RoadPoint> road;
  RoadPoint array[2];
  double triple[3];
  for (const int speed : {INT_MIN, -1, 0, 1, INT_MAX}) {
    EXPECT_LE(Ikfunc::CountLineSize(s, e, speed), 1);
    EXPECT_LE(Ikfunc::CountLineToBuffer(s, e, value * speed, array), 1);
    (void)Ikfunc::CountLineToBuffer(s, e, 2, array, speed);
    (void)Ikfunc::CountLineToBuffer(s, e, &road, speed);
    (void)Ikfunc::ArmIk(s, speed, 1 + speed % 6, value, array[0]);
  }
  Ikfunc::QuaternionToEulerDis(s, e, triple);
  (void)Ikfunc::ArmIk(s, e.jointpos);
  (void)Ikfunc::ArmLineMoveIk(s, e.position, s.jointpos, value);
  (void)Ikfunc::ArmJointIk(s, e, value);
  (void)Ikfunc::ArmCheckAndCountSimilarIk(e);
  s.SectionRoadPoint();
}

TEST_F(ScriptedSolver, TakesAnyNumberInAnyPlace) {
  const RoadPoint plain = Waypoint(Pos());
  for (const double value : {kNan, kInfinity, -kInfinity, 1e300, -1e300, 1e-320}) {
    for (size_t i = 0; i < 13; ++i) {
      Numbers numbers = All(plain);
      numbers[i] = value;
      (void)Captured([&] {
        TryEverything(plain, From(numbers), value);
        TryEverything(From(numbers), plain, value);
        TryEverything(From(numbers), From(numbers), value);
        return 0;
      });
    }
  }
}

}  // namespace
