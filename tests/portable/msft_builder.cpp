#include "msft_builder.h"

#include <algorithm>
#include <cstring>

namespace sentrune::testing {
namespace {

constexpr uint32_t kTypeInfoSize = 0x64;
constexpr int kSegments = 15;

void Put32(std::vector<uint8_t>& out, uint32_t value) {
  for (int i = 0; i < 4; ++i) out.push_back(static_cast<uint8_t>(value >> (8 * i)));
}
void Put16(std::vector<uint8_t>& out, uint16_t value) {
  out.push_back(static_cast<uint8_t>(value));
  out.push_back(static_cast<uint8_t>(value >> 8));
}
void Set32(std::vector<uint8_t>& out, size_t at, uint32_t value) {
  for (int i = 0; i < 4; ++i) out[at + i] = static_cast<uint8_t>(value >> (8 * i));
}
void Set16(std::vector<uint8_t>& out, size_t at, uint16_t value) {
  out[at] = static_cast<uint8_t>(value);
  out[at + 1] = static_cast<uint8_t>(value >> 8);
}
void Pad4(std::vector<uint8_t>& out) {
  while (out.size() % 4) out.push_back(0x57);
}
int32_t Offset(const std::vector<uint8_t>& table) { return static_cast<int32_t>(table.size()); }

}  // namespace

int32_t MsftBuilder::AddName(std::string_view text) {
  const int32_t at = Offset(names_);
  Put32(names_, 0xFFFFFFFF);  // hreftype
  Put32(names_, 0xFFFFFFFF);  // hash chain
  Put32(names_, static_cast<uint32_t>(text.size() & 0xFF));
  names_.insert(names_.end(), text.begin(), text.end());
  Pad4(names_);
  return at;
}

int32_t MsftBuilder::AddString(std::string_view text) {
  const int32_t at = Offset(strings_);
  Put16(strings_, static_cast<uint16_t>(text.size()));
  strings_.insert(strings_.end(), text.begin(), text.end());
  Pad4(strings_);
  return at;
}

int32_t MsftBuilder::AddTypeDesc(uint16_t vt, int32_t target) {
  const int32_t at = Offset(typeDescs_);
  Put16(typeDescs_, vt);
  Put16(typeDescs_, 0x7FFE);
  Put32(typeDescs_, static_cast<uint32_t>(target));
  return at;
}

int32_t MsftBuilder::AddValue(uint16_t vt, const std::vector<uint8_t>& payload) {
  const int32_t at = Offset(values_);
  Put16(values_, vt);
  values_.insert(values_.end(), payload.begin(), payload.end());
  Pad4(values_);
  return at;
}

int32_t MsftBuilder::AddType(portable::TypeKind kind, std::string name, std::vector<Func> funcs,
                             std::vector<Var> vars, int32_t related) {
  Type type{kind, AddName(name), std::move(funcs), std::move(vars), related, {}, {}};
  for (const Func& func : type.funcs) {
    type.memberNames.push_back(AddName(func.name));
    std::vector<int32_t> params;
    for (const Param& param : func.params) params.push_back(AddName(param.name));
    type.paramNames.push_back(std::move(params));
  }
  for (const Var& var : type.vars) type.memberNames.push_back(AddName(var.name));
  types_.push_back(std::move(type));
  return static_cast<int32_t>((types_.size() - 1) * kTypeInfoSize);
}

std::vector<uint8_t> MsftBuilder::MemberBlock(const Type& type) const {
  std::vector<uint8_t> records, ids, offsets;
  for (size_t f = 0; f < type.funcs.size(); ++f) {
    const Func& func = type.funcs[f];
    const bool defaults = std::any_of(func.params.begin(), func.params.end(),
                                      [](const Param& p) { return p.defaultValue != -1; });
    const uint32_t size = 24 + static_cast<uint32_t>(func.params.size()) * (defaults ? 16 : 12);
    Put32(offsets, static_cast<uint32_t>(records.size()));
    Put32(ids, static_cast<uint32_t>(func.memberId));
    Put32(records, size | (static_cast<uint32_t>(f) << 16));
    Put32(records, static_cast<uint32_t>(func.returnType));
    Put32(records, 0);                                    // FUNCFLAGS
    Put16(records, static_cast<uint16_t>(28 + 4 * f));    // vtable offset
    Put16(records, 0);
    Put32(records, 1u | (uint32_t{func.invokeKind} << 3) | (4u << 8) | (defaults ? 0x1000u : 0u));
    Put16(records, static_cast<uint16_t>(func.params.size()));
    Put16(records, 0);
    if (defaults) {
      for (const Param& param : func.params) Put32(records, static_cast<uint32_t>(param.defaultValue));
    }
    for (size_t p = 0; p < func.params.size(); ++p) {
      Put32(records, static_cast<uint32_t>(func.params[p].type));
      Put32(records, static_cast<uint32_t>(type.paramNames[f][p]));
      Put32(records, func.params[p].flags | (func.params[p].defaultValue != -1 ? 0x20u : 0u));
    }
  }
  for (const Var& var : type.vars) {
    Put32(offsets, static_cast<uint32_t>(records.size()));
    Put32(ids, static_cast<uint32_t>(var.memberId));
    Put32(records, 20);
    Put32(records, static_cast<uint32_t>(var.type));
    Put32(records, 0);  // VARFLAGS
    Put16(records, 2);  // VAR_CONST
    Put16(records, 0);
    Put32(records, static_cast<uint32_t>(var.value));
  }
  std::vector<uint8_t> block;
  Put32(block, static_cast<uint32_t>(records.size()));
  block.insert(block.end(), records.begin(), records.end());
  block.insert(block.end(), ids.begin(), ids.end());
  for (int32_t name : type.memberNames) Put32(block, static_cast<uint32_t>(name));
  block.insert(block.end(), offsets.begin(), offsets.end());
  return block;
}

std::vector<uint8_t> MsftBuilder::Build(bool helpDllWord, bool wordPresent) const {
  MsftBuilder self = *this;
  const int32_t libraryName = self.AddName("Built");
  const auto count = static_cast<uint32_t>(types_.size());

  std::vector<uint8_t> infos(count * kTypeInfoSize, 0);
  std::vector<std::vector<uint8_t>> blocks;
  for (uint32_t i = 0; i < count; ++i) {
    const Type& type = types_[i];
    const size_t at = i * kTypeInfoSize;
    Set32(infos, at, static_cast<uint32_t>(type.kind));
    Set16(infos, at + 0x18, static_cast<uint16_t>(type.funcs.size()));
    Set16(infos, at + 0x1A, static_cast<uint16_t>(type.vars.size()));
    for (size_t field : {0x2C, 0x3C, 0x48}) Set32(infos, at + field, 0xFFFFFFFF);
    Set32(infos, at + 0x34, static_cast<uint32_t>(type.name));
    Set16(infos, at + 0x4C, type.kind == portable::TypeKind::kInterface ? 1 : 0);
    Set32(infos, at + 0x54, static_cast<uint32_t>(type.related));
    blocks.push_back(MemberBlock(type));
  }

  std::vector<const std::vector<uint8_t>*> segments(kSegments, nullptr);
  segments[0] = &infos;
  segments[7] = &self.names_;
  segments[8] = &self.strings_;
  segments[9] = &self.typeDescs_;
  segments[11] = &self.values_;

  std::vector<uint8_t> out;
  for (uint32_t word : {0x5446534Du, 0x00010002u, 0xFFFFFFFFu, 0x409u, 0u,
                        helpDllWord ? 0x101u : 0x1u, 0x1u, 0u, count}) {
    Put32(out, word);
  }
  for (int i = 0; i < 5; ++i) Put32(out, i == 0 ? 0xFFFFFFFF : 0);  // help string ... name chars
  Put32(out, static_cast<uint32_t>(libraryName));
  for (uint32_t word : {0xFFFFFFFFu, 0xFFFFFFFFu, 0x20u, 0x80u, 0xFFFFFFFFu, 0u}) Put32(out, word);
  if (helpDllWord && wordPresent) Put32(out, 0xFFFFFFFF);
  for (uint32_t i = 0; i < count; ++i) Put32(out, i * kTypeInfoSize);

  size_t position = out.size() + kSegments * 16;
  for (const auto* segment : segments) {
    const bool present = segment != nullptr && !segment->empty();
    Put32(out, present ? static_cast<uint32_t>(position) : 0xFFFFFFFF);
    Put32(out, present ? static_cast<uint32_t>(segment->size()) : 0);
    Put32(out, 0xFFFFFFFF);
    Put32(out, 0x0F);
    if (present) position += segment->size();
  }
  for (uint32_t i = 0; i < count; ++i) {
    Set32(infos, i * kTypeInfoSize + 4, static_cast<uint32_t>(position));
    position += blocks[i].size();
  }
  for (const auto* segment : segments) {
    if (segment != nullptr) out.insert(out.end(), segment->begin(), segment->end());
  }
  for (const auto& block : blocks) out.insert(out.end(), block.begin(), block.end());
  return out;
}

size_t MsftBuilder::MemberBlockOffset(const std::vector<uint8_t>& built, int typeIndex) const {
  // The type info table is the first segment after the directory.
  const size_t directory = 0x54 + types_.size() * 4;
  size_t table = 0;
  std::memcpy(&table, &built[directory], 4);
  const size_t field = table + static_cast<size_t>(typeIndex) * kTypeInfoSize + 4;
  uint32_t block = 0;
  std::memcpy(&block, &built[field], 4);
  return block;
}

}  // namespace sentrune::testing
