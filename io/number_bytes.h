#ifndef QAL_IO_NUMBER_BYTES_H_
#define QAL_IO_NUMBER_BYTES_H_

#include <cstdint>
#include <string>
#include <string_view>

namespace qal::io {

/// Bytes as text: RFC 4648, with padding.
std::string Base64(std::string_view bytes);

/// Numbers as the bytes of a typed array, the lowest byte first whatever the machine.
class NumberBytes {
 public:
  void Add(double value);
  void Add(float value);
  void Add(uint32_t value) { AddBytes(value, sizeof(value)); }
  /// A whole number in the lowest `count` of its bytes.
  void AddBytes(uint64_t value, size_t count);
  const std::string& bytes() const { return bytes_; }
  std::string Text() const { return Base64(bytes_); }

 private:
  std::string bytes_;
};

}  // namespace qal::io

#endif  // QAL_IO_NUMBER_BYTES_H_
