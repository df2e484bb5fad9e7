#include "loaded_arm.h"

#include <cstdio>
#include <ostream>

#include "../../core/standard_output.h"
#include "../array_solver.h"
#include "../ikfast.h"
#include "messages.h"

// Null where the solver library doesn't have it.
#pragma weak qal_array_solver_1

namespace qal {

namespace {

class LoadedSolver final : public SolverFunctions {
 public:
  constexpr LoadedSolver() = default;

  bool Inverse(const double* eetrans, const double* eerot, SolutionList& solutions) const override {
    static const ArraySolver* const array = ArraySolverOf(&qal_array_solver_1, &ikfast::ComputeIk);
    if (array == nullptr) return ikfast::ComputeIk(eetrans, eerot, nullptr, solutions);
    return solutions.TakeArray(
        [&](double(*joints)[6]) { return array->inverse(eetrans, eerot, joints); });
  }
  void Forward(const double* joints, double* eetrans, double* eerot) const override {
    ikfast::ComputeFk(joints, eetrans, eerot);
  }
};

/// Prints: to standard error raw bytes, to standard output lines through `std::cout`, flushed.
class Console {
 public:
  static void Error(std::string_view message) {
    // Nobody is left to tell when standard error itself is gone.
    (void)std::fwrite(message.data(), 1, message.size(), stderr);
  }
  static void Line(std::string_view text) {
    // Unformatted: the width and fill that the host has set don't reach the line.
    std::ostream& out = StandardOutput();
    out.write(text.data(), static_cast<std::streamsize>(text.size()));
    out << std::endl;
  }
  template <typename Number>
  static void Line(std::string_view text, Number number) {
    Line(NumberedText(text, number).view());
  }
  static void Point(RoadPoint point) { point.printfPoint(); }
};

class Printer final : public Observer {
 public:
  constexpr Printer() = default;

  void Hear(const Report& report) const override { Say(report, Console()); }
};

constexpr LoadedSolver kSolver;
constexpr Printer kPrinter;

}  // namespace

constexpr Context kLoadedArm = {kSolver, kReferenceNumbers, kPrinter};

}  // namespace qal
