// Prints the bits of what a generated solver, the file solver.cpp, answers for random joint sets.

#include <cstdio>
#include <random>

#include "solver.cpp"

int main() {
  std::mt19937_64 random(1);
  for (int i = 0; i < 200; ++i) {
    double joints[6], eetrans[3], eerot[9];
    for (double& joint : joints) joint = static_cast<double>(random() >> 11) * 0x1p-52 * 2.9 - 2.9;
    ikfast::ComputeFk(joints, eetrans, eerot);
    for (const double value : eerot) std::printf("%a ", value);
    ikfast::IkSolutionList<double> solutions;
    (void)ikfast::ComputeIk(eetrans, eerot, nullptr, solutions);  // 0 lines when it finds none
    for (size_t k = 0; k < solutions.GetNumSolutions(); ++k) {
      std::vector<double> solution;
      solutions.GetSolution(k).GetSolution(solution, {});
      for (const double joint : solution) std::printf("%a ", joint);
    }
    std::printf("%a %a %a\n", eetrans[0], eetrans[1], eetrans[2]);
  }
}
