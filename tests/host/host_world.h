#pragma once
// The add-in's entry class over the headless IDE and the fakes.
#include <gtest/gtest.h>

#include <string>

#include "host/connect.h"
#include "platform/headless/headless_ide.h"
#include "support/test_addin.h"

namespace sentrune::testing {

struct HostWorld : TestAddin {
  headless::HeadlessIde ide{files(), &typelibs};
  Connect connect{state};

  // Writes an ActiveX DLL project of that name and opens it in the IDE.
  platform::ProjectPtr Open(const std::string& path, const std::string& name) {
    files().AddFile(path, "Type=OleDll\r\nExeName32=\"" + name + ".dll\"\r\nName=\"" + name + "\"\r\n");
    auto opened = ide.Open(path);
    EXPECT_TRUE(opened.ok()) << path;
    return opened.ok() ? opened->projects.front() : nullptr;
  }
};

}  // namespace sentrune::testing
