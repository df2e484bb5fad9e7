#include "loaded_arm.h"

#include <fmt/format.h>
#include <qal/model/family.h>

#include "arm_file.h"
#include "error.h"
#include "error_text.h"
#include "family_text.h"
#include "files.h"
#include "messages.h"

namespace qal::io {

namespace {

Arm MakeArm(const ArmFile& file, const std::string& name) {
  const ArmDescription description = file.description.value_or(ArmDescription());
  if (file.solver.empty()) {
    const Result<Arm> arm = Arm::FromDescription(description, file.settings);
    if (arm) return *arm;
    if (arm.error().reason == Reason::kNoClosedForm) {
      throw Failure(fmt::format("{}: {}", name, FamilyText(ExamineFamilies(description))));
    }
    throw UsageError(fmt::format("{}: {}", name, ErrorText(arm.error())));
  }
  const Result<Solver> solver = Solver::Load(file.solver);
  if (!solver) throw UsageError(fmt::format("{}: {}", file.solver, ErrorText(solver.error())));
  const Result<Arm> arm = file.description ? Arm::FromSolver(*solver, description, file.settings)
                                           : Arm::FromSolver(*solver, file.settings);
  if (!arm) throw UsageError(fmt::format("{}: {}", name, ErrorText(arm.error())));
  return *arm;
}

}  // namespace

LoadedArm ReadArm(const std::string& path, const ReadOptions& options) {
  const ArmFile file = ReadArmFile(path, options);
  return {MakeArm(file, NameOf(path)), NameOf(path), file.kind};
}

LoadedArm ResolveArm(const std::optional<std::string>& option, const char* environment,
                     const ReadOptions& options) {
  if (option) return ReadArm(*option, options);
  if (environment == nullptr || *environment == '\0') {
    return {Arm::Reference(), "", "reference arm"};
  }
  try {
    return ReadArm(environment, options);
  } catch (const UsageError& error) {
    throw UsageError(fmt::format("QAL_ARM: {}", error.what()));
  } catch (const Failure& failure) {
    throw Failure(fmt::format("QAL_ARM: {}", failure.what()));
  }
}

std::string ArmHeading(const LoadedArm& loaded) {
  const Solver& solver = loaded.arm.solver();
  const std::string hash = solver.hash().empty() ? "no hash" : "hash " + solver.hash();
  const std::string whence =
      loaded.file.empty() ? "reference arm (built in)" : loaded.arm.name() + " from " + loaded.file;
  const std::string by = solver.path().empty() ? solver.family() : "solver " + solver.path();
  return OneLine(fmt::format("{}, {}, {}", whence, by, hash));
}

nlohmann::ordered_json ArmJson(const LoadedArm& loaded) {
  const auto or_null = [](const std::string& text) -> nlohmann::ordered_json {
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
