#ifndef QAL_SOLVER_CLOSED_FORM_LANE_TYPES_H_
#define QAL_SOLVER_CLOSED_FORM_LANE_TYPES_H_

#include <cstdint>

/// Numbers side by side, in the compiler's vector types. Arithmetic works on each of them as on a
/// number alone, so that what is computed doesn't depend on how many there are.
namespace qal::closed_form {

/// Of a function that is compiled for whatever processor its caller is compiled for (`widest.h`).
#define QAL_INLINED [[gnu::always_inline]] inline

/// Two numbers: as many as every processor takes. Arithmetic, comparisons and choices (`?:`) work
/// on each of them.
using Lanes = double __attribute__((vector_size(16)));
/// What a comparison of lanes gives: not 0 where it holds.
using Mask = decltype(Lanes() < Lanes());

constexpr Lanes kZero = {0, 0};
constexpr Lanes kOne = {1, 1};

/// Vectors of the compiler; the latter two of numbers and flags in memory.
template <int count>
struct LaneVector;
template <>
struct LaneVector<2> {
  using Numbers = Lanes;
  using Flags = Mask;
  using NumbersThere = double __attribute__((vector_size(16), may_alias));
  using FlagsThere = std::int64_t __attribute__((vector_size(16), may_alias));
};
template <>
struct LaneVector<4> {
  using Numbers = double __attribute__((vector_size(32)));
  using Flags = std::int64_t __attribute__((vector_size(32)));
  using NumbersThere = double __attribute__((vector_size(32), may_alias));
  using FlagsThere = std::int64_t __attribute__((vector_size(32), may_alias));
};
template <>
struct LaneVector<8> {
  using Numbers = double __attribute__((vector_size(64)));
  using Flags = std::int64_t __attribute__((vector_size(64)));
  using NumbersThere = double __attribute__((vector_size(64), may_alias));
  using FlagsThere = std::int64_t __attribute__((vector_size(64), may_alias));
};

/// What a comparison of wide lanes gives: -1 where it holds, else 0.
template <int count>
struct WideMask {
  typename LaneVector<count>::Flags flags;

  QAL_INLINED std::int64_t operator[](int i) const { return flags[i]; }
  QAL_INLINED friend WideMask operator&(const WideMask& a, const WideMask& b) {
    return {a.flags & b.flags};
  }
  QAL_INLINED friend WideMask operator|(const WideMask& a, const WideMask& b) {
    return {a.flags | b.flags};
  }
  QAL_INLINED friend WideMask operator&(const WideMask& a, std::int64_t bits) {
    return {a.flags & bits};
  }
  QAL_INLINED friend WideMask operator~(const WideMask& a) { return {~a.flags}; }
};

/// Four or eight numbers. A structure: a function can then take and give them whatever processor it
/// is compiled for.
template <int count>
struct WideLanes {
  using Numbers = typename LaneVector<count>::Numbers;
  using Flags = typename LaneVector<count>::Flags;
  using M = WideMask<count>;

  Numbers numbers;

  WideLanes() = default;
  // A number is the same in every lane.
  // cppcheck-suppress noExplicitConstructor
  QAL_INLINED WideLanes(double value) : numbers(value - Numbers{}) {}  // NOLINT(*-explicit-*)
  QAL_INLINED explicit WideLanes(const Numbers& values) : numbers(values) {}

  QAL_INLINED double operator[](int i) const { return numbers[i]; }

  QAL_INLINED friend WideLanes operator+(const WideLanes& a, const WideLanes& b) {
    return WideLanes(a.numbers + b.numbers);
  }
  QAL_INLINED friend WideLanes operator-(const WideLanes& a, const WideLanes& b) {
    return WideLanes(a.numbers - b.numbers);
  }
  QAL_INLINED friend WideLanes operator*(const WideLanes& a, const WideLanes& b) {
    return WideLanes(a.numbers * b.numbers);
  }
  QAL_INLINED friend WideLanes operator/(const WideLanes& a, const WideLanes& b) {
    return WideLanes(a.numbers / b.numbers);
  }
  QAL_INLINED friend WideLanes operator-(const WideLanes& a) { return WideLanes(-a.numbers); }
  QAL_INLINED WideLanes& operator+=(const WideLanes& b) { return *this = *this + b; }
  QAL_INLINED WideLanes& operator-=(const WideLanes& b) { return *this = *this - b; }

  QAL_INLINED friend M operator<(const WideLanes& a, const WideLanes& b) {
    return {a.numbers < b.numbers};
  }
  QAL_INLINED friend M operator>(const WideLanes& a, const WideLanes& b) {
    return {a.numbers > b.numbers};
  }
  QAL_INLINED friend M operator<=(const WideLanes& a, const WideLanes& b) {
    return {a.numbers <= b.numbers};
  }
  QAL_INLINED friend M operator>=(const WideLanes& a, const WideLanes& b) {
    return {a.numbers >= b.numbers};
  }
  QAL_INLINED friend M operator==(const WideLanes& a, const WideLanes& b) {
    return {a.numbers == b.numbers};
  }
};

/// `count` lanes.
template <int count>
struct LanesBy {
  using Type = WideLanes<count>;
};
template <>
struct LanesBy<2> {
  using Type = Lanes;
};
#ifndef __clang__
// g++ keeps vectors in registers, but moves some structures of them by pieces, which a processor
// waits for. clang has no such trouble, and refuses wide vectors as arguments of a function for
// every processor, inlined or not; g++ but warns of these.
#pragma GCC diagnostic ignored "-Wpsabi"
template <>
struct LanesBy<4> {
  using Type = LaneVector<4>::Numbers;
};
template <>
struct LanesBy<8> {
  using Type = LaneVector<8>::Numbers;
};
#endif
template <int count>
using LanesOf = typename LanesBy<count>::Type;

}  // namespace qal::closed_form

#endif  // QAL_SOLVER_CLOSED_FORM_LANE_TYPES_H_
