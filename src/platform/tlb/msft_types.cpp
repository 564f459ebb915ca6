// Type descriptors, type references and values of an MSFT file.
#include <bit>
#include <cstring>

#include "platform/tlb/msft_file.h"
#include "platform/tlb/typelib_stdole.h"
#include "runtime/text.h"

namespace sentrune::portable::msft {
namespace {

namespace vt = platform::vt;

constexpr int kMaxTypeDepth = 64;
constexpr uint32_t kTypeDescSize = 8;
constexpr uint32_t kImpInfoSize = 12;
constexpr int32_t kImportGuidFlag = 0x10000;
constexpr uint16_t kInlineVtMask = 0x0FFF;

platform::TlbValue FromBits(uint16_t type, uint64_t bits) {
  platform::TlbValue value;
  value.vt = type;
  switch (type) {
    case vt::kI1: value.integer = static_cast<int8_t>(bits); break;
    case vt::kI2: case vt::kBool: value.integer = static_cast<int16_t>(bits); break;
    case vt::kI4: case vt::kInt: case vt::kError: value.integer = static_cast<int32_t>(bits); break;
    case vt::kUI1: value.integer = static_cast<uint8_t>(bits); break;
    case vt::kUI2: value.integer = static_cast<uint16_t>(bits); break;
    case vt::kUI4: case vt::kUInt: value.integer = static_cast<uint32_t>(bits); break;
    case vt::kR4: value.real = std::bit_cast<float>(static_cast<uint32_t>(bits)); break;
    case vt::kR8: case vt::kDate: value.real = std::bit_cast<double>(bits); break;
    case vt::kEmpty: case vt::kNull: case vt::kDispatch: case vt::kUnknown: case vt::kBstr: break;
    // A VARIANT holds another VARIANT only by reference, so a value typed
    // VARIANT has none: widl stores a VARIANT* parameter's null default so,
    // and the system reports it as empty.
    case vt::kVariant: value.vt = vt::kEmpty; break;
    default: value.integer = static_cast<int64_t>(bits); break;  // I8, UI8, CY and the rest
  }
  return value;
}

// Bytes that follow the VT word of a stored value; -1 for a counted string.
int PayloadSize(uint16_t type) {
  switch (type) {
    case vt::kEmpty: case vt::kNull: case vt::kDispatch: case vt::kUnknown: return 0;
    case vt::kI1: case vt::kUI1: return 1;
    case vt::kI2: case vt::kUI2: case vt::kBool: return 2;
    case vt::kI4: case vt::kUI4: case vt::kInt: case vt::kUInt: case vt::kError: case vt::kR4:
      return 4;
    case vt::kR8: case vt::kCy: case vt::kDate: case vt::kI8: case vt::kUI8: return 8;
    case vt::kBstr: return -1;
    default: Fail("a stored value of unsupported type " + std::to_string(type));
  }
}

}  // namespace

MsftTypes::MsftTypes(const MsftFile& file, RawLibrary& library)
    : file_(file), library_(library),
      storedIndex_(file.segment(kTypeDescSeg).size() / kTypeDescSize, -1),
      inlineIndex_(size_t{kInlineVtMask} + 1, -1) {
  library_.typeDescs.reserve(storedIndex_.size() + 32);
}

int32_t MsftTypes::Add(RawTypeDesc desc) {
  library_.typeDescs.push_back(std::move(desc));
  return static_cast<int32_t>(library_.typeDescs.size() - 1);
}

int32_t MsftTypes::TypeDesc(int32_t dataType) { return Element(dataType, 0); }

int32_t MsftTypes::Element(int32_t dataType, int depth) {
  if (dataType < 0) return InlineType(static_cast<uint16_t>(dataType & kInlineVtMask));
  return StoredType(static_cast<uint32_t>(dataType), depth);
}

int32_t MsftTypes::InlineType(uint16_t type) {
  int32_t& known = inlineIndex_[type & kInlineVtMask];
  if (known < 0) known = Add(RawTypeDesc{type, -1, {}});
  return known;
}

int32_t MsftTypes::StoredType(uint32_t offset, int depth) {
  if (offset % kTypeDescSize != 0 || offset / kTypeDescSize >= storedIndex_.size()) {
    Fail("type descriptor offset " + std::to_string(offset) + " is not an entry");
  }
  int32_t& known = storedIndex_[offset / kTypeDescSize];
  if (known >= 0) return known;
  if (depth > kMaxTypeDepth) Fail("type descriptors nest too deeply");
  const Segment& descs = file_.segment(kTypeDescSeg);
  const uint16_t type = descs.U16(offset) & kInlineVtMask;
  const int32_t target = descs.I32(offset + 4);
  // Registered before the element is read, so a cyclic chain ends here.
  const int32_t index = Add(RawTypeDesc{type, -1, {}});
  known = index;
  switch (type) {
    case vt::kPtr:
    case vt::kSafeArray: {
      const int32_t element = Element(target, depth + 1);
      library_.typeDescs[index].element = element;
      break;
    }
    case vt::kCArray: {
      const int32_t element = ArrayElement(target, depth + 1);
      library_.typeDescs[index].element = element;
      break;
    }
    case vt::kUserDefined: library_.typeDescs[index].ref = Ref(target); break;
    default: break;
  }
  return index;
}

int32_t MsftTypes::ArrayElement(int32_t offset, int depth) {
  const Segment& arrays = file_.segment(kArrayDescSeg);
  return Element(arrays.I32(arrays.Offset(offset)), depth);
}

RawRef MsftTypes::Ref(int32_t hrefType) const {
  RawRef ref;
  if (hrefType == -1) return ref;
  if ((hrefType & 3) == 0) {
    if (auto index = file_.LocalIndex(hrefType)) {
      ref.kind = RawRef::Kind::kLocal;
      ref.localIndex = *index;
    }
    return ref;
  }
  if ((hrefType & 3) == 1 && hrefType > 0) return ImportedRef(static_cast<uint32_t>(hrefType & ~3));
  return ref;
}

RawRef MsftTypes::ImportedRef(uint32_t offset) const {
  RawRef ref;
  const Segment& imports = file_.segment(kImpInfoSeg);
  if (!imports.Has(offset, kImpInfoSize)) return ref;
  const int32_t flags = imports.I32(offset);
  const int32_t fileOffset = imports.I32(offset + 4);
  const int32_t guidOrIndex = imports.I32(offset + 8);
  ref.kind = RawRef::Kind::kImported;
  const uint32_t kind = static_cast<uint32_t>(flags) >> 24;
  if (kind <= static_cast<uint32_t>(TypeKind::kUnion)) ref.importedKind = static_cast<TypeKind>(kind);
  if (flags & kImportGuidFlag) ref.importedGuid = file_.Guid(guidOrIndex);
  const Segment& files = file_.segment(kImpFileSeg);
  const std::string libraryGuid = file_.Guid(files.I32(files.Offset(fileOffset)));
  const int32_t index = (flags & kImportGuidFlag) ? -1 : guidOrIndex;
  if (const StdoleType* known = FindStdoleType(libraryGuid, ref.importedGuid, index)) {
    ref.importedName = std::string(known->name);
    if (!ref.importedKind) ref.importedKind = known->kind;
    if (ref.importedGuid.empty()) ref.importedGuid = std::string(known->guid);
  }
  return ref;
}

platform::TlbValue MsftTypes::Value(int32_t valueRef) const {
  if (valueRef < 0) {
    // Packed in the reference: the VT in bits 26-30, the value in the low 26.
    const auto bits = static_cast<uint32_t>(valueRef);
    return FromBits(static_cast<uint16_t>((bits >> 26) & 0x1F), bits & 0x03FFFFFF);
  }
  const Segment& values = file_.segment(kCustDataSeg);
  const uint64_t at = static_cast<uint64_t>(valueRef);
  const uint16_t type = values.U16(at);
  const int size = PayloadSize(type);
  if (size >= 0) {
    uint64_t bits = 0;
    for (int i = size - 1; i >= 0; --i) bits = (bits << 8) | values.U8(at + 2 + uint64_t(i));
    return FromBits(type, bits);
  }
  platform::TlbValue text = FromBits(type, 0);
  const int32_t length = values.I32(at + 2);
  if (length < -1) Fail("a string value of negative length");
  if (length > 0) text.text = rt::Cp1252ToUtf8(values.Chars(at + 6, uint64_t(length)));
  return text;
}

}  // namespace sentrune::portable::msft
