// The reference arm's solver with one fault, which the environment variable QAL_FOREIGN_FAULT
// names: none, and it is sound. Built elsewhere too: by other compilers, with a copy of the
// interface header of its own, and without a linker map, so that its instantiations of the
// containers are exported.

#include <sched.h>
#if defined(__SSE__)
#include <xmmintrin.h>
#endif
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cfenv>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <map>
#include <new>
#include <numeric>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "../../solver/reference_arm.h"
#include "kinematics/ikfast.h"

namespace {

using namespace qal::closed_form;
using qal::reference_arm::kArm;
using List = ikfast::IkSolutionListBase<double>;
using Entry = ikfast::IkSingleDOFSolutionBase<double>;

bool Is(const char* fault) {
  const char* const chosen = std::getenv("QAL_FOREIGN_FAULT");
  return chosen != nullptr && std::strcmp(chosen, fault) == 0;
}

// "off by 1e-5": joint 6 of each solution, or "off by 1e-5 at 0": of those next to joint 5 at 0.
double OffRad(const Joints& solution) {
  const char* const chosen = std::getenv("QAL_FOREIGN_FAULT");
  double off = 0;
  char zero = 0;
  const int read = chosen != nullptr ? std::sscanf(chosen, "off by %lf at %c", &off, &zero) : 0;
  return read == 1 || (read == 2 && std::fabs(std::sin(solution[4])) < 2e-4) ? off : 0;
}

bool IsOneOf(const char* family) {
  const char* const chosen = std::getenv("QAL_FOREIGN_FAULT");
  return chosen != nullptr && std::strncmp(chosen, family, std::strlen(family)) == 0;
}

// Fills all memory that is shared with other processes.
void FillSharedMemory() {
  std::ifstream maps("/proc/self/maps");
  for (std::string line; std::getline(maps, line);) {
    unsigned long from = 0;
    unsigned long to = 0;
    char writable = '-';
    char shared = '-';
    if (std::sscanf(line.c_str(), "%lx-%lx r%c%*c%c", &from, &to, &writable, &shared) == 4 &&
        writable == 'w' && shared == 's') {
      std::memset(reinterpret_cast<void*>(from), 0x7F, to - from);
    }
  }
}

[[noreturn]] void Hang() {
  if (Is("hang, closed")) {
    for (int file = 0; file < 1024; ++file) (void)::close(file);
  }
  if (Is("hang, deaf")) {
    sigset_t all;
    (void)sigfillset(&all);
    (void)sigprocmask(SIG_BLOCK, &all, nullptr);
    (void)::setsid();
    if (::fork() == 0) (void)::setsid();
  }
  for (;;) (void)::sched_yield();
}

// Faults that show in what a call has done to its process.
void Meddle() {
  if (Is("rounds up")) (void)std::fesetround(FE_UPWARD);
  if (Is("traps")) (void)::feenableexcept(FE_DIVBYZERO);
  if (Is("other folder")) (void)!::chdir("/");
  if (Is("own handler")) (void)std::signal(SIGTERM, SIG_IGN);
  if (Is("closed output")) (void)::close(STDOUT_FILENO);
  static bool forked = false;
  const bool leaves = Is("leaves a process");
  if ((leaves || Is("two of it")) && !std::exchange(forked, true) && ::fork() == 0 && leaves) {
    (void)::setsid();
    (void)::sleep(47);
    std::_Exit(0);
  }
  static std::atomic<char*> kept;
  if (Is("overrun")) {
    const volatile size_t size = 20;  // not a constant: the compiler would see what is wrong
    kept = new char[size];            // where all may see it: it would be optimised away
    std::memset(kept, 0, size + 1);   // into what is rounded up: only a checker sees it
    delete[] kept.exchange(nullptr);
  }
  if (Is("leak")) kept = new char[16];
  static std::map<double, std::vector<char>> cache;
  if (Is("cache") && cache.size() < 100) cache[static_cast<double>(cache.size())].resize(1000);
}

// Faults that show in how a call ends. Only poses low in front have them.
void Misbehave(const double* eetrans, List& list) {
  if (!(eetrans[0] > 0.05 && eetrans[2] < 0.35)) return;
  Meddle();
  if (Is("crash")) (void)std::raise(SIGSEGV);
  if (Is("exit")) std::_Exit(3);
  if (Is("exit 0 over all that is shared")) FillSharedMemory();
  if (IsOneOf("exit 0")) std::exit(0);
  if (Is("throws")) throw std::runtime_error("no\nway");
  if (Is("throws an int")) throw 42;
  if (Is("has no memory")) throw std::bad_alloc();
  for (int line = 0; Is("prints a flood") && line < 1000; ++line) std::puts("solver by printf");
  if (Is("prints")) {
    std::puts("solver by printf");
    std::cout << "solver by stream" << std::endl;
  }
  if (IsOneOf("hang")) Hang();
  while (Is("endless")) (void)list.AddSolution(std::vector<Entry>(6), {});
}

// Faults of single solutions.
void Spoil(Joints& solution) {
  if (Is("wrong")) solution[5] -= std::copysign(0.01, solution[5]);
  if (Is("loose")) solution[5] *= 1 - 1e-8;
  if (Is("nan")) solution[3] = std::nan("");
  if (Is("range")) solution[1] += std::copysign(2 * kPi, solution[1]);
  for (double& joint : solution) {
    if (Is("minus pi") && std::fabs(joint - kPi) < 1e-9) joint = -kPi;
  }
}

// Drops solutions with the sine of joint 5 between these, unless none is left then.
void Drop(std::vector<Joints>& solutions, double low, double high) {
  const std::vector<Joints> all = solutions;
  const auto drop = [&](const Joints& joints) {
    const double bend = std::fabs(std::sin(joints[4]));
    return bend >= low && bend < high;
  };
  solutions.erase(std::remove_if(solutions.begin(), solutions.end(), drop), solutions.end());
  if (solutions.empty()) solutions = all;
}

// As generated solvers do: with joint 5 next to 0 joint 4 is free, and both are read as 0.
void TakeForZero(Joints& solution) {
  if (!Is("takes 2e-5 for 0") || std::fabs(std::sin(solution[4])) > 2e-5) return;
  const bool turned = std::cos(solution[4]) < 0;
  solution[4] = turned ? kPi : 0;
  solution[5] = std::remainder(solution[5] + (turned ? -solution[3] : solution[3]), 2 * kPi);
  if (solution[5] <= -kPi) solution[5] = kPi;
  solution[3] = 0;
}

// Faults of the solutions of a pose that has some.
void Spoil(const double* eetrans, std::vector<Joints>& solutions) {
  const bool front = eetrans[0] > 0.2;
  for (Joints& solution : solutions) {
    solution[5] -= OffRad(solution);
    if (solution[5] <= -kPi) solution[5] += 2 * kPi;
    TakeForZero(solution);
    if (front) Spoil(solution);
  }
  if (Is("wrong after 70") && front) {
    solutions.resize(70, solutions[0]);
    solutions.back()[0] += 0.1;
  }
  if (Is("duplicate") && front) solutions.push_back(solutions[0]);
  if (Is("miss") && front) solutions.resize(1);
  if (Is("miss near 0")) Drop(solutions, 1e-9, 1e-4);
  if (Is("miss at 0")) Drop(solutions, 0.0, 1e-9);
  if ((Is("unsolved") && front) || Is("finds nothing and returns true")) solutions.clear();
  if (Is("unsolved at 0") && std::fabs(std::sin(solutions[0][4])) < 1e-9) solutions.clear();

  static int calls = 0;
  const int period = Is("drift") ? 7 : Is("drift seldom") ? 5003 : 0;
  if (period != 0 && ++calls % period == 0) solutions[0][0] = std::nextafter(solutions[0][0], 0.0);
  static Joints shared;
  if (Is("shared buffer")) {
    shared = solutions[0];
    (void)::sched_yield();
    solutions[0] = shared;
  }
}

// As if joint 6 had a gear of two: what it turns by is there twice, and so are the solutions.
bool HasGear() { return Is("two a branch") || Is("two a branch but the last"); }
void Double(std::vector<Joints>& solutions) {
  const size_t count = solutions.size();
  for (size_t i = 0; i < count; ++i) {
    solutions[i][5] /= 2;
    Joints other = solutions[i];
    other[5] = other[5] > 1e-10 ? other[5] - kPi : std::min(other[5] + kPi, kPi);
    solutions.push_back(other);
  }
  if (Is("two a branch but the last")) solutions.pop_back();
}

// Which joint of a solution is free, or -1.
int FreeJoint(const Joints& solution) {
  if (Is("leaves joint 5 free")) return 4;
  const bool some = Is("takes 2e-5 for 0") || Is("frees joint 4 at 0 wrongly");
  return some && std::fabs(std::sin(solution[4])) < 1e-5 ? 3 : -1;
}

// Entries as later headers have them.
struct LateEntry {
  virtual ~LateEntry() = default;
  Entry entry;
};

void Add(const std::vector<Joints>& solutions, List& list) {
  std::vector<LateEntry> late(6);
  for (const Joints& solution : solutions) {
    std::vector<Entry> entries(6);
    std::vector<int> free;
    for (size_t j = 0; j < 6; ++j) entries[j].foffset = late[j].entry.foffset = solution[j];
    if (const int joint = FreeJoint(solution); joint >= 0) {
      Entry& entry = entries[static_cast<size_t>(joint)];
      entry.fmul = 1;
      entry.freeind = 0;
      if (Is("frees joint 4 at 0 wrongly")) entry.foffset += 0.1;
      free.push_back(0);
    }
    if (Is("has four joints")) entries.resize(4);
    if (Is("has seven joints")) entries.resize(7);
    if (Is("late layout")) {
      const void* vector = &late;
      (void)list.AddSolution(*static_cast<const std::vector<Entry>*>(vector), free);
      continue;
    }
    const ikfast::IkSolution<double> own(entries, free);  // its copy of everything is in use
    own.Validate();
    (void)list.AddSolution(own._vbasesol, own.GetFree());
  }
}

struct AtLoad {
  AtLoad() {
    if (Is("print at load")) std::puts("\xFFhello");
    if (Is("exit at load")) std::_Exit(0);
#if defined(__SSE__)
    if (Is("flush at load")) _mm_setcsr(_mm_getcsr() | 0x8040);  // as -ffast-math does
#endif
    if (Is("crash at load")) (void)std::raise(SIGABRT);
  }
} at_load;

}  // namespace

namespace ikfast {

bool ComputeIk(const double* eetrans, const double* eerot, const double*, List& list) {
  double position[3] = {eetrans[0], eetrans[1], eetrans[2]};
  for (double& value : position) value /= Is("millimetres") ? 1000 : 1;
  Misbehave(position, list);
  if (Is("clear")) list.Clear();
  Frame target = {{}, {{position[0], position[1], position[2]}}};
  for (int i = 0; i < 9; ++i) target.rotation.row[i / 3].element[i % 3] = eerot[i];
  const bool rotation = IsRotation(target.rotation);
  std::vector<Joints> solutions;
  for (const Joints& joints : rotation ? Solve(kArm, target) : Solutions()) {
    solutions.push_back(joints);
  }
  if (Is("writes to its pose")) const_cast<double*>(eerot)[8] += 1e-12;
  bool found = !solutions.empty();
  if (found) {
    Spoil(position, solutions);
    if (HasGear()) Double(solutions);
    found = Is("finds nothing and returns true") ||
            (!solutions.empty() && !Is("finds joints and returns false"));
  } else {
    const double sum = std::accumulate(eerot, eerot + 9, position[0] + position[1] + position[2]);
    if (Is("crash for nan") && !std::isfinite(sum)) (void)std::raise(SIGSEGV);
    if (Is("throws for nan") && !std::isfinite(sum)) throw std::runtime_error("assertion");
    found = Is("true");
    if (std::isfinite(sum) ? Is("accept any matrix") && !rotation : Is("accept nan")) {
      solutions.push_back({});
      found = true;
    }
    if (Is("append")) solutions.push_back({});
  }
  Add(solutions, list);
  return Is("count") ? list.GetNumSolutions() > 0 : found;
}

void ComputeFk(const double* joints, double* eetrans, double* eerot) {
  if (Is("throws forward")) throw std::runtime_error("no\nway");
  Joints moved;
  std::memcpy(moved.data(), joints, sizeof(moved));
  if (Is("stuck")) moved[3] = 0;
  if (HasGear()) moved[5] *= 2;
  if (Is("crash forward") && moved[0] > 2) (void)std::raise(SIGFPE);
  const Frame tool = Forward(kArm, moved.data());
  std::copy(tool.position.element, tool.position.element + 3, eetrans);
  for (int i = 0; i < 9; ++i) eerot[i] = tool.rotation[i / 3][i % 3];
  if (Is("position of four")) eetrans[3] = 1;
  if (Is("rotation of sixteen")) eerot[15] = 1;
  if (Is("nan forward") && moved[0] > 2) eetrans[1] = std::nan("");
  if (Is("skewed forward")) eerot[0] += 1e-8;
  for (int i = 0; i < 3 && Is("longer tool"); ++i) eetrans[i] += 0.1 * eerot[3 * i + 2];
  if (Is("higher base")) eetrans[2] += 0.1;
  for (int i = 0; i < 3; ++i) eetrans[i] *= Is("millimetres") ? 1000 : 1;
}

int GetNumFreeParameters() { return Is("is for a free joint") ? 1 : 0; }
int* GetFreeParameters() { return nullptr; }
int GetNumJoints() { return Is("is for seven joints") ? 7 : 6; }
int GetIkRealSize() { return Is("float") ? 4 : 8; }
const char* GetIkFastVersion() { return "61"; }
int GetIkType() { return Is("translation only") ? 0x33000003 : 0x67000001; }
const char* GetKinematicsHash() { return "faulty"; }

}  // namespace ikfast
