#include <cxxabi.h>
#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "checks.h"
#include "jacobian.h"

namespace qal::ikcheck {

namespace {

constexpr int kFullPose = 0x67000001;

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

void JudgeNames(Report& report, const Solver& solver, const std::vector<std::string>& functions) {
  const std::string found = SolvingFunctions(functions);
  const auto shown = [&] { return Case{found}; };
  const bool single = (solver.real_size != nullptr && solver.real_size() == sizeof(float)) ||
                      found.find("ComputeIk(float const*") != std::string::npos;
  const bool both = solver.compute_ik != nullptr && solver.compute_fk != nullptr;
  report.Judge(Finding::kSinglePrecision, !single, shown);
  report.Judge(Finding::kMissingFunctions, both || single, shown);
  report.Judge(Finding::kPlainNames, !solver.plain_names, shown);
  if (single || !both) throw GivenUp("there is nothing to call");
}

// What the queries answer; the names of those that aren't there are kept.
class Queries {
 public:
  template <typename Answer>
  Json Ask(const char* name, Answer (*query)()) {
    if (query != nullptr) return Shown(query());
    missing += (missing.empty() ? "" : ", ") + std::string(name);
    return kNotTold;
  }
  std::string missing;

 private:
  static Json Shown(int value) { return value; }
  static Json Shown(const char* text) {
    constexpr size_t kShownBytes = 128;
    if (text == nullptr || *text == '\0') return kNotTold;
    return std::string(text, ::strnlen(text, kShownBytes));
  }
  static constexpr char kNotTold[] = "not told";
};

void JudgeQueries(Report& report, const Solver& solver) {
  Queries queries;
  Json& interface = report.interface;
  interface["names"] = solver.plain_names ? "plain C" : "namespace ikfast";
  interface["joints"] = queries.Ask("GetNumJoints", solver.joints);
  interface["free_parameters"] = queries.Ask("GetNumFreeParameters", solver.free_parameters);
  (void)queries.Ask("GetIkRealSize", solver.real_size);
  const Json type = queries.Ask("GetIkType", solver.type);
  interface["solver_type"] =
      type.is_number()
          ? Json(fmt::format("{:#x}{}", type.get<int>(), type == kFullPose ? ", full pose" : ""))
          : type;
  interface["interface_version"] = queries.Ask("GetIkFastVersion", solver.version);
  interface["kinematics_hash"] = queries.Ask("GetKinematicsHash", solver.hash);

  report.Judge(Finding::kMissingQueries, queries.missing.empty(),
               [&] { return Case{queries.missing + " missing"}; });
  bool same_problem = true;
  // What a query has not answered counts as right.
  const auto expect = [&](Finding finding, const Json& told, int expected, const char* words) {
    const bool good = !told.is_number() || told == expected;
    report.Judge(finding, good, [&] { return Case{fmt::format(words, told.get<int>())}; });
    same_problem = same_problem && good;
  };
  expect(Finding::kNotSixJoints, interface["joints"], 6, "{} joints");
  expect(Finding::kFreeParameters, interface["free_parameters"], 0, "{} free parameters");
  expect(Finding::kNotFullPose, type, kFullPose, "type {:#x}");
  if (!same_problem) throw GivenUp("it solves another problem");
}

}  // namespace

void CheckInterface(Session& session, Row&) {
  session.Run("when loaded and queried", [&](const Solver& solver) {
    JudgeNames(session.report, solver, session.functions);
    JudgeQueries(session.report, solver);
  });
}

void CheckForward(Session& session, Row& row) {
  Report& report = session.report;
  const std::vector<Joints> sets = session.RandomJoints(2000);
  double reach = 0.0;
  for (const Joints& joints : sets) {
    if (const auto pose = session.Forward(joints)) reach = std::max(reach, pose->position.norm());
  }
  row.values["reach"] = reach;
  report.Judge(Finding::kLengthUnit, reach == 0 || (reach >= 0.05 && reach <= 20),
               [&] { return Case{fmt::format("reach {:.6g} m", reach)}; });
  if (reach > 0) session.reach = reach;

  size_t known = 0;
  size_t regular = 0;
  for (const Joints& joints : sets) {
    const double smallest = SmallestSingularValue(session, joints);
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
