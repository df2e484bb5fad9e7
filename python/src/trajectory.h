#ifndef QAL_PYTHON_TRAJECTORY_H_
#define QAL_PYTHON_TRAJECTORY_H_

#include <memory>
#include <optional>
#include <string>

#include "../../io/trajectory.h"
#include "arm.h"
#include "arrays.h"
#include "poses.h"

namespace qal::python {

/// Python's `Trajectory`: samples that somebody else made, or that were planned.
struct PyTrajectory {
  std::shared_ptr<const io::FileTrajectory> samples;
  std::string name;                         ///< what messages call it
  mutable std::optional<Poses> poses = {};  ///< of the samples, once they have been asked for

  explicit PyTrajectory(io::FileTrajectory made, std::string called = "trajectory")
      : samples(std::make_shared<const io::FileTrajectory>(std::move(made))),
        name(std::move(called)) {}
};

/// A planned one.
inline PyTrajectory Planned(const Trajectory& trajectory) {
  return PyTrajectory(io::FromTrajectory(trajectory));
}

void AddTrajectory(py::module_& module);

}  // namespace qal::python

#endif  // QAL_PYTHON_TRAJECTORY_H_
