#include "kinematics/ikfunc.h"

// Exits with 0 when the library takes the nearer of the foreign solver's two solutions along a
// line. The joints are those of its gantry: no other solver gives them.
int main() {
  RoadPoint start;
  start.position = Pos(0.1, 0.2, 0.3);
  start.orientation = Ori(1, 0, 0, 0);
  for (double& joint : start.jointpos) joint = 1.1;
  RoadPoint end = start;
  end.position = Pos(0.4, 0.2, 0.3);
  std::vector<RoadPoint> road;
  if (!Ikfunc::ArmIk(start, start.jointpos)) return 1;
  if (!Ikfunc::CountLineToBuffer(start, end, &road, 50)) return 2;
  if (road.size() < 2 * 50 + 249) return 3;
  road.pop_back();
  for (const RoadPoint& point : road) {
    if (point.jointpos[0] != point.position.x || point.jointpos[5] != 1.0) return 4;
  }
  return 0;
}
