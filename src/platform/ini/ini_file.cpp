#include "platform/ini/ini_file.h"

#include "platform/ini/ini_text.h"
#include "runtime/text.h"

namespace sentrune::portable {

std::string PortableProfileFiles::GetString(const std::string& section, const std::string& key,
                                            const std::string& defaultValue, uint32_t size,
                                            const std::string& path) {
  const rt::Result<std::string> bytes = files_.ReadFile(path);
  if (bytes.ok()) {
    const auto value = ini::FindValue(*bytes, rt::Utf8ToCp1252(section), rt::Utf8ToCp1252(key));
    if (value) return rt::Cp1252ToUtf8(ini::CopyToBuffer(*value, size));
  }
  return rt::Cp1252ToUtf8(ini::CopyDefaultToBuffer(rt::Utf8ToCp1252(defaultValue), size));
}

bool PortableProfileFiles::WriteString(const std::string& section, const std::string& key,
                                       const std::string& value, const std::string& path) {
  std::string current;
  if (rt::Result<std::string> bytes = files_.ReadFile(path); bytes.ok()) {
    const rt::Result<uint32_t> attributes = files_.GetAttributes(path);
    if (!attributes.ok() || (*attributes & platform::kAttrReadOnly)) return false;
    current = std::move(bytes).value();
  } else if (bytes.error().number != rt::errnum::kFileNotFound) {
    return false;  // an unreadable file must not be replaced by a new one
  }
  const std::string updated = ini::SetValue(current, rt::Utf8ToCp1252(section),
                                            rt::Utf8ToCp1252(key), rt::Utf8ToCp1252(value));
  const std::string temporary = path + ".tmp";
  if (!files_.WriteFile(temporary, updated).ok()) {
    (void)files_.DeleteFile(temporary);
    return false;
  }
  if (!files_.RenameReplace(temporary, path).ok()) {
    (void)files_.DeleteFile(temporary);
    return false;
  }
  return true;
}

}  // namespace sentrune::portable
