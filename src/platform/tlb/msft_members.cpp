#include "platform/tlb/msft_members.h"

namespace sentrune::portable::msft {
namespace {

constexpr uint32_t kFuncFixedSize = 24;
constexpr uint32_t kVarFixedSize = 20;
constexpr uint32_t kParamSize = 12;
constexpr int32_t kHasDefaultsBit = 0x1000;
constexpr uint16_t kParamHasDefault = 0x20;
constexpr uint8_t kVarConst = 2;

struct MemberEntry {
  int32_t memberId;
  int32_t nameOffset;
  uint64_t recordOffset;
};

class MemberReader {
 public:
  MemberReader(const MsftFile& file, MsftTypes& types, Segment records)
      : file_(file), types_(types), records_(records) {}

  // Both fill a new record in place.
  void Function(const MemberEntry& entry, const std::string& previousName, RawFunc& func) const;
  void Variable(const MemberEntry& entry, RawVar& var) const;

 private:
  void Params(uint64_t record, uint32_t size, int32_t bits, RawFunc& func) const;

  const MsftFile& file_;
  MsftTypes& types_;
  Segment records_;
};

void MemberReader::Function(const MemberEntry& entry, const std::string& previousName,
                            RawFunc& func) const {
  const uint64_t at = entry.recordOffset;
  const uint32_t size = records_.U32(at) & 0xFFFF;
  if (size < kFuncFixedSize || !records_.Has(at, size)) {
    Fail("function record at " + std::to_string(at) + " has a bad size " + std::to_string(size));
  }
  func.memberId = entry.memberId;
  // The second half of a property pair may store no name of its own.
  func.name = entry.nameOffset == -1 ? previousName : file_.Name(entry.nameOffset);
  func.returnType = types_.TypeDesc(records_.I32(at + 4));
  func.flags = records_.U16(at + 8);
  func.vtableOffset = static_cast<int16_t>(records_.I16(at + 12) & ~1);
  const int32_t bits = records_.I32(at + 16);
  func.funcKind = static_cast<uint8_t>(bits & 7);
  func.invokeKind = static_cast<uint8_t>((bits >> 3) & 0xF);
  func.optionalCount = records_.I16(at + 22);
  Params(at, size, bits, func);
}

void MemberReader::Params(uint64_t at, uint32_t size, int32_t bits, RawFunc& func) const {
  const int16_t count = records_.I16(at + 20);
  const bool hasDefaults = (bits & kHasDefaultsBit) != 0;
  const uint64_t perParam = kParamSize + (hasDefaults ? 4 : 0);
  if (count < 0 || uint64_t(count) * perParam > size - kFuncFixedSize) {
    Fail("function record at " + std::to_string(at) + " cannot hold " + std::to_string(count) +
         " parameters");
  }
  // Optional words between the fixed part and the parameters: help context,
  // then help string, then more that this reader does not need.
  const uint64_t optionalWords = (size - kFuncFixedSize - count * perParam) / 4;
  if (optionalWords >= 2) func.helpString = file_.String(records_.I32(at + kFuncFixedSize + 4));
  const uint64_t params = at + size - uint64_t(count) * kParamSize;
  const uint64_t defaults = params - uint64_t(count) * 4;
  func.params.reserve(count);
  for (int16_t i = 0; i < count; ++i) {
    const uint64_t p = params + uint64_t(i) * kParamSize;
    RawParam& param = func.params.emplace_back();
    param.type = types_.TypeDesc(records_.I32(p));
    param.name = file_.Name(records_.I32(p + 4));
    param.flags = records_.U16(p + 8);
    if (hasDefaults && (param.flags & kParamHasDefault)) {
      const int32_t value = records_.I32(defaults + uint64_t(i) * 4);
      if (value != -1) param.defaultValue = types_.Value(value);
    }
  }
}

void MemberReader::Variable(const MemberEntry& entry, RawVar& var) const {
  const uint64_t at = entry.recordOffset;
  // Only the low byte of the first word is the record's size.
  const uint32_t size = records_.U32(at) & 0xFF;
  if (size < kVarFixedSize || !records_.Has(at, size)) {
    Fail("variable record at " + std::to_string(at) + " has a bad size " + std::to_string(size));
  }
  var.memberId = entry.memberId;
  var.name = file_.Name(entry.nameOffset);
  var.type = types_.TypeDesc(records_.I32(at + 4));
  var.flags = records_.U16(at + 8);
  var.varKind = static_cast<uint8_t>(records_.U16(at + 12));
  if (var.varKind == kVarConst) var.value = types_.Value(records_.I32(at + 16));
  if (size >= kVarFixedSize + 8) var.helpString = file_.String(records_.I32(at + kVarFixedSize + 4));
}

}  // namespace

void ReadMembers(const MsftFile& file, MsftTypes& types, uint32_t block, MemberCounts counts,
                 Budget& budget, RawTypeInfo& info) {
  const uint64_t total = uint64_t{counts.functions} + counts.variables;
  if (total == 0) return;
  const Segment whole(file.bytes(), "file");
  const int32_t areaSize = whole.I32(block);
  if (areaSize < 0) Fail("a member block of negative size");
  const uint64_t area = uint64_t{block} + 4;
  const uint64_t tables = area + uint64_t(areaSize);
  // Member IDs, name offsets and record offsets: one word each per member.
  if (!whole.Has(tables, total * 12)) {
    Fail("the tables of " + std::to_string(total) + " members lie outside the file");
  }
  Budget::Spend(budget.memberBytes, uint64_t(areaSize) + total * 12, "member records");
  const MemberReader reader(file, types, Segment(*file.bytes().Sub(area, uint64_t(areaSize)),
                                                 "member records"));
  auto entry = [&](uint64_t i) {
    return MemberEntry{whole.I32(tables + 4 * i), whole.I32(tables + 4 * (total + i)),
                       static_cast<uint64_t>(whole.Offset(whole.I32(tables + 4 * (2 * total + i))))};
  };
  info.funcs.reserve(counts.functions);
  const std::string none;
  for (uint32_t i = 0; i < counts.functions; ++i) {
    RawFunc& func = info.funcs.emplace_back();
    const size_t count = info.funcs.size();
    reader.Function(entry(i), count > 1 ? info.funcs[count - 2].name : none, func);
  }
  info.vars.reserve(counts.variables);
  for (uint32_t i = 0; i < counts.variables; ++i) {
    reader.Variable(entry(counts.functions + i), info.vars.emplace_back());
  }
}

}  // namespace sentrune::portable::msft
