#include "reach.h"

#include <algorithm>
#include <cmath>
#include <mutex>
#include <optional>

#include "../solve/batch_run.h"
#include "../solve/chunk_solver.h"
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
void Take(ReachCell& cell, const ReachCell& part, Told rule) {
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
      (tie ? part.orientation >= cell.orientation : further != (rule == Told::kBest))) {
    return;
  }
  cell.orientation = part.orientation;
  cell.joints = part.joints;
  cell.margin_rad = part.margin_rad;
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
        cells_(last - first) {
    for (size_t j = 0; j < ranges_.size(); ++j) {
      ranges_[j] = {arm.joints()[j].lower_rad.value, arm.joints()[j].upper_rad.value};
    }
  }

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
    ForEachCell(begin, end, [&](size_t cell, size_t first, size_t last) {
      const Vec3 centre = tried_.Centre(first_ + cell);
      for (size_t i = first * spins_; i < last * spins_; ++i) poses.push_back(tried_.At(centre, i));
    });
    const BatchRequests requests = {poses, {&middle_, 1}};
    ChunkSolutions solved;
    std::vector<Reason> reasons(poses.size());
    ChunkSolver(arm_, requests, {})(0, poses.size(), reasons, solved);
    size_t pose = 0;
    size_t solution = 0;
    ForEachCell(begin, end, [&](size_t cell, size_t first, size_t last) {
      ReachCell sum;
      for (size_t i = first; i < last; ++i, pose += spins_) {
        AddDirection(sum, poses, solved, i, pose, solution);
      }
      const std::lock_guard<std::mutex> lock(mutex_);
      Take(cells_[cell], sum, rule());
    });
    ExpectSound(poses, reasons);
  }

  // Calls visit(cell, first, last) with the directions that elements are of each cell.
  template <class Visit>
  void ForEachCell(size_t begin, size_t end, Visit visit) const {
    while (begin < end) {
      const size_t cell = begin / directions_;
      const size_t next = std::min(end, (cell + 1) * directions_);
      visit(cell, begin - cell * directions_, next - cell * directions_);
      begin = next;
    }
  }

  Told rule() const { return tried_.placement() ? Told::kWorst : Told::kBest; }

  // @param first_pose of the direction
  // @param solution   its first one; becomes that of the next direction
  void AddDirection(ReachCell& sum, const std::vector<Pose>& poses, const ChunkSolutions& solved,
                    size_t direction, size_t first_pose, size_t& solution) {
    ReachCell best;
    for (size_t s = 0; s < spins_; ++s) {
      const size_t pose = first_pose + s;
      const size_t first = solution;
      solution += solved.counts[pose];
      if (first == solution) continue;
      if (approaches_ && !approaches_->Begins(poses[pose])) continue;
      const auto orientation = static_cast<int32_t>(direction * spins_ + s);
      for (size_t k = first; k < solution; ++k) {
        if (solved.refusals[k] != Reason::kNone) continue;
        double margin_rad = MarginOf(solved.joints[k]);
        if (approaches_) {
          const auto smallest = approaches_->MarginOf(poses[pose], solved.joints[k]);
          if (!smallest) continue;
          margin_rad = *smallest;
        }
        ++best.solutions;
        if (best.orientation >= 0 && !(margin_rad > best.margin_rad)) continue;
        best.orientation = orientation;
        best.joints = solved.joints[k];
        best.margin_rad = margin_rad;
      }
    }
    if (best.orientation < 0) return;
    best.directions = 1;
    if (tried_.placement()) {
      Measure(poses[first_pose + static_cast<size_t>(best.orientation) % spins_], best);
    }
    Take(sum, best, rule());
  }

  // Of joints that are within their limits. The smallest of six numbers in as few steps one after
  // the other as there are: each of a study's solutions waits for them.
  double MarginOf(const Joints& joints) const {
    const auto of = [&](size_t j) {
      return std::min(joints[j] - ranges_[j].first, ranges_[j].second - joints[j]);
    };
    return std::min(std::min(std::min(of(0), of(1)), std::min(of(2), of(3))),
                    std::min(of(4), of(5)));
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
    if (approaches_) places = approaches_->PlacesOf(pose, solution.joints);
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
        Measure(tried_.At(tried_.Centre(first_ + i), static_cast<size_t>(orientation)), cells_[i]);
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
  std::array<std::pair<double, double>, 6> ranges_;  // close together, for what is asked most
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
    const Result<Approaches> made = Approaches::Of(arm, study, MiddleOf(arm));
    if (!made) return made.error();
    approaches = *made;
  }
  return ReachRun(arm, TriedPoses(arm, study, *grid, std::move(*orientations)), approaches, first,
                  last)(options);
}

}  // namespace qal
