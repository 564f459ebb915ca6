#include "verify/c_verify_installation.h"

#include <algorithm>
#include <cctype>

#include "state/msgbox.h"
#include "runtime/text.h"
#include "runtime/vb_convert.h"
#include "sysutil/version_info.h"

namespace sentrune {
namespace {

constexpr const char* kCrLf = "\r\n";
constexpr const char* kTitle = "Sentrune";

std::optional<std::string> FirstSubKey(platform::Registry& registry, const std::string& path) {
  const rt::Result<std::vector<std::string>> keys = registry.EnumKeys(platform::kHkeyClassesRoot, path);
  if (!keys || keys->empty()) return std::nullopt;
  return keys->front();
}

// A text value read up to its terminator, as the ANSI query hands it out.
std::string ValueText(const platform::RegValue& value) {
  return value.data.substr(0, value.data.find('\0'));
}

// Versions compare as the decimal number their first two fields spell, so
// 1.10 is below 1.2 and the build numbers of a file version never count.
bool IsLower(const std::string& found, const std::string& required) {
  return rt::Val(found) < rt::Val(required);
}

}  // namespace

// The file itself is what gets registered and carries the version resource.
std::string TypeLibFilePath(const std::string& path) {
  const size_t slash = path.rfind('\\');
  if (slash == std::string::npos || slash + 1 == path.size()) return path;
  const bool digits = std::all_of(path.begin() + static_cast<std::ptrdiff_t>(slash) + 1, path.end(),
                                  [](unsigned char c) { return std::isdigit(c) != 0; });
  return digits ? path.substr(0, slash) : path;
}

const std::vector<VerifyItem>& BuiltInVerifyList() {
  static const std::vector<VerifyItem> list = {
      {"OLE Automation", "{00020430-0000-0000-C000-000000000046}", "2.0", "3.50.5014.0",
       "C:\\WINDOWS\\system32\\stdole2.tlb"},
      {"Microsoft DAO 3.51 Object Library", "{00025E01-0000-0000-C000-000000000046}", "4.0", "3.51.1608.0",
       "C:\\Program Files\\Common Files\\Microsoft Shared\\DAO\\DAO350.DLL"},
      {"Microsoft Windows Common Controls 6.0 (SP6)", "{831FDD16-0C5C-11D2-A9FC-0000F8754DA1}", "2.0",
       "6.1.97.82", "C:\\WINDOWS\\system32\\MSCOMCTL.OCX"},
      {"Microsoft Common Dialog Control 6.0 (SP3)", "{F9043C88-F6F2-101A-A3C9-08002B2F49FB}", "1.2",
       "6.0.84.18", "C:\\WINDOWS\\system32\\COMDLG32.OCX"},
      {"ComponentOne VSFlexGrid 8.0 (Light)", "{1C0489F8-9EFD-423D-887A-315387F18C8F}", "1.0", "8.0.20033.190",
       "C:\\WINDOWS\\system32\\vsflex8l.ocx"},
  };
  return list;
}

std::optional<std::string> RegisteredTypeLibFile(platform::Registry* registry, const std::string& guid) {
  if (!registry) return std::nullopt;
  const std::string base = "TypeLib\\" + guid;
  const std::optional<std::string> version = FirstSubKey(*registry, base);
  if (!version) return std::nullopt;
  const std::optional<std::string> locale = FirstSubKey(*registry, base + "\\" + *version);
  if (!locale) return std::nullopt;
  const rt::Result<platform::RegValue> value =
      registry->QueryValue(platform::kHkeyClassesRoot, base + "\\" + *version + "\\" + *locale + "\\win32", "");
  if (!value) return std::nullopt;
  std::string file = ValueText(*value);
  if (file.empty()) return std::nullopt;
  return file;
}

cVerifyInstallation::cVerifyInstallation(AddinState& state, platform::Registry* registry)
    : state_(state), registry_(registry) {}

int32_t cVerifyInstallation::ProcessItem(const std::string& ComponentName, const std::string& GUID,
                                         const std::string& MinTLBVersion, const std::string& MinFileVersion,
                                         const std::string& FullPath) {
  errText_.clear();
  errNumber_ = 0;
  item_ = {ComponentName, GUID, MinTLBVersion, MinFileVersion, FullPath};
  const std::optional<Found> found = Locate();
  if (!found) {
    Fail(kNotFound, "Component '" + ComponentName + "' not found on disk or in registry.");
  } else if (rt::LCase(found->guid) != rt::LCase(GUID)) {
    Fail(kGuidMismatch, std::string("Component GUIDs Don't match.") + kCrLf + kCrLf + "Component " + ComponentName +
                            " should have the following GUID:" + kCrLf + GUID + kCrLf + kCrLf +
                            "The GUID stored in the registry for this component is:" + kCrLf + found->guid);
  } else {
    CheckVersions(*found);
  }
  if (!errText_.empty() && !silent_) lfncMsgBoxEX(state_, errText_, platform::mb::kCritical, kTitle);
  return errNumber_;
}

void cVerifyInstallation::VerifyAll(bool Silent) {
  silent_ = Silent;
  for (const VerifyItem& item : BuiltInVerifyList()) {
    bool aborted = false;
    if (events_) events_->BeforeVerify(item.componentName, aborted);
    if (aborted) return;
    const int32_t result =
        ProcessItem(item.componentName, item.guid, item.minTlbVersion, item.minFileVersion, item.fullPath);
    if (events_) events_->AfterVerify(item.componentName, result, aborted);
    if (aborted) return;
  }
}

std::optional<cVerifyInstallation::Found> cVerifyInstallation::Locate() {
  if (const std::optional<std::string> registered = RegisteredTypeLibFile(registry_, item_.guid))
    return Load(*registered);
  if (!IsExistingFile(TypeLibFilePath(item_.fullPath))) return std::nullopt;
  Register(TypeLibFilePath(item_.fullPath));
  return Load(item_.fullPath);
}

std::optional<cVerifyInstallation::Found> cVerifyInstallation::Load(const std::string& path) {
  const rt::Result<platform::TlbLibrary> library = state_.platform.typelibs.Load(path);
  if (!library) return std::nullopt;
  return Found{TypeLibFilePath(path), library->guid,
               std::to_string(library->majorVersion) + "." + std::to_string(library->minorVersion)};
}

// Registration runs unasked and its outcome is not examined: only whether the
// type library loads afterwards decides.
void cVerifyInstallation::Register(const std::string& path) {
  const bool isExe = path.size() >= 3 && rt::LCase(path.substr(path.size() - 3)) == "exe";
  const std::string command = isExe ? path + " /Regserver" : "Regsvr32 /s \"" + path + "\"";
  (void)state_.env().Programs().Run(command);
}

bool cVerifyInstallation::IsExistingFile(const std::string& path) const {
  const rt::Result<uint32_t> attributes = state_.files().GetAttributes(path);
  return attributes && (*attributes & platform::kAttrDirectory) == 0;
}

void cVerifyInstallation::Fail(int32_t number, std::string text) {
  errNumber_ = number;
  errText_ = std::move(text);
}

void cVerifyInstallation::CheckVersions(const Found& found) {
  if (IsLower(found.version, item_.minTlbVersion)) {
    Fail(kVersionTooLow, std::string("The TypeLib version of the registered component is too low.") + kCrLf + kCrLf +
                             "Component " + item_.componentName + " should have the following TypeLib Version:" +
                             kCrLf + item_.minTlbVersion + kCrLf + kCrLf +
                             "The TypeLib Version stored in the registry for this component is:" + kCrLf +
                             found.version);
    return;
  }
  const std::string fileVersion = FileVersionText(state_.platform.versions, found.file);
  if (IsLower(fileVersion, item_.minFileVersion)) {
    Fail(kVersionTooLow, std::string("The File version of the registered component is too low.") + kCrLf + kCrLf +
                             "Component " + item_.componentName + " should have the following File Version:" +
                             kCrLf + item_.minFileVersion + kCrLf + kCrLf +
                             "The Version information extracted from the file is:" + kCrLf + fileVersion);
  }
}

}  // namespace sentrune
