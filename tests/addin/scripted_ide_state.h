#pragma once
// What the scripted IDE remembers between the objects it hands out: those
// objects are fresh views made for each request, while the command bars'
// controls and the event sinks the add-in attached live here, for the
// scenarios to look at.
#include "platform/win32/windows_api.h"

#include <oaidl.h>

#include <memory>
#include <string>
#include <vector>

namespace sentrune::platform {
class VBE;
}

namespace sentrune::testing::ide {

struct ControlRecord {
  int type = 0;  // msoControlButton 1, msoControlPopup 10
  std::wstring caption;
  bool beginGroup = false;
  bool enabled = true;
  bool visible = true;
  std::wstring tag;
  bool deleted = false;
  std::vector<std::shared_ptr<ControlRecord>> controls;  // a pop-up's items, deleted ones included
};

struct BarRecord {
  std::wstring name;
  std::vector<std::shared_ptr<ControlRecord>> controls;
};

// One Advise: the sink is held until its Unadvise.
struct SinkRecord {
  IID iid;
  const void* target;  // the project or control the events are about; null for the IDE's
  DWORD cookie;
  IDispatch* sink;  // null once unadvised
};

struct IdeState {
  // The projects: the headless IDE over real .vbp files.
  std::shared_ptr<platform::VBE> projects;
  std::vector<BarRecord> bars;
  std::vector<SinkRecord> sinks;
  DWORD nextCookie = 1;
  // Every control ever added, in order.
  std::vector<std::shared_ptr<ControlRecord>> added;
};

}  // namespace sentrune::testing::ide
