#include "solver.h"

#include <filesystem>
#include <system_error>
#include <utility>

#include "../../../solver/reference_arm.h"
#include "closed_form_model.h"
#include "closed_form_solver.h"
#include "exceptions.h"
#include "solver_library.h"
#include "watched_solver.h"

namespace qal {

struct Solver::Held {
  std::string family;
  std::string hash;
  std::string path;
  std::shared_ptr<const SolverFunctions> functions;
};

Result<Solver> Solver::Load(const std::string& path) {
  return CatchingSolver([&]() -> Result<Solver> {
    // The loader would look for a name without a slash in the system's folders.
    std::error_code failed;
    std::string absolute = std::filesystem::absolute(path, failed).string();
    if (failed || path.empty()) absolute = "./" + path;
    const auto library = std::make_shared<const SolverLibrary>(absolute);
    if (const std::optional<Error> refusal = library->Refusal()) return *refusal;
    return Solver(
        std::make_shared<const Held>(Held{"libik.so", library->GeometryHash(), absolute, library}));
  });
}

Result<Solver> Solver::ClosedForm(const ArmDescription& description, Geometry geometry) {
  const Result<FittedModel> fitted = MakeModel(description, geometry);
  if (!fitted) return fitted.error();
  return std::visit(
      [&](const auto& arm) {
        using Functions = SolverOf<std::decay_t<decltype(arm)>>;
        return Solver(
            std::make_shared<const Held>(Held{FamilyName(fitted->family), HashOf(fitted->model), "",
                                              std::make_shared<Functions>(arm)}));
      },
      fitted->model);
}

Solver Solver::Reference() {
  using Functions = SolverOf<closed_form::SphericalWristArm>;
  return Solver(std::make_shared<const Held>(
      Held{FamilyName(Family::kSphericalWrist), reference_arm::kGeometryHash, "",
           std::make_shared<Functions>(reference_arm::kArm)}));
}

Solver Solver::Watched(std::function<bool()> go_on) const {
  Held held = *held_;
  held.functions = std::make_shared<WatchedSolver>(held.functions, std::move(go_on));
  return Solver(std::make_shared<const Held>(std::move(held)));
}

const std::string& Solver::family() const { return held_->family; }
const std::string& Solver::hash() const { return held_->hash; }
const std::string& Solver::path() const { return held_->path; }
const SolverFunctions& Solver::functions() const { return *held_->functions; }

}  // namespace qal
