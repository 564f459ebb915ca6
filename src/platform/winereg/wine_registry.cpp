#include "platform/winereg/wine_registry.h"

#include <algorithm>
#include <chrono>
#include <unordered_set>

#include "platform/winereg/wine_registry_text.h"
#include "runtime/text.h"

namespace sentrune::portable {

namespace {

using platform::regerr::kAccessDenied;
using platform::regerr::kFileNotFound;
using winereg::KeyPath;

std::string TrimmedFolder(std::string folder) {
  while (!folder.empty() && (folder.back() == '\\' || folder.back() == '/')) folder.pop_back();
  return folder;
}

bool IsTextType(uint32_t type) {
  return type == platform::kRegSz || type == platform::kRegExpandSz ||
         type == platform::kRegMultiSz;
}

// Wine keeps text as UTF-16; the interface speaks UTF-8.
platform::RegValue ToInterface(const winereg::StoredValue& stored) {
  if (!IsTextType(stored.type)) return {stored.type, stored.data};
  return {stored.type, winereg::Utf16ToUtf8(winereg::BytesToUtf16(stored.data))};
}

winereg::StoredValue ToStored(const std::string& name, const platform::RegValue& value) {
  if (!IsTextType(value.type)) return {name, value.type, value.data};
  return {name, value.type, winereg::Utf16ToBytes(winereg::Utf8ToUtf16(value.data))};
}

KeyPath Join(const KeyPath& base, const KeyPath& rest) {
  KeyPath path = base;
  path.insert(path.end(), rest.begin(), rest.end());
  return path;
}

rt::VbError KeyNotFound(uint32_t hive, const std::string& path) {
  return rt::MakeError(kFileNotFound,
                       "Registry key '" + RegistryKeyName(hive, path) + "' does not exist");
}

rt::VbError ValueNotFound(uint32_t hive, const std::string& path, const std::string& name) {
  return rt::MakeError(kFileNotFound, "Registry key '" + RegistryKeyName(hive, path) +
                                          "' has no value '" + name + "'");
}

}  // namespace

std::string RegistryKeyName(uint32_t hive, const std::string& path) {
  std::string root;
  switch (hive) {
    case platform::kHkeyClassesRoot:
      root = "HKEY_CLASSES_ROOT";
      break;
    case platform::kHkeyCurrentUser:
      root = "HKEY_CURRENT_USER";
      break;
    case platform::kHkeyLocalMachine:
      root = "HKEY_LOCAL_MACHINE";
      break;
    case platform::kHkeyUsers:
      root = "HKEY_USERS";
      break;
    default:
      root = std::to_string(hive);
  }
  const KeyPath parts = winereg::SplitKeyPath(path);
  for (const std::string& part : parts) root += "\\" + part;
  return root;
}

WineRegistry::WineRegistry(platform::FileSystem& files, WineRegistryOptions options)
    : options_(std::move(options)),
      machine_(files, TrimmedFolder(options_.prefixFolder) + "\\system.reg"),
      user_(files, TrimmedFolder(options_.prefixFolder) + "\\user.reg") {
  if (options_.prefixName.empty()) options_.prefixName = options_.prefixFolder;
}

rt::Result<std::shared_ptr<platform::Registry>> WineRegistry::Connect(const std::string& machine) {
  return rt::MakeError(platform::regerr::kBadNetPath,
                       "The registry of '" + machine +
                           "' cannot be reached: remote registries are not available here");
}

rt::Result<std::vector<WineRegistry::Loaded>> WineRegistry::Load(uint32_t hive,
                                                                 const std::string& path) {
  const KeyPath parts = winereg::SplitKeyPath(path);
  std::vector<Place> places;
  switch (hive) {
    case platform::kHkeyLocalMachine:
      places = {{&machine_, parts}};
      break;
    case platform::kHkeyCurrentUser:
      places = {{&user_, parts}};
      break;
    case platform::kHkeyClassesRoot: {
      const KeyPath classes = Join({"Software", "Classes"}, parts);
      places = {{&user_, classes}, {&machine_, classes}};
      break;
    }
    default:
      return rt::MakeError(platform::regerr::kInvalidHandle,
                           "The Wine prefix store offers no root key " + RegistryKeyName(hive, ""));
  }
  std::vector<Loaded> loaded;
  for (const Place& place : places) {
    rt::Result<winereg::RegFile*> doc = place.file->Load();
    if (!doc) return doc.error();
    loaded.push_back({place, *doc});
  }
  return loaded;
}

rt::Status WineRegistry::CheckWritable() const {
  if (options_.serverRunning && options_.serverRunning()) {
    return rt::MakeError(platform::regerr::kBusy,
                         "The wineserver of the Wine prefix '" + options_.prefixName +
                             "' is running and would undo registry changes when it exits; "
                             "stop it first (wineserver -k)");
  }
  return {};
}

rt::Status WineRegistry::Change(const Place& place,
                                const std::function<void(winereg::RegFile&)>& edit) {
  rt::Result<winereg::RegFile*> doc = place.file->LoadForWriting();
  if (!doc) return doc.error();
  edit(**doc);
  return place.file->Save();
}

int64_t WineRegistry::Now() const {
  if (options_.now) return options_.now();
  return std::chrono::duration_cast<std::chrono::seconds>(
             std::chrono::system_clock::now().time_since_epoch())
      .count();
}

rt::Status WineRegistry::OpenKey(uint32_t hive, const std::string& path, bool forWriting) {
  rt::Result<std::vector<Loaded>> loaded = Load(hive, path);
  if (!loaded) return loaded.error();
  const bool exists = std::any_of(loaded->begin(), loaded->end(),
                                  [](const Loaded& l) { return l.doc->KeyExists(l.place.path); });
  if (!exists) return KeyNotFound(hive, path);
  return forWriting ? CheckWritable() : rt::Status();
}

rt::Result<platform::RegValue> WineRegistry::QueryValue(uint32_t hive, const std::string& path,
                                                        const std::string& name) {
  rt::Result<std::vector<Loaded>> loaded = Load(hive, path);
  if (!loaded) return loaded.error();
  bool keyFound = false;
  for (const Loaded& l : *loaded) {
    keyFound = keyFound || l.doc->KeyExists(l.place.path);
    const winereg::Section* section = l.doc->Find(l.place.path);
    const winereg::StoredValue* value = section ? section->FindValue(name) : nullptr;
    if (value) return ToInterface(*value);
  }
  if (!keyFound) return KeyNotFound(hive, path);
  return ValueNotFound(hive, path, name);
}

rt::Result<std::vector<std::string>> WineRegistry::EnumKeys(uint32_t hive,
                                                            const std::string& path) {
  rt::Result<std::vector<Loaded>> loaded = Load(hive, path);
  if (!loaded) return loaded.error();
  bool keyFound = false;
  std::vector<std::string> names;
  std::unordered_set<std::string> seen;
  for (const Loaded& l : *loaded) {
    if (!l.doc->KeyExists(l.place.path)) continue;
    keyFound = true;
    for (std::string& name : l.doc->SubkeyNames(l.place.path)) {
      if (seen.insert(rt::LCase(name)).second) names.push_back(std::move(name));
    }
  }
  if (!keyFound) return KeyNotFound(hive, path);
  std::stable_sort(names.begin(), names.end(), [](const std::string& a, const std::string& b) {
    return winereg::NameLess(a, b);
  });
  return names;
}

rt::Status WineRegistry::CreateKey(uint32_t hive, const std::string& path) {
  if (rt::Status writable = CheckWritable(); !writable) return writable;
  rt::Result<std::vector<Loaded>> loaded = Load(hive, path);
  if (!loaded) return loaded.error();
  for (const Loaded& l : *loaded) {
    if (l.doc->KeyExists(l.place.path)) return {};
  }
  // The hive that holds the deepest existing part of the path; the last
  // place (the machine's, for the merged root) when both or neither do.
  const Loaded* target = &loaded->back();
  for (size_t depth = loaded->front().place.path.size(); depth-- > 0 && loaded->size() > 1;) {
    const Loaded& user = loaded->front();
    const KeyPath part(user.place.path.begin(), user.place.path.begin() + depth);
    if (loaded->back().doc->KeyExists(part)) break;
    if (user.doc->KeyExists(part)) {
      target = &user;
      break;
    }
  }
  const int64_t now = Now();
  return Change(target->place, [&](winereg::RegFile& doc) { doc.Touch(target->place.path, now); });
}

rt::Status WineRegistry::SetValue(uint32_t hive, const std::string& path, const std::string& name,
                                  const platform::RegValue& value) {
  if (rt::Status writable = CheckWritable(); !writable) return writable;
  rt::Result<std::vector<Loaded>> loaded = Load(hive, path);
  if (!loaded) return loaded.error();
  const Loaded* target = nullptr;
  for (const Loaded& l : *loaded) {
    if (!l.doc->KeyExists(l.place.path)) continue;
    const winereg::Section* section = l.doc->Find(l.place.path);
    if (section && section->FindValue(name)) {
      target = &l;
      break;
    }
    target = &l;  // a later place that has the key wins unless this one holds the value
  }
  if (!target) return KeyNotFound(hive, path);
  const int64_t now = Now();
  return Change(target->place, [&](winereg::RegFile& doc) {
    doc.Touch(target->place.path, now).SetValue(ToStored(name, value));
  });
}

rt::Status WineRegistry::DeleteKey(uint32_t hive, const std::string& path) {
  if (rt::Status writable = CheckWritable(); !writable) return writable;
  rt::Result<std::vector<Loaded>> loaded = Load(hive, path);
  if (!loaded) return loaded.error();
  std::vector<Place> holders;
  for (const Loaded& l : *loaded) {
    if (!l.doc->KeyExists(l.place.path)) continue;
    if (winereg::SplitKeyPath(path).empty() || !l.doc->SubkeyNames(l.place.path).empty()) {
      return rt::MakeError(kAccessDenied, "Registry key '" + RegistryKeyName(hive, path) +
                                              "' has sub-keys or is a root key");
    }
    holders.push_back(l.place);
  }
  if (holders.empty()) return KeyNotFound(hive, path);
  const int64_t now = Now();
  for (const Place& place : holders) {
    rt::Status status = Change(place, [&](winereg::RegFile& doc) { doc.Remove(place.path, now); });
    if (!status) return status;
  }
  return {};
}

rt::Status WineRegistry::DeleteValue(uint32_t hive, const std::string& path,
                                     const std::string& name) {
  if (rt::Status writable = CheckWritable(); !writable) return writable;
  rt::Result<std::vector<Loaded>> loaded = Load(hive, path);
  if (!loaded) return loaded.error();
  std::vector<Place> holders;
  bool keyFound = false;
  for (const Loaded& l : *loaded) {
    keyFound = keyFound || l.doc->KeyExists(l.place.path);
    const winereg::Section* section = l.doc->Find(l.place.path);
    if (section && section->FindValue(name)) holders.push_back(l.place);
  }
  if (!keyFound) return KeyNotFound(hive, path);
  if (holders.empty()) {
    return ValueNotFound(hive, path, name);
  }
  const int64_t now = Now();
  for (const Place& place : holders) {
    rt::Status status =
        Change(place, [&](winereg::RegFile& doc) { doc.Touch(place.path, now).EraseValue(name); });
    if (!status) return status;
  }
  return {};
}

}  // namespace sentrune::portable
