#ifndef QAL_TESTS_BITS_DIGEST_H_
#define QAL_TESTS_BITS_DIGEST_H_

#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "core/roadpoint.h"

/// FNV-1a over 64 bits at once, of the bits of numbers.
class Digest {
 public:
  /// @param unit 0: every bit counts; otherwise only this much does
  explicit Digest(double unit = 0) : unit_(unit) {}

  void Add(double value) {
    std::uint64_t bits = 0;
    // The quarter keeps the ends of decimals off the edge; the zero makes -0 a 0.
    if (unit_ > 0) value = std::nearbyint(value / unit_ + 0.25) + 0.0;
    // Which of the NaNs it is depends on the processor.
    if (std::isnan(value)) value = std::fabs(static_cast<double>(NAN));
    std::memcpy(&bits, &value, sizeof(bits));
    hash_ = (hash_ ^ bits) * 0x100000001b3;
    hash_ ^= hash_ >> 29;
    ++count_;
  }
  void Add(const Ori& q) {
    for (const double part : {q.w, q.x, q.y, q.z}) Add(part);
  }
  void Add(const RoadPoint& point) {
    for (const double part : {point.position.x, point.position.y, point.position.z}) Add(part);
    Add(point.orientation);
    for (const double joint : point.jointpos) Add(joint);
    Add(point.ik_flag ? 1.0 : 0.0);
  }
  void Add(const std::vector<RoadPoint>& points) {
    Add(static_cast<double>(points.size()));
    for (const RoadPoint& point : points) Add(point);
  }
  void Add(const std::string& text) {
    for (const char letter : text) Add(static_cast<double>(letter));
  }

  unsigned long long hash() const { return hash_; }
  long count() const { return count_; }

 private:
  double unit_;
  std::uint64_t hash_ = 0xcbf29ce484222325;
  long count_ = 0;
};

#endif  // QAL_TESTS_BITS_DIGEST_H_
