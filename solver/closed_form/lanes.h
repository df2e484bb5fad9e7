#ifndef QAL_SOLVER_CLOSED_FORM_LANES_H_
#define QAL_SOLVER_CLOSED_FORM_LANES_H_

#include <cmath>
#include <cstdint>
#include <type_traits>

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

template <class L>
constexpr int kLaneCount = sizeof(L) / sizeof(double);
template <class L>
using MaskOf = decltype(L() < L());

template <class V>
QAL_INLINED void SetLane(V& v, int i, double value) {
  v[i] = value;
}
template <int count>
QAL_INLINED void SetLane(WideLanes<count>& v, int i, double value) {
  v.numbers[i] = value;
}

// The compiler's vectors of lanes and of masks.
template <class V>
QAL_INLINED const V& VectorOf(const V& v) {
  return v;
}
template <int count>
QAL_INLINED const auto& VectorOf(const WideLanes<count>& v) {
  return v.numbers;
}
template <int count>
QAL_INLINED const auto& VectorOf(const WideMask<count>& mask) {
  return mask.flags;
}

// The same bits, as flags and as numbers.
template <class L>
QAL_INLINED MaskOf<L> BitsOf(const L& v) {
  using Flags = std::decay_t<decltype(VectorOf(MaskOf<L>()))>;
  return MaskOf<L>{Flags(VectorOf(v))};
}
template <class L>
QAL_INLINED L FromBits(const MaskOf<L>& bits) {
  using Numbers = std::decay_t<decltype(VectorOf(L()))>;
  return L(Numbers(VectorOf(bits)));
}

/// `value` in every lane.
template <class L>
QAL_INLINED L Each(double value) {
  return value - L{};  // not 0 + value, which would take the sign of -0
}

/// Numbers, or flags, that lie one after the other, aligned as the lanes are.
template <class L>
QAL_INLINED L Load(const double* from) {
  using There = typename LaneVector<kLaneCount<L>>::NumbersThere;
  using Numbers = typename LaneVector<kLaneCount<L>>::Numbers;
  return L(Numbers(*reinterpret_cast<const There*>(from)));  // NOLINT(*-reinterpret-cast)
}
template <class L>
QAL_INLINED void Store(const L& v, double* to) {
  using There = typename LaneVector<kLaneCount<L>>::NumbersThere;
  *reinterpret_cast<There*>(to) = VectorOf(v);  // NOLINT(*-reinterpret-cast)
}
template <class L>
QAL_INLINED MaskOf<L> LoadFlags(const std::int64_t* from) {
  using There = typename LaneVector<kLaneCount<L>>::FlagsThere;
  using Flags = typename LaneVector<kLaneCount<L>>::Flags;
  return MaskOf<L>{Flags(*reinterpret_cast<const There*>(from))};  // NOLINT(*-reinterpret-cast)
}
template <class L>
QAL_INLINED void StoreFlags(const MaskOf<L>& mask, std::int64_t* to) {
  using There = typename LaneVector<kLaneCount<L>>::FlagsThere;
  *reinterpret_cast<There*>(to) = VectorOf(mask);  // NOLINT(*-reinterpret-cast)
}

/// Six numbers of each lane, to an address for each lane.
template <class L>
QAL_INLINED void StoreByLane(const L (&v)[6], double* const (&to)[kLaneCount<L>]) {
  constexpr int kStep = kLaneCount<L> == 2 ? 2 : 4;
  using Few = typename LaneVector<kStep>::Numbers;
  for (int first = 0; first < kLaneCount<L>; first += kStep) {
    for (int i = 0; i < 6; i += 2) {
      Few a;
      Few b;
      for (int lane = 0; lane < kStep; ++lane) {
        a[lane] = v[i][first + lane];
        b[lane] = v[i + 1][first + lane];
      }
      // Pairs of every other lane.
      Few even;
      Few odd;
      if constexpr (kStep == 2) {
        even = __builtin_shufflevector(a, b, 0, 2);
        odd = __builtin_shufflevector(a, b, 1, 3);
      } else {
        even = __builtin_shufflevector(a, b, 0, 4, 2, 6);
        odd = __builtin_shufflevector(a, b, 1, 5, 3, 7);
      }
      for (int lane = 0; lane < kStep; ++lane) {
        const Few& pairs = lane % 2 == 0 ? even : odd;
        for (int k = 0; k < 2; ++k) to[first + lane][i + k] = pairs[lane / 2 * 2 + k];
      }
    }
  }
}

template <class M>
QAL_INLINED bool Any(const M& mask) {
  std::int64_t any = 0;
  for (int i = 0; i < static_cast<int>(sizeof(M) / sizeof(any)); ++i) any |= mask[i];
  return any != 0;
}

/// A comparison that is combined with others by `&`, `|` and `~`.
template <class L>
QAL_INLINED MaskOf<L> Flag(const MaskOf<L>& mask) {
#if defined(__x86_64__) && !defined(__clang__)
  if constexpr (kLaneCount<L> == 8) {
    // g++ 12 compares one number after the other, unless it is to choose by the result.
    MaskOf<L> ones = ~MaskOf<L>{};
    __asm__("" : "+v"(ones));
    return mask ? ones : MaskOf<L>{};
  }
#endif
  return mask;
}

/// `yes` where the mask holds, else `no`.
template <class L>
QAL_INLINED L Select(const MaskOf<L>& mask, const L& yes, const L& no) {
  return L(VectorOf(mask) ? VectorOf(yes) : VectorOf(no));
}

/// `v` where the mask holds, else 0.
template <class L>
QAL_INLINED L Where(const MaskOf<L>& mask, const L& v) {
  // AVX-512 keeps its masks elsewhere.
  if constexpr (kLaneCount<L> == 8) return Select<L>(mask, v, L{});
  return FromBits<L>(mask & BitsOf(v));
}

/// The sign's bit of each lane, with the others at 0.
template <class L>
QAL_INLINED MaskOf<L> SignBits() {
  return BitsOf(Each<L>(-0.0));
}
/// `v`, with the other sign where the sign's bit is set.
template <class L>
QAL_INLINED L WithSign(const MaskOf<L>& signs, const L& v) {
  return FromBits<L>(MaskOf<L>{VectorOf(signs) ^ VectorOf(BitsOf(v))});
}
/// `v`, with the other sign where the mask holds.
template <class L>
QAL_INLINED L NegatedWhere(const MaskOf<L>& mask, const L& v) {
  if constexpr (kLaneCount<L> == 8) return Select<L>(mask, -v, v);
  return WithSign<L>(mask & SignBits<L>(), v);
}
template <class L>
QAL_INLINED L Abs(const L& v) {
  return FromBits<L>(~SignBits<L>() & BitsOf(v));
}

/// Where the last bit is set.
template <class M>
QAL_INLINED M LastBit(const M& bits) {
  return M{-(VectorOf(bits) & 1)};
}
/// The sign's bit where the last bit but one is set.
template <class M>
QAL_INLINED M SecondLastBitAsSign(const M& bits) {
  return M{(VectorOf(bits) >> 1) << 63};
}

/// The root; NaN of what is negative.
template <class L>
QAL_INLINED L Root(const L& v) {
  L root;
  for (int i = 0; i < kLaneCount<L>; ++i) SetLane(root, i, std::sqrt(v[i]));
  return root;
}

/// The root; 0 of what is negative.
template <class L>
QAL_INLINED L Sqrt(const L& v) {
  return Root(Where<L>(v > Each<L>(0), v));
}

/// `v`, but not further from zero than `most`.
template <class L>
QAL_INLINED L Clamped(const L& v, const L& most) {
  return Select<L>(v > most, most, Select<L>(v < -most, -most, v));
}

}  // namespace qal::closed_form

#endif  // QAL_SOLVER_CLOSED_FORM_LANES_H_
