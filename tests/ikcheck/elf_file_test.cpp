#include "../../tools/ikcheck/elf_file.h"

#include <elf.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

#include "../../tools/common/error.h"
#include "../../tools/common/files.h"

namespace {

using qal::ikcheck::ExportedFunctions;

// The reason for which a file with this content is refused; empty: it isn't.
std::string Refusal(const std::string& content) {
  // Its own for each process, as tests run side by side.
  const std::string path =
      testing::TempDir() + "ikcheck_elf_file_test_" + std::to_string(::getpid());
  qal::tools::WriteFile(path, content);
  try {
    (void)ExportedFunctions(path);
    return "";
  } catch (const qal::tools::UsageError& error) {
    const std::string message = error.what();
    EXPECT_EQ(message.find(path + ": "), 0u) << message;
    return message.substr(std::min(message.size(), path.size() + 2));
  }
}

std::string SoundFile() { return qal::tools::ReadFile(QAL_SOUND_SOLVER); }

// The sound library with one value of its header changed.
template <typename Value>
std::string Patched(size_t offset, Value value) {
  std::string file = SoundFile();
  std::memcpy(file.data() + offset, &value, sizeof(value));
  return file;
}

TEST(ElfFile, ListsTheFunctionsThatTheLibraryDefines) {
  const auto functions = ExportedFunctions(QAL_SOUND_SOLVER);
  const auto count = [&](const char* name) {
    return std::count(functions.begin(), functions.end(), name);
  };
  EXPECT_EQ(count("_ZN6ikfast9ComputeFkEPKdPdS2_"), 1);
  EXPECT_EQ(count("_ZN6ikfast12GetNumJointsEv"), 1);
  EXPECT_EQ(count("_Znwm"), 0);  // it calls that, others define it
}

TEST(ElfFile, SaysWhatAFileIsThatIsNoLibraryForThisMachine) {
  EXPECT_EQ(Refusal(""), "not a shared library (no ELF file)");
  EXPECT_EQ(Refusal("#!/bin/sh\n"), "not a shared library (no ELF file)");
  EXPECT_EQ(Refusal(SoundFile().substr(0, 40)), "not a shared library (no ELF file)");
  EXPECT_EQ(Refusal(Patched<Elf64_Half>(18, EM_AARCH64)),
            "built for AArch64, this machine's programs are x86-64");
  EXPECT_EQ(Refusal(Patched<Elf64_Half>(18, EM_RISCV)),
            "built for machine number 243, this machine's programs are x86-64");
  EXPECT_EQ(Refusal(qal::tools::ReadFile(QAL_OBJECT_FILE)),
            "not a shared library but an object file; link it with g++ -shared");
  EXPECT_EQ(Refusal(Patched<Elf64_Half>(16, ET_EXEC)),
            "not a shared library but another kind of ELF file; link it with g++ -shared");
}

// Whatever a broken file says of where its parts are, nothing is read outside of it.
TEST(ElfFile, ReadsNothingOutsideABrokenFile) {
  const std::string sound = SoundFile();
  EXPECT_EQ(Refusal(sound.substr(0, 64)), "");
  for (size_t size = 64; size < sound.size(); size += 1 + sound.size() / 50) {
    EXPECT_EQ(Refusal(sound.substr(0, size)), "");
  }
  Elf64_Ehdr header;
  std::memcpy(&header, sound.data(), sizeof(header));
  for (const Elf64_Off offset : {Elf64_Off(0), sound.size() - 70, ~Elf64_Off(0) - 10}) {
    EXPECT_EQ(Refusal(Patched<Elf64_Off>(40, offset)), "");
  }
  // Section headers of nothing but 0xFF, and of small numbers.
  for (const char fill : {'\xFF', '\x0B'}) {
    std::string file = sound;
    std::fill(file.begin() + static_cast<std::ptrdiff_t>(header.e_shoff), file.end(), fill);
    EXPECT_EQ(Refusal(file), "");
  }
}

}  // namespace
