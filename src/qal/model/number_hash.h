#ifndef QAL_MODEL_NUMBER_HASH_H_
#define QAL_MODEL_NUMBER_HASH_H_

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>

// Internal: a text by which numbers are told from others.
namespace qal {

/// FNV-1a over the bits of numbers: the same ones have the same text on every machine.
class NumberHash {
 public:
  void Add(double value) {
    value += 0.0;  // -0 is 0
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof(bits));
    for (int i = 0; i < 64; i += 8) hash_ = (hash_ ^ ((bits >> i) & 0xffu)) * 0x100000001b3u;
  }

  /// 16 digits.
  std::string Text() const {
    char text[17];
    (void)std::snprintf(text, sizeof(text), "%016llx", static_cast<unsigned long long>(hash_));
    return text;
  }

 private:
  std::uint64_t hash_ = 0xcbf29ce484222325u;
};

}  // namespace qal

#endif  // QAL_MODEL_NUMBER_HASH_H_
