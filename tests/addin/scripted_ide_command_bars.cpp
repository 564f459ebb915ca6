#include "scripted_ide_command_bars.h"

#include <algorithm>
#include <utility>

namespace sentrune::testing::ide {
namespace {

const IID kIidControls = {0x000C0306, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
const IID kIidControl = {0x000C0308, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};

enum : DISPID {
  kItem = 0,
  kCount = 0x60020001,
  kAdd = 0x60030000,
  kControls = 0x60030001,
  kName = 0x60030002,
  kCaption = 0x60030010,
  kBeginGroup = 0x60030011,
  kEnabled = 0x60030012,
  kVisible = 0x60030013,
  kTag = 0x60030014,
  kDelete = 0x60030015,
  kType = 0x60030016,
};

using ControlList = std::vector<std::shared_ptr<ControlRecord>>;

std::vector<std::shared_ptr<ControlRecord>> Present(const ControlList& all) {
  ControlList present;
  std::copy_if(all.begin(), all.end(), std::back_inserter(present), [](const auto& c) { return !c->deleted; });
  return present;
}

// A bar's or a pop-up's controls. Add takes (Type, Id, Parameter, Before,
// Temporary); only Type matters here, Before appends.
class Controls : public ScriptedObject {
 public:
  Controls(std::shared_ptr<IdeState> state, ControlList* list)
      : ScriptedObject({{L"Item", kItem}, {L"Count", kCount}, {L"Add", kAdd}}, {kIidControls}),
        state_(std::move(state)),
        list_(list) {}

 private:
  HRESULT Call(DISPID id, WORD, const Args& args, VARIANT* result) override {
    const ControlList present = Present(*list_);
    switch (id) {
      case kCount:
        return ReturnLong(result, static_cast<LONG>(present.size()));
      case kItem: {
        const std::optional<LONG> index = LongArg(args, 0);
        if (!index || *index < 1 || *index > static_cast<LONG>(present.size())) return DISP_E_BADINDEX;
        return ReturnObject(result, NewControl(state_, present[static_cast<size_t>(*index - 1)]));
      }
      case kAdd: {
        auto control = std::make_shared<ControlRecord>();
        control->type = LongArg(args, 0).value_or(1);
        list_->push_back(control);
        state_->added.push_back(control);
        return ReturnObject(result, NewControl(state_, control));
      }
      default:
        return DISP_E_MEMBERNOTFOUND;
    }
  }

  std::shared_ptr<IdeState> state_;
  ControlList* list_;  // in the state, which this object holds
};

class Control : public ScriptedObject {
 public:
  Control(std::shared_ptr<IdeState> state, std::shared_ptr<ControlRecord> control)
      : ScriptedObject({{L"Caption", kCaption}, {L"BeginGroup", kBeginGroup}, {L"Enabled", kEnabled},
                        {L"Visible", kVisible}, {L"Tag", kTag}, {L"Delete", kDelete}, {L"Controls", kControls},
                        {L"Type", kType}},
                       {kIidControl}),
        state_(std::move(state)),
        control_(std::move(control)) {}

  const void* Target() const override { return control_.get(); }

 private:
  HRESULT Call(DISPID id, WORD flags, const Args& args, VARIANT* result) override {
    ControlRecord& c = *control_;
    if (c.deleted) return E_FAIL;  // as Office answers for a deleted control
    switch (id) {
      case kCaption:
        return Text(flags, args, result, c.caption);
      case kTag:
        return Text(flags, args, result, c.tag);
      case kBeginGroup:
        return Flag(flags, args, result, c.beginGroup);
      case kEnabled:
        return Flag(flags, args, result, c.enabled);
      case kVisible:
        return Flag(flags, args, result, c.visible);
      case kType:
        return ReturnLong(result, c.type);
      case kDelete:
        c.deleted = true;
        return S_OK;
      case kControls:
        if (c.type != 10) return E_FAIL;  // only a pop-up has controls
        return ReturnObject(result, new Controls(state_, &c.controls));
      default:
        return DISP_E_MEMBERNOTFOUND;
    }
  }

  static HRESULT Text(WORD flags, const Args& args, VARIANT* result, std::wstring& field) {
    if (!IsPut(flags)) return ReturnText(result, field);
    const std::optional<std::wstring> value = TextArg(args, args.size() - 1);
    if (args.empty() || !value) return DISP_E_TYPEMISMATCH;
    field = *value;
    return S_OK;
  }
  static HRESULT Flag(WORD flags, const Args& args, VARIANT* result, bool& field) {
    if (!IsPut(flags)) return ReturnBool(result, field);
    const std::optional<bool> value = args.empty() ? std::nullopt : BoolArg(args, args.size() - 1);
    if (!value) return DISP_E_TYPEMISMATCH;
    field = *value;
    return S_OK;
  }

  std::shared_ptr<IdeState> state_;
  std::shared_ptr<ControlRecord> control_;
};

class Bar : public ScriptedObject {
 public:
  Bar(std::shared_ptr<IdeState> state, BarRecord* bar)
      : ScriptedObject({{L"Name", kName}, {L"Controls", kControls}}, {}), state_(std::move(state)), bar_(bar) {}

 private:
  HRESULT Call(DISPID id, WORD, const Args&, VARIANT* result) override {
    if (id == kName) return ReturnText(result, bar_->name);
    if (id == kControls) return ReturnObject(result, new Controls(state_, &bar_->controls));
    return DISP_E_MEMBERNOTFOUND;
  }

  std::shared_ptr<IdeState> state_;
  BarRecord* bar_;
};

class Bars : public ScriptedObject {
 public:
  explicit Bars(std::shared_ptr<IdeState> state)
      : ScriptedObject({{L"Item", kItem}, {L"Count", kCount}}, {}), state_(std::move(state)) {}

 private:
  HRESULT Call(DISPID id, WORD, const Args& args, VARIANT* result) override {
    if (id == kCount) return ReturnLong(result, static_cast<LONG>(state_->bars.size()));
    if (id != kItem) return DISP_E_MEMBERNOTFOUND;
    const std::optional<std::wstring> name = TextArg(args, 0);
    for (BarRecord& bar : state_->bars) {
      if (name && CompareStringOrdinal(bar.name.c_str(), -1, name->c_str(), -1, TRUE) == CSTR_EQUAL)
        return ReturnObject(result, new Bar(state_, &bar));
    }
    return E_INVALIDARG;  // Office's answer for an unknown bar
  }

  std::shared_ptr<IdeState> state_;
};

}  // namespace

ScriptedObject* NewCommandBars(std::shared_ptr<IdeState> state) { return new Bars(std::move(state)); }

ScriptedObject* NewControl(std::shared_ptr<IdeState> state, std::shared_ptr<ControlRecord> control) {
  return new Control(std::move(state), std::move(control));
}

}  // namespace sentrune::testing::ide
