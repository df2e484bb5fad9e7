#include "elf_file.h"

#include <elf.h>
#include <fmt/format.h>

#include <cstring>
#include <fstream>
#include <optional>

#include "../../io/error.h"
#include "../../io/files.h"
#include "../../io/limits.h"

namespace qal::ikcheck {

namespace {

// The value at an offset, unless the file ends before.
template <typename T>
std::optional<T> At(const std::string& file, size_t offset) {
  if (offset > file.size() || file.size() - offset < sizeof(T)) return std::nullopt;
  T value;
  std::memcpy(&value, file.data() + offset, sizeof(T));
  return value;
}

std::string MachineName(const Elf64_Ehdr& header) {
  switch (header.e_machine) {  // at the same place in 32-bit files
    case EM_386:
      return "x86, 32 bits";
    case EM_X86_64:
      return header.e_ident[EI_CLASS] == ELFCLASS64 ? "x86-64" : "x86-64, 32-bit addresses";
    case EM_ARM:
      return "ARM, 32 bits";
    case EM_AARCH64:
      return "AArch64";
    default:
      return fmt::format("machine number {}", header.e_machine);
  }
}

bool SameMachine(const Elf64_Ehdr& a, const Elf64_Ehdr& b) {
  return a.e_machine == b.e_machine && a.e_ident[EI_CLASS] == b.e_ident[EI_CLASS] &&
         a.e_ident[EI_DATA] == b.e_ident[EI_DATA];
}

// This program's own, which says what a library has to be for.
Elf64_Ehdr OwnHeader() {
  Elf64_Ehdr header = {};
  std::ifstream("/proc/self/exe", std::ios::binary)
      .read(reinterpret_cast<char*>(&header), sizeof(header));
  return header;
}

Elf64_Ehdr CheckedHeader(const std::string& path, const std::string& file) {
  const auto header = At<Elf64_Ehdr>(file, 0);
  if (!header || std::memcmp(header->e_ident, ELFMAG, SELFMAG) != 0) {
    throw io::UsageError(path + ": not a shared library (no ELF file)");
  }
  const Elf64_Ehdr own = OwnHeader();
  if (!SameMachine(*header, own)) {
    throw io::UsageError(fmt::format("{}: built for {}, this machine's programs are {}", path,
                                     MachineName(*header), MachineName(own)));
  }
  if (header->e_type != ET_DYN) {
    throw io::UsageError(
        fmt::format("{}: not a shared library but {}; link it with g++ -shared", path,
                    header->e_type == ET_REL ? "an object file" : "another kind of ELF file"));
  }
  return *header;
}

void AppendFunctions(const std::string& file, const Elf64_Shdr& table, const Elf64_Shdr& names,
                     std::vector<std::string>& functions) {
  for (size_t offset = 0; offset < table.sh_size; offset += sizeof(Elf64_Sym)) {
    const auto symbol = At<Elf64_Sym>(file, table.sh_offset + offset);
    if (!symbol) return;
    const size_t name = names.sh_offset + symbol->st_name;
    if (ELF64_ST_TYPE(symbol->st_info) != STT_FUNC || symbol->st_shndx == SHN_UNDEF ||
        name >= file.size()) {
      continue;
    }
    functions.emplace_back(file, name, file.find('\0', name) - name);
  }
}

}  // namespace

std::vector<std::string> ExportedFunctions(const std::string& path) {
  const std::string file = io::ReadFile(path, io::kLargestLibrary);
  const Elf64_Ehdr header = CheckedHeader(path, file);
  const auto section = [&](size_t index) {
    return At<Elf64_Shdr>(file, header.e_shoff + index * sizeof(Elf64_Shdr));
  };
  std::vector<std::string> functions;
  for (size_t i = 0; i < header.e_shnum; ++i) {
    const auto table = section(i);
    if (!table || table->sh_type != SHT_DYNSYM) continue;
    if (const auto names = section(table->sh_link)) {
      AppendFunctions(file, *table, *names, functions);
    }
  }
  return functions;
}

}  // namespace qal::ikcheck
