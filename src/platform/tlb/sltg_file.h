#pragma once
// The SLTG container: the block directory, the library block with its list
// of type infos, the help string tree and the name table every record refers
// into. Private to the SLTG reader.
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/tlb/sltg_help.h"
#include "platform/tlb/sltg_region.h"

namespace sentrune::portable::sltg {

// What the library block says about one type info; the type info's own block
// holds the rest.
struct TypeRecord {
  std::string indexName;  // ties the record to its block
  uint16_t nameOffset = 0;
  ByteReader helpBits;    // the compressed help string
  std::string guid;
};

struct LibraryRecord {
  uint16_t nameOffset = 0;
  std::string helpString;
  uint16_t sysKind = 0;
  uint16_t majorVersion = 0;
  uint16_t minorVersion = 0;
  std::string guid;
};

class SltgFile {
 public:
  explicit SltgFile(std::span<const uint8_t> bytes);

  const LibraryRecord& library() const { return library_; }
  const std::vector<TypeRecord>& records() const { return records_; }
  uint8_t pointerSize() const { return library_.sysKind == kSysWin64 ? 8 : 4; }

  // The block of the type info listed at `index`.
  const Region& TypeBlock(size_t index) const;

  // Names are paid for from the budget each time they are read.
  // The name at a name table offset, as UTF-8; empty for 0xFFFF.
  std::string Name(uint16_t offset);
  // The stored characters of a name table entry, unconverted.
  std::string_view NameText(uint16_t offset);
  // A parameter's name word: it points either at the first letter of a name
  // (the parameter's type is then stored elsewhere) or at the second (the
  // type follows the word). The letter before the one pointed at tells which.
  struct ParamName {
    std::string name;
    bool typeFollows = false;
  };
  ParamName ParamNameAt(uint16_t offset);

  HelpDecoder& help() { return help_; }
  Budget& budget() { return budget_; }

 private:
  static constexpr uint16_t kSysWin64 = 3;

  struct Block {
    std::string indexName;
    uint64_t offset = 0;
    uint32_t length = 0;
  };
  std::vector<Block> ReadBlocks() const;
  void ReadLibrary(const Region& library);
  void ReadRecords(Cursor& cursor);
  void ReadNameTable(const Region& library, uint32_t offset);

  Region file_;
  LibraryRecord library_;
  std::vector<TypeRecord> records_;
  std::vector<Region> recordBlocks_;  // by record
  Region names_;
  Region helpTree_;
  Budget budget_;
  HelpDecoder help_;
};

}  // namespace sentrune::portable::sltg
