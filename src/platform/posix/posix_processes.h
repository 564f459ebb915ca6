#pragma once
// Programs run through the host shell. Command lines are handed to
// "/bin/sh -c" as they are, so the core's quoting of paths with blanks works.
//
// There is no shell association database to ask off Windows, so
// FindExecutable knows only the associations it is given (extension without
// dot, any case -> program as a Windows path) and reports 31 ("no
// association") for every other document.
#include <string>
#include <utility>
#include <vector>

#include "platform/env.h"

namespace sentrune::posix {

class PosixProcesses : public platform::Processes {
 public:
  PosixProcesses(const platform::FileSystem& files,
                 std::vector<std::pair<std::string, std::string>> associations);

  // The shell's status 127 ("command not found") is taken as a program that
  // could not be started (53); a program killed by a signal gives 128 + the
  // signal's number, as the shell reports it.
  rt::Result<int> Run(const std::string& commandLine) override;
  // The command runs in the background, detached from this process, with its
  // input from /dev/null; only a failure to start the shell is reported.
  rt::Status Start(const std::string& commandLine) override;
  // 2 when the document is missing, 3 when its folder is, 33 with `program`
  // set for a configured association, else 31.
  int FindExecutable(const std::string& documentPath, std::string& program) override;

 private:
  const platform::FileSystem& files_;
  std::vector<std::pair<std::string, std::string>> associations_;
};

}  // namespace sentrune::posix
