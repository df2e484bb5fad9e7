#include "line_remedies.h"

#include <fmt/format.h>

#include <cmath>

#include "../../io/numbers.h"
#include "explain.h"
#include "joint_arguments.h"
#include "limited.h"

namespace qal::tools {

using namespace io;

namespace {

std::map<std::string, Quantity> QuantitiesOf(const LineArguments& a) {
  std::map<std::string, Quantity> quantities = EndQuantities();
  const auto add = [&](std::initializer_list<const char*> options, Quantity quantity) {
    for (const char* option : options) quantities[option] = quantity;
  };
  if (a.limited()) add({"--speed"}, Quantity::kLength);
  add({"--acc", "--jerk"}, Quantity::kLength);
  add({"--turn-speed", "--turn-acc", "--turn-jerk", "--max-orientation-error"}, Quantity::kAngle);
  return quantities;
}

// The number of fewest digits that leads from `from` to exactly `to`; nothing: there is none.
std::optional<double> ShortestBetween(double from, double to) {
  for (int digits = 1; digits <= 17; ++digits) {
    const double by = ParseNumber(fmt::format("{:.{}g}", to - from, digits), "");
    if (from + by == to) return by;
  }
  return std::nullopt;
}

class LineRemedyMaker {
 public:
  explicit LineRemedyMaker(const AskedLine& asked) : asked_(asked) {}

  // Nothing: what works in the library has no command that does.
  std::optional<Remedy> Make(const Change& change) const;
  // Of a line that arrives with other joints than those of --to.
  std::vector<Remedy> ForOtherEnd() const;

 private:
  CommandLine Line() const {
    return {"qal line",
            asked_.command,
            units(),
            QuantitiesOf(asked_.arguments),
            {"--json", "--branches"}};
  }
  CommandLine Move() const;
  const Units& units() const { return asked_.arguments.plan.common.units; }
  bool Works(const CommandLine& line, const Arm& arm) const;
  bool Works(const CommandLine& line) const { return Works(line, asked_.arm); }
  bool WorksAsMove(const CommandLine& move) const;
  std::optional<CommandLine> With(const Change& change) const;
  std::optional<Remedy> WithTool(const Change& change) const;
  std::optional<CommandLine> From(const Joints& joints, const Pose& to) const;
  CommandLine To(const Pose& pose) const;
  CommandLine Slower(double part) const;

  const AskedLine& asked_;
};

bool LineRemedyMaker::Works(const CommandLine& line, const Arm& arm) const {
  return qal::tools::Works<LineArguments>(line, [&arm](const LineArguments& a) {
    a.Check();
    ExpectWithinLimits(
        a.plan,
        a.limited() ? FromTrajectory(PlanLimitedLine(a, arm).samples)
                    : PlanClassic(a.ends, a.plan, ClassicPlanner(a, ReadClassicLine(a)), arm),
        arm);
  });
}

bool LineRemedyMaker::WorksAsMove(const CommandLine& move) const {
  return qal::tools::Works<JointArguments>(move, [this](const JointArguments& a) {
    ExpectWithinLimits(a.plan, FromTrajectory(PlanLimitedMove(a, asked_.arm).samples), asked_.arm);
  });
}

CommandLine LineRemedyMaker::Move() const {
  CommandLine move(
      "qal joint", asked_.command, units(), QuantitiesOf(asked_.arguments),
      {"--json", "--branches", "--profile", "--speed", "--acc", "--jerk", "--turn-speed",
       "--turn-acc", "--turn-jerk", "--max-orientation-error", "--precision", "--motor-rpm"});
  return move;
}

// From other joints to where the line was to go, which may have been said by joints that go with
// those of the start alone.
std::optional<CommandLine> LineRemedyMaker::From(const Joints& joints, const Pose& to) const {
  CommandLine line = Line();
  line.SetNumbers("--from", NumbersOf(joints));
  if (Works(line)) return line;
  SetEnd(line, to);
  return Works(line) ? std::optional(line) : std::nullopt;
}

CommandLine LineRemedyMaker::To(const Pose& pose) const {
  CommandLine line = Line();
  const Vec3& from = asked_.ends.start.pose.position;
  const Vec3& to = pose.position;
  const auto x = ShortestBetween(from.x, to.x);
  const auto y = ShortestBetween(from.y, to.y);
  const auto z = ShortestBetween(from.z, to.z);
  if (line.Has("--by") && x && y && z) {
    line.SetNumbers("--by", {*x, *y, *z});
  } else {
    SetEnd(line, pose);
  }
  return line;
}

CommandLine LineRemedyMaker::Slower(double part) const {
  const LineArguments& a = asked_.arguments;
  const ClassicLine slower = ReadClassicLine(a).Slower(part);
  CommandLine line = Line();
  if (a.profile == "s-curve") {
    line.SetNumbers("--acc", {slower.s_curve.acceleration_m_s2});
    line.SetNumbers("--jerk", {slower.s_curve.jerk_m_s3});
  } else if (a.precision.given()) {
    line.SetNumbers("--precision", {slower.precision});
  } else {
    line.Set("--speed", std::to_string(slower.speed));
  }
  return line;
}

std::optional<CommandLine> LineRemedyMaker::With(const Change& change) const {
  CommandLine line = Line();
  switch (change.kind) {
    case Change::Kind::kStart:
      return From(change.joints, asked_.ends.end);
    case Change::Kind::kEnd:
      return To(change.pose);
    case Change::Kind::kOrientation:
      SetEnd(line, change.pose);
      return line;
    case Change::Kind::kShift:
      line.SetNumbers("--from", NumbersOf(change.joints));
      if (!line.Has("--by")) SetEnd(line, change.pose);
      return line;
    case Change::Kind::kSpeed:
      return Slower(change.value);
    case Change::Kind::kOrientationError:
      line.SetNumbers("--max-orientation-error", {change.value});
      return line;
    case Change::Kind::kJointMove:
      line = Move();
      SetEnd(line, change.joints);
      return line;
    default:
      return std::nullopt;
  }
}

// With another tool the same start has other joints.
std::optional<Remedy> LineRemedyMaker::WithTool(const Change& change) const {
  const auto with = asked_.arm.WithTool(MovedTool(asked_.arm, change.vector));
  CommandLine line = Line();
  line.SetNumbers("--from", NumbersOf(change.joints));
  if (!line.Has("--by")) SetEnd(line, change.pose);
  if (!with || !Works(line, *with)) return std::nullopt;
  Remedy remedy = {ChangeKey(change.kind), ChangeText(change, "line", units().text())};
  remedy.keys = ToolKeys(asked_.arm, change.vector) + " in the arm file, and --from";
  for (const double joint : change.joints) remedy.keys += ' ' + FormatNumber(joint);
  remedy.keys += " (rad)";
  return remedy;
}

std::optional<Remedy> LineRemedyMaker::Make(const Change& change) const {
  Remedy remedy = {ChangeKey(change.kind), ChangeText(change, "line", units().text())};
  if (change.kind == Change::Kind::kStart) {
    if (const auto branch = BranchOf(asked_.arm, change.joints)) {
      remedy.text += "; " + BranchName(*branch);
    }
  }
  if (change.kind == Change::Kind::kTool) return WithTool(change);
  const auto command = With(change);
  if (!command) return std::nullopt;
  const bool is_move = change.kind == Change::Kind::kJointMove;
  if (!(is_move ? WorksAsMove(*command) : Works(*command))) return std::nullopt;
  remedy.command = command->Text();
  return remedy;
}

std::vector<Remedy> LineRemedyMaker::ForOtherEnd() const {
  std::vector<Remedy> remedies;
  CommandLine line = Line();
  SetEnd(line, asked_.ends.end);
  if (Works(line)) {
    remedies.push_back(
        {ChangeKey(Change::Kind::kEnd), "take the joints at the end as they come", line.Text()});
  }
  // Back along the line, from the joints that the end is to have.
  const Joints& end = *asked_.ends.end_joints;
  const auto back = PlanLine(asked_.arm, {end, {}}, asked_.ends.start.pose);
  if (back) {
    line = Line();
    const Joints start = back->At(back->duration_s()).joints;
    line.SetNumbers("--from", NumbersOf(start));
    const Change change = {Change::Kind::kStart, 0, start};
    if (Works(line)) {
      remedies.push_back(
          {ChangeKey(change.kind), ChangeText(change, "line", units().text()), line.Text()});
    }
  }
  const CommandLine move = Move();
  if (WorksAsMove(move)) {
    const Change change = {Change::Kind::kJointMove};
    remedies.push_back(
        {ChangeKey(change.kind), ChangeText(change, "line", units().text()), move.Text()});
  }
  return remedies;
}

}  // namespace

std::vector<Remedy> LineRemedies(const AskedLine& asked, const Explanation& why) {
  const LineRemedyMaker maker(asked);
  if (why.error.reason == Reason::kConfiguration) {
    return maker.ForOtherEnd();
  }
  std::vector<Remedy> remedies;
  for (const Change& change : why.changes) {
    if (auto remedy = maker.Make(change)) remedies.push_back(*std::move(remedy));
  }
  return remedies;
}

}  // namespace qal::tools
