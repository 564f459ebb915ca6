#pragma once
// One invocation of the command-line host: the global options, and the
// platform and add-in objects built from them on first use.
#include <iosfwd>
#include <memory>
#include <string>

#include "global_options.h"
#include "runtime/result.h"
#include "state/addin_state.h"

namespace sentrune {
class Connect;
class OptionsHandler;
namespace headless {
class HeadlessIde;
}
}  // namespace sentrune

namespace sentrune::cli {

class HostEnv;
class HostPlatform;

// Exit statuses shared by every command.
inline constexpr int kExitOk = 0;
inline constexpr int kExitStopped = 1;  // ran, but found something or a step ended it
inline constexpr int kExitBadInput = 2;

class Session {
 public:
  // `host` must outlive the session.
  Session(HostPlatform& host, std::istream& in, std::ostream& out, std::ostream& err);
  ~Session();

  GlobalOptions global;
  std::ostream& out;
  std::ostream& err;
  int exitCode = kExitOk;

  // Builds the platform and the headless IDE, and connects the add-in to it
  // as the IDE would (which loads the options and applies the first-run
  // rule); fails with a message for a bad --drive, --home or --wineprefix.
  // The add-in is disconnected when the session ends, so that its trace and
  // log files look as the IDE would leave them.
  rt::Status Open();
  // Open, reporting a failure (exit status 2); false when it failed.
  bool Ready();
  HostPlatform& host() { return host_; }
  // These need an open session.
  HostEnv& hostEnv();
  AddinState& state();
  OptionsHandler& options();
  Connect& connect();
  headless::HeadlessIde& ide();
  // A command-line path in the core's form: Windows paths pass through, host
  // paths are converted (like `winepath -w`).
  rt::Result<std::string> ToWindowsPath(const std::string& argument);
  // The host form of a Windows path, for messages a terminal user can act on.
  std::string ToHostPath(const std::string& windowsPath);
  // ToWindowsPath of a file that must exist; the error names the argument
  // and says whether it is missing or a folder.
  rt::Result<std::string> ExistingFile(const std::string& argument);

  // Reports bad input on the error stream and sets the exit status to 2.
  void Fail(const std::string& message);
  // Reports a step that could not do its work and sets the exit status to 1
  // (bad input, already reported, keeps its 2).
  void Stop(const std::string& message);
  // Once the command has run: names each tracking database it could not
  // use, which is a step that could not do its work.
  void ReportFailedDatabases();

 private:
  struct Parts;
  HostPlatform& host_;
  std::istream& in_;
  std::unique_ptr<Parts> parts_;
};

}  // namespace sentrune::cli
