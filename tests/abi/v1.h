#ifndef QAL_TESTS_ABI_V1_H_
#define QAL_TESTS_ABI_V1_H_

#include <vector>

// What a program that was built against version 1.0.0 knows of the library. Its layouts and symbols
// never change: when the soname's number does, the public headers of that release take their place.

struct [[gnu::visibility("default")]] Pos {
  double x, y, z;
  Pos();
  Pos(double x_m, double y_m, double z_m) : x(x_m), y(y_m), z(z_m) {}
  Pos(const Pos& other);
  Pos& operator=(const Pos& other) = default;
  Pos operator+(const Pos& other) const;
  Pos operator-(const Pos& other) const;
  bool operator==(const Pos& other) const;
};

struct [[gnu::visibility("default")]] Ori {
  double w, x, y, z;
  Ori() : w(0.0), x(0.0), y(0.0), z(0.0) {}
};

struct [[gnu::visibility("default")]] RoadPoint {
  Pos position;
  Ori orientation;
  double jointpos[6];
  bool ik_flag;
  RoadPoint();
  RoadPoint(const RoadPoint& other) = default;
  RoadPoint& operator=(const RoadPoint& other);
  bool operator==(const RoadPoint& other);
  void SectionRoadPoint();
  void printfPoint();
};

struct [[gnu::visibility("default")]] Ikfunc {
  Ikfunc();
  static bool ArmFk(Pos&, Ori&, double*);
  static bool ArmFk(RoadPoint&);
  static bool ArmIk(RoadPoint&, double*);
  static bool ArmIk(RoadPoint&);
  static bool ChekcArmPointok(RoadPoint);
  static bool ArmCheckAndCountSimilarIk(RoadPoint&);
  static bool ArmJointIk(RoadPoint&, double*, double);
  static bool ArmJointIk(RoadPoint&, RoadPoint&, double);
  static bool ArmLineMoveIk(RoadPoint&, const Pos&, double*, double);
  static bool ArmIk(RoadPoint&, int, int, double, RoadPoint&);
  static int CountLineSize(RoadPoint, RoadPoint, int);
  static bool CountLineToBuffer(RoadPoint, RoadPoint, int, RoadPoint*, int);
  static int CountLineToBuffer(RoadPoint, RoadPoint, double, RoadPoint*);
  static bool CountLineToBuffer(RoadPoint, RoadPoint, std::vector<RoadPoint>*, int);
  static int CountSRunCurvelLineToBuffer(RoadPoint, RoadPoint, std::vector<RoadPoint>*, float,
                                         float, float, int);
  static int CountCurvelLineSize(RoadPoint, RoadPoint, int);
  static bool CountCurveLineToBuffer(RoadPoint, RoadPoint, int, RoadPoint*);
  static bool CountCurvelLineToBuffer(RoadPoint, RoadPoint, std::vector<RoadPoint>*, int);
  static int CountRunCurvelLineSize(RoadPoint, RoadPoint, int, int);
  static bool CountRunCurvelLineToBuffer(RoadPoint, RoadPoint, std::vector<RoadPoint>*, int, int);
  static void QuaternionToEulerAngle(Ori, double*);
  static void EulerAngleToQuaternion(Ori&, double*);
  static void QuaternionToEulerDis(RoadPoint, RoadPoint, double*);
  static void QuaternionAddEuler(RoadPoint&, double*);
  static double SectionNum(double);
  static bool PositionCompare(RoadPoint, RoadPoint, float, float);
  static bool JointCompare(RoadPoint, RoadPoint, float);
};

#endif  // QAL_TESTS_ABI_V1_H_
