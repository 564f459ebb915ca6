#include <gtest/gtest.h>

#include "platform/win32/win32_errors.h"
#include "platform/win32/win32_text.h"

namespace sentrune::win32 {
namespace {

TEST(Win32Text, ConvertsAndPrefixesLongPaths) {
  const std::string name = "C:\\Caf\xC3\xA9\\\xE6\x97\xA5\xE6\x9C\xAC.vbp";
  EXPECT_EQ(Narrow(Widen(name)), name);
  EXPECT_EQ(LongPath(name), L"\\\\?\\" + Widen(name));
  EXPECT_EQ(LongPath("\\\\server\\share\\a.dll"), L"\\\\?\\UNC\\server\\share\\a.dll");
  // The prefix turns the system's own resolution off, so it happens first.
  EXPECT_EQ(LongPath("C:\\Src\\..\\.\\a.dll"), L"\\\\?\\C:\\a.dll");
  const std::wstring relative = LongPath("relative\\a.dll");
  EXPECT_EQ(relative.rfind(L"\\\\?\\", 0), 0u);
  EXPECT_TRUE(relative.ends_with(L"\\relative\\a.dll"));
  EXPECT_EQ(StripLongPrefix(LongPath(name)), name);
  EXPECT_EQ(StripLongPrefix(LongPath("\\\\server\\share\\a.dll")), "\\\\server\\share\\a.dll");
}

TEST(Win32Errors, NameThePathAndKeepTheSystemsCode) {
  const rt::VbError locked = Win32ToVbError(32, "C:\\Src\\Widgets.dll");
  EXPECT_EQ(locked.number, rt::errnum::kPermissionDenied);
  EXPECT_NE(locked.description.find("C:\\Src\\Widgets.dll"), std::string::npos);
  EXPECT_NE(locked.description.find("(Windows error 32: "), std::string::npos);
  EXPECT_EQ(Win32ToVbError(3, "C:\\x").number, rt::errnum::kPathNotFound);
  EXPECT_EQ(Win32ToVbError(112, "C:\\x").number, rt::errnum::kDiskFull);
}

}  // namespace
}  // namespace sentrune::win32
