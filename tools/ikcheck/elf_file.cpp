#include "elf_file.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <gelf.h>
#include <unistd.h>

#include <algorithm>
#include <memory>

#include "../../io/error.h"
#include "../../io/files.h"
#include "../../io/limits.h"

namespace qal::ikcheck {

namespace {

using File = std::unique_ptr<Elf, decltype(&elf_end)>;

std::string MachineName(const GElf_Ehdr& header) {
  switch (header.e_machine) {
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

bool SameMachine(const GElf_Ehdr& a, const GElf_Ehdr& b) {
  return a.e_machine == b.e_machine && a.e_ident[EI_CLASS] == b.e_ident[EI_CLASS] &&
         a.e_ident[EI_DATA] == b.e_ident[EI_DATA];
}

// This program's own, which says what a library has to be for.
GElf_Ehdr OwnHeader() {
  GElf_Ehdr header = {};
  const int file = ::open("/proc/self/exe", O_RDONLY | O_CLOEXEC);
  (void)gelf_getehdr(File(elf_begin(file, ELF_C_READ, nullptr), elf_end).get(), &header);
  (void)::close(file);
  return header;
}

// Whether the file has all that its program headers would have loaded.
bool IsWhole(Elf* file, const GElf_Ehdr& header, size_t size) {
  for (int i = 0; i < header.e_phnum; ++i) {
    GElf_Phdr part;
    if (gelf_getphdr(file, i, &part) == nullptr || part.p_offset > size ||
        part.p_filesz > size - part.p_offset) {
      return false;
    }
  }
  return true;
}

void CheckHeader(const std::string& path, Elf* file, size_t size) {
  GElf_Ehdr header;
  if (elf_kind(file) != ELF_K_ELF || gelf_getehdr(file, &header) == nullptr) {
    throw io::UsageError(path + ": not a shared library (no ELF file)");
  }
  const GElf_Ehdr own = OwnHeader();
  if (!SameMachine(header, own)) {
    throw io::UsageError(fmt::format("{}: built for {}, this machine's programs are {}", path,
                                     MachineName(header), MachineName(own)));
  }
  if (header.e_type != ET_DYN) {
    throw io::UsageError(
        fmt::format("{}: not a shared library but {}; link it with g++ -shared", path,
                    header.e_type == ET_REL ? "an object file" : "another kind of ELF file"));
  }
  if (!IsWhole(file, header, size)) {
    throw io::UsageError(fmt::format(
        "{}: not a whole shared library, it is cut off after {} bytes; copy or link it again", path,
        size));
  }
}

}  // namespace

std::vector<std::string> ExportedFunctions(const std::string& path) {
  std::string bytes = io::ReadFile(path, io::kLargestLibrary);
  (void)elf_version(EV_CURRENT);
  const File file(elf_memory(bytes.data(), bytes.size()), elf_end);
  CheckHeader(path, file.get(), bytes.size());
  std::vector<std::string> functions;
  for (Elf_Scn* section = nullptr; (section = elf_nextscn(file.get(), section)) != nullptr;) {
    GElf_Shdr header;
    Elf_Data* const table = elf_getdata(section, nullptr);
    if (gelf_getshdr(section, &header) == nullptr || header.sh_type != SHT_DYNSYM) continue;
    GElf_Sym symbol;
    for (int i = 0; gelf_getsym(table, i, &symbol) != nullptr; ++i) {
      const char* const name = elf_strptr(file.get(), header.sh_link, symbol.st_name);
      if (GELF_ST_TYPE(symbol.st_info) == STT_FUNC && symbol.st_shndx != SHN_UNDEF &&
          name != nullptr) {
        functions.emplace_back(name);
      }
    }
  }
  std::sort(functions.begin(), functions.end());  // as linkers order them, it is another each time
  return functions;
}

}  // namespace qal::ikcheck
