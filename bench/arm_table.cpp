// Which method each of many arms gets, what it finds and what it costs: two Markdown tables.

#include <fmt/format.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "../io/arm_file.h"
#include "../src/qal/model/chain.h"
#include "../src/qal/model/closed_form_model.h"
#include "../src/qal/model/frames.h"
#include "../tools/common/run.h"

namespace {

using namespace qal;

struct Counts {
  int joint_sets = 0;
  int solved = 0;    ///< joint sets whose pose has a solution
  int missed = 0;    ///< joint sets that are not among their pose's solutions
  int wrong = 0;     ///< solutions that are off the pose
  double worst = 0;  ///< of all solutions [m, or matrix element]
  double solve_s = 0;
};

/// How many arms of a family get which method.
struct Methods {
  int exact = 0;
  int polished = 0;
  int continuation = 0;
  int refused = 0;
};

// NaN is larger than any.
double Largest(double a, double b) { return b <= a ? a : b; }

// In metres, or as a matrix element.
double Difference(const Frame& a, const Frame& b) {
  double largest = 0;
  for (int i = 0; i < 3; ++i) {
    largest = Largest(largest, std::fabs(a.position[i] - b.position[i]));
    for (int j = 0; j < 3; ++j) {
      largest = Largest(largest, std::fabs(a.rotation[i][j] - b.rotation[i][j]));
    }
  }
  return largest;
}

// The short way round.
double Difference(const Joints& a, const Joints& b) {
  double largest = 0;
  for (size_t j = 0; j < a.size(); ++j) {
    largest = Largest(largest, std::fabs(std::remainder(a[j] - b[j], 2 * kPi)));
  }
  return largest;
}

void CountOne(const ArmDescription& arm, const Model& model, const Joints& joints, Counts& counts) {
  constexpr double kWrong = 1e-10;
  // A pose's rounding, 1e-16, moves a joint beside a singularity by up to its root.
  constexpr double kJointToleranceRad = 1e-5;
  const Frame target = ToFrame(TipFrame(arm, joints));
  const auto start = std::chrono::steady_clock::now();
  const closed_form::Solutions solutions = Solve(model, target);
  const std::chrono::duration<double> spent = std::chrono::steady_clock::now() - start;
  counts.solve_s += spent.count();
  double nearest = 2 * kPi;
  for (const Joints& solution : solutions) {
    const double error = Difference(ToFrame(TipFrame(arm, solution)), target);
    counts.worst = Largest(counts.worst, error);
    if (!(error <= kWrong)) ++counts.wrong;
    nearest = std::min(nearest, Difference(solution, joints));
  }
  ++counts.joint_sets;
  if (solutions.Count() > 0) ++counts.solved;
  if (nearest > kJointToleranceRad) ++counts.missed;
}

Counts Count(const ArmDescription& arm, const Model& model, int joint_sets) {
  std::mt19937 engine(1);
  std::uniform_real_distribution<double> range(-kPi, kPi);
  Counts counts;
  for (int i = 0; i < joint_sets; ++i) {
    Joints joints;
    for (double& joint : joints) joint = range(engine);
    CountOne(arm, model, joints, counts);
  }
  return counts;
}

std::string Row(const ArmDescription& arm, int joint_sets, std::map<Family, Methods>& families) {
  const Result<FittedModel> fitted = MakeModel(arm);
  if (!fitted) {
    ++families[Family::kGeneral].refused;
    return "refused: singular everywhere | | | | | | |";
  }
  // Hundreds of times slower than a closed form.
  const bool general = !fitted->member;
  const Counts counts = Count(arm, fitted->model, general ? joint_sets / 10 : joint_sets);
  Methods& methods = families[fitted->family];
  ++(general ? methods.continuation : fitted->polished ? methods.polished : methods.exact);
  return fmt::format("{}{} | {} | {} | {} | {} | {:.1e} | {:.0f} |",
                     general ? "continuation" : FamilyName(fitted->family),
                     fitted->polished ? ", polished" : "", counts.joint_sets, counts.solved,
                     counts.missed, counts.wrong, counts.worst,
                     counts.solve_s * 1e9 / counts.joint_sets);
}

void Run(const std::vector<std::string>& files, int joint_sets) {
  const bool shows_progress = isatty(STDERR_FILENO) != 0;
  std::map<Family, Methods> families;
  fmt::print(
      "| arm | method | joint sets | solved | missed | wrong | worst error | ns a pose |\n"
      "|---|---|--:|--:|--:|--:|--:|--:|\n");
  for (size_t i = 0; i < files.size(); ++i) {
    if (shows_progress) fmt::print(stderr, "\r{} of {}", i + 1, files.size());
    fmt::print("| {} | {}\n", std::filesystem::path(files[i]).stem().string(),
               Row(io::ReadDescription(files[i], {}), joint_sets, families));
  }
  if (shows_progress) fmt::print(stderr, "\n");
  fmt::print(
      "\n| family | exact | polished | by continuation | refused |\n|---|--:|--:|--:|--:|\n");
  for (const auto& [family, methods] : families) {
    fmt::print("| {} | {} | {} | {} | {} |\n", FamilyName(family), methods.exact, methods.polished,
               methods.continuation, methods.refused);
  }
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::string> files;
  int joint_sets = 100000;
  return tools::RunTool("qal_arm_table", tools::ArgumentsOf(argc, argv), [&](CLI::App& app) {
    app.description("Solves seeded random poses of many arms: which method, how exact, how fast");
    app.add_option("FILES", files, "descriptions of the arms")->required();
    app.add_option("--joint-sets", joint_sets, "of each arm; a tenth where there is no family")
        ->check(CLI::Range(10, 1000000000))
        ->capture_default_str();
    app.callback([&] { Run(files, joint_sets); });
  });
}
