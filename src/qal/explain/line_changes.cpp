#include "line_changes.h"

#include <algorithm>
#include <cmath>

#include "../model/family.h"
#include "../model/rotations.h"
#include "../plan/joint_move.h"
#include "../plan/joint_path.h"
#include "../plan/line_path.h"
#include "causes.h"

namespace qal {

namespace {

// Joints may be this far apart to be those of a tool that moved, where no branch tells [rad].
constexpr double kSameBranchRad = 1.5;

bool SameBranch(const Arm& arm, const Joints& a, const Joints& b) {
  const auto branch = BranchOf(arm, a);
  if (branch) return branch == BranchOf(arm, b);
  return LargestDifference(a, b) < kSameBranchRad;
}

class LineChanger {
 public:
  LineChanger(const LineTrial& trial, const LineRequest& asked, double along)
      : trial_(trial),
        asked_(asked),
        along_(along),
        solves_slowly_(trial.slows_down() &&
                       asked.arm.solver().family() == FamilyName(Family::kGeneral)),
        line_(asked.from.pose, asked.to, 1) {}

  std::optional<Change> Start() const;
  std::optional<Change> End() const;
  std::optional<Change> Orientation() const;
  std::optional<Change> Shift() const;
  std::optional<Change> Tool(const std::optional<Change>& shift) const;
  std::optional<Change> Speed() const;
  std::optional<Change> OrientationError() const;
  std::optional<Change> JointMove() const;

 private:
  // The change, with the duration, if the request can be planned.
  std::optional<Change> Checked(const LineRequest& request, Change change) const {
    const LineAttempt attempt = trial_.Plan(request);
    if (attempt.failure) return std::nullopt;
    change.duration_s = attempt.duration_s;
    return change;
  }
  double PartOfWay(double distance_m) const {
    return distance_m / (line_.length_m() > 0 ? line_.length_m() : 1);
  }
  // The joints go on from the start's as its pose or the tool moves.
  std::optional<LineRequest> From(LineRequest request) const {
    const auto start = qal::Nearest(request.arm, request.from.pose, asked_.from.joints);
    if (!start || !SameBranch(request.arm, start->joints, asked_.from.joints)) return std::nullopt;
    request.from.joints = start->joints;
    return request;
  }
  std::optional<LineRequest> ShiftedRequest(const Vector3& by) const {
    LineRequest request = asked_;
    request.from.pose = ShiftedBy(request.from.pose, by);
    request.to = ShiftedBy(request.to, by);
    return From(std::move(request));
  }
  std::optional<LineRequest> ToolRequest(const Vector3& by) const {
    const auto arm = WithToolMoved(asked_.arm, by);
    if (!arm) return std::nullopt;
    LineRequest request = asked_;
    request.arm = *arm;
    return From(std::move(request));
  }
  // The end, and the place where it failed, by themselves first: most of what is tried fails
  // there, and that takes no time.
  bool Follows(const std::optional<LineRequest>& request) const {
    if (!request) return false;
    if (solves_slowly_) return trial_.Follows(*request);
    const auto solved = [&request](const Pose& pose) {
      return qal::Nearest(request->arm, pose, request->from.joints).has_value();
    };
    const LinePath line(request->from.pose, request->to, 1);
    return solved(request->to) && solved(line.PoseAt(along_)) && trial_.Follows(*request);
  }
  std::optional<Change> ToolBy(const Vector3& by) const;

  const LineTrial& trial_;
  const LineRequest& asked_;
  double along_;        // where it fails
  bool solves_slowly_;  // a pose takes longer than a line takes to be followed
  LinePath line_;
};

std::optional<Change> LineChanger::Start() const {
  for (const Joints& joints : OtherSolutions(asked_.arm, asked_.from.pose, asked_.from.joints)) {
    LineRequest request = asked_;
    request.from.joints = joints;
    if (!trial_.Follows(request)) continue;
    Change change = {Change::Kind::kStart, SizeOf(joints, asked_.from.joints), joints};
    if (auto checked = Checked(request, change)) return checked;
  }
  return std::nullopt;
}

// The line's own places before the one that fails, ever farther back, at whole tenths of a
// millimetre or of a milliradian.
std::optional<Change> LineChanger::End() const {
  constexpr double kPerUnit = 1e4;
  const double way = line_.length_m() > 0 ? line_.length_m() : line_.angle_rad();
  double back = 1 / kPerUnit;
  while (back < along_ * way) {
    const double part = std::floor((along_ * way - back) * kPerUnit + 1e-6) / kPerUnit / way;
    if (!(part > 0)) break;
    back *= 2;
    LineRequest request = asked_;
    request.to = line_.PoseAt(part);
    if (!trial_.Follows(request)) continue;
    Change change = {Change::Kind::kEnd, 1 - part, {}, request.to};
    change.value = part;
    if (auto checked = Checked(request, change)) return checked;
  }
  return std::nullopt;
}

std::optional<Change> LineChanger::Orientation() const {
  const auto with = [this](const Vector3& turn) {
    LineRequest request = asked_;
    request.to = TurnedBy(asked_.to, turn);
    return request;
  };
  const Matrix3 tool = Transposed(line_.FrameAt(1).rotation);  // its rows are the tool's axes
  VectorSearch search = TurnSearch();
  search.hints = {tool[0], tool[1], tool[2], -1.0 * tool[0], -1.0 * tool[1], -1.0 * tool[2]};
  const auto turn = SmallestVector(search, [&](const Vector3& by) { return Follows(with(by)); });
  if (!turn) return std::nullopt;
  Change change = {Change::Kind::kOrientation, Length(*turn) / kPi, {}, with(*turn).to};
  change.value = Length(*turn);
  return Checked(with(*turn), change);
}

std::optional<Change> LineChanger::Shift() const {
  const VectorSearch search = ShiftSearch(asked_.arm, asked_.to);
  const auto shift =
      SmallestVector(search, [&](const Vector3& by) { return Follows(ShiftedRequest(by)); });
  if (!shift) return std::nullopt;
  const LineRequest request = *ShiftedRequest(*shift);
  Change change = {Change::Kind::kShift, PartOfWay(Length(*shift)), request.from.joints, request.to,
                   FromVector(*shift)};
  return Checked(request, change);
}

std::optional<Change> LineChanger::ToolBy(const Vector3& by) const {
  const auto request = ToolRequest(by);
  if (!Follows(request)) return std::nullopt;
  Change change = {Change::Kind::kTool, PartOfWay(Length(by)), request->from.joints, request->to,
                   FromVector(by)};
  return Checked(*request, change);
}

// Without a turn on the way another tool is the same as another place of the line.
std::optional<Change> LineChanger::Tool(const std::optional<Change>& shift) const {
  constexpr double kNoTurn = 1e-9;
  if (line_.angle_rad() < kNoTurn) {
    if (!shift) return std::nullopt;
    return ToolBy(ToolMoveOf(ToVector(shift->vector), asked_.from.pose));
  }
  VectorSearch search = ShiftSearch(asked_.arm, asked_.from.pose);
  search.longest = 2 * search.widest;  // as long as tools are
  search.hints.clear();
  const auto by =
      SmallestVector(search, [&](const Vector3& tried) { return Follows(ToolRequest(tried)); });
  if (!by) return std::nullopt;
  return ToolBy(*by);
}

std::optional<Change> LineChanger::Speed() const {
  const auto with = [this](double speed) {
    LineRequest request = asked_;
    request.speed = speed;
    return request;
  };
  const auto speed = SmallestSlowdown([&](double part) { return trial_.Follows(with(part)); });
  if (!speed) return std::nullopt;
  Change change = {Change::Kind::kSpeed, 1 - *speed};
  change.value = *speed;
  return Checked(with(*speed), change);
}

std::optional<Change> LineChanger::OrientationError() const {
  constexpr double kMostRad = 0.5;
  const auto with = [this](double error) {
    LineRequest request = asked_;
    request.orientation_error = error;
    return request;
  };
  if (asked_.orientation_error >= kMostRad || !trial_.Follows(with(kMostRad))) return std::nullopt;
  double works = kMostRad;
  double fails = asked_.orientation_error;
  while (works - fails > 0.05 * works) {
    const double middle = std::ceil((works + fails) / 2 * 1e4) / 1e4;
    if (middle >= works) break;
    (trial_.Follows(with(middle)) ? works : fails) = middle;
  }
  Change change = {Change::Kind::kOrientationError, works / kPi};
  change.value = works;
  return Checked(with(works), change);
}

std::optional<Change> LineChanger::JointMove() const {
  const auto end = qal::Nearest(asked_.arm, asked_.to, asked_.from.joints);
  if (!end) return std::nullopt;
  const auto motion = PlanJoint(asked_.arm, {asked_.from.joints}, {end->joints});
  if (!motion) return std::nullopt;
  Change change = {Change::Kind::kJointMove, 1, end->joints, asked_.to};
  change.duration_s = motion->duration_s();
  return change;
}

}  // namespace

std::vector<Change> LineChanges(const LineTrial& trial, const LineRequest& asked, Cause cause,
                                double along) {
  const LineChanger changer(trial, asked, along);
  const std::optional<Change> shift = changer.Shift();
  std::vector<Change> changes;
  const auto add = [&changes](const std::optional<Change>& change) {
    if (change) changes.push_back(*change);
  };
  add(shift);
  add(changer.Tool(shift));
  add(changer.Start());
  add(changer.End());
  add(changer.Orientation());
  if (!trial.slows_down()) add(changer.Speed());
  if (trial.slows_down() && (cause == Cause::kSingularity || cause == Cause::kBranchEnds)) {
    add(changer.OrientationError());
  }
  add(changer.JointMove());
  Sort(changes);
  return changes;
}

}  // namespace qal
