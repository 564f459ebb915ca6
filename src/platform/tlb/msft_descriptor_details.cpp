#include "platform/tlb/msft_descriptor_details.h"

#include "runtime/text.h"

namespace sentrune::portable::msft {
namespace {

namespace vt = platform::vt;

constexpr uint32_t kImpInfoSize = 12;
constexpr uint32_t kImpFileHeadSize = 14;
constexpr int32_t kImportGuidFlag = 0x10000;
constexpr uint32_t kArrayDescHeadSize = 8;
constexpr uint32_t kArrayBoundSize = 8;

// ARRAYDESC: the element's type, the dimension count in the low word, then
// per dimension its element count and lower bound.
std::vector<uint32_t> Bounds(const Segment& arrays, int32_t offset) {
  if (offset < 0 || !arrays.Has(uint64_t(offset), kArrayDescHeadSize)) return {};
  const auto at = static_cast<uint64_t>(offset);
  const uint16_t dimensions = arrays.U16(at + 4);
  if (!arrays.Has(at + kArrayDescHeadSize, uint64_t{dimensions} * kArrayBoundSize)) return {};
  std::vector<uint32_t> bounds(dimensions);
  for (uint16_t i = 0; i < dimensions; ++i) {
    bounds[i] = arrays.U32(at + kArrayDescHeadSize + i * uint64_t{kArrayBoundSize});
  }
  return bounds;
}

}  // namespace

// An import's reference is its record's offset with the low bit set. The
// record is {flags, import file offset, type GUID offset or position}, the
// import file {library GUID offset, LCID, version, length << 2, name}.
void AddImportOrigin(const MsftFile& file, int32_t hrefType, RawRef& ref) {
  if (ref.kind != RawRef::Kind::kImported || (hrefType & 3) != 1 || hrefType < 0) return;
  const auto impInfo = static_cast<uint64_t>(hrefType & ~3);
  const Segment& imports = file.segment(kImpInfoSeg);
  if (!imports.Has(impInfo, kImpInfoSize)) return;
  if (!(imports.I32(impInfo) & kImportGuidFlag)) ref.importedIndex = imports.I32(impInfo + 8);
  const int32_t fileOffset = imports.I32(impInfo + 4);
  const Segment& files = file.segment(kImpFileSeg);
  if (fileOffset < 0 || !files.Has(uint64_t(fileOffset), kImpFileHeadSize)) return;
  const auto at = static_cast<uint64_t>(fileOffset);
  ref.importedLibraryGuid = file.Guid(files.I32(at));
  const uint16_t length = files.U16(at + 12) >> 2;
  if (files.Has(at + kImpFileHeadSize, length)) {
    ref.importedLibrary = rt::Cp1252ToUtf8(files.Chars(at + kImpFileHeadSize, length));
  }
}

void AddDescriptorDetails(const MsftFile& file, const MsftTypes& types, RawLibrary& library) {
  const Segment& descs = file.segment(kTypeDescSeg);
  for (uint64_t offset = 0; offset + kTypeDescEntrySize <= descs.size(); offset += kTypeDescEntrySize) {
    const int32_t index = types.Decoded(offset);
    if (index < 0) continue;
    RawTypeDesc& desc = library.typeDescs[static_cast<size_t>(index)];
    const int32_t target = descs.I32(offset + 4);
    if (desc.vt == vt::kCArray) desc.bounds = Bounds(file.segment(kArrayDescSeg), target);
    if (desc.vt == vt::kUserDefined) AddImportOrigin(file, target, desc.ref);
  }
}

}  // namespace sentrune::portable::msft
