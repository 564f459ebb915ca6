#pragma once
// The Windows registry as advapi32's ANSI functions present it, addressed by
// predefined root key and key path, without handles: each call opens what it
// needs and closes it again.
//
// Key paths are "\"-separated ("Software\Classes\VisualBasic.Project");
// empty components are ignored, so the empty path is the root key itself.
// Key and value names compare without regard to case and keep the case they
// were created with. All text is UTF-8.
//
// Failures come back as rt::VbError whose number is the Win32 error code the
// registry functions return (see regerr below), not a VB run-time number, and
// whose description names the key or value concerned.
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "runtime/result.h"

namespace sentrune::platform {

// The predefined root keys (the values of the HKEY_* handles).
enum RegHive : uint32_t {
  kHkeyClassesRoot = 0x80000000u,
  kHkeyCurrentUser = 0x80000001u,
  kHkeyLocalMachine = 0x80000002u,
  kHkeyUsers = 0x80000003u,
};

// Value types, numbered as the registry numbers them.
enum RegType : uint32_t {
  kRegNone = 0,
  kRegSz = 1,
  kRegExpandSz = 2,
  kRegBinary = 3,
  kRegDword = 4,
  kRegDwordBigEndian = 5,
  kRegLink = 6,
  kRegMultiSz = 7,
};

// Win32 error codes that registry calls return.
namespace regerr {
inline constexpr int32_t kFileNotFound = 2;   // no such key or value
inline constexpr int32_t kAccessDenied = 5;   // also: deleting a key that has sub-keys
inline constexpr int32_t kInvalidHandle = 6;  // a root key this registry does not offer
inline constexpr int32_t kBadNetPath = 53;    // no registry on that machine can be reached
inline constexpr int32_t kInvalidParameter = 87;
inline constexpr int32_t kBusy = 170;        // the store is in use by its owner
inline constexpr int32_t kBadDb = 1009;      // the stored registry cannot be read
inline constexpr int32_t kCantWrite = 1013;  // the stored registry cannot be written
}  // namespace regerr

// A value as RegQueryValueExA hands it out, except that text is UTF-8: text
// types (1, 2, 7) carry their NUL terminators ("abc\0", "a\0b\0\0"); other
// types carry their bytes as stored (a REG_DWORD is 4 bytes, little-endian).
struct RegValue {
  uint32_t type = kRegNone;
  std::string data;
};

class Registry {
 public:
  virtual ~Registry() = default;

  // RegConnectRegistryA: the registry of another computer ("\\name" or
  // "name"). The connection stays usable while the caller holds it. Fails
  // with kBadNetPath when that computer's registry cannot be reached.
  virtual rt::Result<std::shared_ptr<Registry>> Connect(const std::string& machine) = 0;

  // RegOpenKeyExA followed by RegCloseKey: succeeds when the key exists and
  // may be opened for reading, or for changing its values and deleting it
  // when `forWriting` is set. kFileNotFound when the key does not exist.
  virtual rt::Status OpenKey(uint32_t hive, const std::string& path, bool forWriting) = 0;

  // RegQueryValueExA: the value `name` of the key (empty name: the key's
  // default value). kFileNotFound when the key or the value is missing.
  virtual rt::Result<RegValue> QueryValue(uint32_t hive, const std::string& path,
                                          const std::string& name) = 0;

  // The names of the key's sub-keys in the order RegEnumKeyA lists them from
  // index 0. kFileNotFound when the key does not exist.
  virtual rt::Result<std::vector<std::string>> EnumKeys(uint32_t hive, const std::string& path) = 0;

  // RegCreateKeyExA: creates the key and every missing key above it; an
  // existing key is left as it is and counts as success.
  virtual rt::Status CreateKey(uint32_t hive, const std::string& path) = 0;

  // RegSetValueExA on an existing key: creates or replaces the value.
  // kFileNotFound when the key does not exist.
  virtual rt::Status SetValue(uint32_t hive, const std::string& path, const std::string& name,
                              const RegValue& value) = 0;

  // RegDeleteKeyA: removes a key that has no sub-keys, with its values.
  // kAccessDenied when it has sub-keys (nothing is removed then) or is a
  // root key; kFileNotFound when it does not exist.
  virtual rt::Status DeleteKey(uint32_t hive, const std::string& path) = 0;

  // RegDeleteValueA: kFileNotFound when the key or the value is missing.
  virtual rt::Status DeleteValue(uint32_t hive, const std::string& path,
                                 const std::string& name) = 0;
};

}  // namespace sentrune::platform
