#include "program_changes.h"

#include <algorithm>

#include "causes.h"

namespace qal {

namespace {

Program UpTo(const Program& program, size_t steps) {
  const auto end = program.steps.begin() + static_cast<std::ptrdiff_t>(steps);
  return {program.start, {program.steps.begin(), end}};
}

std::optional<Zone>* ZoneOf(ProgramStep& step) {
  return std::visit(
      [](auto& s) -> std::optional<Zone>* {
        using Step = std::decay_t<decltype(s)>;
        if constexpr (std::is_same_v<Step, WaitStep> || std::is_same_v<Step, ToolStep>) {
          return nullptr;
        } else {
          return &s.zone;
        }
      },
      step);
}

void Shift(const Vector3& by, Target& target) {
  if (Pose* const pose = std::get_if<Pose>(&target)) *pose = ShiftedBy(*pose, by);
}

void Shift(const Vector3& by, Vec3& point) { point = FromVector(ToVector(point) + by); }

Program Shifted(const Program& program, const Vector3& by) {
  Program shifted = program;
  for (ProgramStep& step : shifted.steps) {
    if (auto* const move = std::get_if<JointStep>(&step)) Shift(by, move->to);
    if (auto* const line = std::get_if<LineStep>(&step)) Shift(by, line->to);
    auto* const arc = std::get_if<ArcStep>(&step);
    if (arc == nullptr) continue;
    if (auto* const through = std::get_if<ArcThrough>(&arc->arc)) {
      Shift(by, through->through);
      Shift(by, through->to);
    } else {
      Shift(by, std::get<ArcAbout>(arc->arc).centre);
    }
  }
  return shifted;
}

class Trier {
 public:
  Trier(const Arm& arm, const Program& program, ProgramExplanation& told)
      : arm_(arm), program_(program), told_(told), found_(std::move(told.why.changes)) {
    told.why.changes.clear();
  }

  void All();

 private:
  // Tells of the change if all of the program has a motion with it.
  bool Tell(Change change, const Program& changed);
  void TryEnds();
  void TryStarts();
  void TryShift();
  void TryStops();

  const Arm& arm_;
  const Program& program_;
  ProgramExplanation& told_;
  std::vector<Change> found_;  // for the step by itself
};

bool Trier::Tell(Change change, const Program& changed) {
  // What fails as early is told quickly.
  if (told_.step + 1 < changed.steps.size() && !PlanProgram(arm_, UpTo(changed, told_.step + 1))) {
    return false;
  }
  const auto motion = PlanProgram(arm_, changed);
  if (!motion) return false;
  change.duration_s = motion->duration_s();
  told_.why.changes.push_back(change);
  told_.changed.push_back(changed);
  return true;
}

// Of a line its end and the orientation there; of a joint move to a pose, that pose.
void Trier::TryEnds() {
  for (const Change& change : found_) {
    Program changed = program_;
    ProgramStep& step = changed.steps[told_.step];
    if (auto* const line = std::get_if<LineStep>(&step)) {
      if (change.kind == Change::Kind::kEnd || change.kind == Change::Kind::kOrientation) {
        line->to = change.pose;
      } else if (change.kind == Change::Kind::kOrientationError) {
        line->limits.max_orientation_error_rad = change.value;
      } else {
        continue;
      }
    } else if (auto* const move = std::get_if<JointStep>(&step)) {
      if (change.kind == Change::Kind::kEnd || change.kind == Change::Kind::kJointMove) {
        move->to = change.joints;
      } else if (change.kind == Change::Kind::kOrientation) {
        move->to = change.pose;
      } else {
        continue;
      }
    }
    (void)Tell(change, changed);
  }
}

// The configuration of a line is that of the joint move before it, or of the program's start.
void Trier::TryStarts() {
  size_t after = told_.step;
  while (after > 0 && !std::holds_alternative<JointStep>(program_.steps[after - 1])) --after;
  const auto there = Before(arm_, program_, after);
  if (!there) return;
  const auto pose = Forward(there->arm, there->joints);
  if (!pose) return;
  for (const Joints& joints : OtherSolutions(there->arm, *pose, there->joints)) {
    Program changed = program_;
    if (after == 0) {
      changed.start = joints;
    } else {
      std::get<JointStep>(changed.steps[after - 1]).to = joints;
    }
    const double size = SizeOf(joints, there->joints);
    if (Tell({Change::Kind::kStart, size, joints, *pose}, changed)) return;
  }
}

void Trier::TryShift() {
  const auto shift = std::find_if(found_.begin(), found_.end(), [](const Change& change) {
    return change.kind == Change::Kind::kShift;
  });
  if (shift == found_.end()) return;
  // Steps before and after may take more of it.
  for (const double more : {1.0, 1.5, 2.0, 3.0}) {
    Change change = *shift;
    const Vector3 by = more * ToVector(change.vector);
    change.vector = FromVector(by);
    change.size *= more;
    if (Tell(change, Shifted(program_, by))) return;
  }
}

void Trier::TryStops() {
  for (const size_t back : {size_t{0}, size_t{1}}) {
    if (told_.step < back) continue;
    Program changed = program_;
    std::optional<Zone>* const zone = ZoneOf(changed.steps[told_.step - back]);
    if (zone == nullptr || !*zone) continue;
    zone->reset();
    Change change = {Change::Kind::kNoZone};
    change.value = static_cast<double>(told_.step - back);
    if (Tell(change, changed)) return;
  }
}

void Trier::All() {
  TryStops();
  TryEnds();
  TryShift();
  TryStarts();
}

}  // namespace

std::optional<BeforeStep> Before(const Arm& arm, const Program& program, size_t step) {
  BeforeStep before = {arm, program.start};
  if (step > 0) {
    const auto motion = PlanProgram(arm, UpTo(program, step));
    if (!motion) return std::nullopt;
    before.joints = motion->At(motion->duration_s()).joints;
  }
  for (size_t i = step; i-- > 0;) {
    const auto* const tool = std::get_if<ToolStep>(&program.steps[i]);
    if (tool == nullptr) continue;
    const auto with = arm.WithTool(tool->tool);
    if (with) before.arm = *with;
    break;
  }
  return before;
}

void TryInProgram(const Arm& arm, const Program& program, ProgramExplanation& told) {
  Trier(arm, program, told).All();
  // Both lists in one order.
  std::vector<size_t> order(told.changed.size());
  for (size_t i = 0; i < order.size(); ++i) order[i] = i;
  const std::vector<Change> changes = std::move(told.why.changes);
  const std::vector<Program> changed = std::move(told.changed);
  std::stable_sort(order.begin(), order.end(),
                   [&](size_t a, size_t b) { return changes[a].size < changes[b].size; });
  told.why.changes.clear();
  told.changed.clear();
  for (const size_t i : order) {
    told.why.changes.push_back(changes[i]);
    told.changed.push_back(changed[i]);
  }
}

}  // namespace qal
