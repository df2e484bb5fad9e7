#ifndef QAL_PYTHON_REACH_H_
#define QAL_PYTHON_REACH_H_

#include <pybind11/pybind11.h>

namespace qal::python {

namespace py = pybind11;

/// `ReachStudy`, and what qal_kinematics/_reach.py makes studies of.
void AddReach(py::module_& module);

}  // namespace qal::python

#endif  // QAL_PYTHON_REACH_H_
