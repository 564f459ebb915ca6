// The projection of the widl-compiled fixtures, checked against what the
// system's type library API shows for the same IDL.
#include <gtest/gtest.h>

#include "msft_test_files.h"
#include "platform/portable/typelib_projection.h"

namespace sentrune::portable {
namespace {

namespace vt = platform::vt;
using platform::TlbLibrary;
using platform::TlbMember;
using platform::TlbType;
using platform::TlbTypeInfo;
using testing::Function;
using testing::ProjectFixture;
using testing::Type;
using testing::Variable;

int Position(const TlbLibrary& library, std::string_view name) {
  for (size_t i = 0; i < library.types.size(); ++i) {
    if (library.types[i].name == name) return static_cast<int>(i);
  }
  return -2;
}

std::vector<std::string> Names(const std::vector<TlbMember>& members) {
  std::vector<std::string> names;
  for (const TlbMember& member : members) names.push_back(member.name);
  return names;
}

std::vector<TlbType> ParamTypes(const TlbMember& member) {
  std::vector<TlbType> types;
  for (const auto& param : member.params) types.push_back(param.type);
  return types;
}

TEST(WidgetsProjection, DualInterfaceShowsItsDispatchView) {
  const TlbLibrary library = ProjectFixture("widgets.tlb");
  const TlbTypeInfo& widget = Type(library, "_Widget");
  EXPECT_EQ(widget.kind, "dispatch");
  EXPECT_EQ(widget.flags, 0x10D0u);  // without the automation flag 0x100

  const std::vector<std::string> names = Names(widget.functions);
  ASSERT_EQ(names.size(), 7 + 22u);
  EXPECT_EQ(std::vector<std::string>(names.begin(), names.begin() + 7), (std::vector<std::string>{"QueryInterface", "AddRef", "Release",
                                                 "GetTypeInfoCount", "GetTypeInfo",
                                                 "GetIDsOfNames", "Invoke"}));
  for (size_t i = 0; i < 7; ++i) EXPECT_EQ(widget.functions[i].flags & 1, 1u) << i;
  EXPECT_EQ(names[7], "Caption");

  // [retval] becomes the return type, HRESULT becomes void, [lcid] goes.
  const TlbMember& find = Function(widget, "Find");
  EXPECT_EQ(find.type, (TlbType{vt::kI4, ""}));
  ASSERT_EQ(find.params.size(), 2u);
  EXPECT_TRUE(find.params[1].optional);
  EXPECT_TRUE(find.params[1].hasDefault);
  EXPECT_EQ(find.params[1].defaultValue.integer, 1);
  EXPECT_EQ(Function(widget, "Clear").type.code, vt::kVoid);
  EXPECT_EQ(Function(widget, "Lookup").params.size(), 1u);
  EXPECT_EQ(Function(widget, "Lookup").type.code, vt::kI4);
  EXPECT_EQ(Function(widget, "Refresh").flags, 0x40u);
  EXPECT_EQ(Function(widget, "Internal").flags, 0x1u);
}

TEST(WidgetsProjection, TypesFollowPointerArrayAndAliasRules) {
  const TlbLibrary library = ProjectFixture("widgets.tlb");
  const TlbTypeInfo& widget = Type(library, "_Widget");
  EXPECT_EQ(Function(widget, "GetNames").type, (TlbType{vt::kArrayFlag | vt::kBstr, ""}));
  EXPECT_EQ(ParamTypes(Function(widget, "SetNames")),
            (std::vector<TlbType>{{vt::kByRefFlag | vt::kArrayFlag | vt::kBstr, ""}}));
  EXPECT_EQ(ParamTypes(Function(widget, "Resize")),
            (std::vector<TlbType>{{vt::kByRefFlag | vt::kI4, ""}, {vt::kI4, ""}}));
  EXPECT_EQ(ParamTypes(Function(widget, "Describe")),
            (std::vector<TlbType>{{vt::kByRefFlag, "WidgetInfo"}}));
  // An object pointer is the reference itself; IUnknown* and IDispatch* are VTs.
  EXPECT_EQ(ParamTypes(Function(widget, "Attach")),
            (std::vector<TlbType>{{0, "_Part"}, {vt::kUnknown, ""}, {vt::kDispatch, ""}}));
  // stdole's aliases resolve to their targets: IFontDisp to the Font
  // dispinterface, OLE_COLOR to an unsigned long.
  EXPECT_EQ(Function(widget, "Font", 2).type, (TlbType{0, "Font"}));
  EXPECT_EQ(ParamTypes(Function(widget, "Font", 8)), (std::vector<TlbType>{{0, "Font"}}));
  EXPECT_EQ(Function(widget, "Picture", 2).type, (TlbType{0, "Picture"}));
  EXPECT_EQ(Function(widget, "BackColor", 2).type, (TlbType{vt::kUI4, ""}));

  const TlbTypeInfo& info = Type(library, "WidgetInfo");
  EXPECT_EQ(info.kind, "record");
  EXPECT_EQ(Variable(info, "Count").type, (TlbType{vt::kI4, ""}));
  EXPECT_EQ(Variable(info, "Tags").type, (TlbType{vt::kArrayFlag | vt::kBstr, ""}));
  EXPECT_EQ(Variable(info, "Color").type, (TlbType{0, "WidgetColors"}));
  EXPECT_EQ(Variable(info, "Owner").type, (TlbType{0, "_Part"}));
}

TEST(WidgetsProjection, NamesAndHelpComeFromTheFirstFunctionWithTheMemberId) {
  const TlbLibrary library = ProjectFixture("widgets.tlb");
  const TlbTypeInfo& widget = Type(library, "_Widget");
  // The get of Item has one parameter in the dispatch view, so the put's
  // value parameter has no name; the same for Caption's single one.
  const TlbMember& itemPut = Function(widget, "Item", 4);
  ASSERT_EQ(itemPut.params.size(), 2u);
  EXPECT_EQ(itemPut.params[0].name, "Index");
  EXPECT_EQ(itemPut.params[1].name, "");
  const TlbMember& captionPut = Function(widget, "Caption", 4);
  ASSERT_EQ(captionPut.params.size(), 1u);
  EXPECT_EQ(captionPut.params[0].name, "");
  EXPECT_EQ(captionPut.helpString, "The text shown on the widget");
  EXPECT_EQ(Function(widget, "Find").params[0].name, "Key");
}

TEST(WidgetsProjection, CoclassesLinkTheirDefaultAndSourceInterfaces) {
  const TlbLibrary library = ProjectFixture("widgets.tlb");
  const TlbTypeInfo& widget = Type(library, "Widget");
  EXPECT_EQ(widget.kind, "coclass");
  EXPECT_EQ(widget.defaultInterface, Position(library, "_Widget"));
  EXPECT_EQ(widget.defaultSource, Position(library, "__Widget"));
  EXPECT_EQ(Type(library, "Part").defaultInterface, Position(library, "_Part"));
  EXPECT_EQ(Type(library, "Part").defaultSource, -1);
  EXPECT_EQ(Type(library, "_Widget").defaultInterface, -1);

  // The event dispinterface lists its own methods only.
  const TlbTypeInfo& events = Type(library, "__Widget");
  EXPECT_EQ(Names(events.functions), (std::vector<std::string>{"Changed", "Closing"}));
  EXPECT_EQ(events.functions[0].helpString, "Raised after the caption changes");
  EXPECT_EQ(ParamTypes(events.functions[1]), (std::vector<TlbType>{{vt::kByRefFlag | vt::kBool, ""}}));

  const TlbTypeInfo& colors = Type(library, "WidgetColors");
  EXPECT_EQ(colors.kind, "enum");
  EXPECT_EQ(Names(colors.variables), (std::vector<std::string>{"wgRed", "wgGreen", "wgBlue", "wgAll"}));
  EXPECT_EQ(Variable(colors, "wgAll").value->integer, -1);
  EXPECT_EQ(Variable(colors, "wgAll").invokeKind, 0);
}

TEST(ShapesProjection, DualBaseChainPrecedesOwnFunctions) {
  const TlbLibrary library = ProjectFixture("shapes.tlb");
  const TlbTypeInfo& shape = Type(library, "IShape");
  const std::vector<std::string> names = Names(shape.functions);
  ASSERT_EQ(names.size(), 12u);
  EXPECT_EQ(std::vector<std::string>(names.begin() + 7, names.end()),
            (std::vector<std::string>{"Area", "Move", "Scale", "Link", "Outline"}));
  EXPECT_EQ(Function(shape, "Area", 2).type.code, vt::kR8);
  EXPECT_EQ(ParamTypes(Function(shape, "Scale")), (std::vector<TlbType>{{vt::kR8, ""}}));
  // Aliases are looked through, also when deciding that a pointer is the
  // object reference itself.
  EXPECT_EQ(ParamTypes(Function(shape, "Move")), (std::vector<TlbType>{{vt::kI4, ""}, {vt::kI4, ""}}));
  EXPECT_EQ(ParamTypes(Function(shape, "Link")),
            (std::vector<TlbType>{{0, "IShape"}, {vt::kByRefFlag, "IShape"}, {vt::kByRefFlag, "IShape"}}));
  EXPECT_EQ(Function(shape, "Outline").type, (TlbType{vt::kArrayFlag, "IShape"}));

  const TlbTypeInfo& figure = Type(library, "Figure");
  EXPECT_EQ(Variable(figure, "Corners").type, (TlbType{vt::kArrayFlag | vt::kI4, ""}));
  EXPECT_EQ(Variable(figure, "Perimeter").type, (TlbType{vt::kI4, ""}));
  EXPECT_EQ(Variable(figure, "Shape").type, (TlbType{0, "IShape"}));
}

TEST(ShapesProjection, VtableInterfacesModulesAndDispinterfacesAreRaw) {
  const TlbLibrary library = ProjectFixture("shapes.tlb");
  const TlbTypeInfo& raw = Type(library, "IRawShape");
  EXPECT_EQ(raw.kind, "interface");
  EXPECT_EQ(raw.flags, 0x100u);
  EXPECT_EQ(Names(raw.functions), (std::vector<std::string>{"Sides", "Resize", "Count"}));
  EXPECT_EQ(Function(raw, "Sides").type.code, vt::kHresult);
  EXPECT_EQ(ParamTypes(Function(raw, "Sides")), (std::vector<TlbType>{{vt::kByRefFlag | vt::kI4, ""}}));
  EXPECT_EQ(Function(raw, "Resize").params.size(), 2u);

  const TlbTypeInfo& module = Type(library, "ShapeFunctions");
  EXPECT_EQ(module.kind, "module");
  EXPECT_EQ(Names(module.functions), (std::vector<std::string>{"Circle"}));
  EXPECT_EQ(module.functions[0].params.size(), 2u);
  EXPECT_TRUE(module.variables.empty());

  const TlbTypeInfo& events = Type(library, "DShapeEvents");
  EXPECT_EQ(Names(events.functions), (std::vector<std::string>{"Moved", "Sized"}));
  EXPECT_EQ(Function(events, "Sized").type.code, vt::kHresult);
  EXPECT_TRUE(events.variables.empty());

  for (const char* name : {"Number", "Distance", "Length"}) {
    EXPECT_EQ(Type(library, name).guid, "{00000000-0000-0000-0000-000000000000}") << name;
    EXPECT_TRUE(Type(library, name).functions.empty()) << name;
    EXPECT_TRUE(Type(library, name).variables.empty()) << name;
  }
  EXPECT_EQ(Type(library, "Number").kind, "union");
  EXPECT_EQ(Type(library, "Length").kind, "alias");

  // A restricted default still counts.
  EXPECT_EQ(Type(library, "Square").defaultInterface, Position(library, "IShape"));
  EXPECT_EQ(Type(library, "Square").defaultSource, Position(library, "DShapeEvents"));
}

}  // namespace
}  // namespace sentrune::portable
