; The installer: for one user, without an administrator. make_package.py gives VERSION, FOLDER (what is installed),
; OUT, ICON, SIZE (in KB) and the lists that are included.
;
; Silently: setup /S [/LINK=MAKE|KEEP] [/SND] [/D=FOLDER]. Without /LINK the folder that stands for the organiser is
; made where there is none. Exit status: 0 done, 1 cancelled, 2 failed, 3 the editor runs, 4 installed, but the
; folder that stands for the organiser could not be made.
Unicode true
SetCompressor /SOLID lzma
SetDateSave off
RequestExecutionLevel user
AllowSkipFiles off ; half an editor is none: what can not be written ends the installation
ManifestSupportedOS all
ManifestDPIAware true

!include FileFunc.nsh
!include LogicLib.nsh
!include nsDialogs.nsh
!include WinMessages.nsh

!define NAME "Sound Editor"
!define PROGRAMS_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall"
!define UNINSTALL_KEY "${PROGRAMS_KEY}\SoundEditor"
!define LINK_KEY "Software\QMT\Corvane-e\PC"
!define SETTINGS_KEY "Software\VB and VBA Program Settings"
!define CLASSES_KEY "Software\Classes"
!define MELODY "SoundEditor.Melody"
!define EDITOR_RUNS 3
!define NO_LINK 4
!define SYNCHRONIZE 0x00100000
!define SHCNE_ASSOCCHANGED 0x08000000

Name "${NAME}"
OutFile "${OUT}"
Icon "${ICON}"
UninstallIcon "${ICON}"
BrandingText "${NAME} ${VERSION}"
InstallDir "$LOCALAPPDATA\Programs\${NAME}"
InstallDirRegKey HKCU "${UNINSTALL_KEY}" "InstallLocation"
ShowInstDetails nevershow
ShowUninstDetails show
XPStyle on
SubCaption 4 " " ; "Completed" would stand over a failure too
InstallColors /windows
UninstallText "This takes the ${NAME} away. Your melodies stay, and you will be told where they are." "From the folder:"

VIProductVersion "${VERSION}.0"
VIAddVersionKey "CompanyName" "The Sound Editor authors"
VIAddVersionKey "FileDescription" "${NAME} Setup"
VIAddVersionKey "FileVersion" "${VERSION}"
VIAddVersionKey "LegalCopyright" "MIT License"
VIAddVersionKey "ProductName" "${NAME}"
VIAddVersionKey "ProductVersion" "${VERSION}"

Page custom ShowChoices TakeChoices
Page instfiles
UninstPage uninstConfirm
UninstPage instfiles

Var MakeLink ; 1: make the folder that stands for the organiser
Var OpenSnd  ; 1: the editor opens .snd files
Var LinkFolder
Var KeepButton
Var MakeButton
Var SndBox
Var Melodies ; folders with melodies in them, a line each

; Whether the editor runs, here or in another session: the name that it holds, or a program file in use.
!macro EDITOR_RUNS_FUNCTION un
Function ${un}EditorRuns
    System::Call 'kernel32::OpenMutexW(i ${SYNCHRONIZE}, i 0, w "Local\Tonex Sound Editor") p .r0'
    ${If} $0 P<> 0
        System::Call 'kernel32::CloseHandle(p r0)'
        Push 1
        Return
    ${EndIf}
    !insertmacro PROGRAMS ProgramInUse
    Push 0
FunctionEnd

; Goes on when the editor does not run or the user has closed it. Nothing was changed before.
Function ${un}WaitForEditor
    ${Do}
        Call ${un}EditorRuns
        Pop $0
        ${If} $0 = 0
            Return
        ${EndIf}
        MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION \
            "The Sound Editor is running. Save your melody and close the editor, then choose Retry." \
            /SD IDCANCEL IDRETRY again
        SetErrorLevel ${EDITOR_RUNS}
        Quit
    again:
    ${Loop}
FunctionEnd
!macroend

!macro ProgramInUse file
    ${If} ${FileExists} "$INSTDIR\${file}"
        ClearErrors
        FileOpen $0 "$INSTDIR\${file}" a
        ${If} ${Errors}
            Push 1
            Return
        ${EndIf}
        FileClose $0
    ${EndIf}
!macroend

; Gives .snd back to what opened it before, if we took it and still have it.
!macro RELEASE_SND_FUNCTION un
Function ${un}ReleaseSnd
    ReadRegStr $0 HKCU "${UNINSTALL_KEY}" "OpenSnd"
    ${If} $0 != 1
        Return
    ${EndIf}
    ReadRegStr $0 HKCU "${CLASSES_KEY}\.snd" ""
    ReadRegStr $1 HKCU "${UNINSTALL_KEY}" "SndBefore"
    ${If} $0 == "${MELODY}"
        ${If} $1 == ""
            DeleteRegValue HKCU "${CLASSES_KEY}\.snd" ""
        ${Else}
            WriteRegStr HKCU "${CLASSES_KEY}\.snd" "" $1
        ${EndIf}
    ${EndIf}
    DeleteRegValue HKCU "${UNINSTALL_KEY}" "SndBefore"
    DeleteRegValue HKCU "${UNINSTALL_KEY}" "OpenSnd"
    DeleteRegValue HKCU "${CLASSES_KEY}\.snd\OpenWithProgids" "${MELODY}"
    DeleteRegKey /ifempty HKCU "${CLASSES_KEY}\.snd\OpenWithProgids"
    DeleteRegKey /ifempty HKCU "${CLASSES_KEY}\.snd"
    DeleteRegKey HKCU "${CLASSES_KEY}\${MELODY}"
    Call ${un}TellShell
FunctionEnd

Function ${un}TellShell
    System::Call 'shell32::SHChangeNotify(i ${SHCNE_ASSOCCHANGED}, i 0, p 0, p 0)'
FunctionEnd
!macroend

!include "${LISTS}"
!insertmacro EDITOR_RUNS_FUNCTION ""
!insertmacro EDITOR_RUNS_FUNCTION "un."
!insertmacro RELEASE_SND_FUNCTION ""
!insertmacro RELEASE_SND_FUNCTION "un."

; --- Choices

Function .onInit
    Call StayInPlace
    ReadRegStr $LinkFolder HKCU "${LINK_KEY}" "InstallDir"
    Call IsLinkMissing
    Pop $MakeLink
    ReadRegStr $0 HKCU "${UNINSTALL_KEY}" "OpenSnd"
    StrCpy $OpenSnd 0
    ${If} $0 == 1
        StrCpy $OpenSnd 1
    ${EndIf}
    Call ReadOptions
    Call WaitForEditor
FunctionEnd

; An upgrade stays where the editor is, or the old one would be left behind.
Function StayInPlace
    ReadRegStr $0 HKCU "${UNINSTALL_KEY}" "InstallLocation"
    ${If} $0 != ""
    ${AndIf} ${FileExists} "$0\uninstall.exe"
        StrCpy $INSTDIR $0
    ${EndIf}
FunctionEnd

; Gives 1 where no link software can stand behind the entry, by the rule of LinkSetup: it is no full path, or the folder
; is not there though its drive is. A drive or a server may be away just now.
Function IsLinkMissing
    StrCpy $0 $LinkFolder 2
    StrCpy $1 $LinkFolder 2 1
    StrCpy $2 $LinkFolder 3
    StrCpy $3 $LinkFolder
    System::Call 'kernel32::GetFileAttributesW(w r3) i .r3' ; -1: not there
    System::Call 'kernel32::GetFileAttributesW(w r2) i .r4'
    StrCpy $5 0
    ${If} $1 == ":\"
        ${If} $3 = -1
        ${AndIf} $4 <> -1
            StrCpy $5 1
        ${EndIf}
    ${ElseIf} $0 != "\\"
    ${OrIf} $LinkFolder == "\\"
        StrCpy $5 1
    ${EndIf}
    Push $5
FunctionEnd

Function ReadOptions
    ${GetParameters} $0
    ClearErrors
    ${GetOptions} $0 "/LINK=" $1
    ${IfNot} ${Errors}
        ${If} $1 == "MAKE"
            StrCpy $MakeLink 1
        ${ElseIf} $1 == "KEEP"
            StrCpy $MakeLink 0
        ${EndIf}
    ${EndIf}
    ClearErrors
    ${GetOptions} $0 "/SND" $1
    ${IfNot} ${Errors}
        StrCpy $OpenSnd 1
    ${EndIf}
FunctionEnd

Function ShowChoices
    nsDialogs::Create 1018
    Pop $0
    ${NSD_CreateLabel} 0 0 100% 26u "The Sound Editor works in the folders of the organiser's link software and does \
        not start without them. Which is true of this PC?"
    Pop $0
    ${NSD_CreateRadioButton} 8u 30u 95% 12u "The &link software, or a folder that stands for it, is there"
    Pop $KeepButton
    ${NSD_CreateRadioButton} 8u 44u 95% 12u "There is none: &make a folder in my documents instead"
    Pop $MakeButton
    ${NSD_CreateCheckBox} 0 68u 100% 12u "&Open melody files (.snd) with the Sound Editor"
    Pop $SndBox
    ${If} $MakeLink = 1
        ${NSD_Check} $MakeButton
    ${Else}
        ${NSD_CreateLabel} 0 94u 100% 26u "The folder that is entered now:$\r$\n$LinkFolder"
        Pop $0
        ${NSD_Check} $KeepButton
    ${EndIf}
    ${If} $OpenSnd = 1
        ${NSD_Check} $SndBox
    ${EndIf}
    nsDialogs::Show
FunctionEnd

Function TakeChoices
    ${NSD_GetState} $MakeButton $MakeLink
    ${NSD_GetState} $SndBox $OpenSnd
FunctionEnd

; --- Installing

Section
    Call WaitForEditor
    ClearErrors
    SetOutPath "$INSTDIR"
    WriteUninstaller "$INSTDIR\uninstall.exe"
    ${If} ${Errors}
        Abort "The folder $INSTDIR can not be written."
    ${EndIf}
    Call EnterProgram ; first, so that what an installation that fails leaves behind can be removed
    !insertmacro INSTALL_FILES
    SetOutPath "$INSTDIR"
    CreateShortCut "$SMPROGRAMS\${NAME}.lnk" "$INSTDIR\Tonex.exe"
    ${If} $OpenSnd = 1
        Call TakeSnd
    ${Else}
        Call ReleaseSnd
    ${EndIf}
    ${If} $MakeLink = 1
        Call SetUpLink
    ${EndIf}
SectionEnd

; An entry in the system's list of programs.
Function EnterProgram
    WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayName" "${NAME}"
    WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayVersion" "${VERSION}"
    WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayIcon" "$INSTDIR\Tonex.exe,0"
    WriteRegStr HKCU "${UNINSTALL_KEY}" "Publisher" "The Sound Editor authors"
    WriteRegStr HKCU "${UNINSTALL_KEY}" "InstallLocation" "$INSTDIR"
    WriteRegStr HKCU "${UNINSTALL_KEY}" "UninstallString" '"$INSTDIR\uninstall.exe"'
    WriteRegStr HKCU "${UNINSTALL_KEY}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /S'
    WriteRegDWORD HKCU "${UNINSTALL_KEY}" "EstimatedSize" ${SIZE}
    WriteRegDWORD HKCU "${UNINSTALL_KEY}" "NoModify" 1
    WriteRegDWORD HKCU "${UNINSTALL_KEY}" "NoRepair" 1
FunctionEnd

Function TakeSnd
    ReadRegStr $0 HKCU "${CLASSES_KEY}\.snd" ""
    ${If} $0 != "${MELODY}"
        WriteRegStr HKCU "${UNINSTALL_KEY}" "SndBefore" $0
    ${EndIf}
    WriteRegStr HKCU "${UNINSTALL_KEY}" "OpenSnd" 1
    WriteRegStr HKCU "${CLASSES_KEY}\${MELODY}" "" "Melody"
    WriteRegStr HKCU "${CLASSES_KEY}\${MELODY}\DefaultIcon" "" "$INSTDIR\Tonex.exe,0"
    WriteRegStr HKCU "${CLASSES_KEY}\${MELODY}\shell\open\command" "" '"$INSTDIR\Tonex.exe" "%1"'
    WriteRegStr HKCU "${CLASSES_KEY}\.snd" "" "${MELODY}"
    WriteRegStr HKCU "${CLASSES_KEY}\.snd\OpenWithProgids" "${MELODY}" ""
    Call TellShell
FunctionEnd

Function SetUpLink
    ExecWait '"$INSTDIR\LinkSetup.exe" /quiet' $0
    ${If} $0 != 0
        SetErrorLevel ${NO_LINK}
        MessageBox MB_OK|MB_ICONEXCLAMATION \
            "The editor is installed, but the folder that stands for the organiser could not be made. The editor \
            starts when LinkSetup.exe in its folder has made one." /SD IDOK
    ${EndIf}
FunctionEnd

; --- Uninstalling

Function un.onInit
    Call un.WaitForEditor
FunctionEnd

Section Uninstall
    Call un.WaitForEditor
    ReadRegStr $LinkFolder HKCU "${LINK_KEY}" "InstallDir"
    Call un.RemoveLink
    Call un.ReleaseSnd
    !insertmacro REMOVE_FILES
    Call un.FindMelodies
    Delete "$INSTDIR\uninstall.exe"
    Delete "$SMPROGRAMS\${NAME}.lnk"
    SetOutPath "$TEMP"
    RMDir "$INSTDIR"
    ${If} $INSTDIR == "$LOCALAPPDATA\Programs\${NAME}"
        RMDir "$LOCALAPPDATA\Programs"
    ${EndIf}
    DeleteRegKey HKCU "${UNINSTALL_KEY}"
    DeleteRegKey /ifempty HKCU "${PROGRAMS_KEY}"
    DeleteRegKey HKCU "${SETTINGS_KEY}\Corvane\Tonex"
    DeleteRegKey /ifempty HKCU "${SETTINGS_KEY}\Corvane\Global"
    DeleteRegKey /ifempty HKCU "${SETTINGS_KEY}\Corvane"
    DeleteRegKey /ifempty HKCU "${SETTINGS_KEY}"
    ${If} $Melodies != ""
        MessageBox MB_OK|MB_ICONINFORMATION "The Sound Editor is gone. Your melodies are where they were:$\r$\n$Melodies" \
            /SD IDOK
    ${EndIf}
SectionEnd

; The entry and the folders that LinkSetup made, but for melodies. The choice about the reminder belongs to the whole
; suite; where there is no other program of the suite it is ours.
Function un.RemoveLink
    ReadRegStr $0 HKCU "${LINK_KEY}" "LinkSetup InstallDir"
    ${If} $0 != ""
        DeleteRegValue HKCU "${SETTINGS_KEY}\Corvane\Global" "MsgDsp"
    ${EndIf}
    ExecWait '"$INSTDIR\LinkSetup.exe" /quiet /remove'
FunctionEnd

Function un.FindMelodies
    Push "$LinkFolder\userdata\sound"
    Call un.AddIfMelodies
    Push "$LinkFolder\pcferry\cache\System\sound"
    Call un.AddIfMelodies
    Push "$INSTDIR"
    Call un.AddIfMelodies
    Push "$INSTDIR\samples"
    Call un.AddIfMelodies
FunctionEnd

Function un.AddIfMelodies
    Pop $0
    ${If} ${FileExists} "$0\*.snd"
        StrCpy $Melodies "$Melodies$\r$\n$0"
        DetailPrint "Melodies were left in $0"
    ${EndIf}
FunctionEnd

; Deletes a file that still has the bytes it came with: on the stack its path, above it that of the original.
Function un.DeleteIfSame
    Pop $0
    Pop $1
    FileOpen $2 $0 r
    FileOpen $3 $1 r
    ${Do}
        FileReadByte $2 $4 ; empty behind the last one
        FileReadByte $3 $5
        ${If} $4 != $5
        ${OrIf} $4 == ""
            ${ExitDo}
        ${EndIf}
    ${Loop}
    FileClose $2
    FileClose $3
    ${If} $4 == $5
        Delete $1
    ${EndIf}
FunctionEnd
