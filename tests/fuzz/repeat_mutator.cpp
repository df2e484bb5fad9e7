#include <algorithm>
#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

extern "C" size_t LLVMFuzzerMutate(uint8_t* data, size_t size, size_t max_size);

// Changes an input as libFuzzer does; but what it inserts, a word of the dictionary or a few bytes,
// is now and then inserted many times: what nests, and what there is too much of, is found in large
// inputs, and libFuzzer grows none.
extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t max_size,
                                          unsigned int seed) {
  const std::vector<uint8_t> before(data, data + size);
  const size_t changed = LLVMFuzzerMutate(data, size, max_size);
  std::minstd_rand random(seed);
  constexpr unsigned kOneIn = 8;
  constexpr size_t kLongest = 64;
  if (random() % kOneIn != 0 || changed <= size || changed > size + kLongest) return changed;
  const size_t piece = changed - size;
  const auto begin =
      static_cast<size_t>(std::mismatch(before.begin(), before.end(), data).first - before.begin());
  const size_t times = ((max_size - changed) / piece) >> (random() % 12);
  const size_t grown = piece * times;
  std::memmove(data + begin + grown, data + begin, changed - begin);
  for (size_t i = 0; i < grown; ++i) data[begin + i] = data[begin + grown + i % piece];
  return changed + grown;
}
