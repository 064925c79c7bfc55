#include "loader/elf_file.h"

#include <elf.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>

#include <boost/algorithm/string/replace.hpp>

#include "loader/mapped_file.h"

namespace vestra::inspect {
namespace {

bool isMissing(int error) { return error == ENOENT || error == EACCES || error == ENOTDIR || error == ELOOP; }

/// The loader's own order of questions: a file for another machine is passed, any other
/// fault ends the search.
ElfState stateOf(const MappedFile& file, std::string& reason) {
  if (file.error() != 0) {
    reason = isMissing(file.error()) ? std::strerror(file.error()) : "cannot read file data";
    return isMissing(file.error()) ? ElfState::missing : ElfState::broken;
  }
  const auto header = file.at<Elf64_Ehdr>(0);
  if (!header) {
    reason = "file too short";
    return ElfState::broken;
  }
  if (std::memcmp(header->e_ident, ELFMAG, SELFMAG) != 0) {
    reason = "invalid ELF header";
    return ElfState::broken;
  }
  if (header->e_ident[EI_CLASS] != ELFCLASS64 || header->e_machine != EM_X86_64) {
    reason = "made for another machine";
    return ElfState::wrongClass;
  }
  return ElfState::loadable;
}

/// The parts of a loadable file, by its segments: section headers may be stripped.
class Segments {
 public:
  explicit Segments(const MappedFile& elf) : file(elf) {
    const auto header = file.at<Elf64_Ehdr>(0);
    for (std::size_t i = 0; header && i < header->e_phnum; ++i) {
      const auto segment = file.at<Elf64_Phdr>(header->e_phoff + i * sizeof(Elf64_Phdr));
      if (segment) {
        headers.push_back(*segment);
      }
    }
    readDynamic();
  }

  bool has(Elf64_Word type) const { return find(type) != nullptr; }

  /// Whether the file ends before its last segment does.
  bool areCut() const {
    return std::any_of(headers.begin(), headers.end(), [&](const Elf64_Phdr& segment) {
      return segment.p_type == PT_LOAD && (segment.p_filesz > file.bytes().size() ||
                                           segment.p_offset > file.bytes().size() - segment.p_filesz);
    });
  }

  const std::vector<Elf64_Dyn>& dynamic() const { return entries; }

  std::size_t valueOf(Elf64_Sxword tag) const {
    for (const Elf64_Dyn& entry : entries) {
      if (entry.d_tag == tag) {
        return entry.d_un.d_val;
      }
    }
    return 0;
  }

  /// Where in the file an address of the loaded library lies.
  std::size_t offsetOf(std::size_t address) const {
    for (const Elf64_Phdr& segment : headers) {
      if (segment.p_type == PT_LOAD && address >= segment.p_vaddr &&
          address - segment.p_vaddr < segment.p_filesz) {
        return address - segment.p_vaddr + segment.p_offset;
      }
    }
    return file.bytes().size();
  }

  std::string text(std::size_t inTable) const { return file.textAt(offsetOf(valueOf(DT_STRTAB)) + inTable); }

 private:
  const Elf64_Phdr* find(Elf64_Word type) const {
    for (const Elf64_Phdr& segment : headers) {
      if (segment.p_type == type) {
        return &segment;
      }
    }
    return nullptr;
  }

  void readDynamic() {
    const Elf64_Phdr* segment = find(PT_DYNAMIC);
    for (std::size_t i = 0; segment != nullptr && i < segment->p_filesz / sizeof(Elf64_Dyn); ++i) {
      const auto entry = file.at<Elf64_Dyn>(segment->p_offset + i * sizeof(Elf64_Dyn));
      if (!entry || entry->d_tag == DT_NULL) {
        return;
      }
      entries.push_back(*entry);
    }
  }

  const MappedFile& file;
  std::vector<Elf64_Phdr> headers;
  std::vector<Elf64_Dyn> entries;
};

std::string withOrigin(std::string path, const std::string& file) {
  const std::string directory = file.substr(0, file.find_last_of('/') + 1) + ".";
  boost::algorithm::replace_all(path, "${ORIGIN}", directory);
  boost::algorithm::replace_all(path, "$ORIGIN", directory);
  return path;
}

void readDynamic(const Segments& segments, ElfFile& elf) {
  for (const Elf64_Dyn& entry : segments.dynamic()) {
    const auto text = [&] { return segments.text(entry.d_un.d_val); };
    if (entry.d_tag == DT_NEEDED) {
      elf.needed.push_back(text());
    } else if (entry.d_tag == DT_RPATH) {
      elf.rpath = withOrigin(text(), elf.path);
    } else if (entry.d_tag == DT_RUNPATH) {
      elf.runpath = withOrigin(text(), elf.path);
    }
  }
}

/// The number of symbols is told by the hash table alone.
std::size_t symbolCount(const MappedFile& file, const Segments& segments) {
  if (segments.valueOf(DT_HASH) != 0) {
    const auto count = file.at<std::uint32_t>(segments.offsetOf(segments.valueOf(DT_HASH)) + 4);
    return count.value_or(0);
  }
  if (segments.valueOf(DT_GNU_HASH) == 0) {
    return 0;
  }
  const std::size_t table = segments.offsetOf(segments.valueOf(DT_GNU_HASH));
  const auto buckets = file.at<std::uint32_t>(table).value_or(0);
  const auto first = file.at<std::uint32_t>(table + 4).value_or(0);
  const auto words = file.at<std::uint32_t>(table + 8).value_or(0);
  const std::size_t heads = table + 16 + std::size_t{words} * 8;
  const std::size_t chains = heads + std::size_t{buckets} * 4;
  std::size_t last = 0;
  for (std::size_t i = 0; i < buckets; ++i) {
    last = std::max<std::size_t>(last, file.at<std::uint32_t>(heads + i * 4).value_or(0));
  }
  while (last >= first && last != 0) {
    const auto chain = file.at<std::uint32_t>(chains + (last - first) * 4);
    if (!chain || (*chain & 1U) != 0) {
      return last + 1;
    }
    ++last;
  }
  return 0;
}

}  // namespace

ElfFile readElfFile(const std::string& path) {
  const MappedFile file(path);
  ElfFile elf;
  elf.path = path;
  elf.state = stateOf(file, elf.reason);
  if (elf.state == ElfState::loadable) {
    const Segments segments(file);
    elf.hasInterpreter = segments.has(PT_INTERP);
    readDynamic(segments, elf);
    if (segments.areCut()) {
      elf.state = ElfState::broken;
      elf.reason = "cut: it ends before its last segment";
    }
  }
  return elf;
}

std::vector<std::string> symbolsMissingIn(const std::string& path, const std::vector<std::string>& symbols) {
  const MappedFile file(path);
  const Segments segments(file);
  std::set<std::string> missing(symbols.begin(), symbols.end());
  const std::size_t table = segments.offsetOf(segments.valueOf(DT_SYMTAB));
  const std::size_t count = symbolCount(file, segments);
  for (std::size_t i = 0; i < count && !missing.empty(); ++i) {
    const auto symbol = file.at<Elf64_Sym>(table + i * sizeof(Elf64_Sym));
    if (symbol && symbol->st_shndx != SHN_UNDEF && ELF64_ST_BIND(symbol->st_info) != STB_LOCAL) {
      missing.erase(segments.text(symbol->st_name));
    }
  }
  return {missing.begin(), missing.end()};
}

}  // namespace vestra::inspect
