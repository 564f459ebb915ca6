#pragma once
// cVerifyInstallation: checks, component by component, that the ActiveX
// components a program needs are registered, are the right ones (type library
// GUID) and are recent enough (type library and file version).
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "state/addin_state.h"
#include "platform/registry.h"

namespace sentrune {

// Listens to a verification run. Setting `Aborted` in BeforeVerify stops the
// run before that component; in AfterVerify, after it.
class VerifyInstallationEvents {
 public:
  virtual ~VerifyInstallationEvents() = default;
  virtual void BeforeVerify(const std::string& ComponentName, bool& Aborted) = 0;
  virtual void AfterVerify(const std::string& ComponentName, int32_t ErrorCode, bool& Aborted) = 0;
};

// One component the verifier expects to find.
struct VerifyItem {
  std::string componentName;
  std::string guid;
  std::string minTlbVersion;
  std::string minFileVersion;
  std::string fullPath;
};

// The components the add-in itself depends on, in the order they are checked.
const std::vector<VerifyItem>& BuiltInVerifyList();

// The file of a type library path: a "\N" suffix selecting a TYPELIB
// resource ("x.dll\2") is dropped.
std::string TypeLibFilePath(const std::string& path);

// The file registered for a type library: the default value of
// HKCR\TypeLib\{guid}\<first version>\<first locale>\win32, nothing when any
// key on the way is missing or there is no registry at all.
std::optional<std::string> RegisteredTypeLibFile(platform::Registry* registry, const std::string& guid);

class cVerifyInstallation {
 public:
  static constexpr int32_t kNotFound = 53;
  static constexpr int32_t kGuidMismatch = 16;
  static constexpr int32_t kVersionTooLow = 48;

  // `registry` may be null (a host without one): every component then reads
  // as not registered. The state and registry must outlive this object.
  cVerifyInstallation(AddinState& state, platform::Registry* registry);

  // Checks one component; returns the error number and fills ErrText.
  int32_t ProcessItem(const std::string& ComponentName, const std::string& GUID, const std::string& MinTLBVersion,
                      const std::string& MinFileVersion, const std::string& FullPath);
  // Checks BuiltInVerifyList() in order, raising the events around each item.
  void VerifyAll(bool Silent);

  // Null: nobody listens. The listener must outlive the runs it hears.
  void SetEvents(VerifyInstallationEvents* events) { events_ = events; }
  bool Silent() const { return silent_; }
  void SetSilent(bool silent) { silent_ = silent; }

  const std::string& ErrText() const { return errText_; }
  int32_t ErrNumber() const { return errNumber_; }
  const std::string& ComponentName() const { return item_.componentName; }
  const VerifyItem& Item() const { return item_; }

 private:
  // Where the type library came from and what it says.
  struct Found {
    std::string file;  // without a "\N" resource suffix
    std::string guid;
    std::string version;
  };
  std::optional<Found> Locate();
  std::optional<Found> Load(const std::string& path);
  void Register(const std::string& path);
  bool IsExistingFile(const std::string& path) const;
  void Fail(int32_t number, std::string text);
  void CheckVersions(const Found& found);

  AddinState& state_;
  platform::Registry* registry_;
  VerifyInstallationEvents* events_ = nullptr;
  bool silent_ = false;
  VerifyItem item_;
  std::string errText_;
  int32_t errNumber_ = 0;
};

}  // namespace sentrune
