#include <cxxabi.h>
#include <fmt/format.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "../../io/error.h"
#include "checks.h"
#include "elf_file.h"
#include "jacobian.h"
#include "measures.h"

namespace qal::ikcheck {

namespace {

constexpr int kFullPose = 0x67000001;
constexpr int kUnknown = -1;

// What a library says of itself.
struct Description {
  bool described;
  bool compute_ik, compute_fk, plain_names;
  char missing_queries[256];
  int joints, free_parameters, real_size, type;
  char version[64];
  char hash[128];
};

template <size_t kBytes>
void Copy(char (&to)[kBytes], const char* text) {
  std::strncpy(to, text != nullptr ? text : "", kBytes - 1);
}

std::string MissingQueries(const Solver& solver) {
  const std::pair<const char*, bool> kQueries[] = {
      {"GetNumJoints", solver.joints != nullptr},
      {"GetNumFreeParameters", solver.free_parameters != nullptr},
      {"GetIkRealSize", solver.real_size != nullptr},
      {"GetIkType", solver.type != nullptr},
      {"GetIkFastVersion", solver.version != nullptr},
      {"GetKinematicsHash", solver.hash != nullptr}};
  std::string missing;
  for (const auto& [name, there] : kQueries) {
    if (!there) missing += std::string(missing.empty() ? "" : ", ") + name;
  }
  return missing;
}

void Describe(const Solver& solver, Description& d) {
  d.compute_ik = solver.compute_ik != nullptr;
  d.compute_fk = solver.compute_fk != nullptr;
  d.plain_names = solver.plain_names;
  Copy(d.missing_queries, MissingQueries(solver).c_str());
  d.joints = solver.joints != nullptr ? solver.joints() : kUnknown;
  d.free_parameters = solver.free_parameters != nullptr ? solver.free_parameters() : kUnknown;
  d.real_size = solver.real_size != nullptr ? solver.real_size() : kUnknown;
  d.type = solver.type != nullptr ? solver.type() : kUnknown;
  Copy(d.version, solver.version != nullptr ? solver.version() : nullptr);
  Copy(d.hash, solver.hash != nullptr ? solver.hash() : nullptr);
  d.described = true;
}

// The functions with a solver's names, as they are declared, and what to do where some have other
// names than those expected.
std::string SolvingFunctions(const std::vector<std::string>& functions) {
  std::string found;
  bool others = false;
  for (const std::string& function : functions) {
    const std::unique_ptr<char, decltype(&std::free)> readable(
        abi::__cxa_demangle(function.c_str(), nullptr, nullptr, nullptr), &std::free);
    const std::string name = readable ? readable.get() : function;
    if (name.find("ComputeIk") == std::string::npos &&
        name.find("ComputeFk") == std::string::npos) {
      continue;
    }
    found += (found.empty() ? "" : ", ") + name;
    others = others || name.rfind("ikfast::", 0) != 0;
  }
  if (found.empty()) return "no function of that name";
  return others ? fmt::format("{}; {}", found, kRecipe) : found;
}

void JudgeNames(Report& report, const Description& d, const std::vector<std::string>& functions) {
  const std::string found = SolvingFunctions(functions);
  const auto shown = [&] { return Case{found}; };
  const bool single =
      d.real_size == sizeof(float) || found.find("ComputeIk(float const*") != std::string::npos;
  report.Judge(Finding::kSinglePrecision, !single, shown);
  report.Judge(Finding::kMissingFunctions, (d.compute_ik && d.compute_fk) || single, shown);
  report.Judge(Finding::kPlainNames, !d.plain_names, shown);
}

// What a query has not answered counts as right.
void JudgeKind(Report& report, const Description& d) {
  report.Judge(Finding::kMissingQueries, d.missing_queries[0] == '\0',
               [&] { return Case{std::string(d.missing_queries) + " missing"}; });
  report.Judge(Finding::kNotSixJoints, d.joints == 6 || d.joints == kUnknown,
               [&] { return Case{fmt::format("{} joints", d.joints)}; });
  report.Judge(Finding::kFreeParameters, d.free_parameters <= 0,
               [&] { return Case{fmt::format("{} free parameters", d.free_parameters)}; });
  report.Judge(Finding::kNotFullPose, d.type == kFullPose || d.type == kUnknown,
               [&] { return Case{fmt::format("type {:#x}", d.type)}; });
}

Json Shown(int value) { return value == kUnknown ? Json("not told") : Json(value); }
Json Shown(const char* text) { return text[0] == '\0' ? Json("not told") : Json(text); }

void Show(const Description& d, Json& interface) {
  interface["names"] = d.plain_names ? "plain C" : "namespace ikfast";
  interface["joints"] = Shown(d.joints);
  interface["free_parameters"] = Shown(d.free_parameters);
  interface["solver_type"] =
      d.type == kUnknown
          ? Json("not told")
          : Json(fmt::format("{:#x}{}", d.type, d.type == kFullPose ? ", full pose" : ""));
  interface["interface_version"] = Shown(d.version);
  interface["kinematics_hash"] = Shown(d.hash);
}

}  // namespace

void CheckInterface(Session& session, Row&) {
  Report& report = session.report;
  const std::vector<std::string> functions = ExportedFunctions(session.options.library);
  SharedArray<Description> description(1);
  Description& d = description[0];
  session.Run(
      1, [&](const Solver& solver, size_t) { Describe(solver, d); },
      [](size_t, const std::string& words) { return Case{"when loaded and queried: " + words}; });
  if (!d.described) throw GivenUp("it can't be loaded or doesn't answer the queries");

  JudgeNames(report, d, functions);
  if (report.Count(Finding::kMissingFunctions) + report.Count(Finding::kSinglePrecision) > 0) {
    throw GivenUp("there is nothing to call");
  }
  Show(d, report.interface);
  JudgeKind(report, d);
  for (const Finding finding :
       {Finding::kNotSixJoints, Finding::kFreeParameters, Finding::kNotFullPose}) {
    if (report.Count(finding) > 0) throw GivenUp("it solves another problem");
  }
}

void CheckForward(Session& session, Row& row) {
  Report& report = session.report;
  const std::vector<Joints> joints = session.RandomJoints(2000);
  const auto answers = session.Forward(joints);
  double reach = 0.0;
  for (size_t i = 0; i < answers.size(); ++i) {
    if (answers[i].outcome != Outcome::kReturned) continue;
    const Pose& pose = answers[i].pose;
    const double distance = std::hypot(pose.position[0], pose.position[1], pose.position[2]);
    reach = std::max(reach, distance);
  }
  row.values["reach"] = reach;
  report.Judge(Finding::kLengthUnit, reach == 0 || (reach >= 0.05 && reach <= 20),
               [&] { return Case{fmt::format("reach {:.6g} m", reach)}; });
  if (reach > 0) session.reach = reach;

  size_t known = 0;
  size_t regular = 0;
  for (const double smallest : SmallestSingularValues(session, joints)) {
    if (!std::isnan(smallest)) ++known;
    if (smallest >= kRegularValue) ++regular;
  }
  row.values["joint_sets"] = known;
  row.values["regular"] = regular;
  report.Judge(Finding::kForwardStuck, 2 * regular > known || known == 0,
               [&] { return Case{fmt::format("{} of {} joint sets", regular, known)}; });
  if (2 * regular <= known) throw GivenUp("ComputeFk tells too little of the arm");
}

}  // namespace qal::ikcheck
