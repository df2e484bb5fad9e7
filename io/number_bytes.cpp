#include "number_bytes.h"

#include <algorithm>
#include <cstring>

namespace qal::io {

std::string Base64(std::string_view bytes) {
  constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (size_t i = 0; i < bytes.size(); i += 3) {
    const size_t count = std::min<size_t>(3, bytes.size() - i);
    uint32_t group = 0;
    for (size_t j = 0; j < 3; ++j) {
      group = group << 8 | (j < count ? static_cast<unsigned char>(bytes[i + j]) : 0U);
    }
    for (size_t j = 0; j < 4; ++j) {
      text += j <= count ? kDigits[group >> (18 - 6 * j) & 63] : '=';
    }
  }
  return text;
}

void NumberBytes::Add(double value) {
  uint64_t bits = 0;
  std::memcpy(&bits, &value, sizeof(bits));
  AddBytes(bits, sizeof(bits));
}

void NumberBytes::Add(float value) {
  uint32_t bits = 0;
  std::memcpy(&bits, &value, sizeof(bits));
  AddBytes(bits, sizeof(bits));
}

void NumberBytes::AddBytes(uint64_t value, size_t count) {
  for (size_t i = 0; i < count; ++i) bytes_ += static_cast<char>(value >> (8 * i) & 255);
}

}  // namespace qal::io
