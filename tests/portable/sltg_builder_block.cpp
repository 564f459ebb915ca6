#include "portable/sltg_builder_block.h"

#include <algorithm>
#include <bit>

namespace sentrune::portable::testing::sltg_writer {
namespace {
namespace vt = platform::vt;

std::string ImportText(const SltgImport& import) {
  return "*\\G" + import.guid + "#" + std::to_string(import.major) + "." +
         std::to_string(import.minor) + "#" + Hex(import.lcid) + "#" + import.path + "#";
}

bool IsInteger(uint16_t type) {
  switch (type) {
    case vt::kI1: case vt::kUI1: case vt::kI2: case vt::kUI2: case vt::kI4: case vt::kUI4:
    case vt::kInt: case vt::kUInt: case vt::kBool: case vt::kError: return true;
    default: return false;
  }
}

uint16_t DirectionBits(uint16_t flags) {
  uint16_t bits = 0;
  switch (flags & 3) {
    case 0: bits = 0xC000; break;
    case 2: bits = 0x4000; break;
    case 3: bits = 0x8000; break;
    default: break;
  }
  if (flags & 4) bits |= 0x2000;
  if (flags & 8) bits |= 0x80;
  return bits;
}

// One type info's block: header, reference table, member header, member
// area, tail.
class BlockWriter {
 public:
  BlockWriter(const SltgLibrary& library, const SltgTypeInfo& type, NameTable& names,
              const HelpEncoder& help)
      : library_(library), type_(type), names_(names), help_(help) {}

  std::vector<uint8_t> Build() {
    WriteImpls();
    const uint16_t funcs = WriteFuncs();
    const uint16_t vars = WriteVars();
    uint16_t alias = kNone, simpleAlias = 0;
    if (type_.alias) {
      if (type_.alias->element.empty() && type_.alias->vt != vt::kUserDefined) {
        alias = type_.alias->vt;
        simpleAlias = 1;
      } else {
        alias = static_cast<uint16_t>(m_.size());
        PutWords(*type_.alias, 0);
      }
    }
    WriteArrayBounds();
    Out refs = RefTable();
    Out block;
    block.U16(0x0501);
    block.U32(refs.size() ? 0x22 : 0xFFFFFFFF);
    block.U32(0xFFFFFFFF);
    block.U32(static_cast<uint32_t>(0x22 + refs.size()));
    block.U32(0xFFFFFFFF);
    block.U32(0);  // version
    block.U32(0xFFFE0000);
    block.U8(static_cast<uint8_t>(2 | (type_.flags & 0x1F) << 3));
    block.U8(static_cast<uint8_t>(type_.flags >> 5));
    block.U8(2);
    block.U8(static_cast<uint8_t>(type_.kind));
    block.U32(0);
    block.Append(refs.bytes());
    block.U16(1);
    block.U16(kNone);
    block.U8(1);
    block.U32(static_cast<uint32_t>(m_.size()));
    block.Append(m_.bytes());
    WriteTail(block, funcs, vars, alias, simpleAlias);
    return block.bytes();
  }

 private:
  uint16_t RefPosition(const SltgRef& ref) {
    const auto found = std::find(refs_.begin(), refs_.end(), ref);
    if (found != refs_.end()) return static_cast<uint16_t>(found - refs_.begin());
    refs_.push_back(ref);
    return static_cast<uint16_t>(refs_.size() - 1);
  }

  Out RefTable() {
    Out table;
    if (refs_.empty()) return table;
    table.U8(0xDF);
    table.U8(0);
    table.Fill(0x40, 0xFF);
    table.U16(kNone);
    table.U32(static_cast<uint32_t>(refs_.size() * 8));
    for (const SltgRef& ref : refs_) {
      table.U16(1);
      table.U8(2);
      table.U8(ref.local >= 0 ? 0x40 : 0);
      table.U16(kNone);
      table.U16(0);
    }
    table.U16(kNone);
    table.U8(1);
    table.U32(0);
    for (const SltgRef& ref : refs_) {
      const std::string lib =
          ref.local >= 0 ? "ffff" : Hex(names_.Add(ImportText(library_.imports.at(ref.import))));
      const uint32_t number = static_cast<uint32_t>(ref.local >= 0 ? ref.local : ref.typeNumber);
      table.Counted("*\\R" + lib + "*#" + Hex(number));
    }
    table.U8(0xDF);
    return table;
  }

  void WriteImpls() {
    for (size_t i = 0; i < type_.impls.size(); ++i) {
      m_.U16(0x004A);
      m_.U16(i + 1 < type_.impls.size() ? static_cast<uint16_t>((i + 1) * 0x16) : kNone);
      m_.U16(kNone);
      m_.U8(type_.impls[i].flags);
      m_.U8(0x80);
      m_.U16(0x12);
      m_.U16(RefPosition(type_.impls[i].ref));
      m_.U16(0x4000);
      m_.U16(0xFFFE);
      m_.U16(kNone);
      m_.U16(0x1D);
      m_.U16(static_cast<uint16_t>(i * 4));
    }
  }

  // A type's words; CARRAY's bounds offset is a hole filled when the bounds
  // are written after every record.
  struct WordList {
    std::vector<uint16_t> words;
    std::vector<std::pair<size_t, const SltgType*>> bounds;  // word index, array
  };
  void Words(const SltgType& type, uint16_t bits, WordList& out) {
    switch (type.vt) {
      case vt::kPtr:
        if (type.implicitPointer) return Words(type.element.at(0), bits | 0x0E00, out);
        [[fallthrough]];
      case vt::kSafeArray:
        out.words.push_back(type.vt | bits);
        return Words(type.element.at(0), 0, out);
      case vt::kCArray:
        out.words.push_back(type.vt | bits);
        out.bounds.emplace_back(out.words.size(), &type);
        out.words.push_back(0);
        return Words(type.element.at(0), 0, out);
      case vt::kUserDefined:
        out.words.push_back(type.vt | bits);
        out.words.push_back(static_cast<uint16_t>(RefPosition(type.ref) * 4));
        return;
      default:
        out.words.push_back(type.vt | bits);
    }
  }
  std::vector<uint16_t> Words(const SltgType& type, uint16_t bits) {
    WordList out;
    Words(type, bits, out);
    return out.words;
  }
  void PutWords(const SltgType& type, uint16_t bits) {
    WordList out;
    Words(type, bits, out);
    for (const auto& [index, array] : out.bounds) boundsHoles_.emplace_back(m_.size() + 2 * index, array);
    for (uint16_t word : out.words) m_.U16(word);
  }
  void WriteArrayBounds() {
    for (const auto& [hole, array] : boundsHoles_) {
      m_.Fill16(hole, m_.size());
      m_.U16(static_cast<uint16_t>(array->dims.size()));
      m_.U16(0);
      m_.U32(0);
      m_.U32(0);
      m_.U32(0);
      for (uint32_t count : array->dims) {
        m_.U32(count);
        m_.U32(0);
      }
    }
  }
  // A single-word type goes in the record's field, a longer one elsewhere.
  bool TryInline(const SltgType& type, size_t field) {
    const auto words = Words(type, 0);
    if (words.size() != 1) return false;
    m_.Fill16(field, words[0]);
    return true;
  }

  void WriteHelp(const std::string& help, size_t field) {
    if (help.empty()) return m_.Fill16(field, kNone);
    m_.Fill16(field, m_.size());
    m_.Append(help_.Encode(help));
  }

  uint16_t WriteFuncs() {
    size_t previousNext = 0;
    uint16_t first = kNone;
    for (const SltgFunc& func : type_.funcs) {
      const size_t at = m_.size();
      if (first == kNone) first = static_cast<uint16_t>(at);
      if (previousNext) m_.Fill16(previousNext, at);
      const uint8_t kind = func.funcKind == 4 ? 0xCB : func.funcKind == 3 ? 0x8B : 0x4C;
      m_.U8(static_cast<uint8_t>(kind | (func.flags ? 0x20 : 0)));
      m_.U8(static_cast<uint8_t>(func.invokeKind << 4 | 2));
      previousNext = m_.Hole();
      m_.U16(func.name.empty() ? kNone : names_.Add(func.name));
      m_.U32(static_cast<uint32_t>(func.memberId));
      m_.U16(0);
      const size_t help = m_.Hole();
      const size_t args = m_.Hole();
      m_.U8(static_cast<uint8_t>(func.params.size() << 3 | 4));
      const bool inlineReturn = Words(func.ret, 0).size() == 1;
      const int optional = func.optionalCount < 0 ? 63 : func.optionalCount;
      m_.U8(static_cast<uint8_t>((inlineReturn ? 0x80 : 0) | optional << 1));
      const size_t ret = m_.Hole();
      m_.U16(func.vtableOffset);
      if (func.flags) m_.U16(*func.flags);
      if (!TryInline(func.ret, ret)) {
        m_.Fill16(ret, m_.size());
        PutWords(func.ret, 0);
      }
      m_.Fill16(args, m_.size());
      WriteParams(func.params);
      WriteHelp(func.help, help);
    }
    if (previousNext) m_.Fill16(previousNext, kNone);
    return first;
  }

  void WriteParams(const std::vector<SltgParam>& params) {
    std::vector<std::pair<size_t, const SltgParam*>> elsewhere;
    for (const SltgParam& param : params) {
      if (param.name.empty()) {
        m_.U16(param.typeElsewhere ? 0xFFFE : 0xFFFF);
      } else {
        // Pointing at the second letter says that the type follows.
        m_.U16(static_cast<uint16_t>(names_.Add(param.name) + (param.typeElsewhere ? 0 : 1)));
      }
      if (param.typeElsewhere) {
        elsewhere.emplace_back(m_.Hole(), &param);
      } else {
        PutWords(param.type, DirectionBits(param.flags));
      }
    }
    for (const auto& [field, param] : elsewhere) {
      m_.Fill16(field, m_.size());
      PutWords(param->type, DirectionBits(param->flags));
    }
  }

  uint16_t WriteVars() {
    size_t previousNext = 0;
    uint16_t first = kNone;
    uint32_t instanceOffset = 0;
    for (const SltgVar& var : type_.vars) {
      const size_t at = m_.size();
      if (first == kNone) first = static_cast<uint16_t>(at);
      if (previousNext) m_.Fill16(previousNext, at);
      m_.U8(var.flags ? 0x2A : 0x0A);
      const size_t flagsAt = m_.size();
      m_.U8(0);
      previousNext = m_.Hole();
      m_.U16(var.sameNameAsPrevious ? 0xFFFE : names_.Add(var.name));
      const size_t value = m_.Hole();
      const size_t type = m_.Hole();
      m_.U32(static_cast<uint32_t>(var.memberId));
      m_.U16(0);
      const size_t help = m_.Hole();
      if (var.flags) m_.U16(*var.flags);
      uint8_t flags = var.readOnly ? 0x80 : 0;
      if (var.varKind == 3) flags |= 0x40;
      if (TryInline(var.type, type)) {
        flags |= 0x02;
      } else {
        m_.Fill16(type, m_.size());
        PutWords(var.type, 0);
      }
      if (var.varKind == 2) {
        flags |= 0x10;
        if (WriteValue(*var.value, value)) flags |= 0x08;
      } else {
        m_.Fill16(value, instanceOffset);
        instanceOffset += 4;
      }
      m_.bytes()[flagsAt] = flags;
      WriteHelp(var.help, help);
    }
    if (previousNext) m_.Fill16(previousNext, kNone);
    return first;
  }

  // True when the value went into the field itself.
  bool WriteValue(const platform::TlbValue& value, size_t field) {
    if (IsInteger(value.vt) && value.integer >= 0 && value.integer <= 0xFFFF) {
      m_.Fill16(field, static_cast<size_t>(value.integer));
      return true;
    }
    m_.Fill16(field, m_.size());
    if (IsInteger(value.vt)) {
      m_.U32(static_cast<uint32_t>(value.integer));
    } else if (value.vt == vt::kR4) {
      m_.U32(std::bit_cast<uint32_t>(static_cast<float>(value.real)));
    } else if (value.vt == vt::kR8 || value.vt == vt::kDate) {
      m_.U64(std::bit_cast<uint64_t>(value.real));
    } else if (value.vt == vt::kBstr) {
      const std::string text = rt::Utf8ToCp1252(value.text);
      m_.U16(static_cast<uint16_t>(text.size()));
      m_.Text(text);
    } else {
      m_.U64(static_cast<uint64_t>(value.integer));
    }
    return false;
  }

  void WriteTail(Out& block, uint16_t funcs, uint16_t vars, uint16_t alias, uint16_t simpleAlias) {
    block.U16(static_cast<uint16_t>(type_.funcs.size()));
    block.U16(static_cast<uint16_t>(type_.vars.size()));
    block.U16(static_cast<uint16_t>(type_.impls.size()));
    block.U16(0);
    block.U16(funcs);
    block.U16(vars);
    block.U16(type_.impls.empty() ? kNone : 0);
    block.U16(0);  // byte counts of the three lists
    block.U16(0);
    block.U16(static_cast<uint16_t>(type_.impls.size() * 0x16));
    block.U16(alias);
    block.U16(kNone);
    block.U32(0);
    block.U16(simpleAlias);
    block.U16(0);
    block.U16(0);  // instance size
    block.U16(4);  // alignment
    block.U32(0);
    block.U16(type_.vtableSize);
    block.Fill(8, 0xFF);
    block.U32(0);
  }

  const SltgLibrary& library_;
  const SltgTypeInfo& type_;
  NameTable& names_;
  const HelpEncoder& help_;
  Out m_;
  std::vector<SltgRef> refs_;
  std::vector<std::pair<size_t, const SltgType*>> boundsHoles_;
};

}  // namespace

std::vector<uint8_t> TypeInfoBlock(const SltgLibrary& library, const SltgTypeInfo& type,
                                   NameTable& names, const HelpEncoder& help) {
  return BlockWriter(library, type, names, help).Build();
}

}  // namespace sentrune::portable::testing::sltg_writer
