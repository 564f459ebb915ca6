#include "typelib/tlb_json.h"

#include <nlohmann/json.hpp>

#include "runtime/text.h"

namespace sentrune {
namespace {

using Json = nlohmann::ordered_json;

Json MemberList(const MemberCollection& members, bool withValue) {
  Json list = Json::array();
  for (const auto& entry : members) {
    Json m;
    m["MemberName"] = entry.item.MemberName;
    if (withValue) m["MemberValue"] = entry.item.MemberValue;
    m["MemberHelp"] = entry.item.MemberHelp;
    list.push_back(std::move(m));
  }
  return list;
}

Json RecordList(const EnumOrTypeCollection& records, bool withValue) {
  Json list = Json::array();
  for (const auto& entry : records) {
    Json r;
    r["MemberName"] = entry.item.MemberName;
    r["Members"] = MemberList(entry.item.Members, withValue);
    list.push_back(std::move(r));
  }
  return list;
}

Json ClassList(const ClassCollection& classes) {
  Json list = Json::array();
  for (const auto& entry : classes) {
    Json c;
    c["ClassName"] = entry.item.ClassName;
    c["ClassGUID"] = entry.item.ClassGUID;
    c["Properties"] = MemberList(entry.item.Properties, false);
    c["Methods"] = MemberList(entry.item.Methods, false);
    c["Events"] = MemberList(entry.item.Events, false);
    list.push_back(std::move(c));
  }
  return list;
}

const char* ItemName(DiffItem item) {
  switch (item) {
    case DiffItem::kLibrary: return "library";
    case DiffItem::kEnum: return "enum";
    case DiffItem::kRecord: return "record";
    case DiffItem::kClass: return "class";
  }
  return "class";
}

const char* ChangeName(DiffChange change) {
  switch (change) {
    case DiffChange::kOnlyInA: return "onlyInA";
    case DiffChange::kOnlyInB: return "onlyInB";
    case DiffChange::kGuid: return "guid";
    case DiffChange::kValue: return "value";
    case DiffChange::kHelp: return "help";
  }
  return "value";
}

}  // namespace

Json DifferencesJson(const std::vector<TlbDifference>& differences) {
  Json list = Json::array();
  for (const TlbDifference& d : differences) {
    const DiffChange change = ChangeOf(d);
    Json j;
    j["pass"] = d.pass;
    j["item"] = ItemName(ItemOf(d.kind));
    j["name"] = d.item;
    j["member"] = d.member.empty() ? Json() : Json(d.member);
    j["change"] = ChangeName(change);
    if (change != DiffChange::kOnlyInA && change != DiffChange::kOnlyInB) {
      j["a"] = d.valueA;
      j["b"] = d.valueB;
    }
    j["message"] = rt::Replace(d.text, "\r\n", "\n");
    list.push_back(std::move(j));
  }
  return list;
}

std::string TypeLibJson(const clsParseTLB& model, int indent) {
  Json root;
  root["Library"] = model.Library();
  root["HelpString"] = model.HelpString();
  root["GUID"] = model.GUID();
  root["TLBVersionString"] = model.TLBVersionString();
  root["FileVersionString"] = model.FileVersionString();
  root["Enums"] = RecordList(model.Enums(), true);
  root["Types"] = RecordList(model.Types(), false);
  root["Classes"] = ClassList(model.Classes());
  // Texts from a type library need not be valid UTF-8; replace rather than throw.
  return root.dump(indent, ' ', false, Json::error_handler_t::replace);
}

}  // namespace sentrune
