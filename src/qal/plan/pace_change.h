#ifndef QAL_PLAN_PACE_CHANGE_H_
#define QAL_PLAN_PACE_CHANGE_H_

#include "course.h"
#include "path_looks.h"

// Internal: how fast the pace of a motion can change.
namespace qal {

/// Looks for courses to another pace, within the limits of a path.
class PaceChange {
 public:
  PaceChange(const LimitedPath& path, const TimeLaw& law, double cycle_s)
      : path_(path),
        player_(law),
        cycle_s_(cycle_s),
        duration_s_(law.duration_s()),
        looks_(path, cycle_s) {}

  LegPlayer& player() { return player_; }

  /// A course that gets nearer to a pace than another one, which is how it would go on otherwise.
  /// @param now at the beginning of a cycle
  /// @return whether there is one
  bool Find(const PlayMoment& now, double pace, const Course& otherwise, Course& found);

 private:
  // A moment of a course with what is known of its place.
  struct Node {
    PlayMoment at;
    PlaceLimits limits;
  };
  // To get to a pace, from the one that there would be otherwise.
  struct Goal {
    double pace;
    double otherwise;
    bool lower;

    bool IsNearer(double other) const {
      return lower ? pace <= other && other < otherwise : otherwise < other && other <= pace;
    }
  };
  enum class Pick { kLow, kHigh };

  double LookAfter(const Leg& leg, const PlayMoment& at);
  bool Allows(const Leg& leg, const Margin& use);
  bool Step(Node& node, double length_s, Pick pick, Course& course);
  bool Advance(Node& node, double length_s, Pick pick, Course& course);
  bool Release(Node& node, Course& course);
  bool Settle(Course& course);
  bool Land(const Node& now, double pace, Leg& leg);
  bool EndWith(const Leg& leg, double pace, Course& course);
  bool Approach(const Node& begin, double while_s, bool may_land, const Goal& goal, Course& course);
  bool Try(int attempt, const Node& begin, const Range& jerks, const Goal& goal, Course& course);
  bool Creep(const PlayMoment& now, double pace, Course& course);
  bool LandAtRest(const Node& now, Leg& leg);

  const LimitedPath& path_;
  LegPlayer player_;
  double cycle_s_;
  double duration_s_;
  PathLooks looks_;
  Margin along_path_;  // that a decision goes by
  int next_attempt_ = 0;
};

}  // namespace qal

#endif  // QAL_PLAN_PACE_CHANGE_H_
