// Which method each of many arms gets, what it finds and what it costs: two Markdown tables.

#include <fmt/format.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <filesystem>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "../io/arm_file.h"
#include "../src/qal/model/frames.h"
#include "../tools/common/run.h"
#include "../tools/mkik/verify.h"

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

Counts Count(const ArmDescription& arm, const FittedModel& fitted, int joint_sets) {
  std::mt19937 engine(1);
  std::uniform_real_distribution<double> range(-kPi, kPi);
  Counts counts;
  for (counts.joint_sets = 0; counts.joint_sets < joint_sets; ++counts.joint_sets) {
    Joints joints;
    for (double& joint : joints) joint = range(engine);
    const tools::PoseCheck check = tools::CheckPose(arm, fitted, joints);
    counts.solved += check.solutions > 0 ? 1 : 0;
    counts.missed += check.found ? 0 : 1;
    counts.wrong += check.wrong;
    counts.worst = Larger(counts.worst, check.worst);
    counts.solve_s += check.solve_s;
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
  const Counts counts = Count(arm, *fitted, general ? joint_sets / 10 : joint_sets);
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
