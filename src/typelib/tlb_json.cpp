#include "typelib/tlb_json.h"

#include <nlohmann/json.hpp>

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

}  // namespace

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
