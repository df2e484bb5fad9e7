#ifndef QAL_TESTS_SUPPORT_DECODED_H_
#define QAL_TESTS_SUPPORT_DECODED_H_

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

/// The numbers of type Number in a base64 text.
template <typename Number>
std::vector<Number> Decoded(const std::string& text) {
  const std::string digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string bytes;
  for (size_t i = 0; i + 4 <= text.size(); i += 4) {
    size_t group = 0;
    for (size_t j = 0; j < 4; ++j) group = group << 6 | (digits.find(text[i + j]) & 63U);
    for (const int shift : {16, 8, 0}) bytes += static_cast<char>(group >> shift & 255U);
  }
  std::vector<Number> numbers(
      (bytes.size() - static_cast<size_t>(std::count(text.begin(), text.end(), '='))) /
      sizeof(Number));
  std::memcpy(numbers.data(), bytes.data(), numbers.size() * sizeof(Number));
  return numbers;
}

#endif  // QAL_TESTS_SUPPORT_DECODED_H_
