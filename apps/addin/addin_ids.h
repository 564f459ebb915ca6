#pragma once
// Every identifier the add-in DLL shows the system and the IDE: our class,
// its registration, and the IDE's connection interfaces with their
// dispatch IDs. Nothing else in the DLL spells a GUID or a DISPID.
#include "platform/win32/windows_api.h"

namespace sentrune::addin {

// Our one creatable class. Generated once for this add-in; changing it
// orphans every registration already made.
inline constexpr CLSID kClsidConnect = {
    0xE5C3286C, 0xC6E0, 0x4EAD, {0xA2, 0x4B, 0x21, 0x56, 0xEC, 0xB4, 0xEE, 0x02}};
inline constexpr const char* kClsidText = "{E5C3286C-C6E0-4EAD-A24B-2156ECB4EE02}";
inline constexpr const char* kProgId = "Sentrune.Connect";

// What the IDE's Add-In Manager lists.
inline constexpr const char* kFriendlyName = "Sentrune - Bindkeeper";
inline constexpr const char* kDescription =
    "Sentrune - Bindkeeper. Stop compatibility problems before they start.";

// The Add-In Designer's IDTExtensibility2 and the older VBIDE
// IDTExtensibility: the IDE may ask for either.
inline constexpr IID kIidDTExtensibility2 = {
    0xB65AD801, 0xABAF, 0x11D0, {0xBB, 0x8B, 0x00, 0xA0, 0xC9, 0x0F, 0x27, 0x44}};
inline constexpr IID kIidDTExtensibility = {
    0x0002E151, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};

// The methods' dispatch IDs, the same in both interfaces (the older one
// stops before OnBeginShutdown).
enum ExtensibilityDispId : DISPID {
  kDispOnConnection = 1,
  kDispOnDisconnection = 2,
  kDispOnAddInsUpdate = 3,
  kDispOnStartupComplete = 4,
  kDispOnBeginShutdown = 5,
};

// The IDE's event interfaces (VBIDE), found on the connection points of the
// objects VBE.Events hands out, and the DISPIDs of their events.
inline constexpr IID kIidVBProjectsEvents = {
    0x0002E190, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
inline constexpr IID kIidVBComponentsEvents = {
    0x0002E193, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
inline constexpr IID kIidFileControlEvents = {
    0x0002E141, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
inline constexpr IID kIidCommandBarControlEvents = {
    0x0002E198, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};

enum ProjectsEventDispId : DISPID {
  kDispProjectAdded = 1,
  kDispProjectRemoved = 2,
  kDispProjectRenamed = 3,
  kDispProjectActivated = 4,
};

enum ComponentsEventDispId : DISPID {
  kDispComponentAdded = 1,
  kDispComponentRemoved = 2,
  kDispComponentRenamed = 3,
  kDispComponentSelected = 4,
  kDispComponentActivated = 5,
  kDispComponentReloaded = 6,
};

enum FileControlEventDispId : DISPID {
  kDispAfterAddFile = 1,
  kDispAfterChangeFileName = 2,
  kDispAfterCloseFile = 3,
  kDispAfterWriteFile = 4,
  kDispAfterRemoveFile = 5,
  kDispBeforeLoadFile = 6,
  kDispDoGetNewFileName = 8,
  kDispRequestChangeFileName = 0xA,
  kDispRequestWriteFile = 0xB,
};

enum CommandBarEventDispId : DISPID {
  kDispClick = 1,
};

}  // namespace sentrune::addin
