#pragma once
// The registry of a Wine prefix, read from and written to the files Wine
// keeps it in while Wine is not running: system.reg holds
// HKEY_LOCAL_MACHINE and user.reg HKEY_CURRENT_USER. HKEY_USERS is not
// offered (kInvalidHandle), and symbolic-link keys ("#link") are not
// followed.
//
// HKEY_CLASSES_ROOT is the merged view of HKCU\Software\Classes and
// HKLM\Software\Classes, as Windows presents it:
//   - a key exists when either holds it; its sub-keys are both lists merged
//     in Wine's order;
//   - a value is read from the user's key when that holds it, else from the
//     machine's;
//   - a value is written where a read would find it: to the user's key when
//     that already holds the value or only the user has the key, else to the
//     machine's key;
//   - a new key is created in the hive that holds the deepest existing part
//     of its path, the machine's when both do;
//   - deleting removes the key or value from both.
//
// A running wineserver keeps the prefix's registry in memory and writes it
// back when it exits, which would undo any change made to the files. So
// every change (and every open for writing) first asks whether the prefix's
// server runs and is refused with kBusy, naming the prefix, when it does.
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/file_system.h"
#include "platform/winereg/wine_registry_hive.h"
#include "platform/registry.h"

namespace sentrune::portable {

struct WineRegistryOptions {
  // The prefix folder as a Windows path of the file system given
  // ("Z:\home\u\.wine"); its system.reg and user.reg are used.
  std::string prefixFolder;
  // How messages name the prefix (its host path, say); empty: prefixFolder.
  std::string prefixName;
  // Whether the prefix's wineserver runs; empty: never.
  std::function<bool()> serverRunning;
  // Unix seconds for the change stamps of written keys; empty: system clock.
  std::function<int64_t()> now;
};

class WineRegistry : public platform::Registry {
 public:
  // The file system must outlive this object.
  WineRegistry(platform::FileSystem& files, WineRegistryOptions options);

  // There are no remote registries here: always kBadNetPath.
  rt::Result<std::shared_ptr<platform::Registry>> Connect(const std::string& machine) override;
  rt::Status OpenKey(uint32_t hive, const std::string& path, bool forWriting) override;
  rt::Result<platform::RegValue> QueryValue(uint32_t hive, const std::string& path,
                                            const std::string& name) override;
  rt::Result<std::vector<std::string>> EnumKeys(uint32_t hive, const std::string& path) override;
  rt::Status CreateKey(uint32_t hive, const std::string& path) override;
  rt::Status SetValue(uint32_t hive, const std::string& path, const std::string& name,
                      const platform::RegValue& value) override;
  rt::Status DeleteKey(uint32_t hive, const std::string& path) override;
  rt::Status DeleteValue(uint32_t hive, const std::string& path, const std::string& name) override;

 private:
  // Where a key of a root key lives: a file and the path inside it. The
  // merged root gives two, the user's first.
  struct Place {
    winereg::HiveFile* file;
    winereg::KeyPath path;
  };
  // A place whose file is loaded.
  struct Loaded {
    Place place;
    winereg::RegFile* doc;
  };

  rt::Result<std::vector<Loaded>> Load(uint32_t hive, const std::string& path);
  rt::Status CheckWritable() const;
  rt::Status Change(const Place& place, const std::function<void(winereg::RegFile&)>& edit);
  int64_t Now() const;

  WineRegistryOptions options_;
  winereg::HiveFile machine_;
  winereg::HiveFile user_;
};

// "HKEY_CLASSES_ROOT\path" (or the root key's number) for messages.
std::string RegistryKeyName(uint32_t hive, const std::string& path);

}  // namespace sentrune::portable
