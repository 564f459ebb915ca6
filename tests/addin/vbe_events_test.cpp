// Events through connection points: the sink is advised on the source the
// Events object gives for the target, reads the IDE's last-first arguments
// in declaration order, writes by-reference Booleans back as the IDE reads
// them, and is unadvised (and deaf) once its subscription ends.
#include <gtest/gtest.h>

#include "addin_ids.h"
#include "vbe_command_bars.h"
#include "vbe_events.h"
#include "vbe_fake_dispatch.h"
#include "vbe_project.h"

namespace sentrune::addin {
namespace {

using testing::FakeObject;
using testing::FakeSource;

struct FileSink : platform::FileControlEventsSink {
  std::vector<std::string> heard;
  void RequestWriteFile(const platform::ProjectPtr& project, const std::string& fileName, bool& cancel) override {
    heard.push_back(project->Name() + " " + fileName);
    cancel = true;
  }
  void AfterChangeFileName(const platform::ProjectPtr&, int type, const std::string& newName,
                           const std::string& oldName) override {
    heard.push_back(std::to_string(type) + " " + newName + " <- " + oldName);
  }
  void DoGetNewFileName(const platform::ProjectPtr&, int, std::string& newName, const std::string& oldName,
                        bool& cancelDefault) override {
    heard.push_back(newName + " for " + oldName);
    newName = "C.cls";
    cancelDefault = true;
  }
};

struct ClickSink : platform::CommandBarEventsSink {
  std::string caption;
  void Click(const platform::ControlPtr& control, bool& handled, bool& cancelDefault) override {
    caption = control->Caption();
    EXPECT_FALSE(handled);
    EXPECT_TRUE(cancelDefault);
    handled = true;
    cancelDefault = false;
  }
};

// Raises an event as the IDE does: arguments given first-first, passed last-first.
HRESULT Raise(IDispatch* sink, DISPID id, std::vector<VARIANT> args) {
  std::vector<VARIANT> reversed(args.rbegin(), args.rend());
  DISPPARAMS params{reversed.data(), nullptr, static_cast<UINT>(reversed.size()), 0};
  return sink->Invoke(id, IID_NULL, 0, DISPATCH_METHOD, &params, nullptr, nullptr, nullptr);
}

VARIANT ByRef(VARIANT_BOOL& value) {
  VARIANT arg;
  arg.vt = VT_BYREF | VT_BOOL;
  arg.pboolVal = &value;
  return arg;
}

TEST(VbeEvents, FileEventsReachTheSinkInOrderAndWriteCancelBack) {
  FakeObject events;
  FakeObject projectObject;
  FakeSource source(kIidFileControlEvents);
  FakeObject sourceObject;
  sourceObject.container = &source;
  projectObject.values["name"] = Variant("Proj1");
  events.values["filecontrolevents"] = Variant(static_cast<IDispatch*>(&sourceObject));
  VbeEvents wrapped{ComPtr<IDispatch>(&events)};
  const platform::ProjectPtr project = std::make_shared<VbeProject>(ComPtr<IDispatch>(&projectObject));
  FileSink sink;

  std::unique_ptr<platform::Subscription> subscription = wrapped.FileControlEvents(project, sink);
  ASSERT_TRUE(subscription);
  ASSERT_NE(source.point.sink, nullptr);
  EXPECT_EQ(events.calls.back().args.at(0).ToObject("project")->get(), &projectObject);

  Variant projectArg(static_cast<IDispatch*>(&projectObject));
  Variant fileName("C:\\p\\Form1.frm");
  VARIANT_BOOL cancel = VARIANT_FALSE;
  ASSERT_EQ(Raise(source.point.sink, kDispRequestWriteFile, {projectArg.get(), fileName.get(), ByRef(cancel)}), S_OK);
  EXPECT_EQ(cancel, VARIANT_TRUE);

  Variant type(int32_t{platform::vbext_ft_Class});
  Variant newName("B.cls");
  Variant oldName("A.cls");
  Raise(source.point.sink, kDispAfterChangeFileName, {projectArg.get(), type.get(), newName.get(), oldName.get()});

  // By-reference texts and Booleans, also as a Variant passed by reference.
  BSTR proposed = SysAllocString(L"B.cls");
  VARIANT proposedArg;
  proposedArg.vt = VT_BYREF | VT_BSTR;
  proposedArg.pbstrVal = &proposed;
  Variant cancelDefault(false);
  VARIANT cancelArg;
  cancelArg.vt = VT_BYREF | VT_VARIANT;
  cancelArg.pvarVal = &cancelDefault.get();
  Raise(source.point.sink, kDispDoGetNewFileName,
        {projectArg.get(), type.get(), proposedArg, oldName.get(), cancelArg});
  EXPECT_EQ(std::wstring(proposed), L"C.cls");
  SysFreeString(proposed);
  EXPECT_EQ(cancelDefault.get().vt, VT_BOOL);
  EXPECT_EQ(cancelDefault.get().boolVal, VARIANT_TRUE);
  EXPECT_EQ(sink.heard,
            (std::vector<std::string>{"Proj1 C:\\p\\Form1.frm", "2 B.cls <- A.cls", "B.cls for A.cls"}));

  // The IDE may still hold the sink after the subscription ends: it must no longer reach ours.
  IDispatch* kept = source.point.sink;
  kept->AddRef();
  subscription.reset();
  EXPECT_EQ(source.point.unadvised, std::vector<DWORD>{42});
  Raise(kept, kDispAfterChangeFileName, {projectArg.get(), type.get(), newName.get(), oldName.get()});
  EXPECT_EQ(sink.heard.size(), 3u);
  kept->Release();
}

TEST(VbeEvents, ClickWritesBothFlagsBackAndOtherTargetsGiveNoSubscription) {
  FakeObject events;
  FakeObject control;
  FakeSource source(kIidCommandBarControlEvents);
  FakeObject sourceObject;
  sourceObject.container = &source;
  control.values["caption"] = Variant("&References");
  events.values["commandbarevents"] = Variant(static_cast<IDispatch*>(&sourceObject));
  VbeEvents wrapped{ComPtr<IDispatch>(&events)};
  ClickSink sink;

  const auto subscription =
      wrapped.CommandBarEvents(std::make_shared<VbeCommandBarControl>(ComPtr<IDispatch>(&control)), sink);
  ASSERT_TRUE(subscription);
  Variant controlArg(static_cast<IDispatch*>(&control));
  VARIANT_BOOL handled = VARIANT_FALSE;
  VARIANT_BOOL cancelDefault = VARIANT_TRUE;
  Raise(source.point.sink, kDispClick, {controlArg.get(), ByRef(handled), ByRef(cancelDefault)});
  EXPECT_EQ(sink.caption, "&References");
  EXPECT_EQ(handled, VARIANT_TRUE);
  EXPECT_EQ(cancelDefault, VARIANT_FALSE);

  // A null control, and a source with no connection point for the interface.
  EXPECT_FALSE(wrapped.CommandBarEvents(nullptr, sink));
  FakeSource other(kIidVBProjectsEvents);
  sourceObject.container = &other;
  EXPECT_FALSE(wrapped.CommandBarEvents(std::make_shared<VbeCommandBarControl>(ComPtr<IDispatch>(&control)), sink));
}

}  // namespace
}  // namespace sentrune::addin
