#include "platform/tlb/sltg_members.h"

namespace sentrune::portable::sltg {
namespace {

constexpr uint16_t kNone = 0xFFFF;

// Implemented type: u16 magic, u16 next, u16, u8 IMPLTYPEFLAGS, u8, u16,
// u16 reference position, then 10 bytes of no use to a reader.
constexpr uint16_t kImplMagic = 0x004A;
constexpr uint64_t kImplSize = 0x16;

// Function: u8 kind (+0x20 when FUNCFLAGS end the record), u8 invoke kind in
// the high nibble, u16 next, u16 name, u32 member ID, u16 help context,
// u16 help string, u16 parameters, u8 parameter count << 3 | calling
// convention, u8 {0x80: return type inline, bits 1-6 optional count, 63 =
// vararg}, u16 return type (inline or its offset), u16 vtable offset.
constexpr uint8_t kFuncFlagsPresent = 0x20;
constexpr uint8_t kVirtualFunc = 0x4C, kDispatchFunc = 0xCB, kStaticFunc = 0x8B;
constexpr uint64_t kFuncSize = 0x16;
constexpr uint8_t kReturnInline = 0x80;
constexpr int kVarargOptional = 63;

// Parameter: a u16 name word, then the type's words, or their offset when
// the name word says so. 0xFFFF and 0xFFFE are the nameless forms of both.
constexpr uint16_t kNamelessTypeFollows = 0xFFFF;
constexpr uint16_t kNamelessTypeElsewhere = 0xFFFE;

// Variable: u8 magic (0x2A when VARFLAGS end the record), u8 flags, u16 next,
// u16 name (0xFFFE: the previous one's), u16 value or instance offset,
// u16 type (inline or its offset), u32 member ID, u16 help context,
// u16 help string.
constexpr uint8_t kVarMagic = 0x0A, kVarWithFlagsMagic = 0x2A;
constexpr uint64_t kVarSize = 0x12;
constexpr uint16_t kSameName = 0xFFFE;
constexpr uint8_t kVarTypeInline = 0x02, kVarValueInline = 0x08, kVarConst = 0x10,
                  kVarDispatch = 0x40, kVarReadOnly = 0x80;
constexpr uint16_t kVarFlagReadOnly = 0x01;

// The values RawFunc, RawVar and RawParam hold.
constexpr uint8_t kPureVirtual = 1, kStatic = 3, kDispatch = 4;
constexpr uint8_t kVarConstKind = 2, kVarDispatchKind = 3;
constexpr uint16_t kParamOptional = 0x10;

std::string Help(const MemberArea& area, uint16_t offset) {
  if (offset == kNone) return {};
  return area.file.help().Decode(area.members.Tail(offset, "help string").reader());
}

void CheckFits(const MemberArea& area, uint16_t count, uint64_t size, const char* what) {
  if (count * size > area.members.size()) {
    Fail(std::to_string(count) + " " + what + " do not fit in the " + area.members.name());
  }
}

uint8_t FuncKind(uint8_t magic) {
  switch (magic & ~kFuncFlagsPresent) {
    case kVirtualFunc: return kPureVirtual;
    case kStaticFunc: return kStatic;
    case kDispatchFunc: return kDispatch;
    default: Fail("unknown function kind " + Hex(magic));
  }
}

std::vector<RawParam> ReadParams(const MemberArea& area, uint64_t offset, int count,
                                 int optional) {
  area.file.budget().Spend(count * sizeof(RawParam));
  std::vector<RawParam> params(static_cast<size_t>(count));
  for (int i = 0; i < count; ++i) {
    RawParam& param = params[static_cast<size_t>(i)];
    const uint16_t word = area.members.U16(offset);
    offset += 2;
    bool typeFollows = word == kNamelessTypeFollows;
    if (word != kNamelessTypeFollows && word != kNamelessTypeElsewhere) {
      auto name = area.file.ParamNameAt(word);
      param.name = std::move(name.name);
      typeFollows = name.typeFollows;
    }
    const auto type = area.types.Decode(area.members, typeFollows ? offset : area.members.U16(offset),
                                        area.refs);
    offset = typeFollows ? type.end : offset + 2;
    param.type = type.index;
    param.flags = ParamFlags(type.firstWord);
    if (optional != kVarargOptional && count - i <= optional) param.flags |= kParamOptional;
  }
  return params;
}

RawFunc ReadFunc(const MemberArea& area, uint64_t at) {
  area.file.budget().Spend(sizeof(RawFunc));
  const Region& m = area.members;
  const uint8_t magic = m.U8(at);
  RawFunc func;
  func.funcKind = FuncKind(magic);
  func.invokeKind = m.U8(at + 1) >> 4;
  func.name = area.file.Name(m.U16(at + 4));
  func.memberId = static_cast<int32_t>(m.U32(at + 6));
  func.helpString = Help(area, m.U16(at + 0xC));
  const uint8_t shape = m.U8(at + 0x11);
  func.returnType =
      area.types.Decode(m, (shape & kReturnInline) ? at + 0x12 : m.U16(at + 0x12), area.refs).index;
  if (func.funcKind != kDispatch) func.vtableOffset = static_cast<int16_t>(m.U16(at + 0x14) & ~1u);
  if (magic & kFuncFlagsPresent) func.flags = m.U16(at + 0x16);
  const int optional = (shape >> 1) & 0x3F;
  func.optionalCount = static_cast<int16_t>(optional == kVarargOptional ? -1 : optional);
  func.params = ReadParams(area, m.U16(at + 0xE), m.U8(at + 0x10) >> 3, optional);
  return func;
}

RawVar ReadVar(const MemberArea& area, uint64_t at, const std::string& previousName) {
  area.file.budget().Spend(sizeof(RawVar) + previousName.size());
  const Region& m = area.members;
  const uint8_t magic = m.U8(at);
  if (magic != kVarMagic && magic != kVarWithFlagsMagic) Fail("unknown variable kind " + Hex(magic));
  const uint8_t flags = m.U8(at + 1);
  RawVar var;
  const uint16_t name = m.U16(at + 4);
  var.name = name == kSameName ? previousName : area.file.Name(name);
  var.memberId = static_cast<int32_t>(m.U32(at + 0xA));
  var.helpString = Help(area, m.U16(at + 0x10));
  var.type = area.types.Decode(m, (flags & kVarTypeInline) ? at + 8 : m.U16(at + 8), area.refs).index;
  if (magic == kVarWithFlagsMagic) var.flags = m.U16(at + 0x12);
  if (flags & kVarReadOnly) var.flags |= kVarFlagReadOnly;
  if (flags & kVarDispatch) {
    var.varKind = kVarDispatchKind;
  } else if (flags & kVarConst) {
    var.varKind = kVarConstKind;
    const uint16_t type = area.types.Vt(var.type);
    var.value = ConstValue(m, m.U16(at + 6), (flags & kVarValueInline) != 0, type,
                           area.file.budget());
  }
  return var;
}

}  // namespace

void ReadImpls(const MemberArea& area, uint16_t offset, RawTypeInfo& info) {
  uint64_t at = offset == kNone ? 0 : offset;
  const Region& m = area.members;
  if (!m.Has(at, 2) || m.U16(at) != kImplMagic) return;
  for (uint64_t seen = 0;; ++seen) {
    if (seen > m.size() / kImplSize) Fail("the implemented types of the " + m.name() + " loop");
    area.file.budget().Spend(sizeof(RawImpl));
    info.impls.push_back(RawImpl{area.refs.Get(m.U16(at + 0xA)), m.U8(at + 6)});
    const uint16_t next = m.U16(at + 2);
    if (next == kNone) break;
    at = next;
  }
}

void ReadFuncs(const MemberArea& area, uint16_t offset, uint16_t count, RawTypeInfo& info) {
  if (offset == kNone) return;
  CheckFits(area, count, kFuncSize, "functions");
  uint64_t at = offset;
  for (uint16_t i = 0; i < count; ++i) {
    info.funcs.push_back(ReadFunc(area, at));
    at = area.members.U16(at + 2);
    if (at == kNone) break;
  }
}

void ReadVars(const MemberArea& area, uint16_t offset, uint16_t count, RawTypeInfo& info) {
  if (offset == kNone) return;
  CheckFits(area, count, kVarSize, "variables");
  uint64_t at = offset;
  std::string previousName;
  for (uint16_t i = 0; i < count; ++i) {
    info.vars.push_back(ReadVar(area, at, previousName));
    previousName = info.vars.back().name;
    at = area.members.U16(at + 2);
    if (at == kNone) break;
  }
}

}  // namespace sentrune::portable::sltg
