#ifndef QAL_CORE_DECIMALS_H_
#define QAL_CORE_DECIMALS_H_

#include <limits>
#include <optional>

namespace qal {

/// `value` truncated toward zero; nothing when the result does not fit an `int` (NaN included).
inline std::optional<int> TruncateToInt(double value) {
  // The bounds lie one past the limits since the fraction is cut off. NaN fails both comparisons.
  if (value > std::numeric_limits<int>::min() - 1.0 &&
      value < std::numeric_limits<int>::max() + 1.0) {
    return static_cast<int>(value);
  }
  return std::nullopt;
}

/// `num` cut to the decimals that `scale` keeps: trunc(`num` * `scale` + 0.5) * `unit`.
/// The truncation is toward zero for negative numbers too. A value whose scaled form does not fit
/// an `int` comes back unchanged.
inline double CutDecimals(double num, double scale, double unit) {
  const std::optional<int> scaled = TruncateToInt(num * scale + 0.5);
  return scaled ? *scaled * unit : num;
}

// The units are held in single precision; their digits are part of every cut number
// (1.0 cut to six decimals is 0.9999999974752427).
inline double CutSixDecimals(double num) {
  return CutDecimals(num, 1000000.0, static_cast<double>(1e-6f));
}
inline double CutFourDecimals(double num) {
  return CutDecimals(num, 10000.0, static_cast<double>(1e-4f));
}

}  // namespace qal

#endif  // QAL_CORE_DECIMALS_H_
