#ifndef QAL_PYTHON_POSES_H_
#define QAL_PYTHON_POSES_H_

#include "arrays.h"

namespace qal::python {

/// Python's `Pose`: one, or many. The numbers are held as rows of x, y, z, qw, qx, qy, qz.
class Poses {
 public:
  /// @param numbers of shape (n, 7), contiguous
  Poses(py::array_t<double> numbers, bool single) : numbers_(std::move(numbers)), single_(single) {}
  explicit Poses(const Pose& pose);

  bool single() const { return single_; }
  size_t count() const { return static_cast<size_t>(numbers_.shape(0)); }
  const py::array_t<double>& numbers() const { return numbers_; }
  const Pose* data() const;
  /// @throw ValueError where there are many
  const Pose& One(const char* name) const;

 private:
  py::array_t<double> numbers_;
  bool single_;
};

/// Python's object as what it is.
/// @throw TypeError that says how to make one
const Poses& ReadPoses(const py::handle& given, const char* name);

/// Room for poses that are to be written.
Poses MakePoses(size_t count, bool single);
Pose* Writable(Poses& poses);

void AddPose(py::module_& module);

}  // namespace qal::python

#endif  // QAL_PYTHON_POSES_H_
