#include "platform/win32/win32_processes.h"

#include "platform/win32/windows_api.h"
#include <shellapi.h>

#include "platform/win32/win32_errors.h"
#include "platform/win32/win32_text.h"

namespace sentrune::win32 {

namespace {

// The started program's process handle, to be closed by the caller. Every
// failure to start is 53, whatever the system's reason, as the run time's
// Shell reports it; the message keeps the system's code. With `inherit` the
// program gets the caller's inheritable handles, as the C run time's spawn
// gives them, so that a console program writes where the caller's standard
// output is redirected (Windows passes redirected handles on no other way).
rt::Result<HANDLE> Launch(const std::string& commandLine, bool inherit) {
  std::wstring line = Widen(commandLine);  // CreateProcessW may write into it
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process{};
  if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, inherit, 0, nullptr, nullptr, &startup, &process))
    return Win32ToVbError(GetLastError(), commandLine, rt::errnum::kFileNotFound);
  CloseHandle(process.hThread);
  return process.hProcess;
}

}  // namespace

rt::Result<int> Win32Processes::Run(const std::string& commandLine) {
  rt::Result<HANDLE> process = Launch(commandLine, true);
  if (!process) return process.error();
  DWORD status = 0;
  const bool ended = WaitForSingleObject(*process, INFINITE) == WAIT_OBJECT_0 && GetExitCodeProcess(*process, &status);
  const DWORD error = GetLastError();
  CloseHandle(*process);
  if (!ended) return Win32ToVbError(error, commandLine);
  return static_cast<int>(status);
}

rt::Status Win32Processes::Start(const std::string& commandLine) {
  rt::Result<HANDLE> process = Launch(commandLine, false);
  if (!process) return process.error();
  CloseHandle(*process);
  return {};
}

int Win32Processes::FindExecutable(const std::string& documentPath, std::string& program) {
  wchar_t found[MAX_PATH + 1] = {};
  const HINSTANCE code = FindExecutableW(Widen(documentPath).c_str(), nullptr, found);
  const INT_PTR result = reinterpret_cast<INT_PTR>(code);
  if (result > 32) program = Narrow(found);
  return static_cast<int>(result);
}

}  // namespace sentrune::win32
