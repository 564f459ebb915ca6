#pragma once
// An in-memory registry that behaves as Windows' does for the add-in: names
// match without regard to case and keep the case they were created with,
// keys with sub-keys refuse deletion. Each root key is a tree of its own
// (HKEY_CLASSES_ROOT is not merged from the others here). Sub-keys are
// listed in the order they were created, so a test decides which one is
// "first". It records the values set and what was deleted, and a test can
// make the next open, query, create or set fail with a chosen Win32 code.
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/registry.h"

namespace sentrune::testing {

enum class RegOp { kOpen, kQuery, kCreate, kSet };

// Keys are written as "HKEY_CURRENT_USER\Software\X", in the spelling the
// caller used, without empty components.
struct RegSet {
  std::string key;
  std::string name;
  platform::RegValue value;
};
struct RegRecord {
  std::vector<RegSet> setValues;
  std::vector<std::string> deletedKeys;
  std::vector<std::string> deletedValues;  // key + "\" + value name ("@" for the default)
};

class FakeRegistry : public platform::Registry {
 public:
  FakeRegistry();
  ~FakeRegistry() override;
  FakeRegistry(const FakeRegistry&) = delete;
  FakeRegistry& operator=(const FakeRegistry&) = delete;

  // --- Setup, not recorded. Missing keys on the way are created.
  void AddKey(uint32_t hive, const std::string& path);
  void AddValue(uint32_t hive, const std::string& path, const std::string& name,
                platform::RegValue value);
  // A REG_SZ value: the text with its NUL.
  void AddString(uint32_t hive, const std::string& path, const std::string& name,
                 const std::string& text);
  // The next call of `op` on `path` (compared without regard to case; empty:
  // any path) fails with the Win32 `code` and changes nothing.
  void FailNext(RegOp op, const std::string& path, int32_t code);

  // --- Inspection.
  const RegRecord& Record() const { return record_; }
  void ClearRecord() { record_ = {}; }

  // --- platform::Registry; no other machine can be reached.
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
  struct Key;
  Key* Find(uint32_t hive, const std::string& path) const;
  Key& Make(uint32_t hive, const std::string& path);
  std::optional<rt::VbError> TakeFailure(RegOp op, const std::string& path);

  std::map<uint32_t, std::unique_ptr<Key>> roots_;
  struct Failure {
    RegOp op;
    std::string path;
    int32_t code;
  };
  std::vector<Failure> failures_;
  RegRecord record_;
};

}  // namespace sentrune::testing
