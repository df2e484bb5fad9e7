#ifndef QAL_TESTS_ROBUSTNESS_BYTE_INPUT_H_
#define QAL_TESTS_ROBUSTNESS_BYTE_INPUT_H_

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <vector>

using Bytes = std::vector<uint8_t>;

/// Whether sums, products and quotients of a few such numbers stay finite.
inline bool IsOrdinary(double number) {
  const double size = std::fabs(number);
  return size == 0 || (size >= 1e-100 && size <= 1e6);
}

/// Arguments drawn from bytes, a fuzzer's or random ones. Zeros when they have run out.
class ByteInput {
 public:
  explicit ByteInput(const Bytes& bytes) : at_(bytes.data()), end_(at_ + bytes.size()) {}

  template <typename T>
  T Take() {
    T value{};
    const size_t count = std::min(sizeof(T), static_cast<size_t>(end_ - at_));
    if (count > 0) std::memcpy(&value, at_, count);
    at_ += count;
    return value;
  }

  /// A joint angle or a coordinate: most in +-3.28, some at the bounds, not finite, or any at all.
  double Number() {
    constexpr double kBound = 2.967059678;
    constexpr double kOdd[] = {
        0,    -0.0,  kBound,    kBound + 1e-15, -kBound, 1e-5, -1e-5, 5e-324,
        1e-9, 1.2e5, -HUGE_VAL, HUGE_VAL,       NAN,     1e15, 1e300, 1.5707963267948966};
    const auto kind = Take<uint8_t>();
    if (kind == 0) return kOdd[Take<uint8_t>() % 16];
    return kind == 1 ? Take<double>() : Take<int16_t>() * 1e-4;
  }

  /// A speed or a count: most up to 20 or 400, some at an int's ends, or any at all.
  int Whole() {
    constexpr int kOdd[] = {0, 1, -1, 2, 46341, INT32_MAX, -INT32_MAX, INT32_MIN};
    const auto kind = Take<uint16_t>();
    if (kind < 8) return kOdd[kind];
    return kind < 16 ? Take<int>() : kind % (kind % 2 == 0 ? 21 : 401);
  }

 private:
  const uint8_t* at_;
  const uint8_t* end_;
};

#endif  // QAL_TESTS_ROBUSTNESS_BYTE_INPUT_H_
