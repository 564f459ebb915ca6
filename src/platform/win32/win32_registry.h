#pragma once
// The registry of this computer, or of another one, through advapi32's wide
// functions. Every call opens the key it needs and closes it again; text goes
// to the system as UTF-16 and text values come back as UTF-8 with exactly the
// NUL terminators that were stored.
//
// Failures carry the Win32 error code as their number and name the key (and
// the value) with the system's own text: "... 'HKEY_CURRENT_USER\Software\X'
// (Windows error 5: Access denied.)". A root key is never deleted: DeleteKey
// with an empty path is refused with kAccessDenied before the system sees it.
//
// Another computer's registry offers only what RegConnectRegistryW can reach
// remotely, HKEY_LOCAL_MACHINE and HKEY_USERS; HKEY_CLASSES_ROOT and
// HKEY_CURRENT_USER give kInvalidHandle there. The connections are made by
// Connect and closed when the last holder lets go; the connection to
// HKEY_LOCAL_MACHINE decides whether the computer can be reached, and a
// failure to connect HKEY_USERS is reported by every call on it.
#include <memory>
#include <string>
#include <vector>

#include "platform/registry.h"

namespace sentrune::win32 {

class Win32Registry : public platform::Registry {
 public:
  // This computer's registry, over the predefined root keys.
  Win32Registry();
  ~Win32Registry() override;
  Win32Registry(const Win32Registry&) = delete;
  Win32Registry& operator=(const Win32Registry&) = delete;

  rt::Result<std::shared_ptr<platform::Registry>> Connect(const std::string& machine) override;
  // Reading asks for KEY_READ; writing for KEY_SET_VALUE and DELETE.
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
  // The root keys this registry works on (defined where the system's
  // handles are known).
  class Roots;
  explicit Win32Registry(std::unique_ptr<Roots> roots);

  std::unique_ptr<Roots> roots_;
};

}  // namespace sentrune::win32
