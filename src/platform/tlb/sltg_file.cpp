#include "platform/tlb/sltg_file.h"

#include <cctype>

#include "runtime/text.h"

namespace sentrune::portable::sltg {
namespace {

// Header: "SLTG", u16 block count plus one, two u16 of no use to a reader,
// u16 first block (1-based), a GUID and two u32; then one directory entry per
// block {u32 length, u16 index name offset, u16 next block (1-based, 0 ends)}.
constexpr uint64_t kHeaderSize = 0x24;
constexpr uint64_t kEntrySize = 8;
// After the directory: "\1CompObj\0dir\0", an 11-byte index name per type
// info (offsets of index names count from the "\1"), 9 zero bytes, and the
// blocks in chain order. The library block comes last.
constexpr std::string_view kDirectoryMagic{"\1CompObj\0dir\0", 13};
constexpr uint64_t kIndexNameSize = 11;
// Longer index names are not plausible; the limit keeps a directory whose
// entries all point at one long text from costing its square.
constexpr uint64_t kIndexNameLimit = 64;
constexpr uint64_t kIndexPadding = 9;

constexpr uint16_t kLibraryMagic = 0x51CC;
// Between the library's GUID and its type info count: a hash of 0x40 bytes.
constexpr uint64_t kLibraryHashSize = 0x40;
// Smallest type info record: two absent counted texts, five u16, a u32, a GUID.
constexpr uint64_t kMinRecordSize = 36;

// The name table: a 12-byte header (0x20 bytes longer when it starts with
// 0x0200), a 0x200-byte hash, u32 size, then the entries. Each entry is 8
// bytes of hash links and a NUL-terminated name; offsets address the entry,
// so the name is 8 bytes further.
constexpr uint16_t kLongNameHeader = 0x0200;
constexpr uint64_t kLongNameHeaderExtra = 0x20;
constexpr uint64_t kNameSizeField = 12 + 0x200;
constexpr uint64_t kNameEntryLinks = 8;

// The work a file may cause: this much per byte of it, plus a floor.
constexpr uint64_t kWorkPerByte = 64;
constexpr uint64_t kWorkFloor = 1 << 20;

bool IsIdentifierChar(uint8_t c) { return std::isalnum(c) != 0 || c == '_'; }

}  // namespace

SltgFile::SltgFile(std::span<const uint8_t> bytes)
    : file_(ByteReader(bytes), "file"),
      budget_(kWorkPerByte * bytes.size() + kWorkFloor),
      help_(Region(), budget_) {
  if (!file_.Has(0, 4) || file_.Chars(0, 4) != "SLTG") Fail("the file does not start with \"SLTG\"");
  std::vector<Block> blocks = ReadBlocks();
  ReadLibrary(file_.Tail(blocks.back().offset, "library block"));
  blocks.pop_back();
  std::map<std::string, Region, std::less<>> typeBlocks;  // by index name
  for (const Block& block : blocks) {
    const Region bytes = file_.Sub(block.offset, block.length, "block " + Quote(block.indexName));
    if (!typeBlocks.emplace(block.indexName, bytes).second) {
      Fail("two blocks share the index name " + Quote(block.indexName));
    }
  }
  recordBlocks_.reserve(records_.size());
  for (const TypeRecord& record : records_) {
    const auto found = typeBlocks.find(record.indexName);
    if (found == typeBlocks.end()) {
      Fail("type info " + std::to_string(recordBlocks_.size()) + " names the block " +
           Quote(record.indexName) + ", which is missing or taken");
    }
    recordBlocks_.push_back(found->second);
    // Each block belongs to one type info; else a small file could make
    // every type info decode its largest block.
    typeBlocks.erase(found);
  }
  help_ = HelpDecoder(helpTree_, budget_);
}

std::vector<SltgFile::Block> SltgFile::ReadBlocks() const {
  file_.Require(0, kHeaderSize);
  const uint16_t count = file_.U16(4);
  if (count < 2) Fail("the file lists no blocks");
  const uint64_t entries = count - 1u;
  const uint64_t magic = kHeaderSize + entries * kEntrySize;
  if (!file_.Has(magic, kDirectoryMagic.size()) ||
      file_.Chars(magic, kDirectoryMagic.size()) != kDirectoryMagic) {
    Fail("the block directory is not followed by \"CompObj\" and \"dir\"");
  }
  const Region indexNames = file_.Tail(magic, "index names");
  uint64_t offset = magic + kDirectoryMagic.size() + (entries - 1) * kIndexNameSize + kIndexPadding;
  std::vector<Block> blocks;
  uint64_t entry = file_.U16(0x0A);
  do {
    if (entry == 0 || entry > entries) Fail("the block chain names entry " + std::to_string(entry));
    if (blocks.size() == entries) Fail("the block chain loops");
    const uint64_t at = kHeaderSize + (entry - 1) * kEntrySize;
    Block block{std::string(indexNames.CString(file_.U16(at + 4), kIndexNameLimit)), offset,
                file_.U32(at)};
    file_.Require(block.offset, block.length);
    offset += block.length;
    blocks.push_back(std::move(block));
    entry = file_.U16(at + 6);
  } while (entry != 0);
  return blocks;
}

// The library's tables may run past the length its entry gives, so the
// region reaches to the end of the file.
void SltgFile::ReadLibrary(const Region& library) {
  Cursor cursor(library);
  if (cursor.U16() != kLibraryMagic) Fail("the last block is not the library block");
  cursor.U16();
  library_.nameOffset = cursor.U16();
  cursor.Counted();
  library_.helpString = rt::Cp1252ToUtf8(cursor.Counted());
  cursor.Counted();  // help file
  cursor.U32();      // help context
  library_.sysKind = cursor.U16();
  cursor.U16();  // locale
  cursor.U32();
  cursor.U16();  // library flags
  library_.majorVersion = cursor.U16();
  library_.minorVersion = cursor.U16();
  library_.guid = cursor.Guid();
  cursor.Skip(kLibraryHashSize);
  ReadRecords(cursor);
  const uint32_t nameTable = cursor.U32();
  cursor.U16();  // length of the longest help string
  const uint32_t treeSize = cursor.U32();
  helpTree_ = library.Sub(cursor.position(), treeSize, "help string tree");
  ReadNameTable(library, nameTable);
}

void SltgFile::ReadRecords(Cursor& cursor) {
  const uint16_t count = cursor.U16();
  const Region& library = cursor.region();
  if (count * kMinRecordSize > library.size() - cursor.position()) {
    Fail(std::to_string(count) + " type infos do not fit in the library block");
  }
  records_.reserve(count);
  for (uint16_t i = 0; i < count; ++i) {
    TypeRecord record;
    record.indexName = std::string(cursor.Counted());
    cursor.Counted();  // a second name, never seen used
    cursor.U16();
    record.nameOffset = cursor.U16();
    const uint16_t helpSize = cursor.U16();
    record.helpBits = library.Sub(cursor.position(), helpSize, "help string").reader();
    cursor.Skip(helpSize);
    cursor.U16();
    cursor.U32();  // help context
    cursor.U16();
    record.guid = cursor.Guid();
    cursor.U16();  // the kind again; the block's header is the one used
    records_.push_back(std::move(record));
  }
}

void SltgFile::ReadNameTable(const Region& library, uint32_t offset) {
  const Region table = library.Tail(offset, "name table");
  const uint64_t sizeField =
      kNameSizeField + (table.U16(0) == kLongNameHeader ? kLongNameHeaderExtra : 0);
  names_ = table.Sub(sizeField + 4, table.U32(sizeField), "name table");
}

const Region& SltgFile::TypeBlock(size_t index) const { return recordBlocks_.at(index); }

std::string_view SltgFile::NameText(uint16_t offset) {
  const std::string_view text = names_.CString(offset + kNameEntryLinks);
  budget_.Spend(text.size());
  return text;
}

std::string SltgFile::Name(uint16_t offset) {
  if (offset == 0xFFFF) return {};
  return rt::Cp1252ToUtf8(NameText(offset));
}

SltgFile::ParamName SltgFile::ParamNameAt(uint16_t offset) {
  const uint64_t letter = offset + kNameEntryLinks;
  const bool typeFollows = IsIdentifierChar(names_.U8(letter - 1));
  const std::string_view text = names_.CString(typeFollows ? letter - 1 : letter);
  budget_.Spend(text.size());
  return {rt::Cp1252ToUtf8(text), typeFollows};
}

}  // namespace sentrune::portable::sltg
