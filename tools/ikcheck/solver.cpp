#include "solver.h"

#include <dlfcn.h>
#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <exception>
#include <filesystem>
#include <iterator>
#include <limits>

#include "../../io/error.h"

namespace qal::ikcheck {

namespace {

using Outcome = CallEnd::Outcome;
using Entry = ikfast::IkSingleDOFSolutionBase<double>;

// A six-joint arm has 16 solutions at most; at singularities solvers are known to repeat them. One
// that adds more than this never comes to an end.
constexpr size_t kEndlessSolutions = 1000;
struct Endless {};

// The list that this interface's users pass, with a look at what a solver hands to it.
class WatchedList : public ikfast::IkSolutionList<double> {
 public:
  size_t AddSolution(const std::vector<Entry>& joints, const std::vector<int>& free) override {
    if (_listsolutions.size() + odd_count >= kEndlessSolutions) throw Endless();
    // By the vector's own begin and end: its size() is meaningless when the solver was built with
    // entries of another size.
    const char* ends[2];
    // NOLINTNEXTLINE(bugprone-sizeof-container)
    static_assert(sizeof(joints) >= sizeof(ends));
    std::memcpy(ends, static_cast<const void*>(&joints), sizeof(ends));
    const auto bytes = static_cast<size_t>(ends[1] - ends[0]);
    if (bytes == sizeof(Entry) * std::tuple_size_v<Joints>) {
      return IkSolutionList::AddSolution(joints, free);
    }
    odd_bytes = bytes;
    return odd_count++;
  }

  void Clear() override {
    cleared = true;
    IkSolutionList::Clear();
  }

  void Read(size_t standing, IkAnswer& answer) const {
    answer.cleared = cleared;
    answer.odd_bytes = odd_bytes;
    const size_t left = cleared ? 0 : std::min(standing, _listsolutions.size());
    answer.added = _listsolutions.size() - left + odd_count;
    auto entry = std::next(_listsolutions.begin(), static_cast<std::ptrdiff_t>(left));
    for (; entry != _listsolutions.end(); ++entry) {
      Solution& solution = answer.solutions.emplace_back();
      entry->GetSolution(solution.joints.data(), nullptr);
      solution.free = !entry->GetFree().empty() ||
                      std::any_of(entry->_vbasesol.begin(), entry->_vbasesol.end(),
                                  [](const Entry& joint) { return joint.freeind >= 0; });
    }
  }

 private:
  bool cleared = false;
  size_t odd_bytes = 0;
  size_t odd_count = 0;
};

// An array of a call between guards, which show what is written beside it. They are NaN, so that
// what is read there shows, too. What it holds itself is NaN unless it is given.
template <size_t kSize>
class Guarded {
 public:
  Guarded() { numbers_.fill(std::numeric_limits<double>::quiet_NaN()); }
  explicit Guarded(const double* values) : Guarded() { std::copy_n(values, kSize, data()); }
  double* data() { return numbers_.data() + kMargin; }
  /// Whether the guards are as they were.
  bool Intact() { return Intact(data()); }
  /// Whether the values are these, too.
  bool Intact(const double* values) const {
    const Guarded made(values);
    // NOLINTNEXTLINE(bugprone-suspicious-memory-comparison): to the last bit, as NaN is no number
    return std::memcmp(&numbers_, &made.numbers_, sizeof(numbers_)) == 0;
  }

 private:
  static constexpr size_t kMargin = 16;
  std::array<double, kMargin + kSize + kMargin> numbers_;
};

// Makes a call and notes how it ended.
template <typename Call>
void Watch(CallEnd& end, Call call) {
  try {
    call();
  } catch (const std::exception& error) {
    end.outcome = Outcome::kThrew;
    constexpr size_t kWhatBytes = 200;
    end.what.assign(error.what(), ::strnlen(error.what(), kWhatBytes));
  } catch (const Endless&) {
    end.outcome = Outcome::kEndless;
  } catch (...) {
    end.outcome = Outcome::kThrew;
    end.what = "not a std::exception";
  }
}

// The address of ikfast::NAME, which takes nothing, or of the plain C name.
template <typename Function>
void FindQuery(void* library, const std::string& name, Function& function) {
  void* symbol = ::dlsym(library, fmt::format("_ZN6ikfast{}{}Ev", name.size(), name).c_str());
  if (symbol == nullptr) symbol = ::dlsym(library, name.c_str());
  function = reinterpret_cast<Function>(symbol);
}

}  // namespace

// The loader looks for a name without a slash in the system's folders.
Solver Solver::Load(const std::string& path) {
  void* library = ::dlopen(std::filesystem::absolute(path).c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) throw io::UsageError(fmt::format("cannot load {}", ::dlerror()));
  void* ik = ::dlsym(library, "_ZN6ikfast9ComputeIkEPKdS1_S1_RNS_18IkSolutionListBaseIdEE");
  void* fk = ::dlsym(library, "_ZN6ikfast9ComputeFkEPKdPdS2_");
  Solver solver;
  if (ik == nullptr && fk == nullptr) {
    ik = ::dlsym(library, "ComputeIk");
    fk = ::dlsym(library, "ComputeFk");
    solver.plain_names = ik != nullptr || fk != nullptr;
  }
  solver.compute_ik = reinterpret_cast<decltype(solver.compute_ik)>(ik);
  solver.compute_fk = reinterpret_cast<decltype(solver.compute_fk)>(fk);
  FindQuery(library, "GetNumFreeParameters", solver.free_parameters);
  FindQuery(library, "GetNumJoints", solver.joints);
  FindQuery(library, "GetIkRealSize", solver.real_size);
  FindQuery(library, "GetIkFastVersion", solver.version);
  FindQuery(library, "GetIkType", solver.type);
  FindQuery(library, "GetKinematicsHash", solver.hash);
  return solver;
}

FkAnswer Solver::Forward(const Joints& joints_rad) const {
  FkAnswer answer;
  Guarded<6> joints_given(joints_rad.data());
  Guarded<3> position;
  Guarded<9> rotation;
  Watch(answer, [&] { compute_fk(joints_given.data(), position.data(), rotation.data()); });
  std::copy_n(position.data(), 3, answer.pose.position.data());
  std::copy_n(rotation.data(), 9, answer.pose.rotation.data());
  answer.wrote_outside =
      !(joints_given.Intact(joints_rad.data()) && position.Intact() && rotation.Intact());
  return answer;
}

IkAnswer Solver::Solve(const Pose& pose, size_t standing) const {
  IkAnswer answer;
  Guarded<3> position(pose.position.data());
  Guarded<9> rotation(pose.rotation.data());
  WatchedList list;
  for (size_t i = 0; i < standing; ++i) {
    (void)list.AddSolution(std::vector<Entry>(std::tuple_size_v<Joints>), {});
  }
  Watch(answer,
        [&] { answer.found = compute_ik(position.data(), rotation.data(), nullptr, list); });
  list.Read(standing, answer);
  answer.wrote_outside =
      !(position.Intact(pose.position.data()) && rotation.Intact(pose.rotation.data()));
  return answer;
}

}  // namespace qal::ikcheck
