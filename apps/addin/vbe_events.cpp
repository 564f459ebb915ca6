#include "vbe_events.h"

#include <ocidl.h>

#include "addin_ids.h"
#include "vbe_command_bars.h"
#include "vbe_component.h"
#include "vbe_project.h"

namespace sentrune::addin {
namespace {

class Connection : public platform::Subscription {
 public:
  Connection(ComPtr<IConnectionPoint> point, DWORD cookie, EventSink* sink)
      : point_(std::move(point)), cookie_(cookie), sink_(ComPtr<EventSink>::Adopt(sink)) {}
  ~Connection() override {
    sink_->Detach();
    point_->Unadvise(cookie_);
  }

 private:
  ComPtr<IConnectionPoint> point_;
  DWORD cookie_;
  ComPtr<EventSink> sink_;
};

platform::ProjectPtr Project(const EventArgs& args, UINT index) {
  ComPtr<IDispatch> object = args.Object(index);
  if (!object) return nullptr;
  return std::make_shared<VbeProject>(std::move(object));
}

platform::ComponentPtr Component(const EventArgs& args, UINT index) {
  ComPtr<IDispatch> object = args.Object(index);
  if (!object) return nullptr;
  return std::make_shared<VbeComponent>(std::move(object));
}

platform::ControlPtr Control(const EventArgs& args, UINT index) {
  ComPtr<IDispatch> object = args.Object(index);
  if (!object) return nullptr;
  return std::make_shared<VbeCommandBarControl>(std::move(object));
}

void ProjectsEvent(platform::VBProjectsEventsSink& sink, DISPID id, EventArgs& args) {
  const platform::ProjectPtr project = Project(args, 0);
  switch (id) {
    case kDispProjectAdded: sink.ItemAdded(project); break;
    case kDispProjectRemoved: sink.ItemRemoved(project); break;
    case kDispProjectRenamed: sink.ItemRenamed(project, args.Text(1)); break;
    case kDispProjectActivated: sink.ItemActivated(project); break;
    default: break;
  }
}

void ComponentsEvent(platform::VBComponentsEventsSink& sink, DISPID id, EventArgs& args) {
  const platform::ComponentPtr component = Component(args, 0);
  switch (id) {
    case kDispComponentAdded: sink.ItemAdded(component); break;
    case kDispComponentRemoved: sink.ItemRemoved(component); break;
    case kDispComponentRenamed: sink.ItemRenamed(component, args.Text(1)); break;
    case kDispComponentSelected: sink.ItemSelected(component); break;
    case kDispComponentActivated: sink.ItemActivated(component); break;
    case kDispComponentReloaded: sink.ItemReloaded(component); break;
    default: break;
  }
}

// The by-reference arguments a handler may change, written back for the IDE.
void FileRequestEvent(platform::FileControlEventsSink& sink, const platform::ProjectPtr& project, DISPID id,
                      EventArgs& args) {
  if (id == kDispBeforeLoadFile) {
    std::vector<std::string> names = args.Texts(1);
    sink.BeforeLoadFile(project, names);
    args.SetTexts(1, names);
    return;
  }
  if (id == kDispRequestWriteFile) {
    bool cancel = args.Bool(2);
    sink.RequestWriteFile(project, args.Text(1), cancel);
    args.SetBool(2, cancel);
    return;
  }
  const int type = args.Long(1);
  std::string newName = args.Text(2);
  bool flag = args.Bool(4);
  if (id == kDispDoGetNewFileName) {
    sink.DoGetNewFileName(project, type, newName, args.Text(3), flag);
    args.SetText(2, newName);
  } else {
    sink.RequestChangeFileName(project, type, newName, args.Text(3), flag);
  }
  args.SetBool(4, flag);
}

void FileEvent(platform::FileControlEventsSink& sink, DISPID id, EventArgs& args) {
  const platform::ProjectPtr project = Project(args, 0);
  const int type = args.Long(1);
  switch (id) {
    case kDispAfterAddFile: sink.AfterAddFile(project, type, args.Text(2)); break;
    case kDispAfterChangeFileName: sink.AfterChangeFileName(project, type, args.Text(2), args.Text(3)); break;
    case kDispAfterCloseFile: sink.AfterCloseFile(project, type, args.Text(2), args.Bool(3)); break;
    case kDispAfterWriteFile:
      sink.AfterWriteFile(project, type, args.Text(2), static_cast<int16_t>(args.Long(3)));
      break;
    case kDispAfterRemoveFile: sink.AfterRemoveFile(project, type, args.Text(2)); break;
    case kDispBeforeLoadFile:
    case kDispDoGetNewFileName:
    case kDispRequestChangeFileName:
    case kDispRequestWriteFile: FileRequestEvent(sink, project, id, args); break;
    default: break;
  }
}

void CommandBarEvent(platform::CommandBarEventsSink& sink, DISPID id, EventArgs& args) {
  if (id != kDispClick) return;
  bool handled = args.Bool(1);
  bool cancelDefault = args.Bool(2);
  sink.Click(Control(args, 0), handled, cancelDefault);
  args.SetBool(1, handled);
  args.SetBool(2, cancelDefault);
}

IDispatch* ProjectObject(const platform::ProjectPtr& project) {
  const auto* own = dynamic_cast<const VbeProject*>(project.get());
  return own != nullptr ? own->get() : nullptr;
}

// Advises a sink for `iid` on `source` through its connection point; null
// when the source has none for it or refuses the sink.
std::unique_ptr<platform::Subscription> Advise(IUnknown& source, REFIID iid, EventSink::Handler handler) {
  ComPtr<IConnectionPointContainer> container =
      ComPtr<IUnknown>(&source).As<IConnectionPointContainer>(IID_IConnectionPointContainer);
  if (!container) return nullptr;
  ComPtr<IConnectionPoint> point;
  if (FAILED(container->FindConnectionPoint(iid, point.Put())) || !point) return nullptr;
  auto* sink = new EventSink(iid, std::move(handler));
  DWORD cookie = 0;
  if (FAILED(point->Advise(sink, &cookie))) {
    sink->Release();
    return nullptr;
  }
  return std::make_unique<Connection>(std::move(point), cookie, sink);
}

}  // namespace

std::unique_ptr<platform::Subscription> VbeEvents::Subscribe(const std::string& member, IDispatch* target,
                                                             REFIID iid, EventSink::Handler handler) {
  std::vector<Variant> args;
  if (target != nullptr) args.emplace_back(target);
  const rt::Result<ComPtr<IDispatch>> source = events_.GetDispatch(member, args);
  if (!source.ok() || !*source) return nullptr;
  return Advise(*source->get(), iid, std::move(handler));
}

std::unique_ptr<platform::Subscription> VbeEvents::VBProjectsEvents(platform::VBProjectsEventsSink& sink) {
  return Subscribe("VBProjectsEvents", nullptr, kIidVBProjectsEvents,
                   [&sink](DISPID id, EventArgs& args) { ProjectsEvent(sink, id, args); });
}

std::unique_ptr<platform::Subscription> VbeEvents::VBComponentsEvents(const platform::ProjectPtr& project,
                                                                      platform::VBComponentsEventsSink& sink) {
  IDispatch* target = ProjectObject(project);
  if (target == nullptr) return nullptr;
  return Subscribe("VBComponentsEvents", target, kIidVBComponentsEvents,
                   [&sink](DISPID id, EventArgs& args) { ComponentsEvent(sink, id, args); });
}

std::unique_ptr<platform::Subscription> VbeEvents::FileControlEvents(const platform::ProjectPtr& project,
                                                                     platform::FileControlEventsSink& sink) {
  IDispatch* target = ProjectObject(project);
  if (target == nullptr) return nullptr;
  return Subscribe("FileControlEvents", target, kIidFileControlEvents,
                   [&sink](DISPID id, EventArgs& args) { FileEvent(sink, id, args); });
}

std::unique_ptr<platform::Subscription> VbeEvents::CommandBarEvents(const platform::ControlPtr& control,
                                                                    platform::CommandBarEventsSink& sink) {
  const auto* own = dynamic_cast<const VbeCommandBarControl*>(control.get());
  if (own == nullptr) return nullptr;
  return Subscribe("CommandBarEvents", own->get(), kIidCommandBarControlEvents,
                   [&sink](DISPID id, EventArgs& args) { CommandBarEvent(sink, id, args); });
}

}  // namespace sentrune::addin
