#include <qal/explain/explain.h>

#include "../../io/explanation_json.h"
#include "arm.h"
#include "errors.h"
#include "interruptible.h"
#include "poses.h"
#include "requests.h"

// Why something fails, and what would make it work.
namespace qal::python {

namespace {

// What a change of its kind is told by.
void AddNumbers(const Change& change, const std::string& what, py::dict& remedy) {
  using Kind = Change::Kind;
  const Kind kind = change.kind;
  const bool of_joints = kind == Kind::kEnd && what == "move";
  const bool moved = kind == Kind::kShift || kind == Kind::kTool;
  if (of_joints || moved || kind == Kind::kStart || kind == Kind::kJointMove) {
    remedy["joints"] = ToArray(change.joints);
  }
  if ((kind == Kind::kEnd && !of_joints) || kind == Kind::kOrientation || kind == Kind::kShift) {
    remedy["pose"] = Poses(change.pose);
  }
  if (moved) remedy["vector"] = ToArray(change.vector);
  if (kind == Kind::kSpeed || kind == Kind::kStepBound || kind == Kind::kOrientationError) {
    remedy["value"] = change.value;
  }
  if (change.duration_s) remedy["duration"] = *change.duration_s;
}

py::object Told(const io::ExplainedRequest& request) {
  const Explanation& why = request.why;
  nlohmann::ordered_json json = io::ExplanationJson(request);
  json.erase("path_m");
  py::dict told = Loaded(json);
  py::list remedies;
  for (const Change& change : why.changes) {
    py::dict remedy;
    remedy["kind"] = io::ChangeKey(change.kind);
    remedy["text"] = io::ChangeText(change, request.what);
    AddNumbers(change, request.what, remedy);
    remedies.append(remedy);
  }
  told["remedies"] = remedies;
  return std::move(told);
}

py::object OnePose(const PyArm& self, const py::object& pose, const py::object& near,
                   double step_bound) {
  const Pose asked = ReadPoses(pose, "pose").One("pose");
  const Joints reference = ReadJoints(near, "near");
  return Told({"pose", Interruptible(self.arm(), [&](const Arm& arm) {
                 return ExplainPose(arm, asked, reference, {step_bound});
               })});
}

py::object ManyPoses(const PyArm& self, const py::object& pose, const py::object& near,
                     const py::object& time, double step_bound) {
  const Poses& poses = ReadPoses(pose, "pose");
  const Joints reference = ReadJoints(near, "near");
  std::vector<TimedPose> timed;
  for (size_t i = 0; i < poses.count(); ++i) {
    timed.push_back({poses.data()[i], static_cast<double>(i) * self.arm().cycle_s().value});
  }
  if (!time.is_none()) {
    const py::array_t<double> times = ReadColumn(time, poses.count(), "time");
    for (size_t i = 0; i < timed.size(); ++i) timed[i].time_s = times.data()[i];
  }
  return Told({"poses", Interruptible(self.arm(), [&](const Arm& arm) {
                 return ExplainPoses(arm, timed, reference, {step_bound});
               })});
}

py::object JointMove(const PyArm& self, const py::object& start, const py::object& to,
                     const py::object& scale) {
  const Joints from = ReadJoints(start, "start");
  const bool of_pose = py::isinstance<Poses>(to);
  const Target target =
      of_pose ? Target(to.cast<const Poses&>().One("to")) : Target(ReadJoints(to, "to"));
  const JointLimits limits = {ReadScale(scale)};
  return Told({of_pose ? "pose" : "move", Interruptible(self.arm(), [&](const Arm& arm) {
                 return ExplainJoint(arm, from, target, limits);
               })});
}

py::object Line(const py::object& self, const Joints& from, const Pose& end,
                const LineLimits& limits) {
  const Arm& own = self.cast<const PyArm&>().arm();
  io::ExplainedRequest request = {"line", Interruptible(own, [&](const Arm& arm) {
                                    return ExplainLine(arm, {from, end}, end, limits);
                                  })};
  request.before = BranchOf(own, request.why.before);
  return Told(request);
}

py::object Branches(const py::object& self, const Joints& from, const Pose& end,
                    const LineLimits& limits) {
  const Arm& own = self.cast<const PyArm&>().arm();
  const State start = {from, OrRaise(Forward(own, from))};
  io::ExplainedRequest request = {"line", {}};
  request.branches =
      Interruptible(own, [&](const Arm& arm) { return AuditBranches(arm, start, end, limits); });
  return Loaded(io::ExplanationJson(request)["branches"]);
}

py::object WholeProgram(const PyArm& self, const py::object& program) {
  const PyProgram read = ReadProgramOf(self.arm(), program);
  const ProgramExplanation told = Interruptible(
      self.arm(), [&](const Arm& arm) { return ExplainProgram(arm, read.file.program); });
  io::ExplainedRequest request = {"program", told.why, std::nullopt, read.file.name};
  const auto& steps = read.file.program.steps;
  const bool of_step = !told.why.works() && told.step < steps.size();
  if (of_step) {
    request.what = StepName(steps[told.step]);
    request.place = read.file.Place(told.step);
    request.before = BranchOf(self.arm(), told.why.before);
  }
  py::dict explanation = Told(request);
  explanation["step"] = of_step ? py::object(py::int_(told.step)) : py::object(py::none());
  return std::move(explanation);
}

}  // namespace

void AddExplaining(py::class_<PyArm>& arm) {
  const double any = std::numeric_limits<double>::infinity();
  const auto step_bound = py::arg("step_bound") = any;
  arm.def("explain_pose", &OnePose, py::arg("pose"), py::arg("near"), py::kw_only(), step_bound,
          R"(Why a pose has no admissible solution, and what would make it work.

Parameters
----------
pose, near, step_bound
    As for `nearest`.

Returns
-------
dict
    ok : bool; headline : str; cause : str or None; text : list of str; duration_s; point: where it
    fails; before_rad: the last joints that work; way_back_m; speed; solutions of the failing point
    with why each is refused; remedies: changes with which it works, each tried, the smallest
    first: kind, text, and the joints to start from or to end at, pose to end at, vector or value.)")
      .def("explain_poses", &ManyPoses, py::arg("pose"), py::arg("near"), py::kw_only(),
           py::arg("time") = py::none(), step_bound,
           R"(Why poses can't be passed one after the other at the arm's speed.

Parameters
----------
pose : Pose
    Many.
near : (6,) array_like
    Joints [rad] before the first.
time : (n,) array_like, optional
    When each is passed [s]; one of the arm's cycles apart if it is left out.
step_bound : float
    How far a joint may go from one to the next [rad].

Returns
-------
dict
    As of `explain_pose`.)")
      .def("explain_joint", &JointMove, py::arg("start"), py::arg("to"), py::kw_only(),
           py::arg("scale") = 1.0,
           "Why there is no joint move: takes what `plan_joint` takes; a dict as of "
           "`explain_pose`.")
      .def("explain_program", &WholeProgram, py::arg("program"),
           "Why a program has no motion: takes what `plan_program` takes; a dict as of "
           "`explain_pose`, with the step that fails, from 0.");
  DefLine(arm, "explain_line", &Line,
          "Why there is no line: takes what `plan_line` takes; a dict as of `explain_pose`.");
  DefLine(arm, "branches", &Branches,
          "Which start configurations complete a line, the quickest first: takes what `plan_line` "
          "takes; a list of dict, for each its branch, joints_rad, ok, text, duration_s, "
          "margin_rad of the joint nearest a limit, and smallest singular_value.");
}

}  // namespace qal::python
