; The setup for Windows and, inside it, the uninstaller. package.py calls makensis with
;
;   VERSION   of the program, three numbers
;   LISTS     a file with the macros InstallFiles and RemoveFiles
;   LICENCE   the text to show
;   SIDE      the picture beside the first and the last page
;   OUTPUT    the setup to write
;   PATIENCE  how many seconds a silent setup waits for a running program to end (default: 60)
;
; For all users by default; for one user without the rights of an administrator, or with the switch
; /CurrentUser. /S asks nothing, /D=FOLDER (the last switch) names the folder.
; The uninstaller knows /S, which keeps the settings, and /RemoveSettings.

Unicode true
; The 32-bit default does not start on systems that are 64-bit only.
Target amd64-unicode
SetCompressor /SOLID lzma
SetDateSave off

!include MUI2.nsh
!include LogicLib.nsh
!include FileFunc.nsh
!include "${LISTS}"

!ifndef PATIENCE
  !define PATIENCE 60
!endif

!define ALL_UNINSTALL_KEYS "Software\Microsoft\Windows\CurrentVersion\Uninstall"
!define UNINSTALL_KEY "${ALL_UNINSTALL_KEYS}\Hitwick"
!define EVENT_SOURCE "SYSTEM\CurrentControlSet\Services\EventLog\Application\Hitwick"
; Other programs keep their settings below the first of these, too.
!define ALL_SETTINGS "Software\VB and VBA Program Settings"
!define SETTINGS "${ALL_SETTINGS}\Hitwick"
!define LINK "$SMPROGRAMS\Hitwick.lnk"
!define SITE_LINK "$SMPROGRAMS\Hitwick - choose site.lnk"
; The exit code of a setup that could not do its work.
!define FAILED 2

Name "Hitwick"
OutFile "${OUTPUT}"
BrandingText "Hitwick ${VERSION}"
; An administrator is asked for consent; anyone else goes on as they are.
RequestExecutionLevel highest
ManifestDPIAware true
ManifestSupportedOS all
AllowSkipFiles off

VIProductVersion "${VERSION}.0"
VIAddVersionKey ProductName "Hitwick"
VIAddVersionKey ProductVersion "${VERSION}"
VIAddVersionKey CompanyName "The Hitwick developers"
VIAddVersionKey LegalCopyright "MIT licence"
VIAddVersionKey FileDescription "Hitwick setup"
VIAddVersionKey FileVersion "${VERSION}"

Var AllUsers  ; 1: the program is installed for all users
Var Scope     ; whom it is installed for, in words

!define MUI_ICON "${__FILEDIR__}\hitwick.ico"
!define MUI_UNICON "${__FILEDIR__}\hitwick.ico"
!define MUI_WELCOMEFINISHPAGE_BITMAP "${SIDE}"
!define MUI_WELCOMEPAGE_TITLE "Hitwick ${VERSION}"
!define MUI_WELCOMEPAGE_TEXT "Hitwick turns the logs of an IIS web server into pages of usage \
statistics.$\r$\n$\r$\n$Scope"
!define MUI_FINISHPAGE_TITLE "Hitwick is installed"
!define MUI_FINISHPAGE_TEXT "You find it in the Start menu; $\"Hitwick - choose site$\" is for those \
who report more than one site.$\r$\n$\r$\n$Scope"
!define MUI_FINISHPAGE_TEXT_LARGE
!define MUI_FINISHPAGE_SHOWREADME "$INSTDIR\index.htm"
!define MUI_FINISHPAGE_SHOWREADME_TEXT "Show the help page"
!insertmacro MUI_PAGE_WELCOME
!insertmacro MUI_PAGE_LICENSE "${LICENCE}"
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE English

; True when the command line has the switch. Changes $8 and $9.
!macro _HasSwitch unused switch yes no
  ${GetParameters} $9
  ClearErrors
  ${GetOptions} $9 "${switch}" $8
  IfErrors `${no}` `${yes}`
!macroend
!define HasSwitch `"" HasSwitch`

; True for an administrator. Changes $9.
!macro _IsAdministrator unused1 unused2 yes no
  UserInfo::GetAccountType
  Pop $9
  StrCmp $9 "Admin" `${yes}` `${no}`
!macroend
!define IsAdministrator `"" IsAdministrator ""`

!macro ForAllUsers
  StrCpy $AllUsers 1
  SetShellVarContext all
!macroend

!macro ForOneUser
  StrCpy $AllUsers 0
  SetShellVarContext current
!macroend

; Returns when the program's file can be replaced. It cannot while the program runs, nor while Event
; Viewer has the texts of its messages: the user is asked to end that, a silent setup waits.
!macro WaitForProgram prefix
Function ${prefix}WaitForProgram
  StrCpy $0 0
  ${DoWhile} ${FileExists} "$INSTDIR\hitwick.exe"
    ClearErrors
    FileOpen $1 "$INSTDIR\hitwick.exe" a
    ${IfNot} ${Errors}
      FileClose $1
      ${Break}
    ${EndIf}
    ${If} ${Silent}
    ${AndIf} $0 < ${PATIENCE}
      IntOp $0 $0 + 1
      Sleep 1000
    ${ElseIf} ${Cmd} `MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION "Hitwick is in use. Close its \
windows and Event Viewer, or wait until its run has ended." /SD IDCANCEL IDCANCEL`
      SetErrorLevel ${FAILED}
      Quit
    ${EndIf}
  ${Loop}
FunctionEnd
!macroend
!insertmacro WaitForProgram ""
!insertmacro WaitForProgram "un."

Function ChooseScope
  ${If} ${HasSwitch} "/CurrentUser"
    !insertmacro ForOneUser
    StrCpy $Scope "It is for you alone, as you have asked."
  ${ElseIf} ${IsAdministrator}
    !insertmacro ForAllUsers
    StrCpy $Scope "It is for all users of this computer."
  ${Else}
    !insertmacro ForOneUser
    StrCpy $Scope "It is for you alone, because you are no administrator."
  ${EndIf}
  ${If} $AllUsers = 0
    StrCpy $Scope "$Scope So its event source is not registered: Event Viewer shows what its runs \
did with a complaint about a missing description."
  ${EndIf}
FunctionEnd

; Where it is installed already, unless the command line names a folder.
Function ChooseFolder
  ${IfThen} $INSTDIR != "" ${|} Return ${|}
  ReadRegStr $INSTDIR SHCTX "${UNINSTALL_KEY}" InstallLocation
  ${IfThen} $INSTDIR != "" ${|} Return ${|}
  ${If} $AllUsers = 1
    StrCpy $INSTDIR "$PROGRAMFILES64\Hitwick"
  ${Else}
    StrCpy $INSTDIR "$LOCALAPPDATA\Programs\Hitwick"
  ${EndIf}
FunctionEnd

Function .onInit
  Call ChooseScope
  Call ChooseFolder
FunctionEnd

Section
  Call WaitForProgram
  !insertmacro InstallFiles
  WriteUninstaller "$INSTDIR\uninstall.exe"

  SetOutPath "$INSTDIR"
  CreateShortCut "${LINK}" "$INSTDIR\hitwick.exe"
  CreateShortCut "${SITE_LINK}" "$INSTDIR\hitwick.exe" "/L"

  ${If} $AllUsers = 1
    WriteRegExpandStr HKLM "${EVENT_SOURCE}" EventMessageFile "$INSTDIR\hitwick.exe"
    WriteRegDWORD HKLM "${EVENT_SOURCE}" TypesSupported 7
  ${EndIf}

  WriteRegStr SHCTX "${UNINSTALL_KEY}" DisplayName "Hitwick"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" DisplayVersion "${VERSION}"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" DisplayIcon "$INSTDIR\hitwick.exe"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" Publisher "The Hitwick developers"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" InstallLocation "$INSTDIR"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" UninstallString '"$INSTDIR\uninstall.exe"'
  WriteRegStr SHCTX "${UNINSTALL_KEY}" QuietUninstallString '"$INSTDIR\uninstall.exe" /S'
  WriteRegDWORD SHCTX "${UNINSTALL_KEY}" NoModify 1
  WriteRegDWORD SHCTX "${UNINSTALL_KEY}" NoRepair 1
  ${GetSize} "$INSTDIR" "/S=0K" $0 $1 $2
  WriteRegDWORD SHCTX "${UNINSTALL_KEY}" EstimatedSize $0
SectionEnd

Function un.onInit
  !insertmacro ForOneUser
  ReadRegStr $0 HKLM "${UNINSTALL_KEY}" InstallLocation
  ${If} $0 == $INSTDIR
    !insertmacro ForAllUsers
    ${IfNot} ${IsAdministrator}
      MessageBox MB_OK|MB_ICONSTOP "Hitwick is installed for all users. Only an administrator can \
remove it." /SD IDOK
      SetErrorLevel ${FAILED}
      Quit
    ${EndIf}
  ${EndIf}
FunctionEnd

; The sites of the user who removes the program, unless they want to keep them.
Function un.RemoveSettings
  EnumRegKey $0 HKCU "${SETTINGS}" 0
  ${IfThen} $0 == "" ${|} Return ${|}
  ${IfNot} ${HasSwitch} "/RemoveSettings"
  ${AndIf} ${Cmd} `MessageBox MB_YESNO|MB_ICONQUESTION|MB_DEFBUTTON2 "Remove the settings of your \
sites, too?$\r$\n$\r$\nPages and daily tasks stay in any case; you remove tasks in Task Scheduler." \
/SD IDNO IDNO`
    Return
  ${EndIf}
  DeleteRegKey HKCU "${SETTINGS}"
  DeleteRegKey /ifempty HKCU "${ALL_SETTINGS}"
FunctionEnd

; Another copy of the program may have registered itself by hand since.
Function un.RemoveEventSource
  ReadRegStr $0 HKLM "${EVENT_SOURCE}" EventMessageFile
  ${If} $0 == "$INSTDIR\hitwick.exe"
    DeleteRegKey HKLM "${EVENT_SOURCE}"
  ${EndIf}
FunctionEnd

; Sizes and places of the windows, which the program remembers by itself.
Function un.ForgetWindows
  SetShellVarContext current
  Delete "$APPDATA\hitwick\windows.ini"
  RMDir "$APPDATA\hitwick"
FunctionEnd

Section un.Hitwick
  Call un.WaitForProgram
  Delete "${LINK}"
  Delete "${SITE_LINK}"
  ${IfThen} $AllUsers = 1 ${|} Call un.RemoveEventSource ${|}
  DeleteRegKey SHCTX "${UNINSTALL_KEY}"
  ${IfThen} $AllUsers = 0 ${|} DeleteRegKey /ifempty HKCU "${ALL_UNINSTALL_KEYS}" ${|}
  !insertmacro RemoveFiles
  Delete "$INSTDIR\uninstall.exe"
  ; Files that the user has put there stay, and so does the folder then.
  SetOutPath "$TEMP"
  RMDir "$INSTDIR"
  ${IfThen} $AllUsers = 0 ${|} RMDir "$LOCALAPPDATA\Programs" ${|}
  Call un.ForgetWindows
  Call un.RemoveSettings
SectionEnd
