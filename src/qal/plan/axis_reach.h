#ifndef QAL_PLAN_AXIS_REACH_H_
#define QAL_PLAN_AXIS_REACH_H_

namespace qal {

/// Two states that a motion of one axis connects. In units in which its limits of acceleration and
/// jerk are 1: of time acceleration / jerk, of velocity acceleration^2 / jerk, of length
/// acceleration^3 / jerk^2.
struct AxisTask {
  double start_velocity, start_acceleration;
  double end_velocity, end_acceleration;
  double distance;
  double top_velocity;  ///< the limit of velocity, in either direction
  double resolution;    ///< of the task's distance

  AxisTask Mirrored() const {
    return {-start_velocity, -start_acceleration, -end_velocity, -end_acceleration,
            -distance,       top_velocity,        resolution};
  }
};

/// An acceleration that changes by constant jerks.
struct AccelerationProfile {
  static constexpr int kMostPieces = 7;
  int size = 0;
  double time[kMostPieces];          ///< that a piece takes, above 0
  double acceleration[kMostPieces];  ///< where it begins
  double jerk[kMostPieces];

  void Add(double piece_time, double begin, double change) {
    if (!(piece_time > 0)) return;
    time[size] = piece_time;
    acceleration[size] = begin;
    jerk[size++] = change;
  }
};

/// How far an axis gets at most between the states of a task, by the time that it takes.
///
/// The farthest motion raises its acceleration at once, lowers it as late as it may, and raises it
/// again to the end's. A start with an acceleration is one without, earlier by that acceleration
/// (jerk is 1), and so is an end: what is left are the velocities u0 and u1 of those two, the time
/// between them, and a law by how long it is; docs/trajectories.md has them.
class Reach {
 public:
  // cppcheck-suppress uninitMemberVar
  Reach() = default;  // not to be used; nothing is set, which would take time
  explicit Reach(const AxisTask& task);

  /// The shortest time from `time` on in which the change of velocity can be made and in which the
  /// axis gets as far as the task's distance or farther.
  double NextTime(double time) const;
  /// How far it gets in `time`, which has to be one in which the change of velocity can be made.
  double Farthest(double time) const { return Displacement(time + earlier_) - before_; }
  /// Displacements in `time` closer than this are the same.
  double Resolution(double time) const;
  /// The motion that gets there.
  AccelerationProfile FarthestProfile(double time) const;

 private:
  double NextVelocity(double time) const;
  double NextDisplacement(double time) const;
  double Displacement(double time) const;
  AccelerationProfile CruiseProfile(double cruise) const;

  AxisTask task_;
  double u0_, u1_;       // velocities where the accelerations are 0
  double earlier_;       // how much longer it takes between them
  double before_;        // how much farther it is between them
  double sum_, change_;  // u0 + u1, |u1 - u0|
  double no_hold_begin_, no_hold_end_, two_holds_begin_;  // times at which the laws change
  double cruise_begin_, cruise_from_;  // time without a cruise at top velocity, way up to there
};

}  // namespace qal

#endif  // QAL_PLAN_AXIS_REACH_H_
