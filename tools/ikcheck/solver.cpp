#include "solver.h"

#include <dlfcn.h>

#include <algorithm>
#include <cstring>
#include <exception>
#include <filesystem>
#include <limits>
#include <vector>

namespace qal::ikcheck {

namespace {

// A solver that adds more than this never comes to an end.
constexpr size_t kEndlessSolutions = 10000;
struct Endless {};

using Entry = ikfast::IkSingleDOFSolutionBase<double>;

// The list that this interface's users pass, with a look at what a solver hands to it.
class WatchedList : public ikfast::IkSolutionList<double> {
 public:
  size_t AddSolution(const std::vector<Entry>& joints, const std::vector<int>& free) override {
    // By the vector's own begin and end: its size() is meaningless when the solver was built with
    // entries of another size.
    const char* ends[2];
    // NOLINTNEXTLINE(bugprone-sizeof-container)
    static_assert(sizeof(joints) >= sizeof(ends));
    std::memcpy(ends, static_cast<const void*>(&joints), sizeof(ends));
    const auto bytes = static_cast<size_t>(ends[1] - ends[0]);
    if (bytes != sizeof(Entry) * std::tuple_size_v<Joints>) {
      odd_bytes = bytes;
      return odd_count++;
    }
    if (_listsolutions.size() >= kEndlessSolutions) throw Endless();
    return IkSolutionList::AddSolution(joints, free);
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
    for (; entry != _listsolutions.end() && answer.kept < kKeptSolutions; ++entry) {
      Solution& solution = answer.solutions[answer.kept++];
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

// Makes a call and notes how it ended.
template <typename Answer, typename Call>
void Watch(Answer& answer, Call call) {
  try {
    call();
    answer.outcome = Outcome::kReturned;
  } catch (const std::exception& error) {
    answer.outcome = Outcome::kThrew;
    std::strncpy(answer.what, error.what(), kWhatBytes - 1);
  } catch (const Endless&) {
    answer.outcome = Outcome::kEndless;
  } catch (...) {
    answer.outcome = Outcome::kThrew;
    std::strncpy(answer.what, "not a std::exception", kWhatBytes - 1);
  }
}

// The address of ikfast::NAME, which takes nothing, or of the plain C name.
template <typename Function>
void FindQuery(void* library, const std::string& name, Function& function) {
  void* symbol =
      ::dlsym(library, ("_ZN6ikfast" + std::to_string(name.size()) + name + "Ev").c_str());
  if (symbol == nullptr) symbol = ::dlsym(library, name.c_str());
  function = reinterpret_cast<Function>(symbol);
}

Solver Load(const std::string& path) {
  void* library = ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) throw LoadError(::dlerror());
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

}  // namespace

void Solver::Forward(const Joints& joints_rad, FkAnswer& answer) const {
  std::fill_n(answer.pose.position, 3, std::numeric_limits<double>::quiet_NaN());
  std::fill_n(answer.pose.rotation, 9, std::numeric_limits<double>::quiet_NaN());
  Watch(answer, [&] { compute_fk(joints_rad.data(), answer.pose.position, answer.pose.rotation); });
}

void Solver::Solve(const Pose& pose, size_t standing, IkAnswer& answer) const {
  WatchedList list;
  for (size_t i = 0; i < standing; ++i) {
    (void)list.AddSolution(std::vector<Entry>(std::tuple_size_v<Joints>), {});
  }
  Watch(answer, [&] { answer.found = compute_ik(pose.position, pose.rotation, nullptr, list); });
  list.Read(standing, answer);
}

// The loader looks for a name without a slash in the system's folders.
Library::Library(const std::string& path) : path_(std::filesystem::absolute(path)) {}

const Solver& Library::Get() {
  if (!solver_) solver_ = Load(path_);
  return *solver_;
}

}  // namespace qal::ikcheck
