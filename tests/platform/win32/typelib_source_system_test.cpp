// The source over the system's loader where it does not read a library:
// what each failure is numbered and says, and the calling thread's COM state
// around a load. (What it reads is checked against the portable reader in
// typelib_differential_test.cpp.) A damaged library cannot be tried here:
// Wine's loader stops the process on a truncated MSFT file instead of
// failing.
#include "platform/win32/typelib_source_system.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <thread>

#include "platform/win32/win32_text.h"
#include "platform/win32/windows_api.h"
#include "runtime/vb_error.h"
#include "support/host_files.h"
#include "support/temp_folder.h"

namespace sentrune::win32 {
namespace {

namespace fs = std::filesystem;

std::string WindowsPath(const fs::path& host) { return fs::absolute(host).make_preferred().string(); }
std::string Fixture(const char* name) { return WindowsPath(testing::FixtureFolder() / name); }

std::string ThisProgram() {
  wchar_t path[MAX_PATH] = {};
  GetModuleFileNameW(nullptr, path, MAX_PATH);
  return Narrow(path);
}

TEST(SystemTypeLibSource, FailuresAreNumberedAndNameTheFile) {
  testing::TempFolder temp;
  temp.Write("notes.tlb", "no library in here");
  const std::string widgets = Fixture("typelib/widgets.dll");
  struct Case {
    std::string path;
    int32_t number;
    std::string named;  // in the description
  };
  const Case cases[] = {
      {Fixture("typelib/missing.tlb"), rt::errnum::kFileNotFound, Fixture("typelib/missing.tlb")},
      {Fixture("missing/widgets.tlb"), rt::errnum::kFileNotFound, Fixture("missing/widgets.tlb")},
      // A number after a folder selects nothing.
      {Fixture("typelib") + "\\1", rt::errnum::kFileNotFound, Fixture("typelib") + "\\1"},
      {WindowsPath(temp / "notes.tlb"), rt::errnum::kNotATypeLibrary, WindowsPath(temp / "notes.tlb")},
      {ThisProgram(), rt::errnum::kNotATypeLibrary, ThisProgram()},
      {widgets + "\\2", rt::errnum::kNotATypeLibrary, widgets + ": "},
      {widgets + "\\99999999999", rt::errnum::kNotATypeLibrary, widgets + ": "},
      // A TYPELIB resource that holds no library is the loader's own failure.
      {Fixture("pe/lookup.dll"), rt::errnum::kCantLoadTypeLibrary,
       Fixture("pe/lookup.dll") + ": LoadTypeLibEx failed (HRESULT 0x80029C4A"},
  };
  SystemTypeLibSource source;
  for (const Case& c : cases) {
    const auto library = source.Load(c.path);
    ASSERT_FALSE(library.ok()) << c.path;
    EXPECT_EQ(library.error().number, c.number) << c.path;
    EXPECT_NE(library.error().description.find(c.named), std::string::npos) << library.error().description;
  }
  // The first resource is the default.
  const auto first = source.Load(widgets + "\\1");
  ASSERT_TRUE(first.ok()) << first.error().description;
  EXPECT_EQ(first->name, "Widgets");
}

// The source joins a thread to COM only for the load: afterwards the thread
// can still choose its apartment, and one already in the multithreaded
// apartment loads from there.
TEST(SystemTypeLibSource, LeavesTheThreadsApartmentAsItFoundIt) {
  const std::string widgets = Fixture("typelib/widgets.tlb");
  std::thread([&] {
    SystemTypeLibSource source;
    EXPECT_TRUE(source.Load(widgets).ok());
    ASSERT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
    const auto library = source.Load(widgets);
    EXPECT_TRUE(library.ok() && library->types.size() == 7) << (library.ok() ? "" : library.error().description);
    CoUninitialize();
  }).join();
}

}  // namespace
}  // namespace sentrune::win32
