#include "platform/tlb/sltg_types.h"

#include <bit>
#include <charconv>

#include "platform/tlb/typelib_stdole.h"
#include "runtime/text.h"

namespace sentrune::portable::sltg {
namespace vt = platform::vt;
namespace {

// Reference table: magic 0xDF, 0x43 bytes of no use to a reader, u32 size of
// the 8-byte infos that follow, 7 more bytes, then one counted text per
// reference: "*\R<lib>*#<n>" in hex, <lib> FFFF for this library's type n,
// else the name table offset of "*\G{<guid>}#<maj>.<min>#<lcid>#<path>#".
constexpr uint8_t kRefMagic = 0xDF;
constexpr uint64_t kRefInfoSizeField = 0x44;
constexpr uint64_t kRefInfoStart = 0x48;
constexpr uint64_t kRefInfoSize = 8;
constexpr uint64_t kRefNamesGap = 7;
constexpr uint32_t kThisLibrary = 0xFFFF;
constexpr std::string_view kImportPrefix = "*\\G{";
constexpr size_t kGuidDigits = 36;

constexpr int kMaxTypeDepth = 32;

// Reads hex digits at the front of `text` and drops them.
std::optional<uint32_t> TakeHex(std::string_view& text) {
  uint32_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, 16);
  if (error != std::errc()) return std::nullopt;
  text.remove_prefix(static_cast<size_t>(end - text.data()));
  return value;
}

bool TakePrefix(std::string_view& text, std::string_view prefix) {
  if (!text.starts_with(prefix)) return false;
  text.remove_prefix(prefix.size());
  return true;
}

std::string ImportedLibraryGuid(std::string_view import) {
  if (!import.starts_with(kImportPrefix) || import.size() <= kImportPrefix.size() + kGuidDigits ||
      import[kImportPrefix.size() + kGuidDigits] != '}') {
    Fail("the imported library " + Quote(import) + " is not of the form *\\G{guid}#...");
  }
  return "{" + rt::UCase(import.substr(kImportPrefix.size(), kGuidDigits)) + "}";
}

// The path field of "*\G{guid}#maj.min#lcid#path#"; empty when it is missing.
std::string ImportedLibraryPath(std::string_view import) {
  for (int field = 0; field < 3; ++field) {
    const size_t hash = import.find('#');
    if (hash == std::string_view::npos) return {};
    import.remove_prefix(hash + 1);
  }
  return rt::Cp1252ToUtf8(import.substr(0, import.find('#')));
}

// A fixed array's bounds are a 32-bit SAFEARRAY: u16 dimension count, 14
// bytes of no use to a reader, then per dimension u32 element count and lower
// bound. Bounds that do not fit are left out: the model does without them.
constexpr uint64_t kSafeArrayHeadSize = 16;
constexpr uint64_t kSafeArrayBoundSize = 8;

std::vector<uint32_t> ArrayBounds(const Region& members, uint16_t offset) {
  if (!members.Has(offset, kSafeArrayHeadSize)) return {};
  const uint16_t dimensions = members.U16(offset);
  const uint64_t first = offset + kSafeArrayHeadSize;
  if (!members.Has(first, dimensions * kSafeArrayBoundSize)) return {};
  std::vector<uint32_t> bounds(dimensions);
  for (uint16_t i = 0; i < dimensions; ++i) bounds[i] = members.U32(first + i * kSafeArrayBoundSize);
  return bounds;
}

int64_t Integer(uint16_t type, uint32_t raw) {
  switch (type) {
    case vt::kI1: return static_cast<int8_t>(raw);
    case vt::kUI1: return raw & 0xFF;
    case vt::kI2: case vt::kBool: return static_cast<int16_t>(raw);
    case vt::kUI2: return raw & 0xFFFF;
    case vt::kUI4: case vt::kUInt: return raw;
    default: return static_cast<int32_t>(raw);
  }
}

}  // namespace

RefTable::RefTable(SltgFile& file, const Region& block, uint32_t offset) {
  const Region table = block.Tail(offset, "reference table");
  if (table.U8(0) != kRefMagic) Fail("the reference table at " + Hex(offset) + " lacks its magic");
  const uint32_t infoSize = table.U32(kRefInfoSizeField);
  Cursor cursor(table, kRefInfoStart + infoSize + kRefNamesGap);
  // Each reference takes at least its count's two bytes, so a false size
  // runs out of table long before memory.
  for (uint32_t i = 0; i < infoSize / kRefInfoSize; ++i) refs_.push_back(Decode(file, cursor.Counted()));
}

RawRef RefTable::Get(uint32_t position) const {
  if (position >= refs_.size()) return {};
  return refs_[position];
}

RawRef RefTable::Decode(SltgFile& file, std::string_view text) const {
  std::string_view rest = text;
  std::optional<uint32_t> library, type;
  if (!TakePrefix(rest, "*\\R") || !(library = TakeHex(rest)) || !TakePrefix(rest, "*#") ||
      !(type = TakeHex(rest))) {
    Fail("the reference " + Quote(text) + " is not of the form *\\R<lib>*#<n>");
  }
  RawRef ref;
  if (*library == kThisLibrary) {
    ref.kind = RawRef::Kind::kLocal;
    ref.localIndex = static_cast<int32_t>(*type);
    return ref;
  }
  if (*library > 0xFFFF) Fail("the reference " + Quote(text) + " names no library");
  const std::string_view import = file.NameText(static_cast<uint16_t>(*library));
  const std::string libraryGuid = ImportedLibraryGuid(import);
  ref.kind = RawRef::Kind::kImported;
  ref.importedIndex = static_cast<int32_t>(*type);
  ref.importedLibrary = ImportedLibraryPath(import);
  ref.importedLibraryGuid = libraryGuid;
  if (const StdoleType* known = FindStdoleType(libraryGuid, {}, static_cast<int32_t>(*type))) {
    ref.importedName = known->name;
    ref.importedKind = known->kind;
    ref.importedGuid = known->guid;
  }
  return ref;
}

uint16_t ParamFlags(uint16_t firstWord) {
  uint16_t flags = 0;
  switch (firstWord & typeword::kDirection) {
    case typeword::kNoDirection: break;
    case typeword::kInOut: flags = 1 | 2; break;
    case typeword::kOut: flags = 2; break;
    default: flags = 1; break;
  }
  if (firstWord & typeword::kLcid) flags |= 4;
  if (firstWord & typeword::kRetval) flags |= 8;
  return flags;
}

TypeDecoder::Decoded TypeDecoder::Decode(const Region& members, uint64_t offset,
                                         const RefTable& refs) {
  return DecodeAt(members, offset, refs, 0);
}

TypeDecoder::Decoded TypeDecoder::DecodeAt(const Region& members, uint64_t offset,
                                           const RefTable& refs, int level) {
  if (const auto found = decoded_.find(offset); found != decoded_.end()) return found->second;
  if (level > kMaxTypeDepth) TooDeep(members, offset);
  const uint16_t word = members.U16(offset);
  const uint16_t code = word & typeword::kVtMask;
  Decoded decoded{-1, offset + 2, word, 0};
  if (code == vt::kUserDefined) {
    decoded.index = Add(RawTypeDesc{code, -1, refs.Get(members.U16(offset + 2) / 4u)});
    decoded.end += 2;
  } else if (code == vt::kPtr || code == vt::kSafeArray || code == vt::kCArray) {
    // CARRAY's bounds come first.
    std::vector<uint32_t> bounds;
    if (code == vt::kCArray) bounds = ArrayBounds(members, members.U16(decoded.end));
    const Decoded element =
        DecodeAt(members, code == vt::kCArray ? decoded.end + 2 : decoded.end, refs, level + 1);
    decoded.index = Add(RawTypeDesc{code, element.index, {}, std::move(bounds)});
    decoded.end = element.end;
    decoded.depth = element.depth + 1;
  } else {
    decoded.index = Plain(code);
  }
  if ((word & typeword::kPointer) == typeword::kPointer) {
    decoded.index = Add(RawTypeDesc{vt::kPtr, decoded.index, {}});
    ++decoded.depth;
  }
  if (decoded.depth > kMaxTypeDepth) TooDeep(members, offset);
  decoded_.emplace(offset, decoded);
  return decoded;
}

void TypeDecoder::TooDeep(const Region& members, uint64_t offset) {
  Fail("the type at " + Hex(offset) + " of the " + members.name() + " nests deeper than " +
       std::to_string(kMaxTypeDepth) + " levels");
}

int32_t TypeDecoder::Plain(uint16_t type) {
  const auto [found, added] = plain_.try_emplace(type, -1);
  if (added) found->second = Add(RawTypeDesc{type, -1, {}});
  return found->second;
}

int32_t TypeDecoder::Add(RawTypeDesc desc) {
  budget_.Spend(sizeof(RawTypeDesc));
  library_.typeDescs.push_back(std::move(desc));
  return static_cast<int32_t>(library_.typeDescs.size() - 1);
}

std::optional<platform::TlbValue> ConstValue(const Region& members, uint16_t field,
                                             bool inlineValue, uint16_t type, Budget& budget) {
  platform::TlbValue value;
  value.vt = type;
  switch (type) {
    case vt::kI1: case vt::kUI1: case vt::kI2: case vt::kUI2: case vt::kI4: case vt::kUI4:
    case vt::kInt: case vt::kUInt: case vt::kBool: case vt::kError:
      value.integer = Integer(type, inlineValue ? field : members.U32(field));
      return value;
    default: break;
  }
  if (inlineValue) {
    // Only integers fit in the field; any other type is read as an INT.
    value.vt = vt::kInt;
    value.integer = field;
    return value;
  }
  switch (type) {
    case vt::kR4: value.real = std::bit_cast<float>(members.U32(field)); return value;
    case vt::kR8: case vt::kDate: value.real = std::bit_cast<double>(members.U64(field)); return value;
    case vt::kCy: case vt::kI8: case vt::kUI8:
      value.integer = static_cast<int64_t>(members.U64(field));
      return value;
    case vt::kBstr: case vt::kLpStr: case vt::kLpWStr: {
      value.vt = vt::kBstr;
      const uint16_t length = members.U16(field);
      if (length != 0xFFFF) {
        budget.Spend(length);
        value.text = rt::Cp1252ToUtf8(members.Chars(field + 2u, length));
      }
      return value;
    }
    default: return std::nullopt;
  }
}

}  // namespace sentrune::portable::sltg
