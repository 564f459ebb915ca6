#include "platform/tlb/typelib_stdole.h"

#include <array>

namespace sentrune::portable {
namespace {

// In the order in which Wine's stdole2.tlb, the one widl imports from, stores
// them: imports without a GUID name their type by this position.
constexpr std::array kTypes = {
    StdoleType{0, TypeKind::kRecord, "GUID", "", 0, ""},
    StdoleType{1, TypeKind::kRecord, "DISPPARAMS", "", 0, ""},
    StdoleType{2, TypeKind::kRecord, "EXCEPINFO", "", 0, ""},
    StdoleType{3, TypeKind::kInterface, "IUnknown", "{00000000-0000-0000-C000-000000000046}", 0, ""},
    StdoleType{4, TypeKind::kInterface, "IDispatch", "{00020400-0000-0000-C000-000000000046}", 0, ""},
    StdoleType{5, TypeKind::kInterface, "IEnumVARIANT", "{00020404-0000-0000-C000-000000000046}", 0, ""},
    StdoleType{6, TypeKind::kAlias, "OLE_COLOR", "{66504301-BE0F-101A-8BBB-00AA00300CAB}", 19, ""},
    StdoleType{7, TypeKind::kAlias, "OLE_XPOS_PIXELS", "{66504302-BE0F-101A-8BBB-00AA00300CAB}", 3, ""},
    StdoleType{8, TypeKind::kAlias, "OLE_YPOS_PIXELS", "{66504303-BE0F-101A-8BBB-00AA00300CAB}", 3, ""},
    StdoleType{9, TypeKind::kAlias, "OLE_XSIZE_PIXELS", "{66504304-BE0F-101A-8BBB-00AA00300CAB}", 3, ""},
    StdoleType{10, TypeKind::kAlias, "OLE_YSIZE_PIXELS", "{66504305-BE0F-101A-8BBB-00AA00300CAB}", 3, ""},
    StdoleType{11, TypeKind::kAlias, "OLE_XPOS_HIMETRIC", "{66504306-BE0F-101A-8BBB-00AA00300CAB}", 3, ""},
    StdoleType{12, TypeKind::kAlias, "OLE_YPOS_HIMETRIC", "{66504307-BE0F-101A-8BBB-00AA00300CAB}", 3, ""},
    StdoleType{13, TypeKind::kAlias, "OLE_XSIZE_HIMETRIC", "{66504308-BE0F-101A-8BBB-00AA00300CAB}", 3, ""},
    StdoleType{14, TypeKind::kAlias, "OLE_YSIZE_HIMETRIC", "{66504309-BE0F-101A-8BBB-00AA00300CAB}", 3, ""},
    StdoleType{15, TypeKind::kAlias, "OLE_XPOS_CONTAINER", "{BF030640-9069-101B-AE2D-08002B2EC713}", 4, ""},
    StdoleType{16, TypeKind::kAlias, "OLE_YPOS_CONTAINER", "{BF030641-9069-101B-AE2D-08002B2EC713}", 4, ""},
    StdoleType{17, TypeKind::kAlias, "OLE_XSIZE_CONTAINER", "{BF030642-9069-101B-AE2D-08002B2EC713}", 4, ""},
    StdoleType{18, TypeKind::kAlias, "OLE_YSIZE_CONTAINER", "{BF030643-9069-101B-AE2D-08002B2EC713}", 4, ""},
    StdoleType{19, TypeKind::kAlias, "OLE_HANDLE", "{66504313-BE0F-101A-8BBB-00AA00300CAB}", 22, ""},
    StdoleType{20, TypeKind::kAlias, "OLE_OPTEXCLUSIVE", "{6650430B-BE0F-101A-8BBB-00AA00300CAB}", 11, ""},
    StdoleType{21, TypeKind::kAlias, "OLE_CANCELBOOL", "{BF030644-9069-101B-AE2D-08002B2EC713}", 11, ""},
    StdoleType{22, TypeKind::kAlias, "OLE_ENABLEDEFAULTBOOL", "{BF030645-9069-101B-AE2D-08002B2EC713}", 11, ""},
    StdoleType{23, TypeKind::kEnum, "OLE_TRISTATE", "{6650430A-BE0F-101A-8BBB-00AA00300CAB}", 0, ""},
    StdoleType{24, TypeKind::kAlias, "FONTNAME", "{6650430D-BE0F-101A-8BBB-00AA00300CAB}", 8, ""},
    StdoleType{25, TypeKind::kAlias, "FONTSIZE", "{6650430E-BE0F-101A-8BBB-00AA00300CAB}", 6, ""},
    StdoleType{26, TypeKind::kAlias, "FONTBOLD", "{6650430F-BE0F-101A-8BBB-00AA00300CAB}", 11, ""},
    StdoleType{27, TypeKind::kAlias, "FONTITALIC", "{66504310-BE0F-101A-8BBB-00AA00300CAB}", 11, ""},
    StdoleType{28, TypeKind::kAlias, "FONTUNDERSCORE", "{66504311-BE0F-101A-8BBB-00AA00300CAB}", 11, ""},
    StdoleType{29, TypeKind::kAlias, "FONTSTRIKETHROUGH", "{66504312-BE0F-101A-8BBB-00AA00300CAB}", 11, ""},
    StdoleType{30, TypeKind::kInterface, "IFont", "{BEF6E002-A874-101A-8BBA-00AA00300CAB}", 0, ""},
    StdoleType{31, TypeKind::kDispatch, "Font", "{BEF6E003-A874-101A-8BBA-00AA00300CAB}", 0, ""},
    StdoleType{32, TypeKind::kAlias, "IFontDisp", "", 29, "Font"},
    StdoleType{33, TypeKind::kCoclass, "StdFont", "{0BE35203-8F91-11CE-9DE3-00AA004BB851}", 0, ""},
    StdoleType{34, TypeKind::kInterface, "IPicture", "{7BF80980-BF32-101A-8BBB-00AA00300CAB}", 0, ""},
    StdoleType{35, TypeKind::kDispatch, "Picture", "{7BF80981-BF32-101A-8BBB-00AA00300CAB}", 0, ""},
    StdoleType{36, TypeKind::kAlias, "IPictureDisp", "", 29, "Picture"},
    StdoleType{37, TypeKind::kCoclass, "StdPicture", "{0BE35204-8F91-11CE-9DE3-00AA004BB851}", 0, ""},
    StdoleType{38, TypeKind::kEnum, "LoadPictureConstants", "{E6C8FA08-BD9F-11D0-985E-00C04FC29993}", 0, ""},
    StdoleType{39, TypeKind::kModule, "StdFunctions", "{91209AC0-60F6-11CF-9C5D-00AA00C1489E}", 0, ""},
    StdoleType{40, TypeKind::kDispatch, "FontEvents", "{4EF6100A-AF88-11D0-9846-00C04FC29993}", 0, ""},
    StdoleType{41, TypeKind::kAlias, "IFontEventsDisp", "", 29, "FontEvents"},
};

}  // namespace

const StdoleType* FindStdoleType(std::string_view libraryGuid, std::string_view typeGuid,
                                 int32_t index) {
  for (const StdoleType& type : kTypes) {
    if (typeGuid.empty() ? (libraryGuid == kStdoleLibraryGuid && type.index == index)
                         : type.guid == typeGuid) {
      return &type;
    }
  }
  return nullptr;
}

const StdoleType* FindStdoleAlias(std::string_view name) {
  for (const StdoleType& type : kTypes) {
    if (type.kind == TypeKind::kAlias && type.name == name) return &type;
  }
  return nullptr;
}

const StdoleType* FindStdoleNamed(std::string_view name) {
  for (const StdoleType& type : kTypes) {
    if (type.name == name) return &type;
  }
  return nullptr;
}

}  // namespace sentrune::portable
