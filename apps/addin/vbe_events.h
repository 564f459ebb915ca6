#pragma once
// VBE.Events over connection points: each subscription asks the Events
// object for the event source of its target, finds the source's connection
// point for the event dispinterface and advises a sink there; ending the
// subscription unadvises it. The sink turns each DISPID into the ide.h
// handler, with the IDE's objects wrapped as ide.h objects.
#include "platform/ide.h"
#include "vbe_dispatch.h"
#include "vbe_event_sink.h"

namespace sentrune::addin {

class VbeEvents : public platform::Events {
 public:
  explicit VbeEvents(ComPtr<IDispatch> events) : events_(std::move(events), "Events") {}

  std::unique_ptr<platform::Subscription> VBProjectsEvents(platform::VBProjectsEventsSink& sink) override;
  std::unique_ptr<platform::Subscription> VBComponentsEvents(const platform::ProjectPtr& project,
                                                             platform::VBComponentsEventsSink& sink) override;
  std::unique_ptr<platform::Subscription> FileControlEvents(const platform::ProjectPtr& project,
                                                            platform::FileControlEventsSink& sink) override;
  std::unique_ptr<platform::Subscription> CommandBarEvents(const platform::ControlPtr& control,
                                                           platform::CommandBarEventsSink& sink) override;

 private:
  // Advises a sink for `iid` on what the Events property `member` gives
  // for `target` (none for VBProjectsEvents); null when there is nothing to
  // advise on.
  std::unique_ptr<platform::Subscription> Subscribe(const std::string& member, IDispatch* target, REFIID iid,
                                                    EventSink::Handler handler);

  DispatchObject events_;
};

}  // namespace sentrune::addin
