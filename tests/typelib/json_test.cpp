#include "typelib/tlb_json.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "typelib/typelib_world.h"

namespace sentrune::testing {
namespace {

TEST(TypeLibJson, KeepsTheFixedShapeAndOrder) {
  TypelibWorld world;
  const clsParseTLB m = world.Load("C:\\W.dll", WidgetsLibrary());
  const auto json = nlohmann::ordered_json::parse(TypeLibJson(m));
  std::vector<std::string> keys;
  for (const auto& [key, value] : json.items()) keys.push_back(key);
  EXPECT_EQ(keys, (std::vector<std::string>{"Library", "HelpString", "GUID", "TLBVersionString",
                                            "FileVersionString", "Enums", "Types", "Classes"}));
  EXPECT_EQ(json["Enums"][0].dump(),
            R"({"MemberName":"WidgetColor","Members":[{"MemberName":"colRed","MemberValue":0,"MemberHelp":""},)"
            R"({"MemberName":"colGreen","MemberValue":1,"MemberHelp":"green"}]})");
  EXPECT_EQ(json["Types"][0]["Members"][1].dump(), R"({"MemberName":"Y As Long","MemberHelp":""})");
  const auto& widget = json["Classes"][0];
  EXPECT_EQ(widget["ClassName"], "Widget");
  EXPECT_EQ(widget["Properties"][0].dump(), R"({"MemberName":"Get Caption() As String","MemberHelp":"The caption"})");
  EXPECT_EQ(widget["Events"][0]["MemberName"], "Changed(ByVal Index As Long)");
  EXPECT_EQ(json["Classes"][1]["Events"].dump(), "[]");
}

}  // namespace
}  // namespace sentrune::testing
