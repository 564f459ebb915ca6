#include "portable/sltg_builder.h"

#include <algorithm>
#include <bit>
#include <cctype>
#include <initializer_list>
#include <map>
#include <set>
#include <sstream>

#include "runtime/text.h"

namespace sentrune::portable::testing {
namespace vt = platform::vt;

SltgType Vt(uint16_t code) { return SltgType{code, {}, {}, {}, false}; }
SltgType Ptr(SltgType element, bool implicit) { return {vt::kPtr, {std::move(element)}, {}, {}, implicit}; }
SltgType SafeArray(SltgType element) { return {vt::kSafeArray, {std::move(element)}, {}, {}, false}; }
SltgType CArray(SltgType element, std::vector<uint32_t> dims) {
  return {vt::kCArray, {std::move(element)}, {}, std::move(dims), false};
}
SltgType Local(int32_t index) { return {vt::kUserDefined, {}, {index, -1, 0}, {}, false}; }

namespace {

constexpr uint16_t kNone = 0xFFFF;

struct Out {
  std::vector<uint8_t> b;
  size_t size() const { return b.size(); }
  void U8(uint8_t v) { b.push_back(v); }
  void U16(size_t v) { U8(static_cast<uint8_t>(v)), U8(static_cast<uint8_t>(v >> 8)); }
  void U32(uint64_t v) { U16(v & 0xFFFF), U16((v >> 16) & 0xFFFF); }
  void U64(uint64_t v) { U32(v & 0xFFFFFFFF), U32(v >> 32); }
  void U16s(std::initializer_list<uint16_t> words) { for (uint16_t w : words) U16(w); }
  void Fill(size_t count, uint8_t v) { b.insert(b.end(), count, v); }
  void Append(const std::vector<uint8_t>& more) { b.insert(b.end(), more.begin(), more.end()); }
  void Text(std::string_view text) { b.insert(b.end(), text.begin(), text.end()); }
  // A u16 count and the characters, or 0xFFFF for none.
  void Counted(const std::string& utf8) {
    if (utf8.empty()) return U16(kNone);
    const std::string text = rt::Utf8ToCp1252(utf8);
    U16(text.size());
    Text(text);
  }
  void Guid(const std::string& text) {
    uint8_t raw[16] = {};
    std::string hex;
    for (char c : text) {
      if (std::isxdigit(static_cast<unsigned char>(c))) hex += c;
    }
    for (size_t i = 0; i < hex.size() / 2 && i < 16; ++i) {
      raw[i] = static_cast<uint8_t>(std::stoi(hex.substr(i * 2, 2), nullptr, 16));
    }
    std::reverse(raw, raw + 4), std::reverse(raw + 4, raw + 6), std::reverse(raw + 6, raw + 8);
    b.insert(b.end(), raw, raw + 16);
  }
  size_t Hole() {  // a u16 filled in later
    U16(0);
    return size() - 2;
  }
  void Set16(size_t at, size_t v) { b[at] = static_cast<uint8_t>(v), b[at + 1] = static_cast<uint8_t>(v >> 8); }
  void Set32(size_t at, size_t v) { Set16(at, v & 0xFFFF), Set16(at + 2, v >> 16); }
};

std::string Hex(uint32_t value) {
  std::ostringstream out;
  out << std::hex << value;
  return out.str();
}

// Entries: 8 bytes of hash links (0xFF, so that a name word never mistakes
// them for a letter) and the name; an offset addresses the entry.
struct NameTable {
  Out out;
  std::map<std::string, uint16_t> offsets;
  uint16_t Add(const std::string& utf8) {
    const auto [found, added] = offsets.try_emplace(rt::Utf8ToCp1252(utf8), 0);
    if (!added) return found->second;
    found->second = static_cast<uint16_t>(out.size());
    out.Fill(8, 0xFF);
    out.Text(found->first);
    out.U8(0);
    if (out.size() % 2) out.U8(0);
    return found->second;
  }
};

std::vector<std::string> HelpWords(const std::string& utf8) {
  std::vector<std::string> words;
  std::istringstream in(rt::Utf8ToCp1252(utf8));
  for (std::string word; std::getline(in, word, ' ');) words.push_back(word);
  return words;
}

// A balanced tree over every word used plus the empty end word. An inner node
// is 0x80 and the big-endian offset of its 0-branch, which follows its
// 1-branch; a leaf is a byte and the NUL-terminated word.
struct HelpEncoder {
  Out tree;
  std::map<std::string, std::vector<bool>> codes;
  size_t longest = 0;

  explicit HelpEncoder(const SltgLibrary& library) {
    std::set<std::string> words;
    auto add = [&](const std::string& help) {
      for (auto& word : HelpWords(help)) words.insert(word);
      longest = std::max(longest, help.size());
    };
    for (const auto& type : library.types) {
      add(type.help);
      for (const auto& func : type.funcs) add(func.help);
      for (const auto& var : type.vars) add(var.help);
    }
    words.erase("");
    if (words.empty()) return;
    std::vector<std::string> leaves(words.begin(), words.end());
    leaves.push_back("");
    Node(leaves, 0, leaves.size(), {});
  }
  void Node(const std::vector<std::string>& leaves, size_t begin, size_t end, std::vector<bool> path) {
    if (end - begin == 1) {
      codes[leaves[begin]] = path;
      tree.U8(0);
      tree.Text(leaves[begin]);
      tree.U8(0);
      return;
    }
    const size_t node = tree.size();
    tree.U8(0x80);
    tree.U16(0);
    const size_t mid = (begin + end) / 2;
    auto one = path;
    one.push_back(true);
    Node(leaves, mid, end, one);
    tree.b[node + 1] = static_cast<uint8_t>(tree.size() >> 8);
    tree.b[node + 2] = static_cast<uint8_t>(tree.size() & 0xFF);
    path.push_back(false);
    Node(leaves, begin, mid, path);
  }
  std::vector<uint8_t> Encode(const std::string& help) const {
    std::vector<bool> bits;
    auto words = HelpWords(help);
    words.push_back("");
    for (const auto& word : words) {
      const auto& code = codes.at(word);
      bits.insert(bits.end(), code.begin(), code.end());
    }
    std::vector<uint8_t> bytes((bits.size() + 7) / 8);
    for (size_t i = 0; i < bits.size(); ++i) {
      if (bits[i]) bytes[i / 8] |= static_cast<uint8_t>(0x80 >> (i % 8));
    }
    return bytes;
  }
};

bool IsInteger(uint16_t type) {
  for (uint16_t code : {vt::kI1, vt::kUI1, vt::kI2, vt::kUI2, vt::kI4, vt::kUI4, vt::kInt, vt::kUInt,
                        vt::kBool, vt::kError}) {
    if (type == code) return true;
  }
  return false;
}

uint16_t DirectionBits(uint16_t flags) {
  const uint16_t bits[] = {0xC000, 0, 0x4000, 0x8000};
  return static_cast<uint16_t>(bits[flags & 3] | (flags & 4 ? 0x2000 : 0) | (flags & 8 ? 0x80 : 0));
}

// One type info's block: header, reference table, member header, member
// area (`m_`), tail.
class BlockWriter {
 public:
  BlockWriter(const SltgLibrary& library, const SltgTypeInfo& type, NameTable& names, const HelpEncoder& help)
      : library_(library), type_(type), names_(names), help_(help) {}

  std::vector<uint8_t> Build() {
    for (size_t i = 0; i < type_.impls.size(); ++i) {
      m_.U16s({0x004A, i + 1 < type_.impls.size() ? static_cast<uint16_t>((i + 1) * 0x16) : kNone, kNone});
      m_.U8(type_.impls[i].flags);
      m_.U8(0x80);
      m_.U16s({0x12, RefPosition(type_.impls[i].ref), 0x4000, 0xFFFE, kNone, 0x1D, static_cast<uint16_t>(i * 4)});
    }
    const uint16_t funcs = WriteFuncs(), vars = WriteVars();
    uint16_t alias = kNone, simpleAlias = 0;
    if (type_.alias && type_.alias->element.empty() && type_.alias->vt != vt::kUserDefined) {
      alias = type_.alias->vt;
      simpleAlias = 1;
    } else if (type_.alias) {
      alias = static_cast<uint16_t>(m_.size());
      PutWords(*type_.alias, 0);
    }
    for (const auto& [hole, array] : boundsHoles_) {
      m_.Set16(hole, m_.size());
      m_.U16s({static_cast<uint16_t>(array->dims.size()), 0, 0, 0, 0, 0, 0, 0});
      for (uint32_t count : array->dims) m_.U32(count), m_.U32(0);
    }
    const Out refs = RefTable();
    Out block;
    block.U16(0x0501);
    const size_t none = 0xFFFFFFFF;
    for (size_t word : {refs.size() ? 0x22 : none, none, 0x22 + refs.size(), none, size_t{0}, size_t{0xFFFE0000}}) {
      block.U32(word);
    }
    block.U8(static_cast<uint8_t>(2 | (type_.flags & 0x1F) << 3));
    block.U8(static_cast<uint8_t>(type_.flags >> 5));
    block.U8(2);
    block.U8(static_cast<uint8_t>(type_.kind));
    block.U32(0);
    block.Append(refs.b);
    block.U16s({1, kNone});
    block.U8(1);
    block.U32(m_.size());
    block.Append(m_.b);
    const auto count = [](size_t n) { return static_cast<uint16_t>(n); };
    const size_t impls = type_.impls.size();
    // Counts, first records and byte counts of the three lists; alias;
    // instance size, alignment and the vtable size.
    block.U16s({count(type_.funcs.size()), count(type_.vars.size()), count(impls), 0, funcs, vars,
                impls ? uint16_t{0} : kNone, 0, 0, count(impls * 0x16), alias, kNone, 0, 0, simpleAlias, 0,
                0, 4, 0, 0, type_.vtableSize, kNone, kNone, kNone, kNone, 0, 0});
    return block.b;
  }

 private:
  uint16_t RefPosition(const SltgRef& ref) {
    auto found = std::find(refs_.begin(), refs_.end(), ref);
    if (found == refs_.end()) found = refs_.insert(refs_.end(), ref);
    return static_cast<uint16_t>(found - refs_.begin());
  }

  Out RefTable() {
    Out table;
    if (refs_.empty()) return table;
    table.U16(0xDF);
    table.Fill(0x40, 0xFF);
    table.U16(kNone);
    table.U32(refs_.size() * 8);
    for (const SltgRef& ref : refs_) table.U16s({1, ref.local >= 0 ? uint16_t{0x4002} : uint16_t{2}, kNone, 0});
    table.U16(kNone);
    table.U8(1);
    table.U32(0);
    for (const SltgRef& ref : refs_) {
      std::string lib = "ffff";
      if (ref.local < 0) {
        const SltgImport& import = library_.imports.at(static_cast<size_t>(ref.import));
        lib = Hex(names_.Add("*\\G" + import.guid + "#" + std::to_string(import.major) + "." +
                             std::to_string(import.minor) + "#" + Hex(import.lcid) + "#" + import.path + "#"));
      }
      table.Counted("*\\R" + lib + "*#" + Hex(static_cast<uint32_t>(ref.local >= 0 ? ref.local : ref.typeNumber)));
    }
    table.U8(0xDF);
    return table;
  }

  // A type's words; a CARRAY's bounds offset is a hole filled when the
  // bounds are written after every record.
  void Words(const SltgType& type, uint16_t bits, std::vector<uint16_t>& words,
             std::vector<std::pair<size_t, const SltgType*>>& bounds) {
    if (type.vt == vt::kPtr && type.implicitPointer) return Words(type.element.at(0), bits | 0x0E00, words, bounds);
    words.push_back(type.vt | bits);
    if (type.vt == vt::kCArray) bounds.emplace_back(words.size(), &type), words.push_back(0);
    if (type.vt == vt::kUserDefined) words.push_back(static_cast<uint16_t>(RefPosition(type.ref) * 4));
    if (!type.element.empty()) Words(type.element[0], 0, words, bounds);
  }
  std::vector<uint16_t> Words(const SltgType& type) {
    std::vector<uint16_t> words;
    std::vector<std::pair<size_t, const SltgType*>> bounds;
    Words(type, 0, words, bounds);
    return words;
  }
  void PutWords(const SltgType& type, uint16_t bits) {
    std::vector<uint16_t> words;
    std::vector<std::pair<size_t, const SltgType*>> bounds;
    Words(type, bits, words, bounds);
    for (const auto& [index, array] : bounds) boundsHoles_.emplace_back(m_.size() + 2 * index, array);
    for (uint16_t word : words) m_.U16(word);
  }
  // A single-word type goes in the record's field, a longer one elsewhere.
  bool PutType(const SltgType& type, size_t field) {
    const auto words = Words(type);
    if (words.size() == 1) return m_.Set16(field, words[0]), true;
    m_.Set16(field, m_.size());
    PutWords(type, 0);
    return false;
  }
  void PutHelp(const std::string& help, size_t field) {
    if (help.empty()) return m_.Set16(field, kNone);
    m_.Set16(field, m_.size());
    m_.Append(help_.Encode(help));
  }

  uint16_t WriteFuncs() {
    size_t previousNext = 0;
    uint16_t first = kNone;
    for (const SltgFunc& func : type_.funcs) {
      if (first == kNone) first = static_cast<uint16_t>(m_.size());
      if (previousNext) m_.Set16(previousNext, m_.size());
      const uint8_t kind = func.funcKind == 4 ? 0xCB : func.funcKind == 3 ? 0x8B : 0x4C;
      m_.U8(static_cast<uint8_t>(kind | (func.flags ? 0x20 : 0)));
      m_.U8(static_cast<uint8_t>(func.invokeKind << 4 | 2));
      previousNext = m_.Hole();
      m_.U16(func.name.empty() ? kNone : names_.Add(func.name));
      m_.U32(static_cast<uint32_t>(func.memberId));
      m_.U16(0);
      const size_t help = m_.Hole(), args = m_.Hole();
      m_.U8(static_cast<uint8_t>(func.params.size() << 3 | 4));
      const int optional = func.optionalCount < 0 ? 63 : func.optionalCount;
      m_.U8(static_cast<uint8_t>((Words(func.ret).size() == 1 ? 0x80 : 0) | optional << 1));
      const size_t ret = m_.Hole();
      m_.U16(func.vtableOffset);
      if (func.flags) m_.U16(*func.flags);
      PutType(func.ret, ret);
      m_.Set16(args, m_.size());
      std::vector<std::pair<size_t, const SltgParam*>> elsewhere;
      for (const SltgParam& param : func.params) {
        if (param.name.empty()) {
          m_.U16(param.typeElsewhere ? 0xFFFE : 0xFFFF);
        } else {  // pointing at the second letter says that the type follows
          m_.U16(names_.Add(param.name) + (param.typeElsewhere ? 0 : 1));
        }
        if (param.typeElsewhere) {
          elsewhere.emplace_back(m_.Hole(), &param);
        } else {
          PutWords(param.type, DirectionBits(param.flags));
        }
      }
      for (const auto& [field, param] : elsewhere) {
        m_.Set16(field, m_.size());
        PutWords(param->type, DirectionBits(param->flags));
      }
      PutHelp(func.help, help);
    }
    if (previousNext) m_.Set16(previousNext, kNone);
    return first;
  }

  uint16_t WriteVars() {
    size_t previousNext = 0;
    uint16_t first = kNone;
    uint32_t instanceOffset = 0;
    for (const SltgVar& var : type_.vars) {
      if (first == kNone) first = static_cast<uint16_t>(m_.size());
      if (previousNext) m_.Set16(previousNext, m_.size());
      m_.U8(var.flags ? 0x2A : 0x0A);
      const size_t flagsAt = m_.size();
      m_.U8(0);
      previousNext = m_.Hole();
      m_.U16(var.sameNameAsPrevious ? 0xFFFE : names_.Add(var.name));
      const size_t value = m_.Hole(), type = m_.Hole();
      m_.U32(static_cast<uint32_t>(var.memberId));
      m_.U16(0);
      const size_t help = m_.Hole();
      if (var.flags) m_.U16(*var.flags);
      uint8_t flags = static_cast<uint8_t>((var.readOnly ? 0x80 : 0) | (var.varKind == 3 ? 0x40 : 0));
      if (PutType(var.type, type)) flags |= 0x02;
      if (var.varKind == 2) {
        flags |= 0x10;
        if (PutValue(*var.value, value)) flags |= 0x08;
      } else {
        m_.Set16(value, instanceOffset);
        instanceOffset += 4;
      }
      m_.b[flagsAt] = flags;
      PutHelp(var.help, help);
    }
    if (previousNext) m_.Set16(previousNext, kNone);
    return first;
  }

  // True when the value went into the field itself.
  bool PutValue(const platform::TlbValue& value, size_t field) {
    if (IsInteger(value.vt) && value.integer >= 0 && value.integer <= 0xFFFF) {
      return m_.Set16(field, static_cast<size_t>(value.integer)), true;
    }
    m_.Set16(field, m_.size());
    if (IsInteger(value.vt)) {
      m_.U32(static_cast<uint32_t>(value.integer));
    } else if (value.vt == vt::kR4) {
      m_.U32(std::bit_cast<uint32_t>(static_cast<float>(value.real)));
    } else if (value.vt == vt::kR8 || value.vt == vt::kDate) {
      m_.U64(std::bit_cast<uint64_t>(value.real));
    } else if (value.vt == vt::kBstr) {
      const std::string text = rt::Utf8ToCp1252(value.text);
      m_.U16(text.size());
      m_.Text(text);
    } else {
      m_.U64(static_cast<uint64_t>(value.integer));
    }
    return false;
  }

  const SltgLibrary& library_;
  const SltgTypeInfo& type_;
  NameTable& names_;
  const HelpEncoder& help_;
  Out m_;
  std::vector<SltgRef> refs_;
  std::vector<std::pair<size_t, const SltgType*>> boundsHoles_;
};

std::string IndexName(size_t index) {
  std::string name(10, 'A');
  for (size_t i = 0; i < name.size() && index; ++i, index /= 26) name[i] = static_cast<char>('A' + index % 26);
  return name;
}

// The library block: its record, the type info list, the help tree and the
// name table.
std::vector<uint8_t> LibraryBlock(const SltgLibrary& library, NameTable& names, HelpEncoder& help) {
  Out out;
  out.U16s({0x51CC, 3, names.Add(library.name), kNone});
  out.Counted(library.help);
  out.U16s({kNone, 0, 0, library.sysKind, 0x409, 0, 0, 0, library.major, library.minor});
  out.Guid(library.guid);
  out.Fill(0x40, 0xFF);
  out.U16(library.types.size());
  for (size_t i = 0; i < library.types.size(); ++i) {
    const SltgTypeInfo& type = library.types[i];
    out.Counted(IndexName(i));
    out.U16s({kNone, kNone, names.Add(type.name)});
    const auto helpBits = type.help.empty() ? std::vector<uint8_t>() : help.Encode(type.help);
    out.U16(helpBits.size());
    out.Append(helpBits);
    out.U16s({kNone, 0, 0, kNone});
    out.Guid(type.guid);
    out.U16(static_cast<uint16_t>(type.kind));
  }
  const size_t nameTableField = out.size();
  out.U32(0);
  out.U16(help.longest + 1);
  out.U32(help.tree.size());
  out.Append(help.tree.b);
  out.Set32(nameTableField, out.size());
  if (library.longNameTableHeader) {
    out.U16(0x0200);
    out.Fill(10 + 0x20, 0);
  } else {
    out.U16s({0xFFFF, 1, 2, 0xFF00, 0xFFFF, 0xFFFF});
  }
  out.Fill(0x200, 0xFF);
  out.U32(names.out.size());
  out.Append(names.out.b);
  out.U32(0x01FFFF01);
  out.U32(0);
  return out.b;
}

}  // namespace

std::vector<uint8_t> BuildSltg(const SltgLibrary& library) {
  NameTable names;
  names.Add(library.name);  // writers put it first, and some readers rely on that
  HelpEncoder help(library);
  std::vector<std::vector<uint8_t>> blocks;
  for (const SltgTypeInfo& type : library.types) blocks.push_back(BlockWriter(library, type, names, help).Build());
  blocks.push_back(LibraryBlock(library, names, help));

  const size_t count = blocks.size();
  auto slot = [&](size_t position) { return library.reversedDirectory ? count - 1 - position : position; };
  Out out;
  out.Text("SLTG");
  out.U16s({static_cast<uint16_t>(count + 1), 9, static_cast<uint16_t>(13 + 11 * (count - 1)),
            static_cast<uint16_t>(slot(0) + 1)});
  out.Guid("{000204FF-0000-0000-C000-000000000046}");
  out.U32(0x44);
  out.U32(0xFFFF0000);
  std::vector<Out> entries(count);
  for (size_t position = 0; position < count; ++position) {
    Out& entry = entries[slot(position)];
    entry.U32(blocks[position].size());
    entry.U16(position + 1 < count ? 13 + 11 * position : 9);
    entry.U16(position + 1 < count ? slot(position + 1) + 1 : 0);
  }
  for (const Out& entry : entries) out.Append(entry.b);
  out.Text(std::string_view("\1CompObj\0dir\0", 13));
  for (size_t i = 0; i + 1 < count; ++i) out.Text(IndexName(i)), out.U8(0);
  out.Fill(9, 0);
  for (const auto& block : blocks) out.Append(block);
  // What writers put after the library block; no reader needs it.
  out.U16s({1, 0xFFFE, 0x0A03, 0, 0xFFFF, 0xFFFF});
  out.Guid(library.guid);
  out.U32(8);
  out.Text(std::string_view("TYPELIB", 8));
  out.U16s({0xFFFF, 0xFFFF, 0x0200, 0, 0, 0});
  out.Fill(16, 0);
  return out.b;
}

}  // namespace sentrune::portable::testing
