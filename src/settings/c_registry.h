#pragma once
// cRegistry: one registry value addressed through properties (root key, key
// path, value name, value type, default), read and written through `Value`.
// With `Machine` set it works on that computer's registry.
//
// Reads never fail: anything that goes wrong gives `Default`. Writes and
// deletions that fail raise: the error is made pending in the add-in's
// ErrObject (source "<module name>.cRegistry") and returned as well.
#include <cstdint>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "state/addin_state.h"
#include "platform/registry.h"
#include "runtime/result.h"

namespace sentrune {

// What the class reads and writes: nothing, text, a 32-bit number or bytes.
using RegVariant = std::variant<std::monostate, std::string, int32_t, std::vector<uint8_t>>;

// The text VB would make of the value: a number in decimal, bytes as the
// UTF-16LE text they spell, empty for nothing.
std::string RegVariantText(const RegVariant& value);

class cRegistry {
 public:
  // vbObjectError + 1048 + 26001: a value that the registry refused to store.
  static constexpr int32_t kSetValueFailed = -2147221504 + 27049;
  // A key that could not be created or deleted, or a value of the wrong kind.
  static constexpr int32_t kRegistryError = 26001;

  // The state and the registry must outlive this object.
  cRegistry(AddinState& state, platform::Registry& registry);

  const std::string& Machine() const { return machine_; }
  void SetMachine(std::string machine) { machine_ = std::move(machine); }
  // Starts as HKEY_CURRENT_USER.
  void SetClassKey(uint32_t hive) { classKey_ = hive; }
  const std::string& SectionKey() const { return sectionKey_; }
  void SetSectionKey(std::string path) { sectionKey_ = std::move(path); }
  // Empty: the key's default value.
  const std::string& ValueKey() const { return valueKey_; }
  void SetValueKey(std::string name) { valueKey_ = std::move(name); }
  // The type a write stores (registry numbers); starts as 1 (text).
  uint32_t ValueType() const { return valueType_; }
  void SetValueType(uint32_t type) { valueType_ = type; }
  const RegVariant& Default() const { return default_; }
  void SetDefault(RegVariant value) { default_ = std::move(value); }

  // Whether SectionKey can be opened.
  bool KeyExists();
  // Removes SectionKey, which must have no sub-keys.
  rt::Status DeleteKey();
  // Removes ValueKey from SectionKey.
  rt::Status DeleteValue();

  // By the stored type: text (1 and 7 cut at the first NUL, 2 with its
  // %VAR% references expanded), a number (5 with its bytes swapped), or the
  // bytes of any other type. Default when anything fails.
  RegVariant Value();
  // Creates SectionKey when needed and stores the value as ValueType says:
  // 1 and 2 as text (type 2 whenever the text holds two "%"), 3 only from
  // bytes, 4 and 5 only from a number, stored as its 4 little-endian bytes
  // (reads swap type 5, writes never did). Other types store nothing.
  rt::Status SetValue(const RegVariant& value);

  // The names of SectionKey's sub-keys in the registry's order; false (and
  // no names) when the key cannot be opened.
  bool EnumerateSections(std::vector<std::string>& names, int32_t& count);

  // Why the registry refused the last write or deletion that raised (the
  // raised texts are fixed and do not say), e.g. that a Wine prefix's server
  // is running; empty when the value itself was refused.
  const std::string& RegistryReason() const { return reason_; }

 private:
  // The registry to work on: ours, or Machine's (kept alive by `remote`);
  // nothing when Machine cannot be reached.
  platform::Registry* Target(std::shared_ptr<platform::Registry>& remote);
  rt::Status Raise(int32_t number, const std::string& text, const rt::Status& cause = {});
  // Target() for a change; a failed connection becomes the reason.
  platform::Registry* TargetForChange(std::shared_ptr<platform::Registry>& remote,
                                      rt::Status& cause);
  std::string HiveNumber() const;
  std::string SetFailureText(const RegVariant& value) const;
  // ExpandEnvironmentStrings over the variables the environment can answer
  // for; references to others stay as they are.
  std::string Expand(const std::string& text) const;

  AddinState& state_;
  platform::Registry& registry_;
  std::string machine_;
  uint32_t classKey_ = platform::kHkeyCurrentUser;
  std::string sectionKey_;
  std::string valueKey_;
  uint32_t valueType_ = platform::kRegSz;
  RegVariant default_;
  std::string reason_;
};

}  // namespace sentrune
