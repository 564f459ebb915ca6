#include "platform/tlb/sltg_reader.h"

#include "platform/tlb/sltg_file.h"
#include "platform/tlb/sltg_members.h"
#include "platform/tlb/sltg_types.h"

namespace sentrune::portable {
namespace {
using namespace sltg;

// Type info block: u16 magic 0x0501, u32 offset of the reference table
// (0xFFFFFFFF: none), u32, u32 offset of the member header, then at 0x1A the
// type flags (bits 3-7 of the first byte are flags 0-4, the next byte flags
// 5-12) and at 0x1D the type kind. The member header's u32 at 5 is the size
// of the member area that follows it; the tail comes right after that.
constexpr uint16_t kTypeInfoMagic = 0x0501;
constexpr uint32_t kNoRefTable = 0xFFFFFFFF;
constexpr uint64_t kMemberHeaderSize = 9;
constexpr uint64_t kTailSize = 0x36;
constexpr uint16_t kTypeFlagDual = 0x40;

// Tail fields.
constexpr uint64_t kTailFuncCount = 0x00, kTailVarCount = 0x02, kTailFuncs = 0x08,
                   kTailVars = 0x0A, kTailImpls = 0x0C, kTailAlias = 0x14,
                   kTailSimpleAlias = 0x1C, kTailVtableSize = 0x28;

struct TypeInfoParts {
  Region members;
  Region tail;
};

TypeInfoParts SplitBlock(const Region& block) {
  const uint64_t header = block.U32(0x0A);
  const uint32_t size = block.U32(header + 5);
  const uint64_t start = header + kMemberHeaderSize;
  return {block.Sub(start, size, "member area of " + block.name()),
          block.Sub(start + size, kTailSize, "tail of " + block.name())};
}

void ReadAlias(TypeDecoder& types, const MemberArea& area, const Region& tail, RawTypeInfo& info) {
  const uint16_t alias = tail.U16(kTailAlias);
  info.aliasType = tail.U16(kTailSimpleAlias) != 0
                       ? types.Plain(alias)
                       : types.Decode(area.members, alias, area.refs).index;
}

void ReadKindMembers(TypeKind kind, TypeDecoder& types, const MemberArea& area, const Region& tail,
                     RawTypeInfo& info) {
  const uint16_t funcs = tail.U16(kTailFuncs), funcCount = tail.U16(kTailFuncCount);
  const uint16_t vars = tail.U16(kTailVars), varCount = tail.U16(kTailVarCount);
  switch (kind) {
    case TypeKind::kEnum: case TypeKind::kRecord: case TypeKind::kUnion:
      ReadVars(area, vars, varCount, info);
      break;
    case TypeKind::kModule:
      ReadFuncs(area, funcs, funcCount, info);
      ReadVars(area, vars, varCount, info);
      break;
    case TypeKind::kInterface:
      ReadImpls(area, tail.U16(kTailImpls), info);
      ReadFuncs(area, funcs, funcCount, info);
      break;
    case TypeKind::kDispatch:
      ReadImpls(area, tail.U16(kTailImpls), info);
      ReadFuncs(area, funcs, funcCount, info);
      ReadVars(area, vars, varCount, info);
      break;
    case TypeKind::kCoclass:
      ReadImpls(area, tail.U16(kTailImpls), info);
      break;
    case TypeKind::kAlias:
      ReadAlias(types, area, tail, info);
      break;
  }
}

RawTypeInfo ReadTypeInfo(SltgFile& file, TypeDecoder& types, size_t index) {
  const TypeRecord& record = file.records()[index];
  const Region& block = file.TypeBlock(index);
  if (block.U16(0) != kTypeInfoMagic) Fail("the " + block.name() + " is not a type info");
  const uint8_t storedKind = block.U8(0x1D);
  if (storedKind > static_cast<uint8_t>(TypeKind::kUnion)) {
    Fail("the " + block.name() + " has the unknown type kind " + std::to_string(storedKind));
  }
  RawTypeInfo info;
  info.name = file.Name(record.nameOffset);
  info.helpString = file.help().Decode(record.helpBits);
  info.guid = record.guid;
  info.flags = static_cast<uint16_t>((block.U8(0x1A) >> 3) | (block.U8(0x1B) << 5));
  info.pointerSize = file.pointerSize();
  const uint32_t refOffset = block.U32(2);
  const RefTable refs = refOffset == kNoRefTable ? RefTable() : RefTable(file, block, refOffset);
  const TypeInfoParts parts = SplitBlock(block);
  info.vtableSize = parts.tail.U16(kTailVtableSize);
  types.BeginTypeInfo();
  const MemberArea area{file, types, refs, parts.members};
  ReadKindMembers(static_cast<TypeKind>(storedKind), types, area, parts.tail, info);
  // A dual interface is stored as an interface; present it the way the MSFT
  // format stores one, as a dispatch type whose functions keep vtable form.
  info.kind = (info.flags & kTypeFlagDual) ? TypeKind::kDispatch : static_cast<TypeKind>(storedKind);
  return info;
}

RawLibrary Decode(std::span<const uint8_t> bytes) {
  SltgFile file(bytes);
  RawLibrary library;
  library.name = file.Name(file.library().nameOffset);
  library.helpString = file.library().helpString;
  library.guid = file.library().guid;
  library.majorVersion = file.library().majorVersion;
  library.minorVersion = file.library().minorVersion;
  TypeDecoder types(library, file.budget());
  library.types.reserve(file.records().size());
  for (size_t i = 0; i < file.records().size(); ++i) {
    library.types.push_back(ReadTypeInfo(file, types, i));
  }
  return library;
}

}  // namespace

rt::Result<RawLibrary> ReadSltg(std::span<const uint8_t> bytes) {
  try {
    return Decode(bytes);
  } catch (const SltgError& error) {
    return rt::MakeError(rt::errnum::kCantLoadTypeLibrary,
                         std::string("damaged SLTG type library: ") + error.what());
  }
}

}  // namespace sentrune::portable
