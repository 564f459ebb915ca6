#pragma once
// The add-in over fakes with the option values the file helpers read, as a
// fresh installation loads them.
#include <string>

#include "settings/option_set.h"
#include "support/test_addin.h"

namespace sentrune::testing {

struct FilesWorld : TestAddin {
  FilesWorld() {
    options.BackupFolderName = "History\\";
    options.DateFormatString = "yyyy.mm.dd-hh.nn.ss";
    options.EnableDeferredActions = true;
  }
  OptionSet options;
};

inline constexpr rt::DateTime kBuilt{2004, 5, 6, 14, 3, 9};

}  // namespace sentrune::testing
