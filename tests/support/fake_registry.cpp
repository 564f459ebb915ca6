#include "support/fake_registry.h"

#include <algorithm>

#include "platform/winereg/wine_registry.h"
#include "platform/winereg/wine_registry_file.h"
#include "runtime/text.h"

namespace sentrune::testing {

using platform::regerr::kAccessDenied;
using platform::regerr::kFileNotFound;

struct FakeRegistry::Key {
  std::string name;
  std::vector<std::pair<std::string, platform::RegValue>> values;  // in creation order
  std::vector<std::unique_ptr<Key>> subkeys;                       // in creation order

  Key* Child(const std::string& child) const {
    for (const auto& key : subkeys) {
      if (rt::IEquals(key->name, child)) return key.get();
    }
    return nullptr;
  }
  platform::RegValue* Value(const std::string& valueName) {
    for (auto& [stored, value] : values) {
      if (rt::IEquals(stored, valueName)) return &value;
    }
    return nullptr;
  }
};

namespace {

std::string KeyText(uint32_t hive, const std::string& path) {
  return portable::RegistryKeyName(hive, path);
}

std::string Normal(const std::string& path) {
  std::string joined;
  for (const std::string& part : portable::winereg::SplitKeyPath(path)) {
    joined += (joined.empty() ? "" : "\\") + rt::UCase(part);
  }
  return joined;
}

rt::VbError Missing(uint32_t hive, const std::string& path) {
  return rt::MakeError(kFileNotFound, "Registry key '" + KeyText(hive, path) + "' does not exist");
}

}  // namespace

FakeRegistry::FakeRegistry() {
  for (const uint32_t hive : {platform::kHkeyClassesRoot, platform::kHkeyCurrentUser,
                              platform::kHkeyLocalMachine, platform::kHkeyUsers}) {
    roots_[hive] = std::make_unique<Key>();
  }
}
FakeRegistry::~FakeRegistry() = default;

// --- Setup

void FakeRegistry::AddKey(uint32_t hive, const std::string& path) { Make(hive, path); }

void FakeRegistry::AddValue(uint32_t hive, const std::string& path, const std::string& name,
                            platform::RegValue value) {
  Key& key = Make(hive, path);
  if (platform::RegValue* stored = key.Value(name)) {
    *stored = std::move(value);
  } else {
    key.values.emplace_back(name, std::move(value));
  }
}

void FakeRegistry::AddString(uint32_t hive, const std::string& path, const std::string& name,
                             const std::string& text) {
  AddValue(hive, path, name, {platform::kRegSz, text + '\0'});
}

void FakeRegistry::FailNext(RegOp op, const std::string& path, int32_t code) {
  failures_.push_back({op, Normal(path), code});
}

// --- Internals

FakeRegistry::Key* FakeRegistry::Find(uint32_t hive, const std::string& path) const {
  const auto root = roots_.find(hive);
  if (root == roots_.end()) return nullptr;
  Key* key = root->second.get();
  for (const std::string& part : portable::winereg::SplitKeyPath(path)) {
    key = key->Child(part);
    if (!key) return nullptr;
  }
  return key;
}

FakeRegistry::Key& FakeRegistry::Make(uint32_t hive, const std::string& path) {
  std::unique_ptr<Key>& root = roots_[hive];
  if (!root) root = std::make_unique<Key>();
  Key* key = root.get();
  for (const std::string& part : portable::winereg::SplitKeyPath(path)) {
    Key* child = key->Child(part);
    if (!child) {
      key->subkeys.push_back(std::make_unique<Key>());
      child = key->subkeys.back().get();
      child->name = part;
    }
    key = child;
  }
  return *key;
}

std::optional<rt::VbError> FakeRegistry::TakeFailure(RegOp op, const std::string& path) {
  const std::string normal = Normal(path);
  const auto at = std::find_if(failures_.begin(), failures_.end(), [&](const Failure& f) {
    return f.op == op && (f.path.empty() || f.path == normal);
  });
  if (at == failures_.end()) return std::nullopt;
  const int32_t code = at->code;
  failures_.erase(at);
  return rt::MakeError(code,
                       "Injected registry failure " + std::to_string(code) + " on '" + path + "'");
}

// --- platform::Registry

rt::Result<std::shared_ptr<platform::Registry>> FakeRegistry::Connect(const std::string& machine) {
  return rt::MakeError(platform::regerr::kBadNetPath, "No registry on '" + machine + "'");
}

rt::Status FakeRegistry::OpenKey(uint32_t hive, const std::string& path, bool) {
  if (auto failure = TakeFailure(RegOp::kOpen, path)) return *failure;
  if (!Find(hive, path)) return Missing(hive, path);
  return {};
}

rt::Result<platform::RegValue> FakeRegistry::QueryValue(uint32_t hive, const std::string& path,
                                                        const std::string& name) {
  if (auto failure = TakeFailure(RegOp::kQuery, path)) return *failure;
  Key* key = Find(hive, path);
  if (!key) return Missing(hive, path);
  if (const platform::RegValue* value = key->Value(name)) return *value;
  return rt::MakeError(kFileNotFound, "No value '" + name + "' in '" + KeyText(hive, path) + "'");
}

rt::Result<std::vector<std::string>> FakeRegistry::EnumKeys(uint32_t hive,
                                                            const std::string& path) {
  Key* key = Find(hive, path);
  if (!key) return Missing(hive, path);
  std::vector<std::string> names;
  for (const auto& child : key->subkeys) names.push_back(child->name);
  return names;
}

rt::Status FakeRegistry::CreateKey(uint32_t hive, const std::string& path) {
  if (auto failure = TakeFailure(RegOp::kCreate, path)) return *failure;
  Make(hive, path);
  return {};
}

rt::Status FakeRegistry::SetValue(uint32_t hive, const std::string& path, const std::string& name,
                                  const platform::RegValue& value) {
  if (auto failure = TakeFailure(RegOp::kSet, path)) return *failure;
  if (!Find(hive, path)) return Missing(hive, path);
  AddValue(hive, path, name, value);
  record_.setValues.push_back({KeyText(hive, path), name, value});
  return {};
}

rt::Status FakeRegistry::DeleteKey(uint32_t hive, const std::string& path) {
  const portable::winereg::KeyPath parts = portable::winereg::SplitKeyPath(path);
  Key* key = Find(hive, path);
  if (!key) return Missing(hive, path);
  if (parts.empty() || !key->subkeys.empty()) {
    return rt::MakeError(kAccessDenied, "'" + KeyText(hive, path) + "' has sub-keys");
  }
  std::string parentPath;
  for (size_t i = 0; i + 1 < parts.size(); ++i) parentPath += parts[i] + "\\";
  Key* parent = Find(hive, parentPath);
  parent->subkeys.erase(std::find_if(parent->subkeys.begin(), parent->subkeys.end(),
                                     [&](const auto& child) { return child.get() == key; }));
  record_.deletedKeys.push_back(KeyText(hive, path));
  return {};
}

rt::Status FakeRegistry::DeleteValue(uint32_t hive, const std::string& path,
                                     const std::string& name) {
  Key* key = Find(hive, path);
  if (!key) return Missing(hive, path);
  const auto at = std::find_if(key->values.begin(), key->values.end(),
                               [&](const auto& value) { return rt::IEquals(value.first, name); });
  if (at == key->values.end()) {
    return rt::MakeError(kFileNotFound, "No value '" + name + "' in '" + KeyText(hive, path) + "'");
  }
  key->values.erase(at);
  record_.deletedValues.push_back(KeyText(hive, path) + "\\" + (name.empty() ? "@" : name));
  return {};
}

}  // namespace sentrune::testing
