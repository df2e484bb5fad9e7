// Any arm, at run time and by value: 03_any_arm ARM, a URDF, a table of parameters or an arm file.
// Prints the joints nearest a pose, a straight line from them, and what a failure says.

#include <qal/plan/classic.h>
#include <qal/solve/kinematics.h>

#include <cstdio>
#include <exception>

#include "../io/error_text.h"
#include "../io/loaded_arm.h"

namespace {

void Print(const char* label, const qal::Joints& joints) {
  std::printf("%-16s", label);
  for (const double joint : joints) std::printf(" %9.6f", joint);
  std::printf(" rad\n");
}

void Run(const qal::io::LoadedArm& loaded) {
  std::printf("%s\n", qal::io::ArmHeading(loaded).c_str());
  const qal::Arm& arm = loaded.arm;
  const qal::Joints bent = {0.3, -0.6, 0.9, 0.4, 1.1, 0.2};
  qal::Pose pose = qal::Forward(arm, bent).value();
  pose.position.z += 0.05;
  const qal::State start = qal::Nearest(arm, pose, bent).value();
  Print("from the joints", bent);
  Print("5 cm up, nearest", start.joints);

  qal::Pose end = start.pose;
  end.position.z -= 0.1;
  const qal::classic::Plan line = qal::classic::RampedLine(arm, {start, end}, 20);
  if (line) {
    std::printf("10 cm down       %zu points, %.3f s\n", line->size(),
                static_cast<double>(line->size() - 1) * arm.cycle_s().value);
    Print("arrives with", line->back().joints);
  }

  end.position.z -= 0.8;
  const qal::classic::Plan longer = qal::classic::RampedLine(arm, {start, end}, 20);
  if (!longer && longer.error().point) {
    std::printf("90 cm down       no plan beyond point %zu: %s\n", *longer.error().point,
                qal::io::ErrorText(longer.error().error).c_str());
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: 03_any_arm ARM\n");
    return 2;
  }
  try {
    Run(qal::io::ReadArm(argv[1]));
    return 0;
  } catch (const std::exception& error) {  // no such file, no closed form, a pose out of reach
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
