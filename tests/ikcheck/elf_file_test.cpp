#include "../../tools/ikcheck/elf_file.h"

#include <elf.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "../support/refusal.h"
#include "../support/tool_run.h"

namespace {

using qal::ikcheck::ExportedFunctions;

using ElfFile = InOwnFolder;

// What is said of a file with this content.
std::string Answer(const std::string& content) {
  std::ofstream("file", std::ios::binary) << content;
  return Refusal([] { ExportedFunctions("file"); });
}

// The sound library with one value of its header changed.
template <typename Value>
std::string Patched(size_t offset, Value value) {
  std::string file = FileContent(QAL_SOUND_SOLVER);
  std::memcpy(file.data() + offset, &value, sizeof(value));
  return file;
}

TEST_F(ElfFile, ListsTheFunctionsThatTheLibraryDefines) {
  const auto functions = ExportedFunctions(QAL_SOUND_SOLVER);
  const auto count = [&](const char* name) {
    return std::count(functions.begin(), functions.end(), name);
  };
  EXPECT_EQ(count("_ZN6ikfast9ComputeFkEPKdPdS2_"), 1);
  EXPECT_EQ(count("_ZN6ikfast12GetNumJointsEv"), 1);
  EXPECT_EQ(count("_Znwm"), 0);  // it calls that, others define it
}

TEST_F(ElfFile, SaysWhatAFileIsThatIsNoLibraryForThisMachine) {
  const std::string sound = FileContent(QAL_SOUND_SOLVER);
  const std::pair<std::string, const char*> files[] = {
      {"", "file: not a shared library (no ELF file)"},
      {sound.substr(0, 40), "file: not a shared library (no ELF file)"},
      {Patched<Elf64_Half>(18, EM_AARCH64),
       "file: built for AArch64, this machine's programs are x86-64"},
      {Patched<Elf64_Half>(18, EM_RISCV),
       "file: built for machine number 243, this machine's programs are x86-64"},
      {FileContent(QAL_OBJECT_FILE),
       "file: not a shared library but an object file; link it with g++ -shared"},
      {Patched<Elf64_Half>(16, ET_EXEC),
       "file: not a shared library but another kind of ELF file; link it with g++ -shared"},
  };
  for (const auto& [content, message] : files) EXPECT_EQ(Answer(content), message);
}

// Whatever a broken file says of where its parts are, nothing is read outside of it.
TEST_F(ElfFile, ReadsNothingOutsideABrokenFile) {
  const std::string sound = FileContent(QAL_SOUND_SOLVER);
  const auto is_cut = [](const std::string& content) {
    return Answer(content) == "file: not a whole shared library, it is cut off after " +
                                  std::to_string(content.size()) + " bytes; copy or link it again";
  };
  Elf64_Ehdr header;
  std::memcpy(&header, sound.data(), sizeof(header));
  for (const size_t size : {64u, 200u, 1000u, 5000u}) EXPECT_TRUE(is_cut(sound.substr(0, size)));
  EXPECT_TRUE(is_cut(Patched<Elf64_Off>(header.e_phoff + offsetof(Elf64_Phdr, p_offset), ~0UL)));
  EXPECT_TRUE(is_cut(Patched<Elf64_Off>(32, sound.size() - 10)));
  for (const Elf64_Off offset : {Elf64_Off(0), sound.size() - 70, ~Elf64_Off(0) - 10}) {
    EXPECT_EQ(Answer(Patched<Elf64_Off>(40, offset)), "not refused");
  }
  // Section headers of nothing but 0xFF, and of small numbers.
  for (const char fill : {'\xFF', '\x0B'}) {
    std::string file = sound;
    std::fill(file.begin() + static_cast<std::ptrdiff_t>(header.e_shoff), file.end(), fill);
    EXPECT_EQ(Answer(file), "not refused");
  }
}

}  // namespace
