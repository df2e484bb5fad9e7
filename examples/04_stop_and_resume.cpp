// Plays a program cycle by cycle as a controller does: at the planned speed, at 40 % of it, to a
// soft stop in the middle of an arc, and on to the end. Prints what happens when.

#include <qal/plan/playback.h>
#include <qal/solve/kinematics.h>

#include <cmath>
#include <cstdio>

namespace {

// Down, a half circle, and back: without a stop at the corners.
qal::Program MakeProgram(const qal::Arm& arm) {
  const qal::Joints start = {0.3, -0.2, 0.4, 0.2, 1.2, 0.1};
  const qal::Pose above = *qal::Forward(arm, start);
  qal::Pose down = above;
  down.position.z -= 0.1;
  qal::Pose across = down;
  across.position.y += 0.12;
  qal::Vec3 through = down.position;
  through.x += 0.06;
  through.y += 0.06;
  qal::Zone zone;
  zone.tool_m = 0.02;
  qal::ArcThrough arc = {through, across, qal::ArcTurn::kFixed};
  return {start,
          {qal::LineStep{down, {}, zone}, qal::ArcStep{arc, {}, zone}, qal::LineStep{above}}};
}

class Teller {
 public:
  void Tell(const qal::Sample& sample, const char* what) {
    std::printf("%6.3f s  %-20s tool at %6.1f mm/s\n", sample.time_s, what,
                sample.time_s > 0 ? 1000 * SpeedOf(sample) : 0.0);
  }
  // After each sample.
  void See(const qal::Sample& sample) { last_ = sample; }

 private:
  double SpeedOf(const qal::Sample& sample) const {
    const qal::Vec3& a = last_.pose.position;
    const qal::Vec3& b = sample.pose.position;
    return std::hypot(b.x - a.x, b.y - a.y, b.z - a.z) / (sample.time_s - last_.time_s);
  }
  qal::Sample last_ = {};
};

}  // namespace

int main() {
  const qal::Arm arm = qal::Arm::Reference();
  const auto motion = qal::PlanProgram(arm, MakeProgram(arm));
  if (!motion) {
    std::fprintf(stderr, "step %zu cannot be planned\n", motion.error().step + 1);
    return 1;
  }
  std::printf("planned: %.3f s\n", motion->duration_s());

  // All that a control cycle has to do; what it costs is a few microseconds.
  qal::Playback playback(*motion);
  Teller teller;
  int stands = 0;
  while (!playback.done()) {
    const qal::Sample sample = playback.Next();
    const auto cycle = std::lround(sample.time_s / arm.cycle_s().value);
    if (cycle == 100) {
      teller.Tell(sample, "down to 40 %");
      playback.Override(0.4);
    } else if (cycle == 160) {
      teller.Tell(sample, "stop");
      playback.Stop();
    } else if (playback.done()) {
      teller.Tell(sample, "there");
    } else if (playback.at_rest() && cycle > 160) {
      ++stands;
      if (stands == 1) teller.Tell(sample, "at rest");
      if (stands == 100) {  // half a second
        teller.Tell(sample, "on, at full speed");
        playback.Override(1);
        playback.Resume();
      }
    }
    teller.See(sample);
  }
  return 0;
}
