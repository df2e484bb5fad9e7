#include <algorithm>
#include <cstdint>
#include <cstring>
#include <random>

extern "C" size_t LLVMFuzzerMutate(uint8_t* data, size_t size, size_t max_size);

// Changes an input as libFuzzer does, but now and then repeats a piece of it many times: what
// nests, and what there is too much of, is found in large inputs, and libFuzzer grows none.
extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t max_size,
                                          unsigned int seed) {
  std::minstd_rand random(seed);
  constexpr unsigned kOneIn = 64;
  if (size == 0 || random() % kOneIn != 0) return LLVMFuzzerMutate(data, size, max_size);
  const size_t begin = random() % size;
  const size_t piece = std::min<size_t>(1 + random() % 16, size - begin);
  const size_t room = (max_size - size) / piece;
  const size_t times = room >> (random() % 20);
  const size_t grown = piece * times;
  std::memmove(data + begin + grown, data + begin, size - begin);
  for (size_t i = 0; i < grown; ++i) data[begin + i] = data[begin + grown + i % piece];
  return size + grown;
}
