#include <kinematics/ikfunc.h>

#include <algorithm>
#include <cstdio>

int main() {
  const double joints[6] = {0.0, -0.2, 0.2, 0.0, 1.5708, 0.0};  // tool points down
  RoadPoint start;
  std::copy(joints, joints + 6, start.jointpos);
  if (!Ikfunc::ArmFk(start)) return 1;  // the pose of these joints
  RoadPoint end = start;
  end.position.z -= 0.3;                              // 300 mm down
  if (!Ikfunc::ArmIk(end, start.jointpos)) return 1;  // the joints there, nearest to these
  std::vector<RoadPoint> road;
  if (!Ikfunc::CountLineToBuffer(start, end, &road, 50) || road.empty()) return 1;
  std::printf("%zu waypoints, one every 0.005 s\n", road.size());
}
