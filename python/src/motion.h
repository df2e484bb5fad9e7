#ifndef QAL_PYTHON_MOTION_H_
#define QAL_PYTHON_MOTION_H_

#include "arm.h"

namespace qal::python {

/// `Motion`, and the planning of an arm's.
void AddMotion(py::module_& module, py::class_<PyArm>& arm);

}  // namespace qal::python

#endif  // QAL_PYTHON_MOTION_H_
