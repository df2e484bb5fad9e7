#include "reach.h"

#include <algorithm>
#include <cmath>
#include <mutex>
#include <optional>

#include "../solve/batch_run.h"

namespace qal {

namespace {

// The reference that takes each joint to the turn which is furthest from its limits: their middle.
Joints MiddleOf(const Arm& arm) {
  Joints middle = {};
  for (size_t j = 0; j < middle.size(); ++j) {
    const double sum = arm.joints()[j].lower_rad.value + arm.joints()[j].upper_rad.value;
    middle[j] = std::isfinite(sum) ? sum / 2 : 0;
  }
  return middle;
}

// What of several best solutions is told, of a placement the worst one.
enum class Told { kBest, kWorst };

// Adds a part's counts, and keeps of two solutions the one that is told. Of two orientations' it is
// the same one in whatever order they come, so that it doesn't matter which thread is first.
void Take(ReachCell& cell, const ReachCell& part, Told told) {
  cell.directions += part.directions;
  cell.solutions += part.solutions;
  if (part.orientation < 0) return;
  // Written so that NaN, of nothing yet, is replaced.
  if (!(cell.smallest_singular_value <= part.smallest_singular_value)) {
    cell.smallest_singular_value = part.smallest_singular_value;
  }
  const bool further = part.margin_rad > cell.margin_rad;
  const bool tie = part.margin_rad == cell.margin_rad;
  if (cell.orientation >= 0 &&
      (tie ? part.orientation >= cell.orientation : further != (told == Told::kBest))) {
    return;
  }
  cell.orientation = part.orientation;
  cell.joints = part.joints;
  cell.margin_rad = part.margin_rad;
}

// What is tried in the cells.
class TriedPoses {
 public:
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

  // Adds a direction's poses, one for each spin.
  void Add(size_t cell, size_t direction, std::vector<Pose>& poses) const {
    const Vec3 centre = grid_.Centre(cell);
    if (placement()) {
      const auto& [p, orientation] = placed_[direction];
      poses.push_back(
          {{p.x - centre.x + base_.x, p.y - centre.y + base_.y, p.z - centre.z + base_.z},
           orientation});
      return;
    }
    for (size_t s = 0; s < spins_; ++s) {
      poses.push_back({centre, orientations_[direction * spins_ + s]});
    }
  }

 private:
  Vec3 base_;
  const std::vector<Pose>& placed_;
  ReachGrid grid_;
  std::vector<Quat> orientations_;
  size_t spins_;
};

// The work on some cells. An element of it is one direction of one cell, with all its spins: the
// memory is that of the cells and of what threads have in hand.
class ReachRun {
 public:
  ReachRun(const Arm& arm, TriedPoses tried, size_t first, size_t last)
      : arm_(arm),
        tried_(std::move(tried)),
        directions_(tried_.directions()),
        spins_(tried_.spins()),
        first_(first),
        middle_(MiddleOf(arm)),
        cells_(last - first) {}

  Result<std::vector<ReachCell>> operator()(const BatchOptions& options) {
    const size_t count = cells_.size() * directions_;
    BatchOptions watched = options;
    watched.progress = [&](size_t done) {
      return !failed() && (!options.progress || options.progress(done));
    };
    const size_t done = RunBatch(count, watched, [this](size_t begin, size_t end) {
      if (!failed()) Work(begin, end);
    });
    if (failure_) return *failure_;
    if (done < count) return Error{Reason::kInterrupted};
    if (tried_.placement()) return std::move(cells_);
    if (const auto failure = MeasureBest(options, count)) return *failure;
    return std::move(cells_);
  }

 private:
  bool failed() {
    const std::lock_guard<std::mutex> lock(mutex_);
    return failure_.has_value();
  }

  void Work(size_t begin, size_t end) {
    std::vector<Pose> poses;
    poses.reserve((end - begin) * spins_);
    for (size_t i = begin; i < end; ++i) {
      tried_.Add(first_ + i / directions_, i % directions_, poses);
    }
    BatchOptions here;
    here.threads = 1;
    const BatchSolutions solved = Inverse(arm_, poses, {&middle_, 1}, {}, here);
    for (size_t i = begin; i < end;) {
      const size_t cell = i / directions_;
      const size_t cell_end = std::min(end, (cell + 1) * directions_);
      ReachCell part;
      for (; i < cell_end; ++i) AddDirection(part, solved, i, (i - begin) * spins_);
      const std::lock_guard<std::mutex> lock(mutex_);
      Take(cells_[cell], part, told());
    }
    ExpectSound(poses, solved.reasons);
  }

  Told told() const { return tried_.placement() ? Told::kWorst : Told::kBest; }

  // @param first_pose of the direction in `solved`
  void AddDirection(ReachCell& part, const BatchSolutions& solved, size_t element,
                    size_t first_pose) {
    ReachCell best;
    for (size_t s = 0; s < spins_; ++s) {
      const size_t pose = first_pose + s;
      const auto orientation = static_cast<int32_t>(element % directions_ * spins_ + s);
      for (size_t k = solved.first[pose]; k < solved.first[pose + 1]; ++k) {
        if (solved.refusals[k] != Reason::kNone) continue;
        Take(best, {0, 1, orientation, solved.joints[k], MarginOf(solved.joints[k])}, Told::kBest);
      }
    }
    if (best.orientation < 0) return;
    best.directions = 1;
    if (tried_.placement()) Measure(best);
    Take(part, best, told());
  }

  double MarginOf(const Joints& joints) const {
    double margin_rad = std::numeric_limits<double>::infinity();
    for (size_t j = 0; j < joints.size(); ++j) {
      const JointModel& model = arm_.joints()[j];
      margin_rad = std::min(
          {margin_rad, joints[j] - model.lower_rad.value, model.upper_rad.value - joints[j]});
    }
    return margin_rad;
  }

  // A solver that fails says nothing of the reach.
  void ExpectSound(const std::vector<Pose>& poses, const std::vector<Reason>& reasons) {
    for (size_t i = 0; i < poses.size(); ++i) {
      if (reasons[i] == Reason::kNone || reasons[i] == Reason::kOutOfReach) continue;
      // Once more for the details, should the solver still fail.
      const auto again = Inverse(arm_, poses[i], middle_);
      const std::lock_guard<std::mutex> lock(mutex_);
      if (!failure_) failure_ = again ? Error{reasons[i]} : again.error();
      return;
    }
  }

  // A Jacobian takes 13 times forward kinematics: of a box once for each cell.
  void Measure(ReachCell& solution) {
    const auto distances = DistanceToSingularities(arm_, solution.joints);
    if (distances) {
      solution.smallest_singular_value = distances->smallest_singular_value;
      return;
    }
    const std::lock_guard<std::mutex> lock(mutex_);
    failure_ = distances.error();
  }

  std::optional<Error> MeasureBest(const BatchOptions& options, size_t all) {
    BatchOptions told = options;
    if (options.progress) told.progress = [&](size_t) { return options.progress(all); };
    const size_t done = RunBatch(cells_.size(), told, [this](size_t begin, size_t end) {
      for (size_t i = begin; i < end; ++i) {
        if (cells_[i].orientation >= 0) Measure(cells_[i]);
      }
    });
    if (failure_) return failure_;
    if (done < cells_.size()) return Error{Reason::kInterrupted};
    return std::nullopt;
  }

  const Arm& arm_;
  TriedPoses tried_;
  size_t directions_;
  size_t spins_;
  size_t first_;
  Joints middle_;
  std::mutex mutex_;  // of what follows; a thread takes it for a chunk's sum, not for each pose
  std::vector<ReachCell> cells_;
  std::optional<Error> failure_;
};

}  // namespace

Result<std::vector<ReachCell>> Reach(const Arm& arm, const ReachStudy& study, size_t first,
                                     size_t last, const BatchOptions& options) {
  const Result<ReachGrid> grid = GridOf(study);
  if (!grid) return grid.error();
  if (last > grid->cells()) {
    return Error{Reason::kSetting, -1, static_cast<double>(last),
                 static_cast<double>(grid->cells()), "end_of_the_cells"};
  }
  if (first > last) {
    return Error{Reason::kSetting, -1, static_cast<double>(first), static_cast<double>(last),
                 "first_cell"};
  }
  Result<std::vector<Quat>> orientations = OrientationsOf(study);
  if (!orientations) return orientations.error();
  return ReachRun(arm, TriedPoses(arm, study, *grid, std::move(*orientations)), first,
                  last)(options);
}

}  // namespace qal
