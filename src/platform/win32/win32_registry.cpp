#include "platform/win32/win32_registry.h"

#include "platform/win32/windows_api.h"

#include <utility>

#include "platform/win32/win32_errors.h"
#include "platform/win32/win32_text.h"

namespace sentrune::win32 {

namespace {

using platform::kHkeyLocalMachine;
using platform::kHkeyUsers;

// An open key of the system's, closed when it goes.
class Key {
 public:
  explicit Key(HKEY handle = nullptr) : handle_(handle) {}
  Key(Key&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  Key& operator=(Key&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  ~Key() {
    if (handle_ != nullptr) RegCloseKey(handle_);
  }
  HKEY get() const { return handle_; }

 private:
  HKEY handle_;
};

struct PredefinedKey {
  uint32_t hive;
  HKEY handle;
  const char* name;
};

// The predefined handles are sign-extended on 64-bit Windows, so the hive
// numbers of the interface are mapped, never cast.
const PredefinedKey* FindPredefined(uint32_t hive) {
  static const PredefinedKey keys[] = {
      {platform::kHkeyClassesRoot, HKEY_CLASSES_ROOT, "HKEY_CLASSES_ROOT"},
      {platform::kHkeyCurrentUser, HKEY_CURRENT_USER, "HKEY_CURRENT_USER"},
      {kHkeyLocalMachine, HKEY_LOCAL_MACHINE, "HKEY_LOCAL_MACHINE"},
      {kHkeyUsers, HKEY_USERS, "HKEY_USERS"},
  };
  for (const PredefinedKey& key : keys) {
    if (key.hive == hive) return &key;
  }
  return nullptr;
}

// The path without empty components, which the system would not accept.
std::string CleanPath(const std::string& path) {
  std::string clean;
  size_t start = 0;
  while (start <= path.size()) {
    size_t end = path.find('\\', start);
    if (end == std::string::npos) end = path.size();
    if (end > start) {
      if (!clean.empty()) clean += '\\';
      clean.append(path, start, end - start);
    }
    start = end + 1;
  }
  return clean;
}

rt::VbError Failure(LONG code, const std::string& what) {
  const auto error = static_cast<uint32_t>(code);
  return rt::MakeError(static_cast<int32_t>(code), what + " (Windows error " + std::to_string(error) +
                                                       ": " + SystemMessage(error) + ")");
}

std::string ValueName(const std::string& name) {
  return name.empty() ? "the default value" : "value '" + name + "'";
}

bool IsText(uint32_t type) {
  return type == platform::kRegSz || type == platform::kRegExpandSz || type == platform::kRegMultiSz;
}

// Text values travel as UTF-16 units; an odd last byte is no unit and is
// dropped, as the ANSI functions drop it.
std::string TextFromStored(const std::string& bytes) {
  std::wstring units(bytes.size() / 2, L'\0');
  for (size_t i = 0; i < units.size(); ++i) {
    units[i] = static_cast<wchar_t>(static_cast<uint8_t>(bytes[2 * i]) |
                                    static_cast<uint8_t>(bytes[2 * i + 1]) << 8);
  }
  return Narrow(units);
}

std::string TextToStored(const std::string& utf8) {
  std::string bytes;
  for (const wchar_t unit : Widen(utf8)) {
    bytes += static_cast<char>(unit & 0xFF);
    bytes += static_cast<char>((unit >> 8) & 0xFF);
  }
  return bytes;
}

}  // namespace

class Win32Registry::Roots {
 public:
  Roots() = default;

  // The root keys of another computer that RegConnectRegistryW offers.
  static rt::Result<std::unique_ptr<Roots>> Connect(const std::string& machine) {
    auto roots = std::make_unique<Roots>();
    roots->remote_ = true;
    roots->machine_ = machine.rfind("\\\\", 0) == 0 || machine.empty() ? machine : "\\\\" + machine;
    const std::wstring wide = Widen(roots->machine_);
    for (const uint32_t hive : {kHkeyLocalMachine, kHkeyUsers}) {
      HKEY handle = nullptr;
      const LONG error = RegConnectRegistryW(machine.empty() ? nullptr : wide.c_str(),
                                             FindPredefined(hive)->handle, &handle);
      if (error != ERROR_SUCCESS && hive == kHkeyLocalMachine) {
        return Failure(error, "Cannot connect to the registry of '" + roots->machine_ + "'");
      }
      roots->connected_.push_back({hive, Key(error == ERROR_SUCCESS ? handle : nullptr), error});
    }
    return roots;
  }

  // "\\name\HKEY_LOCAL_MACHINE\Software" for messages.
  std::string Name(uint32_t hive, const std::string& path) const {
    const PredefinedKey* predefined = FindPredefined(hive);
    std::string name = machine_.empty() ? "" : machine_ + "\\";
    name += predefined != nullptr ? predefined->name : std::to_string(hive);
    const std::string clean = CleanPath(path);
    return clean.empty() ? name : name + "\\" + clean;
  }

  rt::Result<HKEY> Root(uint32_t hive) const {
    const PredefinedKey* predefined = FindPredefined(hive);
    if (predefined != nullptr && !remote_) return predefined->handle;
    for (const Connected& root : connected_) {
      if (root.hive != hive) continue;
      if (root.error == ERROR_SUCCESS) return root.key.get();
      return Failure(root.error, "Cannot connect to '" + Name(hive, "") + "'");
    }
    return Failure(ERROR_INVALID_HANDLE, "There is no root key '" + Name(hive, "") + "'");
  }

  rt::Result<Key> Open(uint32_t hive, const std::string& path, REGSAM access) const {
    rt::Result<HKEY> root = Root(hive);
    if (!root) return root.error();
    HKEY key = nullptr;
    const LONG error = RegOpenKeyExW(*root, Widen(CleanPath(path)).c_str(), 0, access, &key);
    if (error != ERROR_SUCCESS) {
      return Failure(error, "Cannot open registry key '" + Name(hive, path) + "'" +
                                ((access & KEY_SET_VALUE) != 0 ? " for writing" : ""));
    }
    return Key(key);
  }

 private:
  struct Connected {
    uint32_t hive;
    Key key;
    LONG error;
  };
  bool remote_ = false;
  std::string machine_;
  std::vector<Connected> connected_;
};

Win32Registry::Win32Registry() : roots_(std::make_unique<Roots>()) {}
Win32Registry::Win32Registry(std::unique_ptr<Roots> roots) : roots_(std::move(roots)) {}
Win32Registry::~Win32Registry() = default;

rt::Result<std::shared_ptr<platform::Registry>> Win32Registry::Connect(const std::string& machine) {
  rt::Result<std::unique_ptr<Roots>> roots = Roots::Connect(machine);
  if (!roots) return roots.error();
  return std::shared_ptr<platform::Registry>(new Win32Registry(std::move(roots).value()));
}

rt::Status Win32Registry::OpenKey(uint32_t hive, const std::string& path, bool forWriting) {
  rt::Result<Key> key = roots_->Open(hive, path, forWriting ? KEY_SET_VALUE | DELETE : KEY_READ);
  if (!key) return key.error();
  return {};
}

rt::Result<platform::RegValue> Win32Registry::QueryValue(uint32_t hive, const std::string& path,
                                                         const std::string& name) {
  rt::Result<Key> key = roots_->Open(hive, path, KEY_QUERY_VALUE);
  if (!key) return key.error();
  const std::wstring wideName = Widen(name);
  platform::RegValue value;
  LONG error = ERROR_MORE_DATA;
  // The value may grow between asking its size and reading it.
  while (error == ERROR_MORE_DATA) {
    DWORD type = REG_NONE;
    DWORD size = 0;
    error = RegQueryValueExW(key->get(), wideName.c_str(), nullptr, &type, nullptr, &size);
    if (error != ERROR_SUCCESS) break;
    value.data.assign(size, '\0');
    error = RegQueryValueExW(key->get(), wideName.c_str(), nullptr, &type,
                             reinterpret_cast<BYTE*>(value.data.data()), &size);
    value.type = type;
    value.data.resize(size);
  }
  if (error != ERROR_SUCCESS) {
    return Failure(error, "Cannot read " + ValueName(name) + " of registry key '" +
                              roots_->Name(hive, path) + "'");
  }
  if (IsText(value.type)) value.data = TextFromStored(value.data);
  return value;
}

rt::Result<std::vector<std::string>> Win32Registry::EnumKeys(uint32_t hive, const std::string& path) {
  rt::Result<Key> key = roots_->Open(hive, path, KEY_ENUMERATE_SUB_KEYS);
  if (!key) return key.error();
  std::vector<std::string> names;
  for (DWORD index = 0;; ++index) {
    wchar_t name[256];  // a key name has at most 255 characters
    DWORD length = 256;
    const LONG error = RegEnumKeyExW(key->get(), index, name, &length, nullptr, nullptr, nullptr, nullptr);
    if (error == ERROR_NO_MORE_ITEMS) return names;
    if (error != ERROR_SUCCESS) {
      return Failure(error, "Cannot list the sub-keys of registry key '" + roots_->Name(hive, path) + "'");
    }
    names.push_back(Narrow(std::wstring_view(name, length)));
  }
}

rt::Status Win32Registry::CreateKey(uint32_t hive, const std::string& path) {
  rt::Result<HKEY> root = roots_->Root(hive);
  if (!root) return root.error();
  HKEY created = nullptr;
  const LONG error = RegCreateKeyExW(*root, Widen(CleanPath(path)).c_str(), 0, nullptr,
                                     REG_OPTION_NON_VOLATILE, KEY_QUERY_VALUE, nullptr, &created, nullptr);
  if (error != ERROR_SUCCESS) {
    return Failure(error, "Cannot create registry key '" + roots_->Name(hive, path) + "'");
  }
  const Key closed(created);
  return {};
}

rt::Status Win32Registry::SetValue(uint32_t hive, const std::string& path, const std::string& name,
                                   const platform::RegValue& value) {
  rt::Result<Key> key = roots_->Open(hive, path, KEY_SET_VALUE);
  if (!key) return key.error();
  const std::string data = IsText(value.type) ? TextToStored(value.data) : value.data;
  const LONG error = RegSetValueExW(key->get(), Widen(name).c_str(), 0, value.type,
                                    reinterpret_cast<const BYTE*>(data.data()), static_cast<DWORD>(data.size()));
  if (error != ERROR_SUCCESS) {
    return Failure(error, "Cannot set " + ValueName(name) + " of registry key '" + roots_->Name(hive, path) + "'");
  }
  return {};
}

rt::Status Win32Registry::DeleteKey(uint32_t hive, const std::string& path) {
  rt::Result<HKEY> root = roots_->Root(hive);
  if (!root) return root.error();
  const std::string clean = CleanPath(path);
  if (clean.empty()) {
    return Failure(ERROR_ACCESS_DENIED, "Cannot delete the root key '" + roots_->Name(hive, "") + "'");
  }
  const LONG error = RegDeleteKeyW(*root, Widen(clean).c_str());
  if (error != ERROR_SUCCESS) {
    return Failure(error, "Cannot delete registry key '" + roots_->Name(hive, path) + "'");
  }
  return {};
}

rt::Status Win32Registry::DeleteValue(uint32_t hive, const std::string& path, const std::string& name) {
  rt::Result<Key> key = roots_->Open(hive, path, KEY_SET_VALUE);
  if (!key) return key.error();
  const LONG error = RegDeleteValueW(key->get(), Widen(name).c_str());
  if (error != ERROR_SUCCESS) {
    return Failure(error, "Cannot delete " + ValueName(name) + " of registry key '" +
                              roots_->Name(hive, path) + "'");
  }
  return {};
}

}  // namespace sentrune::win32
