#include "loaded_arm.h"

#include <fmt/format.h>
#include <qal/model/family.h>

#include "error.h"
#include "error_text.h"
#include "family_text.h"
#include "messages.h"

namespace qal::io {

namespace {

Solver SolverOf(const ArmFile& file, const ArmDescription& description, Geometry geometry) {
  if (file.solver.empty()) {
    const Result<Solver> closed_form = Solver::ClosedForm(description, geometry);
    if (closed_form) return *closed_form;
    const FamilyReport report = ExamineFamilies(description);
    throw Failure(fmt::format("{}: {}", file.name,
                              closed_form.error().reason == Reason::kNoFamily
                                  ? NoFamilyText(report)
                                  : SingularText(report)));
  }
  const Result<Solver> solver = Solver::Load(file.solver);
  if (!solver) throw UsageError(fmt::format("{}: {}", file.solver, ErrorText(solver.error())));
  return *solver;
}

Arm ArmOf(const ArmFile& file, Geometry geometry) {
  const ArmDescription description = file.description.value_or(ArmDescription());
  const Solver solver = SolverOf(file, description, geometry);
  const Result<Arm> arm = file.description ? Arm::FromSolver(solver, description, file.settings)
                                           : Arm::FromSolver(solver, file.settings);
  if (!arm) throw UsageError(fmt::format("{}: {}", file.name, ErrorText(arm.error())));
  return *arm;
}

// What `read` makes of the path that the option names, else the environment, which messages then
// name; nothing when neither does.
template <typename Read>
auto ReadNamed(const std::optional<std::string>& option, const char* environment, Read read)
    -> std::optional<decltype(read(*option))> {
  if (option) return read(*option);
  if (environment == nullptr || *environment == '\0') return std::nullopt;
  try {
    return read(environment);
  } catch (const UsageError& error) {
    throw UsageError(fmt::format("QAL_ARM: {}", error.what()));
  } catch (const Failure& failure) {
    throw Failure(fmt::format("QAL_ARM: {}", failure.what()));
  }
}

}  // namespace

LoadedArm MakeArm(const ArmFile& file, Geometry geometry) {
  return {ArmOf(file, geometry), file.name, file.kind, file.urdf};
}

LoadedArm ReadArm(const std::string& path, const ReadOptions& options) {
  return MakeArm(ReadArmFile(path, options));
}

LoadedArm ResolveArm(const std::optional<std::string>& option, const char* environment,
                     const ReadOptions& options,
                     const std::function<void(const std::string&)>& before_solver) {
  const auto named = ReadNamed(option, environment, [&](const std::string& path) {
    const ArmFile file = ReadArmFile(path, options);
    if (before_solver && !file.solver.empty()) before_solver(file.solver);
    return MakeArm(file);
  });
  return named ? *named : LoadedArm{Arm::Reference(), "", "reference arm"};
}

std::optional<ArmFile> ResolveArmFile(const std::optional<std::string>& option,
                                      const char* environment, const ReadOptions& options) {
  return ReadNamed(option, environment,
                   [&](const std::string& path) { return ReadArmFile(path, options); });
}

std::string ArmHeading(const LoadedArm& loaded) {
  const Solver& solver = loaded.arm.solver();
  const std::string hash = solver.hash().empty() ? "no hash" : "hash " + NameText(solver.hash());
  const std::string whence = loaded.file.empty()
                                 ? "reference arm (built in)"
                                 : NameText(loaded.arm.name()) + " from " + loaded.file;
  const std::string by = solver.path().empty() ? solver.family() : "solver " + solver.path();
  return OneLine(fmt::format("{}, {}, {}", whence, by, hash));
}

Json ArmJson(const LoadedArm& loaded) {
  const auto or_null = [](const std::string& text) -> Json {
    if (text.empty()) return nullptr;
    return text;
  };
  const Solver& solver = loaded.arm.solver();
  return {{"name", loaded.arm.name()},
          {"file", or_null(loaded.file)},
          {"kind", loaded.kind},
          {"family", solver.family()},
          {"solver", or_null(solver.path())},
          {"hash", or_null(solver.hash())}};
}

}  // namespace qal::io
