#ifndef QAL_MODEL_RESULT_H_
#define QAL_MODEL_RESULT_H_

/// @file
/// A value, or why there is none.

#include <utility>
#include <variant>

#include "error.h"

namespace qal {

/// A value, or why there is none: a subset of C++23's `std::expected`.
///
///     const qal::Result<qal::Pose> pose = qal::Forward(arm, joints);
///     if (!pose) return Fail(pose.error());
///     Use(pose->position);
template <class T, class E = Error>
class [[nodiscard]] Result {
 public:
  /// What `error` gives.
  using error_type = E;

  // Implicit, so that a function returns either.
  /// With a value.
  // cppcheck-suppress noExplicitConstructor
  Result(T value) : held_(std::in_place_index<0>, std::move(value)) {}  // NOLINT(*-explicit-*)
  /// Without one.
  // cppcheck-suppress noExplicitConstructor
  Result(E error) : held_(std::in_place_index<1>, std::move(error)) {}  // NOLINT(*-explicit-*)

  /// With a value that is made in place of `args`.
  template <class... Args>
  explicit Result(std::in_place_t /*value*/, Args&&... args)
      : held_(std::in_place_index<0>, std::forward<Args>(args)...) {}

  /// Whether there is a value; otherwise there is an error.
  bool has_value() const { return held_.index() == 0; }
  /// `has_value`, so that a result can be tested as it stands.
  explicit operator bool() const { return has_value(); }

  /// @name The value
  /// Each throws `std::bad_variant_access` when there is none: a fault of the caller.
  /// @{
  const T& value() const& { return std::get<0>(held_); }    ///< to be read
  T& value() & { return std::get<0>(held_); }               ///< to be changed
  T&& value() && { return std::get<0>(std::move(held_)); }  ///< to be moved from
  const T& operator*() const& { return value(); }           ///< as `value`
  T& operator*() & { return value(); }                      ///< as `value`
  T&& operator*() && { return std::move(*this).value(); }   ///< as `value`
  const T* operator->() const { return &value(); }          ///< a member of the value
  T* operator->() { return &value(); }                      ///< a member of the value
  /// @}

  /// Why there is no value.
  /// @throw std::bad_variant_access when there is a value: a fault of the caller
  const E& error() const { return std::get<1>(held_); }

 private:
  std::variant<T, E> held_;
};

}  // namespace qal

#endif  // QAL_MODEL_RESULT_H_
