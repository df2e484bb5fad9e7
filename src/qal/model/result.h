#ifndef QAL_MODEL_RESULT_H_
#define QAL_MODEL_RESULT_H_

#include <utility>
#include <variant>

#include "error.h"

namespace qal {

/// A value, or why there is none: a subset of C++23's `std::expected`.
template <class T, class E = Error>
class [[nodiscard]] Result {
 public:
  using error_type = E;

  // Implicit, so that a function returns either.
  // cppcheck-suppress noExplicitConstructor
  Result(T value) : held_(std::in_place_index<0>, std::move(value)) {}  // NOLINT(*-explicit-*)
  // cppcheck-suppress noExplicitConstructor
  Result(E error) : held_(std::in_place_index<1>, std::move(error)) {}  // NOLINT(*-explicit-*)

  /// A value that is made where it is returned.
  template <class... Args>
  explicit Result(std::in_place_t /*value*/, Args&&... args)
      : held_(std::in_place_index<0>, std::forward<Args>(args)...) {}

  bool has_value() const { return held_.index() == 0; }
  explicit operator bool() const { return has_value(); }

  /// @throw std::bad_variant_access when there is none: a fault of the caller
  const T& value() const& { return std::get<0>(held_); }
  T& value() & { return std::get<0>(held_); }
  T&& value() && { return std::get<0>(std::move(held_)); }
  const T& operator*() const& { return value(); }
  T& operator*() & { return value(); }
  T&& operator*() && { return std::move(*this).value(); }
  const T* operator->() const { return &value(); }
  T* operator->() { return &value(); }

  /// @throw std::bad_variant_access when there is a value: a fault of the caller
  const E& error() const { return std::get<1>(held_); }

 private:
  std::variant<T, E> held_;
};

}  // namespace qal

#endif  // QAL_MODEL_RESULT_H_
