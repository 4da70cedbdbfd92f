; The installer: for one user, without an administrator. makensis -DVERSION=... -DBIN=... -DSOURCE=... -DOUTPUT=... halyrig.nsi
Unicode true
!include LogicLib.nsh
SetCompressor /SOLID lzma
RequestExecutionLevel user

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

; A running bridge holds its file. It is asked to close, which saves its settings, and gets a moment for it.
!macro CloseRunning
    ${If} ${FileExists} "$INSTDIR\halyrigctl.exe"
        nsExec::Exec '"$INSTDIR\halyrigctl.exe" quit'
        Pop $0
        ${If} $0 == 0 ; it was running
            Sleep 1000
        ${EndIf}
    ${EndIf}
!macroend

Section "Halyrig" SectionPrograms
    SectionIn RO
    !insertmacro CloseRunning
    ; What an earlier version put into the menus, should a choice have changed.
    Delete "$SMSTARTUP\Halyrig.lnk"
    SetOutPath "$INSTDIR"
    File "${BIN}\Halyrig32.exe"
    File "${BIN}\halyrigctl.exe"
    File "${SOURCE}\LICENSE"
    File "${SOURCE}\packaging\windows\README.txt"
    File "${SOURCE}\demo\halyrig.xml"
    SetOutPath "$INSTDIR\stand-in"
    File "${BIN}\ShDfW2.dll"
    SetOutPath "$INSTDIR\stand-in\Data"
    File "${BIN}\Data\J_vars06.d"
    SetOutPath "$INSTDIR"
    CreateShortcut "$SMPROGRAMS\Halyrig.lnk" "$INSTDIR\Halyrig32.exe"
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

; Settings and the data folder are the user's and stay.
Section "Uninstall"
    !insertmacro CloseRunning
    Delete "$SMSTARTUP\Halyrig.lnk"
    Delete "$SMPROGRAMS\Halyrig.lnk"
    Delete "$INSTDIR\stand-in\Data\J_vars06.d"
    RMDir "$INSTDIR\stand-in\Data"
    Delete "$INSTDIR\stand-in\ShDfW2.dll"
    RMDir "$INSTDIR\stand-in"
    Delete "$INSTDIR\halyrig.xml"
    Delete "$INSTDIR\README.txt"
    Delete "$INSTDIR\LICENSE"
    Delete "$INSTDIR\halyrigctl.exe"
    Delete "$INSTDIR\Halyrig32.exe"
    Delete "$INSTDIR\uninstall.exe"
    RMDir "$INSTDIR"
    DeleteRegKey HKCU "${UNINSTALL}"
SectionEnd
