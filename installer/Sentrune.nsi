; SentruneSetup.exe: puts the add-in where the user can write without
; administrator rights, lists it for the VB6 IDE, and leaves an uninstaller in
; the system's list of programs. /S installs and uninstalls silently.
;
; makensis -DVERSION=x.y.z -DBIN=<folder with Sentrune.dll and its templates>
;          -DHELP=<Sentrune.chm> -DOUTFILE=<SentruneSetup.exe> [-DAMD64] Sentrune.nsi
; The 32-bit build is the release (the IDE is 32-bit); the 64-bit twin
; exists so that a 64-bit Wine can run the same installer in the tests.

Unicode true
!ifdef AMD64
  Target amd64-unicode
!endif
SetCompressor /SOLID lzma
RequestExecutionLevel user
ManifestDPIAware true

!include "FileFunc.nsh"
!include "LogicLib.nsh"

!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\Sentrune"

Name "Sentrune - Bindkeeper"
Caption "Sentrune - Bindkeeper ${VERSION} Setup"
OutFile "${OUTFILE}"
InstallDir "$LOCALAPPDATA\Programs\Sentrune"
InstallDirRegKey HKCU "${UNINSTALL_KEY}" "InstallLocation"
ShowInstDetails show
ShowUninstDetails show
BrandingText "Sentrune ${VERSION}"
VIProductVersion "${VERSION}.0"
VIAddVersionKey "ProductName" "Sentrune - Bindkeeper"
VIAddVersionKey "FileDescription" "Sentrune - Bindkeeper Setup"
VIAddVersionKey "FileVersion" "${VERSION}"
VIAddVersionKey "LegalCopyright" "Sentrune"

Page directory
Page instfiles
UninstPage uninstConfirm
UninstPage instfiles

Section "Sentrune"
  SetShellVarContext current
  SetOutPath "$INSTDIR"
  File "${BIN}\Sentrune.dll"
  File "${BIN}\VerifyClassTemplate.txt"
  File "${BIN}\AlignmentHelper.ctl"
  SetOutPath "$INSTDIR\Help"
  File "${HELP}"
  SetOutPath "$INSTDIR"
  ClearErrors
  ; The DLL's own registration: the class for COM (per user without
  ; administrator rights) and the entry in the IDE's add-in list.
  RegDLL "$INSTDIR\Sentrune.dll"
  ${If} ${Errors}
    DetailPrint "Sentrune.dll could not be registered."
    SetErrorLevel 2
    Abort "Sentrune.dll could not be registered: the IDE will not list the add-in."
  ${EndIf}
  WriteUninstaller "$INSTDIR\Uninstall.exe"
  WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayName" "Sentrune - Bindkeeper"
  WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayVersion" "${VERSION}"
  WriteRegStr HKCU "${UNINSTALL_KEY}" "Publisher" "Sentrune"
  WriteRegStr HKCU "${UNINSTALL_KEY}" "InstallLocation" "$INSTDIR"
  WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayIcon" "$INSTDIR\Uninstall.exe"
  WriteRegStr HKCU "${UNINSTALL_KEY}" "UninstallString" '"$INSTDIR\Uninstall.exe"'
  WriteRegStr HKCU "${UNINSTALL_KEY}" "QuietUninstallString" '"$INSTDIR\Uninstall.exe" /S'
  WriteRegDWORD HKCU "${UNINSTALL_KEY}" "NoModify" 1
  WriteRegDWORD HKCU "${UNINSTALL_KEY}" "NoRepair" 1
  ${GetSize} "$INSTDIR" "/S=0K" $0 $1 $2
  WriteRegDWORD HKCU "${UNINSTALL_KEY}" "EstimatedSize" $0
SectionEnd

; The options, the trace and the logs are the user's: kept unless the user
; says otherwise (a question, or /PURGE when silent).
Function un.RemoveUserFiles
  ${GetParameters} $0
  ClearErrors
  ${GetOptions} $0 "/PURGE" $1
  ${IfNot} ${Errors}
    StrCpy $1 "yes"
  ${ElseIfNot} ${Silent}
    MessageBox MB_YESNO|MB_DEFBUTTON2|MB_ICONQUESTION \
      "Also remove your Sentrune options (Sentrune.ini), its trace file and the logs in$\r$\n$INSTDIR?" \
      /SD IDNO IDYES remove
    Return
    remove:
    StrCpy $1 "yes"
  ${Else}
    Return
  ${EndIf}
  Delete "$INSTDIR\Sentrune.ini"
  Delete "$INSTDIR\Sentrune_Log.txt"
  RMDir /r "$INSTDIR\Logs"
FunctionEnd

Section "Uninstall"
  SetShellVarContext current
  UnRegDLL "$INSTDIR\Sentrune.dll"
  Delete /REBOOTOK "$INSTDIR\Sentrune.dll"
  Delete "$INSTDIR\VerifyClassTemplate.txt"
  Delete "$INSTDIR\AlignmentHelper.ctl"
  Delete "$INSTDIR\Help\Sentrune.chm"
  RMDir "$INSTDIR\Help"
  Call un.RemoveUserFiles
  Delete "$INSTDIR\Uninstall.exe"
  ; Only when empty: what the user keeps stays where it was.
  RMDir "$INSTDIR"
  RMDir "$LOCALAPPDATA\Programs"
  DeleteRegKey HKCU "${UNINSTALL_KEY}"
  DeleteRegKey /ifempty HKCU "Software\Microsoft\Windows\CurrentVersion\Uninstall"
SectionEnd
