// sentrune.exe: the arguments come from the wide command line so that paths
// with any characters reach the core as UTF-8, and the console shows UTF-8.
#include "platform/win32/windows_api.h"

#include <shellapi.h>

#include <string>
#include <vector>

#include "cli_main.h"
#include "platform/win32/win32_text.h"
#include "win32_host.h"

int main() {
  SetConsoleOutputCP(CP_UTF8);
  int count = 0;
  wchar_t** wide = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::string> arguments;
  for (int i = 0; i < count; ++i) arguments.push_back(sentrune::win32::Narrow(wide[i]));
  LocalFree(wide);
  std::vector<char*> argv;
  for (std::string& argument : arguments) argv.push_back(argument.data());
  argv.push_back(nullptr);
  sentrune::cli::Win32Host host;
  return sentrune::cli::Main(host, count, argv.data());
}
