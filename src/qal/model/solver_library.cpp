#include "solver_library.h"

#include <dlfcn.h>

#include <new>
#include <ostream>

namespace qal {

namespace {

constexpr char kComputeIk[] = "_ZN6ikfast9ComputeIkEPKdS1_S1_RNS_18IkSolutionListBaseIdEE";
constexpr char kComputeFk[] = "_ZN6ikfast9ComputeFkEPKdPdS2_";
constexpr char kArraySolver[] = "qal_array_solver_1";
constexpr int kFullPoseType = 0x67000001;

// Private in both directions: nobody else sees the library's names, and it sees its own before the
// program's, which may have the same. The runtime of a sanitizer ends the program over the latter.
int OpenMode() {
  int mode = RTLD_NOW | RTLD_LOCAL;
  bool sanitized = false;
  for (const char* runtime : {"__asan_init", "__tsan_init", "__msan_init"}) {
    sanitized = sanitized || ::dlsym(RTLD_DEFAULT, runtime) != nullptr;
  }
#ifdef RTLD_DEEPBIND
  if (!sanitized) mode |= RTLD_DEEPBIND;
#endif
  return mode;
}

// A program that uses the standard streams may have them in its own memory; the C++ library's then
// stay unset, and a solver that sees those first would end the program when it prints. They get the
// program's buffers.
void SetUpLibraryStreams() {
#ifdef __GLIBCXX__
  static const std::ios_base::Init program_streams;
  void* const library = ::dlopen("libstdc++.so.6", RTLD_LAZY | RTLD_NOLOAD);
  if (library == nullptr) return;  // linked into the program: a solver brings its own
  for (const char* name : {"_ZSt4cout", "_ZSt4cerr", "_ZSt4clog"}) {
    auto* const program = static_cast<std::ostream*>(::dlsym(RTLD_DEFAULT, name));
    void* const own = ::dlsym(library, name);
    if (own != nullptr && program != nullptr && own != program) {
      new (own) std::ostream(program->rdbuf());
    }
  }
#endif
}

void* Open(const std::string& path) {
  const int mode = OpenMode();
#ifdef RTLD_DEEPBIND
  static const bool streams_are_set = (SetUpLibraryStreams(), true);
  (void)streams_are_set;
#endif
  return ::dlopen(path.c_str(), mode);
}

template <class Function>
Function Find(void* library, const char* name) {
  // That is how the loader gives functions. NOLINTNEXTLINE(*-reinterpret-cast)
  return reinterpret_cast<Function>(::dlsym(library, name));
}

Error MissingFunction(void* library, const std::string& name) {
  Error error = {Reason::kFunctionMissing, -1, 0, 0, "ikfast::" + name};
  if (::dlsym(library, name.c_str()) != nullptr) {
    error.detail +=
        " (it has the plain C name " + name + "; generate it with the namespace ikfast)";
  }
  return error;
}

}  // namespace

SolverLibrary::SolverLibrary(const std::string& path) : library_(Open(path)) {
  if (library_ == nullptr) {
    // The C library keeps it for each thread. NOLINTNEXTLINE(concurrency-mt-unsafe)
    const char* const reason = ::dlerror();
    load_error_ = reason != nullptr ? reason : path;
    return;
  }
  compute_ik_ = Find<ComputeIk>(library_, kComputeIk);
  compute_fk_ = Find<ComputeFk>(library_, kComputeFk);
  array_ = ArraySolverOf(Find<decltype(&qal_array_solver_1)>(library_, kArraySolver), compute_ik_);
}

SolverLibrary::~SolverLibrary() {
  if (library_ != nullptr) (void)::dlclose(library_);  // there is nobody to tell
}

template <class Function>
Function SolverLibrary::Query(const char* name) const {
  const std::string bare = name;
  return Find<Function>(library_,
                        ("_ZN6ikfast" + std::to_string(bare.size()) + bare + "Ev").c_str());
}

std::optional<Error> SolverLibrary::Refusal() const {
  if (library_ == nullptr) return Error{Reason::kLibraryNotLoaded, -1, 0, 0, load_error_};
  if (compute_ik_ == nullptr) return MissingFunction(library_, "ComputeIk");
  if (compute_fk_ == nullptr) return MissingFunction(library_, "ComputeFk");
  const struct {
    const char* function;
    int expected;
    Reason reason;
  } checks[] = {{"GetNumJoints", kJointCount, Reason::kNotSixJoints},
                {"GetNumFreeParameters", 0, Reason::kFreeParameters},
                {"GetIkType", kFullPoseType, Reason::kSolverType},
                {"GetIkRealSize", sizeof(ikfast::IkReal), Reason::kSolverFault}};
  for (const auto& [function, expected, reason] : checks) {
    const auto query = Query<decltype(&ikfast::GetNumJoints)>(function);
    if (query == nullptr) continue;  // what a library doesn't say is taken on trust
    const int said = query();
    if (said == expected) continue;
    return Error{reason, -1, static_cast<double>(said), static_cast<double>(expected), function};
  }
  return std::nullopt;
}

std::string SolverLibrary::GeometryHash() const {
  const auto query = Query<decltype(&ikfast::GetKinematicsHash)>("GetKinematicsHash");
  const char* const text = query != nullptr ? query() : nullptr;
  return text != nullptr ? text : "";
}

bool SolverLibrary::Inverse(const double* eetrans, const double* eerot,
                            SolutionList& solutions) const {
  if (array_ == nullptr) return compute_ik_(eetrans, eerot, nullptr, solutions);
  return solutions.TakeArray(
      [&](double(*joints)[6]) { return array_->inverse(eetrans, eerot, joints); });
}

void SolverLibrary::Forward(const double* joints, double* eetrans, double* eerot) const {
  compute_fk_(joints, eetrans, eerot);
}

}  // namespace qal
