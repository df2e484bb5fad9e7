#ifndef QAL_PYTHON_TRAJECTORY_H_
#define QAL_PYTHON_TRAJECTORY_H_

#include <memory>

#include "../../io/trajectory.h"
#include "arm.h"
#include "arrays.h"

namespace qal::python {

/// Python's `Trajectory`: samples that somebody else made, or that were planned.
struct PyTrajectory {
  std::shared_ptr<const io::FileTrajectory> samples;
  std::string name;  ///< what messages call it

  explicit PyTrajectory(io::FileTrajectory made, std::string called = "trajectory")
      : samples(std::make_shared<const io::FileTrajectory>(std::move(made))),
        name(std::move(called)) {}
};

void AddTrajectory(py::module_& module);

}  // namespace qal::python

#endif  // QAL_PYTHON_TRAJECTORY_H_
