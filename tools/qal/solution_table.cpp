#include "solution_table.h"

#include <fmt/format.h>

#include <algorithm>

#include "tables.h"

namespace qal::tools {

using namespace io;

std::string SolutionTable(const std::vector<ExplainedSolution>& solutions, const Units& units,
                          const std::function<std::string(size_t)>& admissible) {
  const bool named =
      std::any_of(solutions.begin(), solutions.end(),
                  [](const ExplainedSolution& solution) { return solution.branch.has_value(); });
  // As wide as the longest name.
  const auto branch_column = [named](const std::string& text) {
    return named ? fmt::format("  {:<41}", text) : "";
  };
  std::string table = "solution";
  for (int j = 1; j <= 6; ++j) {
    table += fmt::format(" {:>11}", fmt::format("q{} [{}]", j, units.angle()));
  }
  table += fmt::format(" {:>15}{}  verdict\n", fmt::format("distance [{}]", units.angle()),
                       branch_column("branch"));
  for (size_t i = 0; i < solutions.size(); ++i) {
    const auto& [joints, branch, distance_rad, refusal] = solutions[i];
    table += fmt::format("{:>8}", i + 1);
    for (const double joint : joints) {
      table += fmt::format(" {:>11}", Decimal(units.Angle(joint), 6));
    }
    table += fmt::format(" {:>15}{}  {}\n", Decimal(units.Angle(distance_rad), 6),
                         branch_column(branch ? BranchName(*branch) : ""),
                         refusal ? "refused: " + ErrorText(*refusal, units.text()) : admissible(i));
  }
  return table;
}

}  // namespace qal::tools
