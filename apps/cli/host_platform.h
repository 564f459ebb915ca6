#pragma once
// What the command line needs from the system it runs on beyond the core's
// platform interfaces: the default add-in folder, whether anyone can answer
// questions, the outside world built from the global options, and how the
// host's paths relate to the core's Windows paths. The session and the
// commands see only these classes; each host's main() passes its own.
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "global_options.h"
#include "platform/env.h"
#include "platform/file_watch.h"
#include "platform/profile.h"
#include "platform/registry.h"
#include "platform/typelib_source.h"
#include "platform/version_resource.h"
#include "runtime/result.h"

namespace sentrune::cli {

// The registry whose file classes fix-associations repairs.
struct AssociationRegistry {
  std::unique_ptr<platform::Registry> registry;  // read and written
  // Processes whose FindExecutable answers from `registry` (declared after
  // it, so destroyed before it); null: the environment's own answer.
  std::unique_ptr<platform::Processes> programs;
  std::string where;  // the registry's home as the report names it
};

// The outside world of one session.
class HostEnv {
 public:
  virtual ~HostEnv() = default;
  // The environment the add-in runs in, and the readers of profile files,
  // version resources and type libraries the global options chose; they
  // live as long as this object.
  virtual platform::Env& Env() = 0;
  virtual platform::ProfileFiles& Profiles() = 0;
  virtual platform::VersionResources& Versions() = 0;
  virtual platform::TypeLibSource& TypeLibs() = 0;
  // The Windows path of a host path, as `winepath -w` gives it: nothing when
  // no drive covers it.
  virtual std::optional<std::string> WindowsPath(const std::string& hostPath) = 0;
  // The host path of a Windows path; fails when no such place can be named.
  virtual rt::Result<std::string> HostPath(const std::string& windowsPath) = 0;
  // The registry the installation verifier reads, which it never writes;
  // null when there is none, and then `note`, when given, hears why in one
  // line. The caller owns the result; it must not outlive this object.
  virtual std::unique_ptr<platform::Registry> OpenVerifyRegistry(std::ostream* note) = 0;
  // The registry to repair, or a message saying why it cannot be changed
  // now. The result must not outlive this object.
  virtual rt::Result<AssociationRegistry> OpenAssociations() = 0;
};

// A request to end a long-running command (Ctrl-C), caught while the object
// lives; the handling before it comes back when it dies.
class StopRequest {
 public:
  virtual ~StopRequest() = default;
  // True once a stop was asked for; the request also ends a FileWatch::Wait
  // under way.
  virtual bool Requested() const = 0;
};

// What the help says about the parts that differ from system to system.
struct HostHelp {
  std::string paths;     // how paths are given and where the add-in's folder is
  std::string registry;  // which registry the registry commands read and write
  bool mapsDrives;       // whether --drive and --wineprefix mean anything here
};

// The system itself: main() makes one and lends it to every session.
class HostPlatform {
 public:
  virtual ~HostPlatform() = default;
  virtual HostHelp Help() = 0;
  // The add-in's folder when --home does not name one, as a host path.
  virtual std::string DefaultHomeFolder() = 0;
  // Whether someone at a terminal can answer questions on standard input.
  virtual bool InputIsTerminal() = 0;
  // The outside world for the global options, with `homeFolder` (an
  // existing host folder) as the add-in's folder, which gets the template
  // files it lacks. Fails with a message naming the option at fault when a
  // --drive or --wineprefix folder does not exist, or when the system
  // cannot honour an option at all.
  virtual rt::Result<std::unique_ptr<HostEnv>> Open(const GlobalOptions& global,
                                                    const std::string& homeFolder) = 0;
  // A watch on host folders; fails (76) when the system offers none.
  virtual rt::Result<std::unique_ptr<platform::FileWatch>> WatchFiles() = 0;
  // Starts catching a request to stop, for one StopRequest at a time.
  virtual std::unique_ptr<StopRequest> CatchStop() = 0;
  // One command line that Processes::Run splits into exactly `arguments`.
  virtual std::string CommandLine(const std::vector<std::string>& arguments) = 0;
};

}  // namespace sentrune::cli
