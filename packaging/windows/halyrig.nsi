; The installer: for one user, without an administrator. makensis -DVERSION=... -DBIN=... -DSOURCE=... -DOUTPUT=... halyrig.nsi
Unicode true
!include LogicLib.nsh
!include Sections.nsh
!include WinMessages.nsh
SetCompressor /SOLID lzma
RequestExecutionLevel user
SetDateSave off ; the same files give the same installer, whenever they were built

Name "Halyrig ${VERSION}"
OutFile "${OUTPUT}"
InstallDir "$LOCALAPPDATA\Programs\Halyrig"
InstallDirRegKey HKCU "Software\Microsoft\Windows\CurrentVersion\Uninstall\Halyrig" "InstallLocation"
Icon "${SOURCE}\src\halyrig32\windows\halyrig.ico"
UninstallIcon "${SOURCE}\src\halyrig32\windows\halyrig.ico"
VIProductVersion "${VERSION}.0"
VIAddVersionKey ProductName "Halyrig"
VIAddVersionKey ProductVersion "${VERSION}"
VIAddVersionKey FileVersion "${VERSION}"
VIAddVersionKey FileDescription "Installer of Halyrig"
VIAddVersionKey LegalCopyright "The Halyrig authors, MIT licence"

!define UNINSTALL "Software\Microsoft\Windows\CurrentVersion\Uninstall\Halyrig"

LicenseData "${SOURCE}\LICENSE"
Page license
Page components
Page directory
Page instfiles
UninstPage uninstConfirm
UninstPage instfiles

; A running program keeps its file open. $0 counts how many of the bridge and the companion are running.
!macro CountHeld FILE
    ${If} ${FileExists} "$INSTDIR\${FILE}"
        ClearErrors
        FileOpen $1 "$INSTDIR\${FILE}" a
        ${If} ${Errors}
            IntOp $0 $0 + 1
        ${Else}
            FileClose $1
        ${EndIf}
    ${EndIf}
!macroend

!macro CountRunning
    StrCpy $0 0
    !insertmacro CountHeld Halyrig32.exe
    !insertmacro CountHeld halyrigctl.exe
    !insertmacro CountHeld halyrigctlw.exe
!macroend

; A running bridge is asked to close, which saves its settings, and gets ten seconds for it. The user is asked first, since the whole
; suite gets the request. If it does not close, the user can try again; a silent run ends with status 2 and changes nothing.
!macro CloseRunning
    !insertmacro CountRunning
    ${If} $0 != 0
    ${AndIf} ${Cmd} `MessageBox MB_OKCANCEL|MB_ICONEXCLAMATION "Halyrig is running. It is asked to close now, and with it every program of the Tidewright suite." /SD IDOK IDCANCEL`
        Abort "Halyrig is running."
    ${EndIf}
    ${DoUntil} $0 == 0
        nsExec::Exec '"$INSTDIR\halyrigctl.exe" quit --no-wait'
        Pop $1
        ${For} $2 1 100
            FindWindow $1 "halyrigctlw"
            ${If} $1 != 0
                SendMessage $1 ${WM_CLOSE} 0 0 /TIMEOUT=5000
            ${EndIf}
            !insertmacro CountRunning
            ${If} $0 == 0
                ${Break}
            ${EndIf}
            Sleep 100
        ${Next}
        ${If} $0 != 0
        ${AndIf} ${Cmd} `MessageBox MB_RETRYCANCEL "Halyrig is still running. Close it and try again." /SD IDCANCEL IDCANCEL`
            Abort "Halyrig is still running."
        ${EndIf}
    ${Loop}
!macroend

Section "Halyrig" SectionPrograms
    SectionIn RO
    !insertmacro CloseRunning
    Delete "$SMSTARTUP\Halyrig.lnk" ; made again by its own section, while that is chosen
    Delete "$SMSTARTUP\Halyrig page.lnk" ; the same
    Delete "$SMSTARTUP\Halyrig recording.lnk" ; the same
    SetOutPath "$INSTDIR"
    File "${BIN}\Halyrig32.exe"
    File "${BIN}\halyrigctl.exe"
    File "${BIN}\halyrigctlw.exe"
    File "${SOURCE}\packaging\completions\halyrigctl.ps1"
    File "${SOURCE}\LICENSE"
    File "${SOURCE}\packaging\THIRD-PARTY.txt"
    File "${SOURCE}\packaging\windows\README.txt"
    File "${SOURCE}\demo\halyrig.xml"
    File "${SOURCE}\build\linux\pages\guide.html"
    File "${SOURCE}\build\linux\pages\channels.html"
    File "${SOURCE}\build\linux\pages\streams.html"
    SetOutPath "$INSTDIR\stand-in"
    File "${BIN}\ShDfW2.dll"
    SetOutPath "$INSTDIR\stand-in\Data"
    File "${BIN}\Data\J_vars06.d"
    SetOutPath "$INSTDIR"
    CreateShortcut "$SMPROGRAMS\Halyrig.lnk" "$INSTDIR\Halyrig32.exe"
    ; A console that stays open afterwards, in the folder of the programs.
    CreateShortcut "$SMPROGRAMS\Halyrig check.lnk" "$SYSDIR\cmd.exe" '/k ""$INSTDIR\halyrigctl.exe" check"' "$INSTDIR\Halyrig32.exe"
    CreateShortcut "$SMPROGRAMS\Halyrig live view.lnk" "$SYSDIR\cmd.exe" '/k ""$INSTDIR\halyrigctl.exe" watch"' "$INSTDIR\Halyrig32.exe"
    CreateShortcut "$SMPROGRAMS\Halyrig page.lnk" "$SYSDIR\cmd.exe" '/c "start "Halyrig page" /min "$INSTDIR\halyrigctl.exe" serve & start http://127.0.0.1:8377/"' "$INSTDIR\Halyrig32.exe" "" SW_SHOWMINIMIZED
    CreateShortcut "$SMPROGRAMS\Halyrig guide.lnk" "$INSTDIR\guide.html"
    WriteUninstaller "$INSTDIR\uninstall.exe"
    WriteRegStr HKCU "${UNINSTALL}" "DisplayName" "Halyrig"
    WriteRegStr HKCU "${UNINSTALL}" "DisplayVersion" "${VERSION}"
    WriteRegStr HKCU "${UNINSTALL}" "DisplayIcon" "$INSTDIR\Halyrig32.exe"
    WriteRegStr HKCU "${UNINSTALL}" "Publisher" "The Halyrig authors"
    WriteRegStr HKCU "${UNINSTALL}" "InstallLocation" "$INSTDIR"
    WriteRegStr HKCU "${UNINSTALL}" "UninstallString" '"$INSTDIR\uninstall.exe"'
    WriteRegStr HKCU "${UNINSTALL}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /S'
    WriteRegDWORD HKCU "${UNINSTALL}" "NoModify" 1
    WriteRegDWORD HKCU "${UNINSTALL}" "NoRepair" 1
SectionEnd

Section /o "Start at log-on" SectionStart
    CreateShortcut "$SMSTARTUP\Halyrig.lnk" "$INSTDIR\Halyrig32.exe"
SectionEnd

Section /o "Page at log-on" SectionPage
    CreateShortcut "$SMSTARTUP\Halyrig page.lnk" "$INSTDIR\halyrigctlw.exe" "serve" "$INSTDIR\Halyrig32.exe"
SectionEnd

Section /o "Record at log-on" SectionRecord
    CreateShortcut "$SMSTARTUP\Halyrig recording.lnk" "$INSTDIR\halyrigctlw.exe" "record --keep 30" "$INSTDIR\Halyrig32.exe"
SectionEnd

; An upgrade keeps the choice made for the previous version.
Function .onInit
    ${If} ${FileExists} "$SMSTARTUP\Halyrig.lnk"
        !insertmacro SelectSection ${SectionStart}
    ${EndIf}
    ${If} ${FileExists} "$SMSTARTUP\Halyrig page.lnk"
        !insertmacro SelectSection ${SectionPage}
    ${EndIf}
    ${If} ${FileExists} "$SMSTARTUP\Halyrig recording.lnk"
        !insertmacro SelectSection ${SectionRecord}
    ${EndIf}
FunctionEnd

; Settings and the data folder are the user's and stay.
Section "Uninstall"
    !insertmacro CloseRunning
    Delete "$SMSTARTUP\Halyrig.lnk"
    Delete "$SMPROGRAMS\Halyrig.lnk"
    Delete "$SMPROGRAMS\Halyrig check.lnk"
    Delete "$SMPROGRAMS\Halyrig live view.lnk"
    Delete "$SMSTARTUP\Halyrig page.lnk"
    Delete "$SMSTARTUP\Halyrig recording.lnk"
    Delete "$SMPROGRAMS\Halyrig page.lnk"
    Delete "$SMPROGRAMS\Halyrig guide.lnk"
    Delete "$INSTDIR\stand-in\Data\J_vars06.d"
    RMDir "$INSTDIR\stand-in\Data"
    Delete "$INSTDIR\stand-in\ShDfW2.dll"
    RMDir "$INSTDIR\stand-in"
    Delete "$INSTDIR\halyrig.xml"
    Delete "$INSTDIR\guide.html"
    Delete "$INSTDIR\channels.html"
    Delete "$INSTDIR\streams.html"
    Delete "$INSTDIR\README.txt"
    Delete "$INSTDIR\THIRD-PARTY.txt"
    Delete "$INSTDIR\LICENSE"
    Delete "$INSTDIR\halyrigctl.ps1"
    Delete "$INSTDIR\halyrigctl.exe"
    Delete "$INSTDIR\halyrigctlw.exe"
    Delete "$INSTDIR\Halyrig32.exe"
    Delete "$INSTDIR\uninstall.exe"
    RMDir "$INSTDIR"
    DeleteRegKey HKCU "${UNINSTALL}"
SectionEnd
