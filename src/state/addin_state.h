#pragma once
// The add-in's process-wide state (gstrLogFile, gblnShuttingDown, the pending
// error, ...) kept in one object that the host creates and hands down, so that
// nothing deep in the core reaches a global.
#include <map>
#include <string>

#include "state/debug_trace.h"
#include "platform/env.h"
#include "platform/profile.h"
#include "platform/typelib_source.h"
#include "platform/ui.h"
#include "platform/version_resource.h"
#include "runtime/err_object.h"

namespace sentrune {

// The outside world as the host chose it (real or fake).
struct Platform {
  platform::Env& env;
  platform::Ui& ui;
  platform::ProfileFiles& profiles;
  platform::VersionResources& versions;
  platform::TypeLibSource& typelibs;
};

class AddinState {
 public:
  explicit AddinState(const Platform& platform) : platform(platform), trace(platform.env) {}
  AddinState(const AddinState&) = delete;
  AddinState& operator=(const AddinState&) = delete;

  platform::Env& env() const { return platform.env; }
  platform::FileSystem& files() const { return platform.env.Files(); }
  platform::Ui& ui() const { return platform.ui; }
  // The run time's Timer: seconds since midnight, as the trace lines carry it.
  double Timer() const { return platform.env.Time().Timer(); }

  Platform platform;
  DebugTrace trace;
  rt::ErrObject err;  // the pending error that message boxes keep intact
  bool gblnShuttingDown = false;
  std::string gstrLogFile;
  std::string gstrHelpFile;
  // Tracking databases that an operation could not use, by file, each with
  // its first failure: a host that ends with an exit status names them.
  std::map<std::string, rt::VbError> failedDatabases;
};

}  // namespace sentrune
