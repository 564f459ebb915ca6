#include "platform/tlb/msft_reader.h"

#include <algorithm>

#include "platform/tlb/msft_descriptor_details.h"
#include "platform/tlb/msft_file.h"
#include "platform/tlb/msft_members.h"

namespace sentrune::portable {
namespace {

using msft::Fail;
using msft::MsftFile;
using msft::MsftTypes;

constexpr uint32_t kRefTabEntrySize = 16;

// A coclass's interfaces: a chain of reference table entries
// {hreftype, IMPLTYPEFLAGS, custom data, next}.
void ReadCoclassImpls(const MsftFile& file, const MsftTypes& types, int32_t first, int16_t count,
                      msft::Budget& budget, RawTypeInfo& info) {
  const msft::Segment& refs = file.segment(msft::kRefTabSeg);
  // Bounded by the table's size too, so a cyclic chain cannot run forever.
  const uint64_t limit = std::min<uint64_t>(count < 0 ? 0 : count, refs.size() / kRefTabEntrySize);
  int32_t at = first;
  for (uint64_t i = 0; i < limit && at != -1; ++i) {
    const uint64_t entry = refs.Offset(at);
    msft::Budget::Spend(budget.interfaceEntries, 1, "interface lists");
    info.impls.push_back(RawImpl{types.Ref(refs.I32(entry)), refs.I32(entry + 4)});
    msft::AddImportOrigin(file, refs.I32(entry), info.impls.back().ref);
    at = refs.I32(entry + 12);
  }
}

RawTypeInfo ReadTypeInfo(const MsftFile& file, MsftTypes& types, uint32_t index,
                         msft::Budget& budget) {
  const msft::Segment& infos = file.segment(msft::kTypeInfoSeg);
  const uint64_t at = file.typeInfoOffset(index);
  RawTypeInfo info;
  const uint32_t kind = infos.U32(at) & 0xF;
  if (kind > static_cast<uint32_t>(TypeKind::kUnion)) {
    Fail("type info " + std::to_string(index) + " has an unknown kind " + std::to_string(kind));
  }
  info.kind = static_cast<TypeKind>(kind);
  info.guid = file.Guid(infos.I32(at + 0x2C));
  info.flags = infos.U16(at + 0x30);
  info.name = file.Name(infos.I32(at + 0x34));
  info.helpString = file.String(infos.I32(at + 0x3C));
  info.vtableSize = infos.U16(at + 0x4E);
  info.pointerSize = file.pointerSize();
  // By kind: an alias's target, a coclass's first interface, an interface's base.
  const int32_t related = infos.I32(at + 0x54);
  switch (info.kind) {
    case TypeKind::kCoclass:
      ReadCoclassImpls(file, types, related, infos.I16(at + 0x4C), budget, info);
      break;
    case TypeKind::kInterface:
    case TypeKind::kDispatch:
      if (related != -1) {
        info.impls.push_back(RawImpl{types.Ref(related), 0});
        msft::AddImportOrigin(file, related, info.impls.back().ref);
      }
      break;
    case TypeKind::kAlias: info.aliasType = types.TypeDesc(related); break;
    default: break;
  }
  const msft::MemberCounts counts{infos.U16(at + 0x18), infos.U16(at + 0x1A)};
  msft::ReadMembers(file, types, infos.U32(at + 4), counts, budget, info);
  return info;
}

RawLibrary Decode(std::span<const uint8_t> bytes) {
  const MsftFile file(bytes);
  RawLibrary library;
  library.guid = file.Guid(file.HeaderI32(0x08));
  const auto version = static_cast<uint32_t>(file.HeaderI32(0x18));
  library.majorVersion = static_cast<uint16_t>(version & 0xFFFF);
  library.minorVersion = static_cast<uint16_t>(version >> 16);
  library.helpString = file.String(file.HeaderI32(0x24));
  library.name = file.Name(file.HeaderI32(0x38));
  MsftTypes types(file, library);
  msft::Budget budget{bytes.size(), file.segment(msft::kRefTabSeg).size() / kRefTabEntrySize};
  library.types.reserve(file.typeInfoCount());
  for (uint32_t i = 0; i < file.typeInfoCount(); ++i) {
    library.types.push_back(ReadTypeInfo(file, types, i, budget));
  }
  msft::AddDescriptorDetails(file, types, library);
  return library;
}

}  // namespace

rt::Result<RawLibrary> ReadMsft(std::span<const uint8_t> bytes) {
  try {
    return Decode(bytes);
  } catch (const msft::MsftError& error) {
    return rt::MakeError(rt::errnum::kCantLoadTypeLibrary,
                         std::string("damaged MSFT type library: ") + error.what());
  }
}

}  // namespace sentrune::portable
