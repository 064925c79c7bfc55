#include "loader/elf_file.h"

#include <gelf.h>
#include <libelf.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstring>

#include "facts/file_snapshot.h"

namespace vestra::inspect {
namespace {

// libelf allocates what a header asks for: no real library has larger tables.
constexpr GElf_Xword LARGEST_SECTION = 64U << 20U;
constexpr std::size_t LONGEST_PATH = 4096;

/// An open regular file and libelf's handle on it.
class OpenElf {
 public:
  explicit OpenElf(const std::string& path) : descriptor(openToLook(path)) {
    if (descriptor >= 0 && isForThisMachine()) {
      elf_version(EV_CURRENT);
      elf = elf_begin(descriptor, ELF_C_READ, nullptr);
    }
  }
  OpenElf(const OpenElf&) = delete;
  OpenElf& operator=(const OpenElf&) = delete;
  ~OpenElf() {
    elf_end(elf);
    if (descriptor >= 0) {
      close(descriptor);
    }
  }

  Elf* get() const { return elf; }

  /// The NUL-terminated text at an offset.
  std::string textAt(GElf_Off offset) const {
    std::array<char, LONGEST_PATH> text{};
    const ssize_t length = pread(descriptor, text.data(), text.size() - 1, static_cast<off_t>(offset));
    return length > 0 ? std::string(text.data()) : std::string();
  }

 private:
  // Without a number of sections libelf believes the first section's header, which may claim 2^32.
  bool isForThisMachine() {
    struct stat status {};
    return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) &&
           pread(descriptor, &header, sizeof header, 0) == static_cast<ssize_t>(sizeof header) &&
           std::memcmp(header.e_ident, ELFMAG, SELFMAG) == 0 && header.e_ident[EI_CLASS] == ELFCLASS64 &&
           header.e_machine == EM_X86_64 && (header.e_shnum != 0 || header.e_shoff == 0);
  }

  int descriptor;
  Elf64_Ehdr header{};
  Elf* elf = nullptr;
};

/// The table of a section and the strings that it refers to.
struct Table {
  Elf_Data* data = nullptr;
  std::size_t strings = 0;
  std::size_t size = 0;
};

bool isLoadable(Elf_Scn* section, GElf_Shdr& header) {
  return section != nullptr && gelf_getshdr(section, &header) != nullptr && header.sh_size <= LARGEST_SECTION;
}

Table tableOf(Elf* elf, GElf_Word type) {
  GElf_Shdr header{};
  for (Elf_Scn* section = nullptr; (section = elf_nextscn(elf, section)) != nullptr;) {
    GElf_Shdr strings{};
    if (isLoadable(section, header) && header.sh_type == type && header.sh_entsize != 0 &&
        isLoadable(elf_getscn(elf, header.sh_link), strings)) {
      Elf_Data* data = elf_getdata(section, nullptr);
      return {data, header.sh_link, data == nullptr ? 0 : header.sh_size / header.sh_entsize};
    }
  }
  return {};
}

std::string stringIn(Elf* elf, const Table& table, std::size_t offset) {
  const char* text = elf_strptr(elf, table.strings, offset);
  return text == nullptr ? "" : text;
}

void readInterpreter(const OpenElf& open, ElfFile& file) {
  std::size_t count = 0;
  elf_getphdrnum(open.get(), &count);
  for (std::size_t i = 0; i < count; ++i) {
    GElf_Phdr segment{};
    if (gelf_getphdr(open.get(), static_cast<int>(i), &segment) != nullptr && segment.p_type == PT_INTERP) {
      file.interpreter = open.textAt(segment.p_offset);
    }
  }
}

void readDynamicSection(Elf* elf, ElfFile& file) {
  const Table table = tableOf(elf, SHT_DYNAMIC);
  for (std::size_t i = 0; i < table.size; ++i) {
    GElf_Dyn entry{};
    if (gelf_getdyn(table.data, static_cast<int>(i), &entry) == nullptr || entry.d_tag == DT_NULL) {
      return;
    }
    if (entry.d_tag == DT_NEEDED) {
      file.needed.push_back(stringIn(elf, table, entry.d_un.d_val));
    } else if (entry.d_tag == DT_SONAME) {
      file.soname = stringIn(elf, table, entry.d_un.d_val);
    }
  }
}

void readSymbols(Elf* elf, const std::vector<std::string>& symbols, ElfFile& file) {
  const Table table = tableOf(elf, SHT_DYNSYM);
  for (std::size_t i = 0; !symbols.empty() && i < table.size; ++i) {
    GElf_Sym symbol{};
    if (gelf_getsym(table.data, static_cast<int>(i), &symbol) == nullptr) {
      return;
    }
    const bool isForOthers = symbol.st_shndx != SHN_UNDEF && GELF_ST_BIND(symbol.st_info) != STB_LOCAL &&
                             GELF_ST_VISIBILITY(symbol.st_other) != STV_HIDDEN &&
                             GELF_ST_VISIBILITY(symbol.st_other) != STV_INTERNAL;
    const std::string name = isForOthers ? stringIn(elf, table, symbol.st_name) : "";
    if (std::find(symbols.begin(), symbols.end(), name) != symbols.end()) {
      file.defined.insert(name);
    }
  }
}

}  // namespace

std::optional<ElfFile> readElfFile(const std::string& path, const std::vector<std::string>& symbols) {
  const OpenElf open(path);
  if (open.get() == nullptr) {
    return std::nullopt;
  }
  ElfFile file;
  file.hasSections = tableOf(open.get(), SHT_DYNSYM).data != nullptr;
  readInterpreter(open, file);
  readDynamicSection(open.get(), file);
  readSymbols(open.get(), symbols, file);
  return file;
}

}  // namespace vestra::inspect
