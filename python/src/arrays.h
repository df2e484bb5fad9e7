#ifndef QAL_PYTHON_ARRAYS_H_
#define QAL_PYTHON_ARRAYS_H_

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>
#include <qal/model/pose.h>

#include <nlohmann/json.hpp>
#include <string>

// numpy's arrays as this library's values, and the other way.
namespace qal::python {

namespace py = pybind11;

/// Rows of numbers: one of them, of shape (columns,), or many, of shape (n, columns).
struct Rows {
  py::array_t<double> numbers;  ///< contiguous
  size_t count;
  bool single;

  const double* data() const { return numbers.data(); }
};

/// @param given anything that numpy makes an array of; of any strides, copied only where it has to
/// @param name  what it is called in a message
/// @throw TypeError, ValueError with what was given and what is expected
Rows ReadRows(const py::handle& given, py::ssize_t columns, const char* name);

/// Six joints [rad].
Joints ReadJoints(const py::handle& given, const char* name);
/// Three numbers.
Vec3 ReadVector(const py::handle& given, const char* name);
/// `count` numbers, of shape (count,).
py::array_t<double> ReadColumn(const py::handle& given, size_t count, const char* name);
/// An array of float64, contiguous; the given one where it is so already.
/// @throw TypeError
py::array_t<double> ReadNumbers(const py::handle& given, const char* name);
/// "(3, 4)".
std::string ShapeText(const py::array& array);

/// An array of `rows` rows, or of one without its first dimension.
py::array_t<double> MakeRows(size_t rows, py::ssize_t columns, bool single);
/// Nobody may write into it any more.
void Freeze(py::array& array);

/// A new array of shape (6,).
py::array_t<double> ToArray(const Joints& joints);
py::array_t<double> ToArray(const Vec3& vector);

/// A rotation matrix and a position as a matrix of 4 by 4.
py::array_t<double> ToArray(const Transform& transform);
Transform ReadTransform(const py::handle& given, const char* name);

/// Python's values of JSON's.
py::object Loaded(const nlohmann::ordered_json& json);

}  // namespace qal::python

#endif  // QAL_PYTHON_ARRAYS_H_
