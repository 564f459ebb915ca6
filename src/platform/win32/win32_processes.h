#pragma once
// Programs started with CreateProcessW: the command line goes to the system
// as it is, so the program is found as Windows finds it (the folder of the
// caller's program, the system folders, PATH; ".exe" may be left off) and
// the core's quoting of paths with blanks applies. Console programs share
// the caller's console, if it has one.
#include <string>

#include "platform/env.h"

namespace sentrune::win32 {

class Win32Processes : public platform::Processes {
 public:
  // Waits without limit; the status is the program's exit code as an int.
  // The program inherits the caller's standard handles.
  rt::Result<int> Run(const std::string& commandLine) override;
  // The program inherits no handles, since it may outlive the caller.
  rt::Status Start(const std::string& commandLine) override;
  // shell32's own answer, the program's path in UTF-8.
  int FindExecutable(const std::string& documentPath, std::string& program) override;
};

}  // namespace sentrune::win32
