#include "program_file.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <cmath>
#include <map>

#include "error.h"
#include "error_text.h"
#include "files.h"
#include "frame.h"
#include "limits.h"
#include "messages.h"
#include "numbers.h"
#include "program_limits.h"
#include "program_points.h"
#include "suggestion.h"

namespace qal::io {

namespace {

const std::vector<std::string> kKinds = {"joint",  "line", "arc",   "arc_about",
                                         "wait_s", "tool", "repeat"};

std::string KindOf(const Fields& step) {
  std::string kind;
  for (const std::string& key : kKinds) {
    if (!step.Has(key)) continue;
    if (!kind.empty()) {
      step.Refuse(key, fmt::format("there is {} as well; one of them is expected", kind));
    }
    kind = key;
  }
  if (kind.empty()) {
    step.Refuse("", fmt::format("one of {} is expected", fmt::join(kKinds, ", ")));
  }
  return kind;
}

// "line to 'pick'", or "line" where the point has no name.
std::string WhatOf(const Fields& step, const std::string& kind) {
  if (kind == "wait_s") return "wait";
  if (kind == "arc_about") return "arc";
  std::string what = kind == "joint" ? "joint move" : kind;
  if (!step.at(kind).is_string()) return what;
  return fmt::format("{} {}'{}'", what, kind == "tool" ? "" : "to ", NameText(step.Text(kind, "")));
}

ArcTurn ReadTurn(const Fields& step, ArcTurn otherwise, bool has_end) {
  const std::string turn = step.Text("turn", "");
  if (turn.empty()) return otherwise;
  if (turn == "with_arc") return ArcTurn::kWithArc;
  if (turn == "fixed") return ArcTurn::kFixed;
  if (turn != "to_end" || !has_end) {
    step.Refuse("turn", fmt::format("'{}'; {}with_arc or fixed is expected", NameText(turn),
                                    has_end ? "to_end, " : ""));
  }
  return ArcTurn::kToEnd;
}

// Makes the steps of a program, one after the other.
class StepReader {
 public:
  StepReader(const Fields& file, const Arm& arm, ProgramFile& into)
      : file_(file), points_(file), own_(arm), arm_(arm), into_(into) {
    if (file.Has("limits")) {
      const Fields limits = file.Object("limits");
      limits.Expect(WithSettingKeys({}, true));
      defaults_ = ReadStepSettings(limits, {});
    }
    if (file.Has("tools")) {
      const Fields tools = file.Object("tools");
      for (const std::string& name : tools.Keys()) tools_[name] = ReadFrame(tools.Object(name));
      if (tools.Has("arm")) tools.Refuse("arm", "the name of the arm's own tool");
    }
    tools_["arm"] = arm.tool();
  }

  void ReadAll() {
    into_.program.start = Start();
    if (!file_.Has("step")) file_.Refuse("", "there is no [[step]]; a program has at least one");
    for (size_t i = 0; i < file_.Entries("step"); ++i) {
      const Fields step = file_.Entry("step", i);
      const std::string pointer = fmt::format("/step/{}", i);
      if (KindOf(step) == "repeat") {
        ReadBlock(step, pointer);
      } else {
        ReadStep(step, pointer, std::nullopt);
      }
    }
  }

 private:
  Joints Start() const {
    if (!file_.Has("start")) file_.Refuse("", "start is missing, the point where the arm stands");
    const Target start = points_.At(file_, "start", {arm_, std::nullopt});
    if (const Joints* joints = std::get_if<Joints>(&start)) return *joints;
    file_.Refuse("start", "a pose; a point of joints is expected, as a pose may have several");
  }

  void ReadBlock(const Fields& block, const std::string& pointer) {
    block.Expect({"repeat", "steps"});
    const double count = block.Number("repeat", std::nullopt);
    if (count < 1 || count != std::floor(count) || count > static_cast<double>(kMostSteps)) {
      block.Refuse("repeat", fmt::format("{}; a whole number from 1 to {} is expected",
                                         FormatNumber(count), kMostSteps));
    }
    if (!block.Has("steps")) block.Refuse("", "there is no [[step.steps]]");
    for (size_t repetition = 0; repetition < static_cast<size_t>(count); ++repetition) {
      for (size_t i = 0; i < block.Entries("steps"); ++i) {
        const Fields step = block.Entry("steps", i, fmt::format("{}.{}", block.label(), i + 1));
        if (step.Has("repeat")) step.Refuse("repeat", "a block within a block; there is but one");
        ReadStep(step, fmt::format("{}/steps/{}", pointer, i), repetition);
      }
    }
  }

  void ReadStep(const Fields& step, const std::string& pointer, std::optional<size_t> repetition) {
    if (into_.places.size() == kMostSteps) {
      step.Refuse("", fmt::format("more than {} steps, repetitions counted", kMostSteps));
    }
    const std::string kind = KindOf(step);
    into_.program.steps.push_back(StepOf(step, kind, repetition));
    std::string label = step.label();
    if (repetition) label += fmt::format(", repetition {}", *repetition + 1);
    into_.places.push_back({step.line(), std::move(label), WhatOf(step, kind), pointer});
  }

  ProgramStep StepOf(const Fields& step, const std::string& kind,
                     std::optional<size_t> repetition) {
    const PointUse use = {arm_, repetition};
    if (kind == "wait_s") return ReadWait(step);
    if (kind == "tool") return ReadTool(step);
    if (kind == "arc") return ReadArcThrough(step, use);
    if (kind == "arc_about") return ReadArcAbout(step, use);
    const bool line = kind == "line";
    step.Expect(WithSettingKeys({kind}, line));
    const auto [limits, zone] = ReadStepSettings(step, defaults_);
    const Target to = points_.At(step, kind, use);
    if (line) return LineStep{to, limits, zone};
    return JointStep{to, limits.scale, zone};
  }

  ArcStep ReadArcThrough(const Fields& step, const PointUse& use) const {
    step.Expect(WithSettingKeys({"arc", "through", "turn"}, true));
    const auto [limits, zone] = ReadStepSettings(step, defaults_);
    return {ArcThrough{points_.PositionAt(step, "through", use), points_.At(step, "arc", use),
                       ReadTurn(step, ArcTurn::kToEnd, true)},
            limits, zone};
  }

  ArcStep ReadArcAbout(const Fields& step, const PointUse& use) const {
    step.Expect(WithSettingKeys({"arc_about", "turn"}, true));
    const auto [limits, zone] = ReadStepSettings(step, defaults_);
    const Fields about = step.Object("arc_about");
    about.Expect({"centre", "axis", "angle_rad", "angle_deg"});
    const std::string angle = about.AngleKey("angle_rad");
    if (angle.empty()) about.Refuse("", "angle_rad or angle_deg is missing");
    if (!about.Has("axis")) about.Refuse("", "axis is missing");
    return {ArcAbout{points_.PositionAt(about, "centre", use), about.Triple("axis"),
                     about.Number(angle, std::nullopt) * AngleUnit(angle),
                     ReadTurn(step, ArcTurn::kWithArc, false)},
            limits, zone};
  }

  static WaitStep ReadWait(const Fields& step) {
    step.Expect({"wait_s"});
    const double duration = step.Number("wait_s", std::nullopt);
    if (duration < 0) step.Refuse("wait_s", FormatNumber(duration) + " is below 0");
    return {duration};
  }

  // A table, the name of one in [tools], or "arm".
  ToolStep ReadTool(const Fields& step) {
    step.Expect({"tool"});
    const ToolStep tool = {step.at("tool").is_object() ? ReadFrame(step.Object("tool"))
                                                       : NamedTool(step, step.Text("tool", ""))};
    const Result<Arm> arm = own_.WithTool(tool.tool);
    if (!arm) step.Refuse("tool", ErrorText(arm.error()));
    arm_ = *arm;
    return tool;
  }

  const Transform& NamedTool(const Fields& step, const std::string& name) const {
    const auto found = tools_.find(name);
    if (found != tools_.end()) return found->second;
    std::vector<std::string> names;
    for (const auto& [known, tool] : tools_) names.push_back(known);
    step.Refuse("tool", fmt::format("no tool '{}'; {}", name, SuggestionText(name, names)));
  }

  const Fields& file_;
  ProgramPoints points_;
  StepSettings defaults_;
  std::map<std::string, Transform> tools_;
  Arm own_;
  Arm arm_;  // with the tool of the step
  ProgramFile& into_;
};

}  // namespace

Document ReadProgramDocument(const std::string& path) {
  const std::string name = NameOf(path);
  const std::string text = ReadFile(path, kLargestDescription);
  constexpr char kExpected[] = "a program in TOML or JSON";
  switch (ContentOf(text)) {
    case Content::kJson:
      return ParseJson(text, name);
    case Content::kToml:
      return ParseToml(text, name, kExpected);
    default:
      throw UsageError(fmt::format("{}: {} is expected", name, kExpected));
  }
}

std::string ProgramFile::StepText(size_t step) const {
  return fmt::format("{} ({})", places[step].label, places[step].what);
}

std::string ProgramFile::Place(size_t step) const {
  const unsigned line = places[step].line;
  return fmt::format("{}{}, {}", name, line == 0 ? "" : fmt::format(", line {}", line),
                     StepText(step));
}

ProgramFile ReadProgram(const Document& document, const Arm& arm) {
  const Fields file(document);
  file.Expect({"start", "points", "tools", "limits", "step"});
  ProgramFile read;
  read.name = document.path;
  StepReader(file, arm, read).ReadAll();
  return read;
}

ProgramFile ReadProgram(const std::string& path, const Arm& arm) {
  return ReadProgram(ReadProgramDocument(path), arm);
}

}  // namespace qal::io
