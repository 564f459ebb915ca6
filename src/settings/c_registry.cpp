#include "settings/c_registry.h"

#include <algorithm>
#include <optional>

#include "runtime/text.h"

namespace sentrune {

namespace {

std::string ParentFolder(const std::string& folder) {
  const size_t slash = folder.find_last_of('\\');
  return slash == std::string::npos ? std::string() : folder.substr(0, slash);
}

// The environment variables that registry values commonly refer to, as far
// as the environment knows the folders they name.
std::optional<std::string> Variable(platform::Env& env, const std::string& name) {
  std::string value;
  const std::string upper = rt::UCase(name);
  if (upper == "SYSTEMROOT" || upper == "WINDIR") {
    value = ParentFolder(env.SpecialFolderPath(platform::kFolderSystem));
  } else if (upper == "SYSTEMDRIVE") {
    value = ParentFolder(env.SpecialFolderPath(platform::kFolderSystem)).substr(0, 2);
  } else if (upper == "TEMP" || upper == "TMP") {
    value = env.TempPath();
    if (!value.empty() && value.back() == '\\') value.pop_back();
  } else if (upper == "APPDATA") {
    value = env.SpecialFolderPath(platform::kFolderAppData);
  } else if (upper == "USERPROFILE") {
    value = ParentFolder(env.SpecialFolderPath(platform::kFolderDesktop));
  }
  if (value.empty()) return std::nullopt;
  return value;
}

std::string CutAtNul(const std::string& data) { return data.substr(0, data.find('\0')); }

std::string LittleEndian(uint32_t number) {
  std::string bytes(4, '\0');
  for (int i = 0; i < 4; ++i) bytes[i] = static_cast<char>((number >> (8 * i)) & 0xFF);
  return bytes;
}

// A REG_DWORD read into a 4-byte buffer: shorter data fills it partly,
// longer data does not fit.
std::optional<uint32_t> ReadNumber(const std::string& data) {
  if (data.size() > 4) return std::nullopt;
  uint32_t number = 0;
  for (size_t i = data.size(); i-- > 0;)
    number = (number << 8) | static_cast<unsigned char>(data[i]);
  return number;
}

uint32_t SwapBytes(uint32_t n) {
  return (n >> 24) | ((n >> 8) & 0xFF00) | ((n << 8) & 0xFF0000) | (n << 24);
}

}  // namespace

std::string RegVariantText(const RegVariant& value) {
  if (const auto* text = std::get_if<std::string>(&value)) return *text;
  if (const auto* number = std::get_if<int32_t>(&value)) return std::to_string(*number);
  if (const auto* bytes = std::get_if<std::vector<uint8_t>>(&value)) {
    std::u32string points;
    for (size_t i = 0; i + 1 < bytes->size(); i += 2) {
      points += static_cast<char32_t>((*bytes)[i] | ((*bytes)[i + 1] << 8));
    }
    return rt::FromCodePoints(points);
  }
  return {};
}

cRegistry::cRegistry(AddinState& state, platform::Registry& registry)
    : state_(state), registry_(registry) {}

platform::Registry* cRegistry::Target(std::shared_ptr<platform::Registry>& remote) {
  rt::Status ignored;
  return TargetForChange(remote, ignored);
}

platform::Registry* cRegistry::TargetForChange(std::shared_ptr<platform::Registry>& remote,
                                               rt::Status& cause) {
  if (machine_.empty()) return &registry_;
  rt::Result<std::shared_ptr<platform::Registry>> connected = registry_.Connect(machine_);
  if (!connected || !*connected) {
    cause = connected
                ? rt::MakeError(platform::regerr::kBadNetPath, "No registry on '" + machine_ + "'")
                : connected.error();
    return nullptr;
  }
  remote = *connected;
  return remote.get();
}

rt::Status cRegistry::Raise(int32_t number, const std::string& text, const rt::Status& cause) {
  reason_ = cause.ok() ? std::string() : cause.error().description;
  const std::string source = state_.env().ModuleName() + ".cRegistry";
  state_.err.Raise(number, source, text);
  return rt::MakeError(number, text, source);
}

std::string cRegistry::HiveNumber() const {
  return std::to_string(static_cast<int32_t>(classKey_));
}

std::string cRegistry::SetFailureText(const RegVariant& value) const {
  return "Failed to set registry value Key: '" + HiveNumber() + "',Section: '" + sectionKey_ +
         "',Key: '" + valueKey_ + "' to value: '" + RegVariantText(value) + "'";
}

std::string cRegistry::Expand(const std::string& text) const {
  std::string out;
  size_t pos = 0;
  while (pos < text.size()) {
    const size_t open = text.find('%', pos);
    const size_t close = open == std::string::npos ? open : text.find('%', open + 1);
    if (close == std::string::npos) break;
    out.append(text, pos, open - pos);
    const std::optional<std::string> value =
        Variable(state_.env(), text.substr(open + 1, close - open - 1));
    out += value ? *value : text.substr(open, close - open + 1);
    pos = close + 1;
  }
  out.append(text, std::min(pos, text.size()));
  return out;
}

bool cRegistry::KeyExists() {
  std::shared_ptr<platform::Registry> remote;
  platform::Registry* registry = Target(remote);
  return registry && registry->OpenKey(classKey_, sectionKey_, false).ok();
}

rt::Status cRegistry::DeleteKey() {
  std::shared_ptr<platform::Registry> remote;
  rt::Status status;
  if (platform::Registry* registry = TargetForChange(remote, status)) {
    status = registry->DeleteKey(classKey_, sectionKey_);
  }
  if (!status.ok()) {
    return Raise(
        kRegistryError,
        "Failed to delete registry Key: '" + HiveNumber() + "',Section: '" + sectionKey_ + "'",
        status);
  }
  return {};
}

rt::Status cRegistry::DeleteValue() {
  std::shared_ptr<platform::Registry> remote;
  rt::Status status;
  platform::Registry* registry = TargetForChange(remote, status);
  if (registry) status = registry->OpenKey(classKey_, sectionKey_, true);
  if (!status.ok()) {
    return Raise(kRegistryError,
                 "Failed to open key '" + HiveNumber() + "',Section: '" + sectionKey_ +
                     "' for delete access",
                 status);
  }
  status = registry->DeleteValue(classKey_, sectionKey_, valueKey_);
  if (!status.ok()) {
    return Raise(kRegistryError,
                 "Failed to delete registry Key: '" + HiveNumber() + "',Section: '" + sectionKey_ +
                     "',Key: '" + valueKey_ + "'",
                 status);
  }
  return {};
}

RegVariant cRegistry::Value() {
  std::shared_ptr<platform::Registry> remote;
  platform::Registry* registry = Target(remote);
  if (!registry) return default_;
  const rt::Result<platform::RegValue> value =
      registry->QueryValue(classKey_, sectionKey_, valueKey_);
  if (!value) return default_;
  switch (value->type) {
    case platform::kRegSz:
    case platform::kRegMultiSz:
      return CutAtNul(value->data);
    case platform::kRegExpandSz:
      return Expand(CutAtNul(value->data));
    case platform::kRegDword:
    case platform::kRegDwordBigEndian: {
      const std::optional<uint32_t> number = ReadNumber(value->data);
      if (!number) return default_;
      const uint32_t n = value->type == platform::kRegDword ? *number : SwapBytes(*number);
      return static_cast<int32_t>(n);
    }
    default:
      return std::vector<uint8_t>(value->data.begin(), value->data.end());
  }
}

rt::Status cRegistry::SetValue(const RegVariant& value) {
  std::shared_ptr<platform::Registry> remote;
  rt::Status status;
  platform::Registry* registry = TargetForChange(remote, status);
  if (registry) status = registry->CreateKey(classKey_, sectionKey_);
  if (!status.ok()) return Raise(kRegistryError, SetFailureText(value), status);
  platform::RegValue stored{valueType_, {}};
  switch (valueType_) {
    case platform::kRegSz:
    case platform::kRegExpandSz: {
      const std::string text = RegVariantText(value);
      if (std::count(text.begin(), text.end(), '%') >= 2) stored.type = platform::kRegExpandSz;
      stored.data = text + '\0';
      break;
    }
    case platform::kRegBinary: {
      const auto* bytes = std::get_if<std::vector<uint8_t>>(&value);
      if (!bytes) return Raise(kRegistryError, SetFailureText(value));
      stored.data.assign(bytes->begin(), bytes->end());
      break;
    }
    case platform::kRegDword:
    case platform::kRegDwordBigEndian: {
      const auto* number = std::get_if<int32_t>(&value);
      if (!number) return Raise(kRegistryError, SetFailureText(value));
      stored.data = LittleEndian(static_cast<uint32_t>(*number));
      break;
    }
    default:
      return {};
  }
  status = registry->SetValue(classKey_, sectionKey_, valueKey_, stored);
  if (!status.ok()) return Raise(kSetValueFailed, SetFailureText(value), status);
  return {};
}

bool cRegistry::EnumerateSections(std::vector<std::string>& names, int32_t& count) {
  names.clear();
  count = 0;
  std::shared_ptr<platform::Registry> remote;
  platform::Registry* registry = Target(remote);
  if (!registry) return false;
  rt::Result<std::vector<std::string>> keys = registry->EnumKeys(classKey_, sectionKey_);
  if (!keys) return false;
  names = std::move(*keys);
  count = static_cast<int32_t>(names.size());
  return true;
}

}  // namespace sentrune
