// The system's folders, this program's own module, programs run and looked
// up through the shell, the clock against the file system's times, and the
// message pump.
#include "platform/win32/win32_env.h"

#include <gtest/gtest.h>
#include "platform/win32/windows_api.h"
// It maps these names to its own functions; here they are methods.

#include <cstdlib>
#include <string>

#include "runtime/text.h"

namespace sentrune::win32 {
namespace {

bool IsFolder(platform::FileSystem& fs, const std::string& path) {
  const rt::Result<uint32_t> attributes = fs.GetAttributes(path);
  return attributes && (*attributes & platform::kAttrDirectory);
}

TEST(Win32Env, FoldersOfTheSystemAndOfTheModuleHoldingTheCode) {
  Win32Env env;
  const std::string temp = env.TempPath();
  EXPECT_EQ(temp.back(), '\\');
  EXPECT_TRUE(IsFolder(env.Files(), temp)) << temp;
  const std::string appData = env.SpecialFolderPath(platform::kFolderAppData);
  EXPECT_NE(appData.back(), '\\');
  EXPECT_TRUE(IsFolder(env.Files(), appData)) << appData;
  EXPECT_EQ(env.SpecialFolderPath(0x7FFF), "");

  EXPECT_EQ(env.ModuleName(), "test_platform_win32");
  EXPECT_EQ(env.ModuleFolder().back(), '\\');
  EXPECT_TRUE(env.Files().GetAttributes(env.ModuleFolder() + env.ModuleName() + ".exe").ok()) << env.ModuleFolder();
  Win32Env home({"C:\\Sentrune\\Home", "Sentrune"});
  EXPECT_EQ(home.ModuleFolder(), "C:\\Sentrune\\Home\\");
  EXPECT_EQ(home.ModuleName(), "Sentrune");

  EXPECT_EQ(env.NetworkConnection("C:"), std::nullopt);
}

TEST(Win32Env, ProgramsRunStartAndAreLookedUp) {
  Win32Env env;
  platform::Processes& programs = env.Programs();
  EXPECT_EQ(*programs.Run("cmd /c exit 3"), 3);
  const rt::Result<int> missing = programs.Run("sentrune-no-such-program.exe /x");
  ASSERT_FALSE(missing.ok());
  EXPECT_EQ(missing.error().number, 53);
  EXPECT_NE(missing.error().description.find("sentrune-no-such-program.exe /x (Windows error 2: "), std::string::npos);
  EXPECT_EQ(programs.Start("sentrune-no-such-program.exe").code(), 53);

  // A started program runs on its own; its file is waited for.
  const std::string document =
      env.TempPath() + "sentrune-started-" + std::to_string(GetCurrentProcessId()) + ".sentrune-none";
  ASSERT_TRUE(programs.Start("cmd /c echo started>\"" + document + "\"").ok());
  for (int i = 0; i < 1000 && env.Files().ReadFile(document).value_or("") != "started\r\n"; ++i) Sleep(10);
  EXPECT_EQ(env.Files().ReadFile(document).value_or(""), "started\r\n");

  std::string program;
  EXPECT_EQ(programs.FindExecutable(document, program), 31);  // no program for the extension
  ASSERT_TRUE(env.Files().DeleteFile(document).ok());
  EXPECT_EQ(programs.FindExecutable(document, program), 2);
  const std::string self = env.ModuleFolder() + env.ModuleName() + ".exe";
  EXPECT_GT(programs.FindExecutable(self, program), 32);
  EXPECT_TRUE(rt::IEquals(program, self)) << program;
}

TEST(Win32Env, TheClockAndFileTimesAreBothLocal) {
  Win32Env env;
  const std::string path = env.TempPath() + "sentrune-clock-" + std::to_string(GetCurrentProcessId()) + ".txt";
  ASSERT_TRUE(env.Files().WriteFile(path, "now").ok());
  const rt::DateTime written = *env.Files().GetLastWriteTime(path);
  const rt::DateTime now = env.Time().Now();
  ASSERT_TRUE(env.Files().DeleteFile(path).ok());
  EXPECT_LE(std::abs(rt::DateDiffSeconds(written, now)), 60) << written.hour << ":" << written.minute;
  const double sinceMidnight = now.hour * 3600 + now.minute * 60 + now.second;
  const double apart = std::abs(env.Time().Timer() - sinceMidnight);
  EXPECT_TRUE(apart < 60 || apart > 86400 - 60) << apart;
}

LRESULT CALLBACK CountMessages(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_APP) ++*reinterpret_cast<int*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  return DefWindowProcW(window, message, wParam, lParam);
}

TEST(Win32Env, DoEventsRunsPendingMessagesAndLeavesAQuitToTheCaller) {
  WNDCLASSW windowClass{};
  windowClass.lpfnWndProc = CountMessages;
  windowClass.hInstance = GetModuleHandleW(nullptr);
  windowClass.lpszClassName = L"SentruneDoEventsTest";
  ASSERT_NE(RegisterClassW(&windowClass), 0);
  const HWND window = CreateWindowExW(0, windowClass.lpszClassName, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                      windowClass.hInstance, nullptr);
  ASSERT_NE(window, nullptr);
  int count = 0;
  SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(&count));

  Win32Env env;
  PostMessageW(window, WM_APP, 0, 0);
  PostMessageW(window, WM_APP, 0, 0);
  PostQuitMessage(7);
  env.DoEvents();
  EXPECT_EQ(count, 2);
  MSG quit{};
  EXPECT_TRUE(PeekMessageW(&quit, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
  EXPECT_EQ(quit.wParam, 7u);
  DestroyWindow(window);
  UnregisterClassW(windowClass.lpszClassName, windowClass.hInstance);
}

}  // namespace
}  // namespace sentrune::win32
