#include "reach.h"

#include <algorithm>
#include <cmath>
#include <mutex>
#include <optional>

#include "../plan/joint_limits.h"
#include "../plan/path_failure.h"
#include "../solve/batch_run.h"
#include "approaches.h"
#include "tried_poses.h"

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

// Joints at places of an approach, its ends among them.
std::vector<Joints> PlacesOf(const JointPath& approach) {
  std::vector<Joints> places;
  for (int i = 0; i <= kReachLineParts; ++i) {
    places.push_back(approach.At(static_cast<double>(i) / kReachLineParts).value);
  }
  return places;
}

// The work on some cells. An element of it is one direction of one cell, with all its spins: the
// memory is that of the cells and of what threads have in hand.
class ReachRun {
 public:
  ReachRun(const Arm& arm, TriedPoses tried, const std::optional<Approaches>& approaches,
           size_t first, size_t last)
      : arm_(arm),
        tried_(std::move(tried)),
        approaches_(approaches),
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
      for (size_t s = 0; s < spins_; ++s) {
        poses.push_back(tried_.At(first_ + i / directions_, i % directions_ * spins_ + s));
      }
    }
    BatchOptions here;
    here.threads = 1;
    const BatchSolutions solved = Inverse(arm_, poses, {&middle_, 1}, {}, here);
    for (size_t i = begin; i < end;) {
      const size_t cell = i / directions_;
      const size_t cell_end = std::min(end, (cell + 1) * directions_);
      ReachCell sum;
      for (; i < cell_end; ++i) AddDirection(sum, poses, solved, i, (i - begin) * spins_);
      const std::lock_guard<std::mutex> lock(mutex_);
      Take(cells_[cell], sum, told());
    }
    ExpectSound(poses, solved.reasons);
  }

  Told told() const { return tried_.placement() ? Told::kWorst : Told::kBest; }

  // @param first_pose of the direction
  void AddDirection(ReachCell& sum, const std::vector<Pose>& poses, const BatchSolutions& solved,
                    size_t element, size_t first_pose) {
    ReachCell best;
    for (size_t s = 0; s < spins_; ++s) {
      const size_t pose = first_pose + s;
      if (solved.first[pose] == solved.first[pose + 1] || !Begins(poses[pose])) continue;
      const auto orientation = static_cast<int32_t>(element % directions_ * spins_ + s);
      for (size_t k = solved.first[pose]; k < solved.first[pose + 1]; ++k) {
        if (solved.refusals[k] != Reason::kNone) continue;
        const auto margin_rad = MarginOf(poses[pose], solved.joints[k]);
        if (!margin_rad) continue;
        Take(best, {0, 1, orientation, solved.joints[k], *margin_rad}, Told::kBest);
      }
    }
    if (best.orientation < 0) return;
    best.directions = 1;
    if (tried_.placement()) {
      Measure(poses[first_pose + static_cast<size_t>(best.orientation) % spins_], best);
    }
    Take(sum, best, told());
  }

  // Whether the approach to a pose begins within reach: the quickest way to tell that it can't be
  // followed.
  bool Begins(const Pose& pose) const {
    return !approaches_ || Inverse(arm_, approaches_->BeginOf(pose), middle_);
  }

  // Of joints that are within their limits; with an approach the smallest margin on its way.
  // Nothing where it can't be followed within them.
  std::optional<double> MarginOf(const Pose& pose, const Joints& joints) const {
    if (!approaches_) return SmallestMargin(arm_, joints);
    const auto way = approaches_->Follow(pose, joints);
    if (!way) return std::nullopt;
    const double margin_rad = SmallestMargin(arm_, *way);
    if (margin_rad < -kRangeRoundingRad) return std::nullopt;
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
  // @param solution of the pose
  void Measure(const Pose& pose, ReachCell& solution) {
    std::vector<Joints> places = {solution.joints};
    if (approaches_) places = PlacesOf(*approaches_->Follow(pose, solution.joints));
    double smallest = std::numeric_limits<double>::infinity();
    for (const Joints& joints : places) {
      const auto distances = DistanceToSingularities(arm_, joints);
      if (!distances) {
        const std::lock_guard<std::mutex> lock(mutex_);
        failure_ = distances.error();
        return;
      }
      smallest = std::min(smallest, distances->smallest_singular_value);
    }
    solution.smallest_singular_value = smallest;
  }

  std::optional<Error> MeasureBest(const BatchOptions& options, size_t all) {
    BatchOptions told = options;
    if (options.progress) told.progress = [&](size_t) { return options.progress(all); };
    const size_t done = RunBatch(cells_.size(), told, [this](size_t begin, size_t end) {
      for (size_t i = begin; i < end; ++i) {
        const int32_t orientation = cells_[i].orientation;
        if (orientation < 0) continue;
        Measure(tried_.At(first_ + i, static_cast<size_t>(orientation)), cells_[i]);
      }
    });
    if (failure_) return failure_;
    if (done < cells_.size()) return Error{Reason::kInterrupted};
    return std::nullopt;
  }

  const Arm& arm_;
  TriedPoses tried_;
  std::optional<Approaches> approaches_;
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
  std::optional<Approaches> approaches;
  if (study.line_m > 0) {
    Result<Approaches> made = Approaches::Of(arm, study, MiddleOf(arm));
    if (!made) return made.error();
    approaches = *std::move(made);
  }
  return ReachRun(arm, TriedPoses(arm, study, *grid, std::move(*orientations)), approaches, first,
                  last)(options);
}

}  // namespace qal
