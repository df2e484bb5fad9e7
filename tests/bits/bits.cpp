// Prints a digest of each family of operations, on seeded arguments, that two processors can be
// compared by: the bits of every result. A line has the family's name, whether every processor has
// to give its bits ("same") or the C library has a part in them ("libm"), the digest, and how many
// numbers went into it.

#include <cstdio>
#include <iostream>
#include <random>

#include "digest.h"
#include "kinematics/ikfunc.h"

namespace {

class Draws {
 public:
  double Within(double most) { return (2 * Fraction() - 1) * most; }
  int Below(int end) { return static_cast<int>(Fraction() * end); }
  Pos Displacement(double most) {
    return Pos{Within(most), Within(most), Within(most)};  // braces: drawn in this order anywhere
  }

  /// A waypoint with the pose of its joints: of ten, one at joints of whole 45 degrees.
  RoadPoint Point() {
    const bool whole = Below(10) == 0;
    RoadPoint point;
    for (double& joint : point.jointpos) {
      joint = whole ? (Below(7) - 3) * 0.7853981633974483 : Within(2.9);
    }
    (void)Ikfunc::ArmFk(point);  // always succeeds for joints that are finite
    return point;
  }
  /// A waypoint in the middle of the workspace, so that lines find room.
  RoadPoint Start() {
    constexpr double kMiddle[6] = {0.0, -0.2, 0.2, 0.0, 1.3, 0.0};
    RoadPoint point;
    for (int j = 0; j < 6; ++j) point.jointpos[j] = kMiddle[j] + Within(0.4);
    (void)Ikfunc::ArmFk(point);
    return point;
  }
  RoadPoint Beside(const RoadPoint& point, double most) {
    RoadPoint beside = point;
    beside.position = point.position + Displacement(most);
    return beside;
  }

 private:
  double Fraction() { return static_cast<double>(random_() >> 11) * 0x1p-53; }

  std::mt19937_64 random_{20240601};
};

void Kinematics(Draws& draws, Digest& digest) {
  for (int i = 0; i < 4000; ++i) {
    RoadPoint point = draws.Point();
    digest.Add(point);
    RoadPoint near = draws.Beside(point, i % 2 == 0 ? 0.02 : 0.8);  // the latter often out of reach
    for (RoadPoint target : {point, near}) {
      double reference[6];
      for (int j = 0; j < 6; ++j) reference[j] = point.jointpos[j] + draws.Within(0.1);
      RoadPoint nearest = target;
      digest.Add(Ikfunc::ArmIk(nearest, reference));
      digest.Add(nearest);
      digest.Add(Ikfunc::ArmJointIk(target, reference, 0.3));
      digest.Add(target);
    }
    digest.Add(Ikfunc::ArmLineMoveIk(near, near.position - point.position, point.jointpos, 1));
    digest.Add(near);
  }
}

void Jogs(Draws& draws, Digest& digest, int first_mode, double largest_step) {
  for (int i = 0; i < 6000; ++i) {
    RoadPoint point = draws.Point();
    const double step = draws.Within(largest_step);
    for (int mode = first_mode; mode < first_mode + 3; ++mode) {
      digest.Add(Ikfunc::ArmIk(point, i % 2, mode, step, point));
      digest.Add(point);
    }
  }
}

void JogsAlong(Draws& draws, Digest& digest) { Jogs(draws, digest, 0, 0.1); }
void JogsAbout(Draws& draws, Digest& digest) { Jogs(draws, digest, 3, 3.0); }

void FixedLines(Draws& draws, Digest& digest) {
  for (int i = 0; i < 60; ++i) {
    const RoadPoint start = draws.Start();
    const RoadPoint end = draws.Beside(start, 0.1);
    const int speed = 10 + draws.Below(40);
    const int count = Ikfunc::CountLineSize(start, end, speed);
    digest.Add(count);
    std::vector<RoadPoint> points(1000);
    if (count > 0) digest.Add(Ikfunc::CountLineToBuffer(start, end, count, points.data(), speed));
    digest.Add(points);
    digest.Add(Ikfunc::CountLineToBuffer(start, end, 2.0, points.data()));
    digest.Add(points);
  }
}

void RampedLines(Draws& draws, Digest& digest) {
  for (int i = 0; i < 100; ++i) {
    const RoadPoint start = draws.Start();
    const RoadPoint end = draws.Beside(start, 0.2);
    const int speed = 5 + draws.Below(50);
    std::vector<RoadPoint> road;
    digest.Add(Ikfunc::CountLineToBuffer(start, end, &road, speed));
    digest.Add(road);
  }
}

void JointMoves(Draws& draws, Digest& digest) {
  for (int i = 0; i < 30; ++i) {
    const RoadPoint start = draws.Point();
    const RoadPoint end = draws.Point();
    const int speed = 20 + draws.Below(80);
    const int count = Ikfunc::CountCurvelLineSize(start, end, speed);
    std::vector<RoadPoint> points(static_cast<size_t>(count));
    digest.Add(Ikfunc::CountCurveLineToBuffer(start, end, count, points.data()));
    digest.Add(points);
    digest.Add(Ikfunc::CountCurvelLineToBuffer(start, end, &points, speed));
    digest.Add(points);
    digest.Add(
        Ikfunc::CountRunCurvelLineToBuffer(start, end, &points, speed, 1000 + draws.Below(9000)));
    digest.Add(points);
  }
}

void Euler(Draws& draws, Digest& digest) {
  for (int i = 0; i < 4000; ++i) {
    const RoadPoint from = draws.Point();
    RoadPoint to = draws.Point();
    double triple[3];
    Ikfunc::QuaternionToEulerAngle(from.orientation, triple);
    for (const double angle : triple) digest.Add(angle);
    Ori back;
    Ikfunc::EulerAngleToQuaternion(back, triple);
    digest.Add(back);
    Ikfunc::QuaternionToEulerDis(from, to, triple);
    Ikfunc::QuaternionAddEuler(to, triple);
    digest.Add(to);
  }
}

void SCurveLines(Draws& draws, Digest& digest) {
  for (int i = 0; i < 200; ++i) {
    const RoadPoint start = draws.Start();
    RoadPoint end = draws.Start();  // turned as well
    end.position = start.position + draws.Displacement(0.2);
    const auto jerk = static_cast<float>(10 + draws.Within(5));
    std::vector<RoadPoint> road;
    digest.Add(Ikfunc::CountSRunCurvelLineToBuffer(start, end, &road, 1, 5, jerk, 3000));
    digest.Add(road);
  }
}

struct Family {
  const char* name;
  bool same;  // on every processor
  void (*run)(Draws& draws, Digest& digest);
};

constexpr Family kFamilies[] = {
    {"kinematics", true, Kinematics},    {"jogs_along_an_axis", true, JogsAlong},
    {"fixed_lines", true, FixedLines},   {"ramped_lines", true, RampedLines},
    {"joint_moves", true, JointMoves},   {"jogs_about_an_axis", false, JogsAbout},
    {"euler_conversions", false, Euler}, {"s_curve_lines", false, SCurveLines}};

}  // namespace

int main() {
  std::cout.rdbuf(nullptr);  // the operations' own lines
  for (const Family& family : kFamilies) {
    Draws draws;
    Digest digest;
    family.run(draws, digest);
    std::printf("%s %s %016llx %ld\n", family.same ? "same" : "libm", family.name, digest.hash(),
                digest.count());
  }
}
