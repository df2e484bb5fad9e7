#include <dlfcn.h>

#include <cmath>
#include <cstdio>

#include "v1.h"

// A program of version 1.0.0 and the present library: linked with the one, run with the other.
// Exits with 0 when all it knows of is there and means the same.

namespace {

// By the mangled name, as a program does that opens the library itself.
template <typename Function>
Function* Named(void* library, const char* name) {
  return reinterpret_cast<Function*>(dlsym(library, name));
}

const char* Fault() {
  RoadPoint start;
  if (!(start.position == Pos(0, 0, 0)) || start.ik_flag) return "a waypoint starts at zero";
  for (double& joint : start.jointpos) joint = 0.3;
  Ikfunc kinematics;  // some have one, though all of it is static
  if (!kinematics.ArmFk(start)) return "forward kinematics";
  RoadPoint end;
  end = start;
  end.position = start.position + Pos(0, 0, 0.05) - Pos(0, 0, 0.03);
  double near[6] = {0.31, 0.31, 0.31, 0.31, 0.31, 0.31};
  if (!Ikfunc::ArmIk(end, near) || !end.ik_flag) return "inverse kinematics";
  if (!Ikfunc::ChekcArmPointok(end)) return "waypoints by value";
  std::vector<RoadPoint> road;  // filled there, freed here
  if (!Ikfunc::CountLineToBuffer(start, end, &road, 10)) return "a line into a vector";
  if (road.size() < 10 || !(road.back() == end)) return "the points of the line";

  void* const library = dlopen("libQAL_kinematics.so.1", RTLD_NOW);
  if (library == nullptr) return dlerror();
  const auto cut = Named<double(double)>(library, "_ZN6Ikfunc10SectionNumEd");
  const auto forward = Named<bool(RoadPoint&)>(library, "_ZN6Ikfunc5ArmFkER9RoadPoint");
  if (cut == nullptr || cut(1.0) != 0.9999999974752427) return "a number by name";
  RoadPoint again = end;
  if (forward == nullptr || !forward(again)) return "forward kinematics by name";
  if (std::fabs(again.position.z - end.position.z) > 1e-5) return "the pose of the joints";
  return nullptr;
}

}  // namespace

int main() {
  const char* const fault = Fault();
  if (fault != nullptr) std::fprintf(stderr, "no longer works: %s\n", fault);
  return fault == nullptr ? 0 : 1;
}
