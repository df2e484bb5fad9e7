#ifndef QAL_PYTHON_ARM_H_
#define QAL_PYTHON_ARM_H_

#include <pybind11/pybind11.h>
#include <pybind11/stl.h>
#include <pybind11/stl/filesystem.h>

#include <filesystem>

#include "../../io/loaded_arm.h"

namespace qal::python {

namespace py = pybind11;

/// Python's `Arm`: an arm, and how it can be made again in another process.
struct PyArm {
  io::LoadedArm loaded;
  py::object source;  ///< what a pickle holds: (function, arguments...)

  const Arm& arm() const { return loaded.arm; }
};

/// A file as a pickle names it: from any folder.
std::string Absolute(const std::filesystem::path& path);

py::class_<PyArm> AddArm(py::module_& module);
/// Its kinematics.
void AddSolving(py::module_& module, py::class_<PyArm>& arm);
/// Why something fails.
void AddExplaining(py::class_<PyArm>& arm);

}  // namespace qal::python

#endif  // QAL_PYTHON_ARM_H_
