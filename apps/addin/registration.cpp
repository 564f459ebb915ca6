#include "registration.h"

#include <cstdint>
#include <vector>

#include "addin_ids.h"

namespace sentrune::addin {
namespace {

using platform::kHkeyCurrentUser;
using platform::RegValue;

struct ClassRoot {
  uint32_t hive;
  const char* path;
};
constexpr ClassRoot kMachineClasses{platform::kHkeyLocalMachine, "Software\\Classes"};
constexpr ClassRoot kUserClasses{kHkeyCurrentUser, "Software\\Classes"};

// One value to write, under its key's path below a base key.
struct Entry {
  std::string key;
  std::string name;
  RegValue value;
};

RegValue Text(const std::string& text) { return {platform::kRegSz, text + '\0'}; }

RegValue Dword(uint32_t number) {
  std::string bytes(4, '\0');
  for (size_t i = 0; i < 4; ++i) bytes[i] = static_cast<char>((number >> (8 * i)) & 0xFF);
  return {platform::kRegDword, bytes};
}

std::string ClsidKey() { return std::string("CLSID\\") + kClsidText; }
std::string ProgIdKey() { return kProgId; }
std::string Below(const std::string& base, const std::string& key) { return base + '\\' + key; }

std::vector<Entry> ClassEntries(const std::string& dllPath) {
  return {
      {Below(ProgIdKey(), "CLSID"), "", Text(kClsidText)},
      {Below(ClsidKey(), "ProgID"), "", Text(kProgId)},
      {Below(ClsidKey(), "InprocServer32"), "", Text(dllPath)},
      // The IDE calls its add-ins on its one user-interface thread.
      {Below(ClsidKey(), "InprocServer32"), "ThreadingModel", Text("Apartment")},
  };
}

// Our keys below a class root, each before the key that holds it.
std::vector<std::string> ClassKeys() {
  return {Below(ProgIdKey(), "CLSID"), ProgIdKey(), Below(ClsidKey(), "ProgID"),
          Below(ClsidKey(), "InprocServer32"), ClsidKey()};
}

std::vector<Entry> AddinEntries() {
  const std::string key = kProgId;
  return {
      {key, "FriendlyName", Text(kFriendlyName)},
      {key, "Description", Text(kDescription)},
      // Loaded when the IDE starts: the add-in follows every build and edit
      // from the first one on.
      {key, "LoadBehavior", Dword(1)},
      // Not for command-line builds (vb6 /make): the add-in asks through
      // message boxes and dialogs, which nobody would answer there.
      {key, "CommandLineSafe", Dword(0)},
  };
}

rt::Status Write(platform::Registry& registry, uint32_t hive, const std::string& base,
                 const std::vector<Entry>& entries) {
  for (const Entry& entry : entries) {
    const std::string key = Below(base, entry.key);
    if (rt::Status created = registry.CreateKey(hive, key); !created.ok()) return created;
    if (rt::Status set = registry.SetValue(hive, key, entry.name, entry.value); !set.ok()) return set;
  }
  return {};
}

// Deletes a key that may already be gone; the first failure is kept.
void Remove(platform::Registry& registry, uint32_t hive, const std::string& key, rt::Status& result) {
  const rt::Status deleted = registry.DeleteKey(hive, key);
  if (!deleted.ok() && deleted.code() != platform::regerr::kFileNotFound && result.ok()) result = deleted;
}

rt::Status RemoveClass(platform::Registry& registry, const ClassRoot& root) {
  rt::Status result;
  for (const std::string& key : ClassKeys()) Remove(registry, root.hive, Below(root.path, key), result);
  return result;
}

}  // namespace

rt::Status RegisterServer(platform::Registry& registry, const std::string& dllPath) {
  const bool machine = registry.CreateKey(kMachineClasses.hive, Below(kMachineClasses.path, ClsidKey())).ok();
  const ClassRoot& root = machine ? kMachineClasses : kUserClasses;
  rt::Status written = Write(registry, root.hive, root.path, ClassEntries(dllPath));
  if (written.ok()) written = Write(registry, kHkeyCurrentUser, kAddinsKey, AddinEntries());
  if (!written.ok()) {
    (void)UnregisterServer(registry);
    return written;
  }
  // The other root can only hold a registration of an earlier one; without
  // administrator rights the machine's stays, and the user's shadows it.
  (void)RemoveClass(registry, machine ? kUserClasses : kMachineClasses);
  return {};
}

rt::Status UnregisterServer(platform::Registry& registry) {
  rt::Status result = RemoveClass(registry, kMachineClasses);
  if (rt::Status user = RemoveClass(registry, kUserClasses); result.ok()) result = user;
  Remove(registry, kHkeyCurrentUser, Below(kAddinsKey, kProgId), result);
  // The IDE keeps one sub-key per add-in there and nothing else.
  const rt::Result<std::vector<std::string>> others = registry.EnumKeys(kHkeyCurrentUser, kAddinsKey);
  if (others.ok() && others->empty()) Remove(registry, kHkeyCurrentUser, kAddinsKey, result);
  return result;
}

}  // namespace sentrune::addin
