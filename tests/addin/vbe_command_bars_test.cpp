// The add-in's menu controls over Office command bars: controls added as
// temporary, only of the two types the menu uses, and a bar the IDE does
// not have (it raises for it) seen as Nothing.
#include <gtest/gtest.h>

#include "vbe_command_bars.h"
#include "vbe_fake_dispatch.h"

namespace sentrune::addin {
namespace {

using testing::FakeObject;

TEST(VbeCommandBars, AddsTemporaryControlsAndMissingBarsAreNothing) {
  FakeObject controls;
  FakeObject popup;
  popup.values["type"] = Variant(int32_t{platform::msoControlPopup});
  controls.values["add"] = Variant(static_cast<IDispatch*>(&popup));
  {
    VbeCommandBarControls wrapped{ComPtr<IDispatch>(&controls)};
    const auto added = wrapped.Add(platform::msoControlPopup);
    ASSERT_TRUE(added.ok());
    const FakeObject::Call& add = controls.calls.back();
    ASSERT_EQ(add.args.size(), 5u);
    EXPECT_EQ(*add.args[0].ToLong("Type"), platform::msoControlPopup);
    EXPECT_EQ(add.args[3].get().vt, VT_ERROR);
    EXPECT_EQ(*add.args[4].ToBool("Temporary"), true);

    (*added)->SetBeginGroup(true);
    EXPECT_TRUE((*added)->BeginGroup());
    EXPECT_EQ(popup.values["begingroup"].get().vt, VT_BOOL);

    EXPECT_FALSE(wrapped.Add(2).ok());
    EXPECT_EQ(controls.calls.size(), 1u);
  }

  FakeObject bars;
  bars.failures["item"] = E_INVALIDARG;
  VbeCommandBars wrappedBars{ComPtr<IDispatch>(&bars)};
  EXPECT_EQ(wrappedBars.Item("Add-Ins"), nullptr);
  EXPECT_EQ(*bars.calls.back().args.at(0).ToText("name"), "Add-Ins");

  controls.values.clear();
  EXPECT_EQ(popup.references, 1u);
}

}  // namespace
}  // namespace sentrune::addin
