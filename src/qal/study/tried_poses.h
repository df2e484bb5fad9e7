#ifndef QAL_STUDY_TRIED_POSES_H_
#define QAL_STUDY_TRIED_POSES_H_

#include <utility>
#include <vector>

#include "reach.h"

// Internal: what a study tries in its cells.
namespace qal {

class TriedPoses {
 public:
  /// @param orientations of the study
  TriedPoses(const Arm& arm, const ReachStudy& study, const ReachGrid& grid,
             std::vector<Quat> orientations)
      : base_(arm.base().position),
        placed_(study.poses),
        grid_(grid),
        orientations_(std::move(orientations)),
        spins_(orientations_.size() / static_cast<size_t>(DirectionsOf(study))) {}

  bool placement() const { return !placed_.empty(); }
  size_t directions() const { return orientations_.size() / spins_; }
  size_t spins() const { return spins_; }

  Vec3 Centre(size_t cell) const { return grid_.Centre(cell); }

  /// The pose in the base frame.
  /// @param centre of the cell
  Pose At(const Vec3& centre, size_t orientation) const {
    if (!placement()) return {centre, orientations_[orientation]};
    const Vec3& p = placed_[orientation].position;
    return {{p.x - centre.x + base_.x, p.y - centre.y + base_.y, p.z - centre.z + base_.z},
            orientations_[orientation]};
  }

 private:
  Vec3 base_;
  const std::vector<Pose>& placed_;
  ReachGrid grid_;
  std::vector<Quat> orientations_;
  size_t spins_;
};

}  // namespace qal

#endif  // QAL_STUDY_TRIED_POSES_H_
