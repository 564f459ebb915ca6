#include "scripted_ide_events.h"

#include <ocidl.h>
#include <olectl.h>

#include <utility>

namespace sentrune::testing::ide {
namespace {

const IID kIidEvents = {0x0002E112, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

enum : DISPID {
  kProjectsEvents = 0xC8,
  kComponentsEvents = 0xC9,
  kCommandBarEvents = 0xCD,
  kFileControlEvents = 0xCE,
};

class Source;

class Point : public ScriptedWith<IConnectionPoint> {
 public:
  Point(std::shared_ptr<IdeState> state, Source* source, const IID& iid, const void* target);
  ~Point() override;

  HRESULT STDMETHODCALLTYPE GetConnectionInterface(IID* iid) override {
    if (iid == nullptr) return E_POINTER;
    *iid = iid_;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetConnectionPointContainer(IConnectionPointContainer** container) override;
  HRESULT STDMETHODCALLTYPE Advise(IUnknown* sink, DWORD* cookie) override {
    if (sink == nullptr || cookie == nullptr) return E_POINTER;
    IDispatch* dispatch = nullptr;
    // The sink is asked for the dispinterface, as the IDE asks it.
    if (FAILED(sink->QueryInterface(iid_, reinterpret_cast<void**>(&dispatch)))) return CONNECT_E_CANNOTCONNECT;
    *cookie = state_->nextCookie++;
    state_->sinks.push_back({iid_, target_, *cookie, dispatch});
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Unadvise(DWORD cookie) override {
    for (SinkRecord& record : state_->sinks) {
      // Only this point's own connections: a cookie of another is refused.
      if (record.cookie == cookie && record.sink != nullptr && IsEqualIID(record.iid, iid_) &&
          record.target == target_) {
        IDispatch* sink = std::exchange(record.sink, nullptr);
        sink->Release();
        return S_OK;
      }
    }
    return CONNECT_E_NOCONNECTION;
  }
  HRESULT STDMETHODCALLTYPE EnumConnections(IEnumConnections** connections) override {
    if (connections != nullptr) *connections = nullptr;
    return E_NOTIMPL;
  }

 private:
  std::shared_ptr<IdeState> state_;
  Source* source_;  // held
  IID iid_;
  const void* target_;
};

class Source : public ScriptedWith<IConnectionPointContainer> {
 public:
  Source(std::shared_ptr<IdeState> state, const IID& iid, const void* target)
      : ScriptedWith(IID_IConnectionPointContainer), state_(std::move(state)), iid_(iid), target_(target) {}

  HRESULT STDMETHODCALLTYPE EnumConnectionPoints(IEnumConnectionPoints** points) override {
    if (points != nullptr) *points = nullptr;
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE FindConnectionPoint(REFIID iid, IConnectionPoint** point) override {
    if (point == nullptr) return E_POINTER;
    *point = nullptr;
    if (!IsEqualIID(iid, iid_)) return CONNECT_E_NOCONNECTION;
    *point = new Point(state_, this, iid_, target_);
    return S_OK;
  }

 private:
  std::shared_ptr<IdeState> state_;
  IID iid_;
  const void* target_;
};

Point::Point(std::shared_ptr<IdeState> state, Source* source, const IID& iid, const void* target)
    : ScriptedWith(IID_IConnectionPoint), state_(std::move(state)), source_(source), iid_(iid), target_(target) {
  source_->AddRef();
}

Point::~Point() { source_->Release(); }

HRESULT Point::GetConnectionPointContainer(IConnectionPointContainer** container) {
  if (container == nullptr) return E_POINTER;
  source_->AddRef();
  *container = source_;
  return S_OK;
}

class Events : public ScriptedObject {
 public:
  explicit Events(std::shared_ptr<IdeState> state)
      : ScriptedObject({{L"VBProjectsEvents", kProjectsEvents},
                        {L"VBComponentsEvents", kComponentsEvents},
                        {L"CommandBarEvents", kCommandBarEvents},
                        {L"FileControlEvents", kFileControlEvents}},
                       {kIidEvents}),
        state_(std::move(state)) {}

 private:
  HRESULT Call(DISPID id, WORD, const Args& args, VARIANT* result) override {
    if (id == kProjectsEvents) return ReturnObject(result, new Source(state_, kIidProjectsEvents, nullptr));
    const IID* iid = id == kComponentsEvents    ? &kIidComponentsEvents
                     : id == kCommandBarEvents  ? &kIidControlEvents
                     : id == kFileControlEvents ? &kIidFileControlEvents
                                                : nullptr;
    if (iid == nullptr) return DISP_E_MEMBERNOTFOUND;
    // Events about one project or control: the argument must be one of ours.
    const ScriptedObject* target = ObjectArg(args, 0);
    if (target == nullptr) return DISP_E_TYPEMISMATCH;
    return ReturnObject(result, new Source(state_, *iid, target->Target()));
  }

  std::shared_ptr<IdeState> state_;
};

}  // namespace

ScriptedObject* NewEvents(std::shared_ptr<IdeState> state) { return new Events(std::move(state)); }

}  // namespace sentrune::testing::ide
