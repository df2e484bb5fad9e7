#ifndef QAL_KINEMATICS_IKFAST_H_
#define QAL_KINEMATICS_IKFAST_H_

/// @file
/// What a solver library has to define, and the lists that it fills.

#if __cplusplus < 201703L
#error "the solver interface needs C++17 or later: compile with -std=c++17"
#endif

#include <cstddef>
#include <list>
#include <stdexcept>
#include <vector>

/// The interface between this library and a closed-form solver library, `libik.so`.
///
/// Class layouts and virtual slot orders are those of the interface's versions 60 to early
/// 0x1000004b, so that a solver generated elsewhere against them can be used unchanged. Keep every
/// member and every virtual function where it stands. The list that the library passes runs the
/// library's own copy of this code; neither library may bind to the other's, so both keep their
/// template instantiations to themselves with a linker version script.
namespace ikfast {

/// One joint of one solution: value = `fmul` * free value + `foffset`.
template <typename T>
class IkSingleDOFSolutionBase {
 public:
  T fmul = 0;                   ///< multiplier of the free parameter
  T foffset = 0;                ///< the joint's value, or its offset from the free parameter [rad]
  signed char freeind = -1;     ///< index of the free parameter; negative: fully determined
  unsigned char jointtype = 1;  ///< 1 for a revolute joint
  unsigned char maxsolutions = 1;  ///< number of branches that the joint's equation has
  /// Branches this value came from; 0xFF: none.
  unsigned char indices[5] = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
};

/// One solution of a pose, as an interface. Virtual slots, destructors first: 2 to 5 in this order.
template <typename T>
class IkSolutionBase {
 public:
  virtual ~IkSolutionBase() = default;
  /// Writes one value per joint [rad] to `solution`. `freevalues` may be null when the solution has
  /// no free parameter.
  virtual void GetSolution(T* solution, const T* freevalues) const = 0;
  /// The same into a vector, resized to the number of joints.
  virtual void GetSolution(std::vector<T>& solution, const std::vector<T>& freevalues) const = 0;
  /// Indices of the free parameters; empty when the solution is fully determined.
  virtual const std::vector<int>& GetFree() const = 0;
  /// Number of joints.
  virtual int GetDOF() const = 0;
};

/// A list of solutions that a solver fills. Virtual slots, destructors first: 2 to 5 in this order.
template <typename T>
class IkSolutionListBase {
 public:
  virtual ~IkSolutionListBase() = default;
  /// Appends a solution (one entry per joint) and returns its index.
  virtual size_t AddSolution(const std::vector<IkSingleDOFSolutionBase<T>>& vinfos,
                             const std::vector<int>& vfree) = 0;
  /// The solution at `index`.
  /// @throw std::runtime_error "GetSolution index is invalid" when there is none.
  virtual const IkSolutionBase<T>& GetSolution(size_t index) const = 0;
  /// How many solutions there are.
  virtual size_t GetNumSolutions() const = 0;
  /// Drops all solutions.
  virtual void Clear() = 0;
};

/// A solution held as one `IkSingleDOFSolutionBase` per joint. Slots 6 and 7 follow its base's.
template <typename T>
class IkSolution : public IkSolutionBase<T> {
 public:
  /// A solution without joints.
  IkSolution() = default;
  /// A solution of one `vinfos` entry per joint, with the indices of its free parameters.
  IkSolution(const std::vector<IkSingleDOFSolutionBase<T>>& vinfos, const std::vector<int>& vfree)
      : _vbasesol(vinfos), _vfree(vfree) {}

  /// A joint that follows a free parameter is taken back into (-pi, pi]. Without `freevalues` the
  /// free parameters are taken as 0, which is a solution as good as any other.
  void GetSolution(T* solution, const T* freevalues) const override {
    const T pi = static_cast<T>(3.14159265358979323846);
    for (size_t i = 0; i < _vbasesol.size(); ++i) {
      const IkSingleDOFSolutionBase<T>& joint = _vbasesol[i];
      solution[i] = joint.foffset;
      if (joint.freeind < 0 || freevalues == nullptr) continue;
      solution[i] += joint.fmul * freevalues[joint.freeind];
      if (solution[i] > pi) {
        solution[i] -= 2 * pi;
      } else if (solution[i] <= -pi) {
        solution[i] += 2 * pi;
      }
    }
  }

  void GetSolution(std::vector<T>& solution, const std::vector<T>& freevalues) const override {
    solution.resize(_vbasesol.size());
    GetSolution(solution.data(), freevalues.empty() ? nullptr : freevalues.data());
  }

  const std::vector<int>& GetFree() const override { return _vfree; }

  int GetDOF() const override { return static_cast<int>(_vbasesol.size()); }

  /// Checks the branch bookkeeping of every joint.
  /// @throw std::runtime_error when a joint's branches were not counted (`maxsolutions` 0xFF), or a
  ///        branch index is not below the number of branches.
  virtual void Validate() const {
    for (const IkSingleDOFSolutionBase<T>& joint : _vbasesol) {
      if (joint.maxsolutions == kNone) {
        throw std::runtime_error("max solutions for joint not initialized");
      }
      for (int slot = 0; joint.maxsolutions > 0 && slot < 2; ++slot) {
        if (joint.indices[slot] != kNone && joint.indices[slot] >= joint.maxsolutions) {
          throw std::runtime_error("index >= max solutions for joint");
        }
      }
    }
  }

  /// The branches of all joints as one number, mixed-radix with joint 1 lowest. A joint that two
  /// branches share makes one number for each.
  virtual void GetSolutionIndices(std::vector<unsigned int>& v) const {
    v.assign(1, 0u);
    for (size_t i = _vbasesol.size(); i-- > 0;) {
      const IkSingleDOFSolutionBase<T>& joint = _vbasesol[i];
      if (joint.maxsolutions == kNone || joint.maxsolutions < 2) continue;
      for (unsigned int& number : v) number *= joint.maxsolutions;
      const size_t count = v.size();
      for (size_t j = 0; joint.indices[1] != kNone && j < count; ++j) {
        v.push_back(v[j] + joint.indices[1]);
      }
      for (size_t j = 0; joint.indices[0] != kNone && j < count; ++j) v[j] += joint.indices[0];
    }
  }

  std::vector<IkSingleDOFSolutionBase<T>> _vbasesol;  ///< one entry per joint
  std::vector<int> _vfree;                            ///< indices of the free parameters

 private:
  static constexpr unsigned char kNone = 0xFF;
};

/// The list that this library hands to a solver.
template <typename T>
class IkSolutionList : public IkSolutionListBase<T> {
 public:
  size_t AddSolution(const std::vector<IkSingleDOFSolutionBase<T>>& vinfos,
                     const std::vector<int>& vfree) override {
    const size_t index = _listsolutions.size();
    _listsolutions.emplace_back(vinfos, vfree);
    return index;
  }

  const IkSolutionBase<T>& GetSolution(size_t index) const override {
    if (index >= _listsolutions.size()) throw std::runtime_error("GetSolution index is invalid");
    auto solution = _listsolutions.begin();
    for (; index > 0; --index) ++solution;
    return *solution;
  }

  /// How many solutions there are.
  size_t GetNumSolutions() const override { return _listsolutions.size(); }

  /// Drops all solutions.
  void Clear() override { _listsolutions.clear(); }

 protected:
  std::list<IkSolution<T>> _listsolutions;  ///< in the order in which they were added
};

/// The number type of the whole interface.
using IkReal = double;

// What libik.so defines. Exported also where everything else is built hidden.
#pragma GCC visibility push(default)

/// All joint solutions of a pose.
/// @param eetrans   tool position x, y, z [the solver's length unit, base frame]
/// @param eerot     tool rotation matrix, row-major, tool frame to base frame
/// @param pfree     values of the free parameters; this library always passes null
/// @param solutions list to append to; nothing may be appended when the result is false
/// @return true when at least one solution was added
bool ComputeIk(const IkReal* eetrans, const IkReal* eerot, const IkReal* pfree,
               IkSolutionListBase<IkReal>& solutions);

/// The pose of six joint angles [rad]: position into `eetrans[3]`, row-major rotation matrix into
/// `eerot[9]`.
void ComputeFk(const IkReal* joints, IkReal* eetrans, IkReal* eerot);

int GetNumFreeParameters();       ///< number of free parameters
int* GetFreeParameters();         ///< their joint indices; null when there are none
int GetNumJoints();               ///< number of joints of the chain
int GetIkRealSize();              ///< sizeof(IkReal)
const char* GetIkFastVersion();   ///< version of the interface
int GetIkType();                  ///< kind of target; 0x67000001: full pose
const char* GetKinematicsHash();  ///< identifies the arm's geometry

#pragma GCC visibility pop

}  // namespace ikfast

#endif  // QAL_KINEMATICS_IKFAST_H_
