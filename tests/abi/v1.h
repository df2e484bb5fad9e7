#ifndef QAL_TESTS_ABI_V1_H_
#define QAL_TESTS_ABI_V1_H_

#include <vector>

// What a program that was built against version 1.0.0 knows of the library. Never edited: when the
// soname's number changes, the public headers of that release take its place.

class __attribute__((visibility("default"))) Pos {
 public:
  double x;
  double y;
  double z;
  Pos();
  Pos(double x_m, double y_m, double z_m) : x(x_m), y(y_m), z(z_m) {}
  Pos(const Pos& other);
  Pos& operator=(const Pos& other) = default;
  Pos operator+(const Pos& other) const;
  Pos operator-(const Pos& other) const;
  bool operator==(const Pos& other) const;
};

class __attribute__((visibility("default"))) Roz {
 public:
  double x;
  double y;
  double z;
  Roz() : x(0.0), y(0.0), z(0.0) {}
  Roz(double x_rad, double y_rad, double z_rad) : x(x_rad), y(y_rad), z(z_rad) {}
};

class __attribute__((visibility("default"))) Ori {
 public:
  double w;
  double x;
  double y;
  double z;
  Ori() : w(0.0), x(0.0), y(0.0), z(0.0) {}
  Ori(double w_part, double x_part, double y_part, double z_part)
      : w(w_part), x(x_part), y(y_part), z(z_part) {}
  bool operator==(const Ori& other) const {
    return w == other.w && x == other.x && y == other.y && z == other.z;
  }
};

class __attribute__((visibility("default"))) RoadPoint {
 public:
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

class __attribute__((visibility("default"))) Ikfunc {
 public:
  Ikfunc();
  static bool ArmFk(Pos& arm_pos, Ori& arm_ori, double* joint_solve);
  static bool ArmFk(RoadPoint& arm_pos);
  static bool ArmIk(RoadPoint& cur_stat, double* joint);
  static bool ArmIk(RoadPoint& cur_stat);
  static bool ChekcArmPointok(RoadPoint testpoint);
  static bool ArmCheckAndCountSimilarIk(RoadPoint& cur_stat);
  static bool ArmJointIk(RoadPoint& cur_stat, double* joint, double max_joint_step_range);
  static bool ArmJointIk(RoadPoint& cur_stat, RoadPoint& dis_stat, double max_joint_step_range);
  static bool ArmLineMoveIk(RoadPoint& cur_stat, const Pos& dis, double* joint,
                            double max_joint_step_range);
  static bool ArmIk(RoadPoint& cur_stat, int coordinate, int move_mode, double step,
                    RoadPoint& result);
  static int CountLineSize(RoadPoint s_point, RoadPoint e_point, int speed);
  static bool CountLineToBuffer(RoadPoint s_point, RoadPoint e_point, int step_count,
                                RoadPoint* point_array, int speed);
  static int CountLineToBuffer(RoadPoint s_point, RoadPoint e_point, double precis,
                               RoadPoint* point_array);
  static bool CountLineToBuffer(RoadPoint s_point, RoadPoint e_point,
                                std::vector<RoadPoint>* point_road, int speed);
  static int CountSRunCurvelLineToBuffer(RoadPoint s_point, RoadPoint e_point,
                                         std::vector<RoadPoint>* point_road, float max_v,
                                         float max_acc, float max_jerk, int max_joint);
  static int CountCurvelLineSize(RoadPoint s_point, RoadPoint e_point, int speed);
  static bool CountCurveLineToBuffer(RoadPoint s_point, RoadPoint e_point, int step_count,
                                     RoadPoint* point_array);
  static bool CountCurvelLineToBuffer(RoadPoint s_point, RoadPoint e_point,
                                      std::vector<RoadPoint>* point_road, int speed);
  static int CountRunCurvelLineSize(RoadPoint s_point, RoadPoint e_point, int speed, int max_acc);
  static bool CountRunCurvelLineToBuffer(RoadPoint s_point, RoadPoint e_point,
                                         std::vector<RoadPoint>* point_road, int speed,
                                         int max_acc);
  static void QuaternionToEulerAngle(Ori orientation, double* EulerAngle);
  static void EulerAngleToQuaternion(Ori& orientation, double* EulerAngle);
  static void QuaternionToEulerDis(RoadPoint roadpoint1, RoadPoint roadpoint2, double* EulerDis);
  static void QuaternionAddEuler(RoadPoint& roadpoint1, double* EulerDis);
  static double SectionNum(double num);
  static bool PositionCompare(RoadPoint roadpoint1, RoadPoint roadpoint2, float pos_range,
                              float ori_range);
  static bool JointCompare(RoadPoint roadpoint1, RoadPoint roadpoint2, float joint_range);
};

#endif  // QAL_TESTS_ABI_V1_H_
