// Any arm, at run time and by value: 03_any_arm ARM, a URDF, a table of parameters or an arm file.
// Prints the joints nearest a pose, a straight line from them, and what a failure says.

#include <qal/plan/classic.h>
#include <qal/solve/kinematics.h>

#include <cstdio>
#include <stdexcept>

#include "../io/error_text.h"
#include "../io/loaded_arm.h"

namespace {

void Print(const char* label, const qal::Joints& joints) {
  std::printf("%-16s", label);
  for (const double joint : joints) std::printf(" %9.6f", joint);
  std::printf(" rad\n");
}

// The value, or what keeps it from being one.
template <class T>
T ValueOf(const qal::Result<T>& result) {
  if (!result) throw std::runtime_error(qal::io::ErrorText(result.error()));
  return *result;
}

void Run(const qal::io::LoadedArm& loaded) {
  std::printf("%s\n", qal::io::ArmHeading(loaded).c_str());
  const qal::Arm& arm = loaded.arm;
  const qal::Joints bent = {0.3, -0.6, 0.9, 0.4, 1.1, 0.2};
  qal::Pose pose = ValueOf(qal::Forward(arm, bent));
  pose.position.z += 0.02;
  const qal::State start = ValueOf(qal::Nearest(arm, pose, bent));
  Print("from the joints", bent);
  Print("2 cm up, nearest", start.joints);

  for (const double down_m : {0.05, 0.5, 0.9}) {
    qal::Pose end = start.pose;
    end.position.z -= down_m;
    const qal::classic::Plan line = qal::classic::RampedLine(arm, {start, end}, 20);
    std::printf("%.2f m down      ", down_m);
    if (line) {
      const auto steps = static_cast<double>(line->size() - 1);
      std::printf(" %zu points, %.3f s\n", line->size(), steps * arm.cycle_s().value);
    } else {
      const qal::classic::Failure& failure = line.error();
      std::printf(" no line, point %zu: %s\n", failure.point.value_or(0),
                  qal::io::ErrorText(failure.error).c_str());
    }
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
  } catch (const std::exception&
               error) {  // no such file, an arm that no solver fits, a pose out of reach
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
