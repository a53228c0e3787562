; The Windows installer of Quorvex, built on Linux with NSIS (makensis):
;   makensis -DVERSION=0.1.0 -DEXE64=x64/quorvex.exe -DEXE32=x86/quorvex.exe
;            -DREADME=README.txt -DOUTFILE=setup.exe packaging/quorvex.nsi
; EXE64 or EXE32 may be left out (the tests build an installer of one build).
;
; It installs for the user who runs it, without administrator rights, into
; a folder that user can write (%LOCALAPPDATA%\Programs\Quorvex): the
; program keeps its pending queue, Quorvex.INI, beside itself. On 64-bit
; Windows it installs the 64-bit build, elsewhere the 32-bit one. The
; uninstaller asks whether the settings and the queue go too; silently
; (/S) it keeps them unless /REMOVESETTINGS is given.

Unicode true
ManifestSupportedOS all
ManifestDPIAware true
RequestExecutionLevel user
SetCompressor /SOLID lzma

!include "MUI2.nsh"
!include "LogicLib.nsh"
!include "FileFunc.nsh"
!include "x64.nsh"
!include "Sections.nsh"

!ifndef VERSION
  !error "VERSION is not set (-DVERSION=...)"
!endif
!ifndef OUTFILE
  !error "OUTFILE is not set (-DOUTFILE=...)"
!endif
!ifndef README
  !error "README is not set (-DREADME=...)"
!endif
!if ! /FileExists "${README}"
  !error "README ${README} does not exist"
!endif
!ifndef EXE64
  !ifndef EXE32
    !error "neither EXE64 nor EXE32 is set"
  !endif
!endif

!define PRODUCT "Quorvex mail server"
!define PUBLISHER "kestrin"
!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\Quorvex"
; Where the program keeps its settings and message texts (the classic
; runtime's place for them).
!define SETTINGS_KEY "Software\VB and VBA Program Settings\Quorvex"
!define MENU_FOLDER "$SMPROGRAMS\Quorvex"

Name "${PRODUCT}"
OutFile "${OUTFILE}"
InstallDir "$LOCALAPPDATA\Programs\Quorvex"
InstallDirRegKey HKCU "${UNINSTALL_KEY}" "InstallLocation"
BrandingText "${PRODUCT} ${VERSION}"

VIProductVersion "${VERSION}.0"
VIAddVersionKey "ProductName" "${PRODUCT}"
VIAddVersionKey "ProductVersion" "${VERSION}"
VIAddVersionKey "FileDescription" "${PRODUCT} setup"
VIAddVersionKey "FileVersion" "${VERSION}"
VIAddVersionKey "CompanyName" "${PUBLISHER}"
VIAddVersionKey "LegalCopyright" "${PUBLISHER}"

; makensis works in this script's folder: paths given on its command line
; must be absolute, those written here are relative to it.
!define MUI_ICON "../src/desktop/resources/quorvex.ico"
!define MUI_UNICON "../src/desktop/resources/quorvex.ico"
!define MUI_ABORTWARNING
!define MUI_WELCOMEPAGE_TEXT "This installs ${PRODUCT} ${VERSION} for you alone: no administrator rights are needed, and nothing outside your own folders changes.$\r$\n$\r$\nIt needs Windows XP SP3 or later, and America Online 5.0 to serve a chat room; without it you can watch it serve a simulated room."
!define MUI_FINISHPAGE_RUN "$INSTDIR\quorvex.exe"
!define MUI_FINISHPAGE_RUN_PARAMETERS "--simulate"
!define MUI_FINISHPAGE_RUN_TEXT "Watch it serve a simulated room now"
!define MUI_FINISHPAGE_RUN_NOTCHECKED
!define MUI_FINISHPAGE_SHOWREADME "$INSTDIR\README.txt"
!define MUI_FINISHPAGE_SHOWREADME_TEXT "Show the read-me (what to set first)"

!insertmacro MUI_PAGE_WELCOME
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "English"

; The build for this Windows, each in a section of its own: the one not
; installed is unselected, and the space asked for is the other's.
!ifdef EXE64
  Section "-64-bit program" program64
    SetOutPath "$INSTDIR"
    File "/oname=quorvex.exe" "${EXE64}"
  SectionEnd
!endif
!ifdef EXE32
  Section "-32-bit program" program32
    SetOutPath "$INSTDIR"
    File "/oname=quorvex.exe" "${EXE32}"
  SectionEnd
!endif

Function .onInit
  SetShellVarContext current
  ${If} ${RunningX64}
    !ifdef EXE64 & EXE32
      !insertmacro UnselectSection ${program32}
    !endif
  ${Else}
    !ifdef EXE64
      !ifdef EXE32
        !insertmacro UnselectSection ${program64}
      !else
        MessageBox MB_OK|MB_ICONSTOP "This installer holds the 64-bit program only; this Windows is 32-bit." /SD IDOK
        Abort
      !endif
    !endif
  ${EndIf}
FunctionEnd

Section "-Quorvex"
  SetOutPath "$INSTDIR"
  File "/oname=README.txt" "${README}"
  WriteUninstaller "$INSTDIR\Uninstall.exe"

  CreateDirectory "${MENU_FOLDER}"
  CreateShortcut "${MENU_FOLDER}\Quorvex mail server.lnk" "$INSTDIR\quorvex.exe"
  CreateShortcut "${MENU_FOLDER}\Quorvex simulated room.lnk" "$INSTDIR\quorvex.exe" "--simulate"
  CreateShortcut "${MENU_FOLDER}\Read me.lnk" "$INSTDIR\README.txt"
  CreateShortcut "${MENU_FOLDER}\Uninstall Quorvex.lnk" "$INSTDIR\Uninstall.exe"

  ; Add or Remove Programs (Apps & features), for this user.
  WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayName" "${PRODUCT}"
  WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayVersion" "${VERSION}"
  WriteRegStr HKCU "${UNINSTALL_KEY}" "Publisher" "${PUBLISHER}"
  WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayIcon" "$INSTDIR\quorvex.exe"
  WriteRegStr HKCU "${UNINSTALL_KEY}" "InstallLocation" "$INSTDIR"
  WriteRegStr HKCU "${UNINSTALL_KEY}" "UninstallString" '"$INSTDIR\Uninstall.exe"'
  WriteRegStr HKCU "${UNINSTALL_KEY}" "QuietUninstallString" '"$INSTDIR\Uninstall.exe" /S'
  WriteRegDWORD HKCU "${UNINSTALL_KEY}" "NoModify" 1
  WriteRegDWORD HKCU "${UNINSTALL_KEY}" "NoRepair" 1
  ${GetSize} "$INSTDIR" "/S=0K" $0 $1 $2
  WriteRegDWORD HKCU "${UNINSTALL_KEY}" "EstimatedSize" $0
SectionEnd

Var RemoveSettings

Function un.onInit
  SetShellVarContext current
  StrCpy $RemoveSettings 0
  ${GetParameters} $0
  ClearErrors
  ${GetOptions} $0 "/REMOVESETTINGS" $1
  ${IfNot} ${Errors}
    StrCpy $RemoveSettings 1
  ${EndIf}
FunctionEnd

Section "Uninstall"
  ${If} $RemoveSettings == 0
    MessageBox MB_YESNO|MB_ICONQUESTION|MB_DEFBUTTON2 \
      "Remove your settings and message texts (in the registry) and the pending queue (Quorvex.INI) and the log (Quorvex.log) as well?$\r$\n$\r$\nChoose No to keep them for a later install." \
      /SD IDNO IDNO keep
    StrCpy $RemoveSettings 1
    keep:
  ${EndIf}

  Delete "${MENU_FOLDER}\Quorvex mail server.lnk"
  Delete "${MENU_FOLDER}\Quorvex simulated room.lnk"
  Delete "${MENU_FOLDER}\Read me.lnk"
  Delete "${MENU_FOLDER}\Uninstall Quorvex.lnk"
  RMDir "${MENU_FOLDER}"
  Delete "$INSTDIR\quorvex.exe"
  Delete "$INSTDIR\README.txt"
  Delete "$INSTDIR\Uninstall.exe"
  DeleteRegKey HKCU "${UNINSTALL_KEY}"

  ${If} $RemoveSettings == 1
    DeleteRegKey HKCU "${SETTINGS_KEY}"
    Delete "$INSTDIR\Quorvex.INI"
    Delete "$INSTDIR\Quorvex.log"
    Delete "$INSTDIR\Quorvex.log.1"
    ; The simulated room's drive C:, registry and room.txt.
    RMDir /r "$TEMP\quorvex-simulate"
  ${EndIf}
  ; Only when empty: a kept Quorvex.INI (or log) keeps its folder.
  RMDir "$INSTDIR"
SectionEnd
