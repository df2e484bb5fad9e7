#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, size_t size);

// Stands in for libFuzzer: runs every file of a folder through the harness.
int main(int argc, char** argv) {
  int count = 0;
  for (const auto& entry : std::filesystem::directory_iterator(argv[argc - 1])) {
    std::ifstream file(entry.path(), std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
    (void)LLVMFuzzerTestOneInput(reinterpret_cast<const unsigned char*>(bytes.data()),
                                 bytes.size());
    ++count;
  }
  std::printf("%d inputs\n", count);
  return count > 0 ? 0 : 1;
}
