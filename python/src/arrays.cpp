#include "arrays.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cmath>

namespace qal::python {

std::string ShapeText(const py::array& array) {
  std::string text = "(";
  for (py::ssize_t i = 0; i < array.ndim(); ++i) {
    text += fmt::format("{}{}", i > 0 ? ", " : "", array.shape(i));
  }
  return text + (array.ndim() == 1 ? ",)" : ")");
}

py::array_t<double> ReadNumbers(const py::handle& given, const char* name) {
  // Most often, and then at once.
  using Contiguous = py::array_t<double, py::array::c_style>;
  if (Contiguous::check_(given)) return py::reinterpret_borrow<Contiguous>(given);
  const py::array array = py::array::ensure(given);
  if (!array) {
    PyErr_Clear();
    throw py::type_error(fmt::format("{}: an array of numbers is expected, not {}", name,
                                     std::string(py::str(py::type::of(given)))));
  }
  const char kind = array.dtype().kind();
  if (kind != 'f' && kind != 'i' && kind != 'u') {
    throw py::type_error(fmt::format("{}: numbers are expected, not dtype {}", name,
                                     std::string(py::str(array.dtype()))));
  }
  return py::array_t<double, py::array::c_style | py::array::forcecast>::ensure(array);
}

Rows ReadRows(const py::handle& given, py::ssize_t columns, const char* name) {
  py::array_t<double> numbers = ReadNumbers(given, name);
  const bool single = numbers.ndim() == 1;
  if ((!single && numbers.ndim() != 2) || numbers.shape(numbers.ndim() - 1) != columns) {
    throw py::value_error(fmt::format("{}: shape ({},) or (n, {}) is expected, not {}", name,
                                      columns, columns, ShapeText(numbers)));
  }
  const auto count = single ? size_t{1} : static_cast<size_t>(numbers.shape(0));
  return {std::move(numbers), count, single};
}

Joints ReadJoints(const py::handle& given, const char* name) {
  const Rows rows = ReadRows(given, 6, name);
  if (!rows.single) {
    throw py::value_error(
        fmt::format("{}: shape (6,) is expected, not {}", name, ShapeText(rows.numbers)));
  }
  Joints joints;
  std::copy_n(rows.data(), 6, joints.begin());
  return joints;
}

Vec3 ReadVector(const py::handle& given, const char* name) {
  const Rows rows = ReadRows(given, 3, name);
  if (!rows.single) {
    throw py::value_error(
        fmt::format("{}: shape (3,) is expected, not {}", name, ShapeText(rows.numbers)));
  }
  return {rows.data()[0], rows.data()[1], rows.data()[2]};
}

py::array_t<double> ReadColumn(const py::handle& given, size_t count, const char* name) {
  py::array_t<double> numbers = ReadNumbers(given, name);
  if (numbers.ndim() != 1 || static_cast<size_t>(numbers.shape(0)) != count) {
    throw py::value_error(
        fmt::format("{}: shape ({},) is expected, not {}", name, count, ShapeText(numbers)));
  }
  return numbers;
}

void Freeze(py::array& array) {
  py::detail::array_proxy(array.ptr())->flags &= ~py::detail::npy_api::NPY_ARRAY_WRITEABLE_;
}

py::array_t<double> MakeRows(size_t rows, py::ssize_t columns, bool single) {
  if (single) return py::array_t<double>(columns);
  return py::array_t<double>({static_cast<py::ssize_t>(rows), columns});
}

py::array_t<double> ToArray(const Joints& joints) { return py::array_t<double>(6, joints.data()); }

py::array_t<double> ToArray(const Vec3& vector) {
  const double numbers[] = {vector.x, vector.y, vector.z};
  return py::array_t<double>(3, numbers);
}

py::array_t<double> ToArray(const Transform& transform) {
  const double* r = transform.rotation;
  const Vec3& p = transform.position;
  const double numbers[] = {r[0], r[1], r[2], p.x, r[3], r[4], r[5], p.y,
                            r[6], r[7], r[8], p.z, 0,    0,    0,    1};
  return py::array_t<double>({4, 4}, numbers);
}

Transform ReadTransform(const py::handle& given, const char* name) {
  const py::array_t<double> numbers = ReadNumbers(given, name);
  if (numbers.ndim() != 2 || numbers.shape(0) != 4 || numbers.shape(1) != 4) {
    throw py::value_error(
        fmt::format("{}: a matrix of shape (4, 4) is expected, not {}", name, ShapeText(numbers)));
  }
  const double* m = numbers.data();
  if (m[12] != 0 || m[13] != 0 || m[14] != 0 || m[15] != 1) {
    throw py::value_error(fmt::format("{}: the last row is 0, 0, 0, 1", name));
  }
  Transform transform;
  for (int i = 0; i < 9; ++i) transform.rotation[i] = m[4 * (i / 3) + i % 3];
  transform.position = {m[3], m[7], m[11]};
  return transform;
}

py::object Loaded(const nlohmann::ordered_json& json) {
  return py::module_::import("json").attr("loads")(json.dump());
}

}  // namespace qal::python
