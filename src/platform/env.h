#pragma once
// The rest of the outside world: clock, processes and the well-known folders.
#include <memory>
#include <optional>
#include <string>

#include "platform/file_system.h"
#include "runtime/datetime.h"
#include "runtime/result.h"

namespace sentrune::platform {

class Clock {
 public:
  virtual ~Clock() = default;
  // Now: the local date and time.
  virtual rt::DateTime Now() const = 0;
  // Timer: seconds since local midnight, with fractions.
  virtual double Timer() const = 0;
};

class Processes {
 public:
  virtual ~Processes() = default;
  // Runs a command line and waits for it; the result is its exit status.
  // Fails with 53 when the program cannot be started.
  virtual rt::Result<int> Run(const std::string& commandLine) = 0;
  // Starts a command line without waiting (Shell).
  virtual rt::Status Start(const std::string& commandLine) = 0;
  // shell32's FindExecutable for a document: 32 or more on success with the
  // program's path in `program`, else the shell's failure code (2, 3, 11, 31).
  virtual int FindExecutable(const std::string& documentPath, std::string& program) = 0;
};

// Special folder numbers as SHGetFolderPath numbers them.
enum SpecialFolder : int {
  kFolderDesktop = 0,
  kFolderAppData = 0x1A,
  kFolderSystem = 0x25,
};

class Env {
 public:
  virtual ~Env() = default;
  virtual FileSystem& Files() = 0;
  virtual Clock& Time() = 0;
  virtual Processes& Programs() = 0;

  // SHGetFolderPath: the folder without trailing "\"; empty text on failure.
  virtual std::string SpecialFolderPath(int folder) = 0;
  // GetTempPath: always ends in "\".
  virtual std::string TempPath() = 0;
  // The add-in's own folder (App.Path) with exactly one trailing "\", and its
  // module name without extension ("Sentrune"): the INI file, the trace file
  // and the log folder are named from these.
  virtual std::string ModuleFolder() = 0;
  virtual std::string ModuleName() = 0;
  // WNetGetConnection for a drive ("X:"): the network name of a mapped
  // drive, or nothing when the drive is local or unknown.
  virtual std::optional<std::string> NetworkConnection(const std::string& drive) = 0;
  // DoEvents: lets pending window messages run; nothing to do off Windows.
  virtual void DoEvents() = 0;
};

}  // namespace sentrune::platform
