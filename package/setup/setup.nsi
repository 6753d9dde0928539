; RotacastsSetup: puts the plugin into an administration host, or the stand-alone host and its service
; into a folder, upgrades and repairs them there, and takes them out again so that every file and registry
; key is as before.
; Given by scripts/package: VERSION, VENDOR, COPYRIGHT, ICON, FILES (the folder of what is installed),
; OUTPUT, and the plugin's identifiers CLSID, IID and LIBID.
Unicode true
SetCompressor /SOLID lzma
RequestExecutionLevel admin
ManifestSupportedOS all
ManifestDPIAware true
Name "Rotacasts"
Caption "Rotacasts ${VERSION}"
BrandingText "Rotacasts ${VERSION}"
OutFile "${OUTPUT}"
VIProductVersion "${VERSION}.0"
VIAddVersionKey ProductName "Rotacasts"
VIAddVersionKey ProductVersion "${VERSION}"
VIAddVersionKey FileDescription "Rotacasts Setup"
VIAddVersionKey FileVersion "${VERSION}"
VIAddVersionKey CompanyName "${VENDOR}"
VIAddVersionKey LegalCopyright "${COPYRIGHT}"

!include MUI2.nsh
!include LogicLib.nsh
!include FileFunc.nsh

; The exit status of a run without questions.
!define NO_HOST 3
!define IN_USE 4
!define NOT_REGISTERED 5
!define NO_RIGHTS 6

; One key is the entry in the list of programs and Setup's memory of what it did: PluginFolder, and a
; value "Made NAME" for each thing that was not there before.
!define ENTRY "Software\Microsoft\Windows\CurrentVersion\Uninstall\Rotacasts"
!define KEPT "$INSTDIR\RotacastsSetup\before"
; The stand-alone host lies beside it and goes with it.
!define HOST_FOLDER "$INSTDIR\RotacastsSetup\host"
!define SHORTCUT "$SMPROGRAMS\Rotacasts host.lnk"

Var PluginFolder  ; where tvxRT.dll lies
Var OtherFolder   ; another host that Rotacasts is installed in
Var FolderHint

!define MUI_ICON "${ICON}"
!define MUI_UNICON "${ICON}"
!define MUI_WELCOMEPAGE_TEXT "$(WelcomeText)"
!insertmacro MUI_PAGE_WELCOME
!insertmacro MUI_PAGE_COMPONENTS
!define MUI_PAGE_HEADER_TEXT "$(FolderTitle)"
!define MUI_PAGE_HEADER_SUBTEXT "$(FolderSubtitle)"
!define MUI_DIRECTORYPAGE_TEXT_TOP "$FolderHint"
!define MUI_DIRECTORYPAGE_TEXT_DESTINATION "$(FolderLabel)"
!define MUI_PAGE_CUSTOMFUNCTION_LEAVE RequireHost
SpaceTexts none
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!define MUI_FINISHPAGE_TEXT "$(FinishText)"
!define MUI_FINISHPAGE_SHOWREADME "$PluginFolder\tvxRT_help.chm"
!define MUI_FINISHPAGE_SHOWREADME_TEXT "$(ShowHelp)"
!define MUI_FINISHPAGE_SHOWREADME_NOTCHECKED
!insertmacro MUI_PAGE_FINISH
!define MUI_UNCONFIRMPAGE_TEXT_TOP "$(RemoveText)"
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES

!macro Language name
  !insertmacro MUI_LANGUAGE "${name}"
  !include "languages/${name}.nsh"
!macroend

; Says why, and ends; "way" is Quit where nothing was begun, Abort in a section.
!macro End text status way
  MessageBox MB_OK|MB_ICONSTOP "${text}" /SD IDOK
  SetErrorLevel ${status}
  ${way}
!macroend

!macro RequireRights
  UserInfo::GetAccountType
  Pop $0
  ${If} $0 != "Admin"
    !insertmacro End "$(NoRights)" ${NO_RIGHTS} Quit
  ${EndIf}
!macroend

; A plugin that is loaded can be renamed, but not written to.
!macro RequireFree
  ${DoWhile} ${FileExists} "$PluginFolder\tvxRT.dll"
    ClearErrors
    FileOpen $0 "$PluginFolder\tvxRT.dll" a
    ${IfNot} ${Errors}
      FileClose $0
      ${Break}
    ${EndIf}
    ${IfNot} ${Cmd} `MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION "$(InUse)" /SD IDCANCEL IDRETRY`
      SetErrorLevel ${IN_USE}
      Abort
    ${EndIf}
  ${Loop}
!macroend

; What the plugin's registration writes, each with the name of the file that its former state is kept
; in.
!macro EachKey what
  !insertmacro ${what} "tvxRT.clsPlugin" name
  !insertmacro ${what} "CLSID\{${CLSID}}" class
  !insertmacro ${what} "TypeLib\{${LIBID}}" library
  !insertmacro ${what} "Interface\{${IID}}" interface
!macroend
; This program has 32 bits, and so has the registry that it and what it starts see.
!macro KeepKey key name
  nsExec::Exec '"$SYSDIR\reg.exe" export "HKCR\${key}" "${KEPT}\${name}.reg" /y'
  Pop $0
!macroend
!macro PutBackKey key name
  DeleteRegKey HKCR "${key}"
  ${If} ${FileExists} "${KEPT}\${name}.reg"
    nsExec::Exec '"$SYSDIR\reg.exe" import "${KEPT}\${name}.reg"'
    Pop $0
  ${EndIf}
!macroend

; A file that takes the place of one that may be there.
!macro Replace name
  ReadRegStr $0 HKLM "${ENTRY}" "Made ${name}"
  ${If} $0 == ""
  ${AndIfNot} ${FileExists} "${KEPT}\${name}"
  ${AndIf} ${FileExists} "$PluginFolder\${name}"
    ClearErrors
    Rename "$PluginFolder\${name}" "${KEPT}\${name}"
    ${If} ${Errors}
      !insertmacro End "$(NotKept)" ${IN_USE} Abort
    ${EndIf}
  ${EndIf}
  SetOutPath "$PluginFolder"
  File "${FILES}/Plugins/${name}"
  WriteRegStr HKLM "${ENTRY}" "Made ${name}" "yes"
!macroend
!macro PutBack name
  ReadRegStr $0 HKLM "${ENTRY}" "Made ${name}"
  ${If} $0 != ""
    Delete "$PluginFolder\${name}"
  ${EndIf}
  ${If} ${FileExists} "${KEPT}\${name}"
    Rename "${KEPT}\${name}" "$PluginFolder\${name}"
  ${EndIf}
!macroend

; A picture is the host's own where it has it.
!macro AddPicture name
  ${IfNot} ${FileExists} "$INSTDIR\imgs\${name}"
    SetOutPath "$INSTDIR\imgs"
    File "${FILES}/imgs/${name}"
    WriteRegStr HKLM "${ENTRY}" "Made ${name}" "yes"
  ${EndIf}
!macroend
!macro RemovePicture name
  ReadRegStr $0 HKLM "${ENTRY}" "Made ${name}"
  ${If} $0 != ""
    Delete "$INSTDIR\imgs\${name}"
  ${EndIf}
!macroend

!macro AddFolder folder name
  ${IfNot} ${FileExists} "${folder}\*.*"
    CreateDirectory "${folder}"
    WriteRegStr HKLM "${ENTRY}" "Made ${name}" "yes"
  ${EndIf}
!macroend
!macro RemoveFolder folder name
  ReadRegStr $0 HKLM "${ENTRY}" "Made ${name}"
  ${If} $0 != ""
    RMDir "${folder}"  ; if it is empty
  ${EndIf}
!macroend

; Has the stand-alone host manage its service; "result" is empty if there was none to manage.
!macro Service command result
  StrCpy ${result} ""
  ReadRegStr $0 HKLM "${ENTRY}" "Made service"
  ${If} $0 != ""
    nsExec::Exec '"${HOST_FOLDER}\rotacasts-host.exe" service ${command} --host-folder "$INSTDIR"'
    Pop ${result}
  ${EndIf}
!macroend

; Puts everything back as it was before the first setup, however far a setup has come.
!macro PutEverythingBack
  !insertmacro Service remove $1
  SetShellVarContext all
  Delete "${SHORTCUT}"
  ReadRegStr $0 HKLM "${ENTRY}" "Kept"
  ${If} $0 != ""
    UnRegDLL "$PluginFolder\tvxRT.dll"
    !insertmacro EachKey PutBackKey
  ${EndIf}
  !insertmacro PutBack tvxRT.dll
  !insertmacro PutBack tvxRT_help.chm
  !insertmacro RemovePicture butup.gif
  !insertmacro RemovePicture butdown.gif
  SetOutPath "$TEMP"
  !insertmacro RemoveFolder "$PluginFolder" "folder of the plugin"
  !insertmacro RemoveFolder "$INSTDIR\imgs" "folder of the pictures"
  RMDir /r "$INSTDIR\RotacastsSetup"
  DeleteRegKey HKLM "${ENTRY}"
!macroend

; The folder of the plugin that is registered now, or nothing.
Function RegisteredFolder
  ReadRegStr $0 HKCR "tvxRT.clsPlugin\CLSID" ""
  ReadRegStr $0 HKCR "CLSID\$0\InprocServer32" ""
  ${If} ${FileExists} "$0"
    ${GetParent} "$0" $0
  ${Else}
    StrCpy $0 ""
  ${EndIf}
  Push $0
FunctionEnd

; The host's folder of a plugin's folder, as the plugin itself works it out.
Function HostOf
  Exch $0
  StrCpy $1 $0 "" -8
  StrCpy $2 $0 "" -15
  ${If} $1 == "\Plugins"
    StrCpy $0 $0 -8
  ${ElseIf} $2 == "\dlls\Rotacasts"
    StrCpy $0 $0 -15
  ${EndIf}
  Exch $0
FunctionEnd

Function FindHost
  StrCpy $FolderHint "$(FolderText)"
  ${If} $INSTDIR != ""  ; given by /D=
    Return
  ${EndIf}
  ReadRegStr $INSTDIR HKLM "${ENTRY}" "InstallLocation"
  ${If} $INSTDIR == ""
    Call RegisteredFolder
    Call HostOf
    Pop $INSTDIR
  ${EndIf}
  ${If} $INSTDIR != ""
    StrCpy $FolderHint "$(FolderFound)"
  ${EndIf}
FunctionEnd

; A plugin that is registered or lies in this host keeps its place.
Function FindPluginFolder
  ReadRegStr $3 HKLM "${ENTRY}" "InstallLocation"
  ${If} $3 == $INSTDIR
    ReadRegStr $PluginFolder HKLM "${ENTRY}" "PluginFolder"
    Return
  ${EndIf}
  Call RegisteredFolder
  Pop $PluginFolder
  Push $PluginFolder
  Call HostOf
  Pop $3
  ${If} $PluginFolder != ""
  ${AndIf} $3 == $INSTDIR
    Return
  ${EndIf}
  StrCpy $PluginFolder "$INSTDIR\Plugins"
  ${If} ${FileExists} "$INSTDIR\dlls\Rotacasts\tvxRT.dll"
    StrCpy $PluginFolder "$INSTDIR\dlls\Rotacasts"
  ${EndIf}
FunctionEnd


; The class can be registered once on a machine, so another host has to give it up.
Function LeaveOtherHost
  ReadRegStr $OtherFolder HKLM "${ENTRY}" "InstallLocation"
  ${If} $OtherFolder == ""
  ${OrIf} $OtherFolder == $INSTDIR
    Return
  ${EndIf}
  ${IfNot} ${FileExists} "$OtherFolder\RotacastsSetup\Uninstall.exe"
    DeleteRegKey HKLM "${ENTRY}"  ; that host is gone, and nothing can be put back there
    Return
  ${EndIf}
  ExecWait '"$OtherFolder\RotacastsSetup\Uninstall.exe" /S _?=$OtherFolder' $0
  ReadRegStr $1 HKLM "${ENTRY}" "InstallLocation"
  ${If} $1 != ""
    !insertmacro End "$(OtherHost)" ${IN_USE} Abort
  ${EndIf}
  RMDir /r "$OtherFolder\RotacastsSetup"  ; run in its place, it could not take itself away
FunctionEnd

Section
  Call RequireHost
  Call IsForPlugin
  Pop $0
  ${If} $0 == "yes"
    Call FindPluginFolder
    !insertmacro RequireFree
  ${Else}
    ReadRegStr $PluginFolder HKLM "${ENTRY}" "PluginFolder"
  ${EndIf}
  Call LeaveOtherHost
  ; The way back comes first, so that it is there however far this comes.
  CreateDirectory "${KEPT}"
  ClearErrors
  WriteUninstaller "$INSTDIR\RotacastsSetup\Uninstall.exe"
  ${If} ${Errors}
    !insertmacro End "$(NotKept)" ${IN_USE} Abort
  ${EndIf}
  Call WriteEntry
SectionEnd

Section "$(PluginName)" Plugin
  ReadRegStr $0 HKLM "${ENTRY}" "Kept"
  ${If} $0 == ""
    !insertmacro EachKey KeepKey
    WriteRegStr HKLM "${ENTRY}" "Kept" "yes"
  ${EndIf}

  !insertmacro AddFolder "$PluginFolder" "folder of the plugin"
  !insertmacro AddFolder "$INSTDIR\imgs" "folder of the pictures"
  !insertmacro Replace tvxRT.dll
  !insertmacro Replace tvxRT_help.chm
  !insertmacro AddPicture butup.gif
  !insertmacro AddPicture butdown.gif
  ClearErrors
  RegDLL "$PluginFolder\tvxRT.dll"
  ${If} ${Errors}
    !insertmacro PutEverythingBack
    !insertmacro End "$(NotRegistered)" ${NOT_REGISTERED} Abort
  ${EndIf}
  SetErrorLevel 0
SectionEnd

; A service that is there already keeps its options, and stands still while its program is replaced.
Section /o "$(HostName)" Host
  !insertmacro Service stop $1
  SetOutPath "${HOST_FOLDER}"
  File "${FILES}/host/rotacasts-host.exe"
  File "${FILES}/host/game-server-sim.exe"
  File "${FILES}/LICENSE.txt"
  SetShellVarContext all
  CreateShortcut "${SHORTCUT}" "${HOST_FOLDER}\rotacasts-host.exe" 'window --host-folder "$INSTDIR"'
  !insertmacro Service start $1
SectionEnd

; It starts once there is a profile.
Section /o "$(ServiceName)" HostService
  ReadRegStr $0 HKLM "${ENTRY}" "Made service"
  ${If} $0 == ""
    nsExec::Exec '"${HOST_FOLDER}\rotacasts-host.exe" service install --host-folder "$INSTDIR" --web 127.0.0.1:8480'
    Pop $0
    ${If} $0 == 0
      WriteRegStr HKLM "${ENTRY}" "Made service" "yes"
      !insertmacro Service start $1
    ${EndIf}
  ${EndIf}
SectionEnd

; Functions that name a section stand below it.
Function IsForPlugin
  ${If} ${SectionIsSelected} ${Plugin}
    Push "yes"
  ${Else}
    Push "no"
  ${EndIf}
FunctionEnd

Function RequireHost
  ${IfNot} ${SectionIsSelected} ${Plugin}
    Return  ; the stand-alone host works in any folder
  ${EndIf}
  ${IfNot} ${FileExists} "$INSTDIR\profiles\*.*"
  ${AndIfNot} ${FileExists} "$INSTDIR\settings\config.ini"
    MessageBox MB_OK|MB_ICONEXCLAMATION "$(NoHost)" /SD IDOK
    SetErrorLevel ${NO_HOST}
    Abort
  ${EndIf}
FunctionEnd

Function WriteEntry
  SectionGetSize ${Plugin} $0
  WriteRegStr HKLM "${ENTRY}" "DisplayName" "Rotacasts"
  WriteRegStr HKLM "${ENTRY}" "DisplayVersion" "${VERSION}"
  WriteRegStr HKLM "${ENTRY}" "Publisher" "${VENDOR}"
  ${If} $PluginFolder != ""
    WriteRegStr HKLM "${ENTRY}" "HelpLink" "$PluginFolder\tvxRT_help.chm"
  ${EndIf}
  WriteRegStr HKLM "${ENTRY}" "DisplayIcon" "$INSTDIR\RotacastsSetup\Uninstall.exe"
  WriteRegStr HKLM "${ENTRY}" "InstallLocation" "$INSTDIR"
  WriteRegStr HKLM "${ENTRY}" "PluginFolder" "$PluginFolder"
  WriteRegStr HKLM "${ENTRY}" "UninstallString" '"$INSTDIR\RotacastsSetup\Uninstall.exe"'
  WriteRegStr HKLM "${ENTRY}" "QuietUninstallString" '"$INSTDIR\RotacastsSetup\Uninstall.exe" /S'
  WriteRegDWORD HKLM "${ENTRY}" "EstimatedSize" $0
  WriteRegDWORD HKLM "${ENTRY}" "NoModify" 1
  WriteRegDWORD HKLM "${ENTRY}" "NoRepair" 1
FunctionEnd

Function .onInit
  !insertmacro RequireRights
  Call FindHost
  ; What is there already is upgraded.
  ReadRegStr $0 HKLM "${ENTRY}" "InstallLocation"
  ${If} $0 != ""
  ${AndIf} $0 == $INSTDIR
    ReadRegStr $0 HKLM "${ENTRY}" "Kept"
    ${If} $0 == ""
      !insertmacro UnselectSection ${Plugin}
    ${EndIf}
    ${If} ${FileExists} "${HOST_FOLDER}\rotacasts-host.exe"
      !insertmacro SelectSection ${Host}
    ${EndIf}
  ${EndIf}
FunctionEnd

; The service needs its program.
Function .onSelChange
  ${If} ${SectionIsSelected} ${HostService}
    !insertmacro SelectSection ${Host}
  ${EndIf}
FunctionEnd

Function un.onInit
  !insertmacro RequireRights
  ReadRegStr $INSTDIR HKLM "${ENTRY}" "InstallLocation"
  ${If} $INSTDIR == ""
    !insertmacro End "$(NotInstalled)" ${NO_HOST} Quit
  ${EndIf}
  ReadRegStr $PluginFolder HKLM "${ENTRY}" "PluginFolder"
FunctionEnd

Section Uninstall
  !insertmacro RequireFree
  !insertmacro PutEverythingBack
  DetailPrint "$(Removed)"
SectionEnd

!insertmacro Language English
