#ifndef QAL_PLAN_PLAYER_H_
#define QAL_PLAN_PLAYER_H_

#include <vector>

#include "pace_change.h"

// Internal: a planned motion as it is played, at a pace of the user's.
namespace qal {

/// A part of a motion from rest to rest. Between such the arm stands still.
struct PlayedBlock {
  double begin_s;
  const LimitedPath* path;
  const TimeLaw* law;
};

/// Plays a motion in cycles. Allocates nothing but when it is made.
class Player {
 public:
  /// @param from_s where to begin, as planned
  Player(std::vector<PlayedBlock> blocks, double duration_s, double cycle_s, double from_s);

  /// At rest where it is; before the first cycle alone.
  void Stand();
  /// The pace to get to, from 0 to 1.
  void SetPace(double pace) { wanted_ = pace; }
  /// Decides how to go on, for a cycle at the least.
  void Decide();
  /// What is decided, one cycle on.
  void Advance();

  /// In a block: where it is, a while ahead; before its legs end.
  PlayMoment Ahead(double after_s);
  size_t block() const { return block_; }
  /// When it would be here as planned.
  double planned_s();
  bool stands() const { return stands_; }  ///< between blocks, before or after them
  bool at_rest() const { return stands_ || (Constant() && course().pace == 0); }
  bool done() const;

 private:
  const Course& course() const { return course_[current_]; }
  bool Constant() const { return leg_ == course().legs; }
  void BeginBlock();
  void Rest();
  double NextBegin() const {
    return block_ < blocks_.size() ? blocks_[block_].begin_s : duration_s_;
  }

  std::vector<PlayedBlock> blocks_;
  std::vector<PaceChange> changes_;  // of each block
  double duration_s_;
  double cycle_s_;
  double wanted_ = 1;
  Course course_[2];
  size_t current_ = 0;
  size_t leg_ = 0;
  double in_leg_s_ = 0;  // since it began, or since the pace is constant
  size_t block_ = 0;     // the one that is played, or the next
  bool stands_ = true;
  double rest_s_ = 0;  // how long it still stands
};

}  // namespace qal

#endif  // QAL_PLAN_PLAYER_H_
