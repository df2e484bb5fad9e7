#ifndef QAL_SOLVER_CLOSED_FORM_LANES_H_
#define QAL_SOLVER_CLOSED_FORM_LANES_H_

#include <cmath>
#include <type_traits>

#include "lane_types.h"

/// What is done with lanes, however many there are.
namespace qal::closed_form {

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
      Few a = {};
      Few b = {};
      for (int lane = 0; lane < kStep; ++lane) {
        a[lane] = v[i][first + lane];
        b[lane] = v[i + 1][first + lane];
      }
      // Pairs of every other lane.
      Few even;
      Few odd;
      if constexpr (kStep == 2) {
        even = Few{a[0], b[0]};
        odd = Few{a[1], b[1]};
      } else {
        even = Few{a[0], b[0], a[2], b[2]};
        odd = Few{a[1], b[1], a[3], b[3]};
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
  L root = v;
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
