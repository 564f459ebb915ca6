// Late-bound calls on the IDE's objects: names asked once, arguments in the
// order the member declares them, texts in UTF-8, errors that name the member.
#include <gtest/gtest.h>

#include "vbe_dispatch.h"
#include "vbe_fake_dispatch.h"
#include "vbe_project.h"

namespace sentrune::addin {
namespace {

using testing::FakeObject;

TEST(VbeDispatch, AsksEachNameOnceAndPassesArgumentsFirstFirst) {
  FakeObject fake;
  fake.values["name"] = Variant("Pr\xC3\xB6jekt");
  {
    const DispatchObject object(ComPtr<IDispatch>(&fake), "VBProject");
    EXPECT_EQ(*object.GetText("Name"), "Pr\xC3\xB6jekt");
    EXPECT_EQ(*object.GetText("NAME"), "Pr\xC3\xB6jekt");
    ASSERT_TRUE(object.Put("Name", Variant("Neu")).ok());
    EXPECT_EQ(*object.GetText("name"), "Neu");
    ASSERT_TRUE(object.Call("Add", {Variant(int32_t{10}), Variant::Missing(), Variant(true)}).ok());
  }
  EXPECT_EQ(fake.lookups.size(), 2u);
  EXPECT_EQ(fake.lookups["Name"], 1);
  EXPECT_EQ(fake.lookups["Add"], 1);

  const FakeObject::Call& add = fake.calls.back();
  EXPECT_EQ(add.flags, DISPATCH_METHOD);
  ASSERT_EQ(add.args.size(), 3u);
  EXPECT_EQ(*add.args[0].ToLong("type"), 10);
  EXPECT_EQ(add.args[1].get().vt, VT_ERROR);
  EXPECT_EQ(add.args[2].get().vt, VT_BOOL);
  EXPECT_EQ(add.args[2].get().boolVal, VARIANT_TRUE);
  EXPECT_EQ(fake.references, 1u);
}

TEST(VbeDispatch, FailuresNameTheMemberAndCarryTheIdesNumber) {
  FakeObject fake;
  fake.failures["filename"] = MAKE_HRESULT(SEVERITY_ERROR, FACILITY_CONTROL, 53);
  fake.values["count"] = Variant("many");
  const DispatchObject object(ComPtr<IDispatch>(&fake), "VBProject");

  const rt::Result<std::string> raised = object.GetText("FileName");
  ASSERT_FALSE(raised.ok());
  EXPECT_EQ(raised.error().number, 53);
  EXPECT_EQ(raised.error().description, "VBProject.FileName: raised by the fake");

  const rt::Result<Variant> unknown = object.Get("Nope");
  ASSERT_FALSE(unknown.ok());
  EXPECT_EQ(unknown.error().number, static_cast<int32_t>(DISP_E_UNKNOWNNAME));
  EXPECT_EQ(unknown.error().description.rfind("VBProject.Nope: ", 0), 0u);

  const rt::Result<int32_t> mismatch = object.GetLong("Count");
  ASSERT_FALSE(mismatch.ok());
  EXPECT_EQ(mismatch.error().number, rt::errnum::kTypeMismatch);
  EXPECT_NE(mismatch.error().description.find("VBProject.Count"), std::string::npos);
}

TEST(VbeDispatch, ProjectWalksCollectionsFromOneAndSavesUnderItsOwnName) {
  FakeObject project;
  FakeObject components;
  FakeObject component;
  components.values["count"] = Variant(int32_t{1});
  components.values["item"] = Variant(static_cast<IDispatch*>(&component));
  project.values["vbcomponents"] = Variant(static_cast<IDispatch*>(&components));
  {
    VbeProject wrapped{ComPtr<IDispatch>(&project)};
    const auto items = wrapped.VBComponents();
    ASSERT_EQ(items.size(), 1u);
    EXPECT_EQ(items[0]->Identity(), reinterpret_cast<uintptr_t>(static_cast<IUnknown*>(&component)));
    EXPECT_EQ(*components.calls.back().args.at(0).ToLong("index"), 1);

    EXPECT_FALSE(wrapped.Save().ok());  // never saved: no name to save under
    project.values["filename"] = Variant("C:\\p\\a.vbp");
    ASSERT_TRUE(wrapped.Save().ok());
    EXPECT_EQ(project.calls.back().member, "saveas");
    EXPECT_EQ(*project.calls.back().args.at(0).ToText("file"), "C:\\p\\a.vbp");
  }
  project.values.clear();
  components.values.clear();
  EXPECT_EQ(component.references, 1u);
}

}  // namespace
}  // namespace sentrune::addin
