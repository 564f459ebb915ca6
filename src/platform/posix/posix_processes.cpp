#include "platform/posix/posix_processes.h"

#include <spawn.h>
#include <sys/wait.h>

#include <cerrno>

#include "runtime/text.h"
#include "runtime/winpath.h"

extern char** environ;

namespace sentrune::posix {

namespace {

constexpr int kShellNotFound = 127;

// Spawns /bin/sh with `arguments` (after argv[0]) and waits for it.
rt::Result<int> RunShell(std::vector<std::string> arguments, const std::string& commandLine) {
  arguments.insert(arguments.begin(), "sh");
  std::vector<char*> argv;
  for (std::string& argument : arguments) argv.push_back(argument.data());
  argv.push_back(nullptr);
  pid_t pid = 0;
  if (posix_spawn(&pid, "/bin/sh", nullptr, nullptr, argv.data(), environ) != 0)
    return rt::MakeError(rt::errnum::kFileNotFound, "File not found: " + commandLine);
  int status = 0;
  while (waitpid(pid, &status, 0) < 0)
    if (errno != EINTR) return rt::MakeError(rt::errnum::kPathFileAccessError, "Lost the process of: " + commandLine);
  if (WIFSIGNALED(status)) return 128 + WTERMSIG(status);
  return WEXITSTATUS(status);
}

}  // namespace

PosixProcesses::PosixProcesses(const platform::FileSystem& files,
                               std::vector<std::pair<std::string, std::string>> associations)
    : files_(files), associations_(std::move(associations)) {}

rt::Result<int> PosixProcesses::Run(const std::string& commandLine) {
  rt::Result<int> status = RunShell({"-c", commandLine}, commandLine);
  if (status && *status == kShellNotFound)
    return rt::MakeError(rt::errnum::kFileNotFound, "File not found: " + commandLine);
  return status;
}

rt::Status PosixProcesses::Start(const std::string& commandLine) {
  // The outer shell puts the command in the background and exits at once, so
  // the command is adopted by init and never left as a zombie of ours.
  rt::Result<int> status = RunShell({"-c", "/bin/sh -c \"$1\" </dev/null &", "sh", commandLine}, commandLine);
  if (!status) return status.error();
  return {};
}

int PosixProcesses::FindExecutable(const std::string& documentPath, std::string& program) {
  constexpr int kFileNotFound = 2, kPathNotFound = 3, kNoAssociation = 31, kFound = 33;
  rt::Result<uint32_t> attributes = files_.GetAttributes(documentPath);
  if (!attributes) return attributes.error().number == rt::errnum::kFileNotFound ? kFileNotFound : kPathNotFound;
  std::string extension = rt::GetExtension(rt::GetFileTitle(documentPath));
  if (!extension.empty()) extension.erase(0, 1);
  for (const auto& [associated, associatedProgram] : associations_) {
    if (!extension.empty() && rt::IEquals(associated, extension)) {
      program = associatedProgram;
      return kFound;
    }
  }
  return kNoAssociation;
}

}  // namespace sentrune::posix
