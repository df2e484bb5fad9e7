#ifndef QAL_PYTHON_CLASS_H_
#define QAL_PYTHON_CLASS_H_

#include <pybind11/pybind11.h>

namespace qal::python {

namespace py = pybind11;

/// A class of the package: an ordinary one for Python, and nobody derives from it.
template <class T>
py::class_<T> NewClass(py::module_& module, const char* name, const char* doc) {
  py::class_<T> made(module, name, py::is_final(),
                     py::metaclass(reinterpret_cast<PyObject*>(&PyType_Type)), doc);
  made.attr("__module__") = "qal_kinematics";  // where users import it from: help, pickles
  return made;
}

}  // namespace qal::python

#endif  // QAL_PYTHON_CLASS_H_
