; The installer: makensis -DVERSION=… -DTARGET=x86-unicode|amd64-unicode -DLAYOUT=FOLDER -DOUTPUT=FILE setup.nsi
; LAYOUT holds bin\, docs and the sample Vexal\ as they are to be laid out. TARGET is what the program is made for: a
; 64-bit system may lack what 32-bit programs need.
Target ${TARGET}
SetCompressor /SOLID lzma
!include MUI2.nsh
!include FileFunc.nsh

!define TITLE "照度计算数据库维护"
!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\quorvane"
!define SHORTCUT "$SMPROGRAMS\${TITLE}.lnk"

Name "${TITLE}"
OutFile "${OUTPUT}"
; For the user who runs it, without an administrator.
RequestExecutionLevel user
InstallDir "$LOCALAPPDATA\Programs\quorvane"
InstallDirRegKey HKCU "${UNINSTALL_KEY}" "InstallLocation"

VIProductVersion "${VERSION}.0"
VIAddVersionKey /LANG=2052 "ProductName" "quorvane"
VIAddVersionKey /LANG=2052 "FileDescription" "${TITLE} 安装程序"
VIAddVersionKey /LANG=2052 "FileVersion" "${VERSION}"
VIAddVersionKey /LANG=2052 "LegalCopyright" ""

!define MUI_ICON "quorvane.ico"
!define MUI_UNICON "quorvane.ico"
!define MUI_FINISHPAGE_RUN "$INSTDIR\bin\quorvane.exe"
!insertmacro MUI_PAGE_WELCOME
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "SimpChinese"

; The program that runs cannot be replaced. It holds the mutex "Quorvane".
!macro RefuseWhileRunning UN
Function ${UN}RefuseWhileRunning
    System::Call 'kernel32::OpenMutexW(i 0x100000, i 0, w "Quorvane") p .r0'
    ${If} $0 P<> 0
        System::Call 'kernel32::CloseHandle(p r0)'
        MessageBox MB_ICONEXCLAMATION|MB_OK "请先退出“${TITLE}”。" /SD IDOK
        Abort
    ${EndIf}
FunctionEnd
!macroend
!insertmacro RefuseWhileRunning ""
!insertmacro RefuseWhileRunning "un."

Section
    Call RefuseWhileRunning
    SetOutPath "$INSTDIR\bin"
    File "${LAYOUT}\bin\*.exe"
    SetOutPath "$INSTDIR"
    File "${LAYOUT}\*.txt"

    ; A database or a photo library that is there stays as it is; the sample goes where there is neither.
    ${IfNot} ${FileExists} "$INSTDIR\Vexal\灯具数据库.mdb"
    ${AndIfNot} ${FileExists} "$INSTDIR\Vexal\LuminairePhotoLib\*.*"
        SetOverwrite off
        SetOutPath "$INSTDIR\Vexal"
        File /r "${LAYOUT}\Vexal\*.*"
        SetOverwrite on
    ${EndIf}

    SetOutPath "$INSTDIR\bin"
    CreateShortCut "${SHORTCUT}" "$INSTDIR\bin\quorvane.exe"
    WriteUninstaller "$INSTDIR\uninstall.exe"
    WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayName" "${TITLE}"
    WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayIcon" "$INSTDIR\bin\quorvane.exe"
    WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayVersion" "${VERSION}"
    WriteRegStr HKCU "${UNINSTALL_KEY}" "InstallLocation" "$INSTDIR"
    WriteRegStr HKCU "${UNINSTALL_KEY}" "UninstallString" '"$INSTDIR\uninstall.exe"'
    WriteRegStr HKCU "${UNINSTALL_KEY}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /S'
    WriteRegDWORD HKCU "${UNINSTALL_KEY}" "NoModify" 1
    WriteRegDWORD HKCU "${UNINSTALL_KEY}" "NoRepair" 1
SectionEnd

; The database and the photos are the user's. They stay, and with them the folder.
Section un.
    Call un.RefuseWhileRunning
    Delete "$INSTDIR\bin\quorvane.exe"
    Delete "$INSTDIR\bin\quorvane-self-check.exe"
    RMDir "$INSTDIR\bin"
    Delete "$INSTDIR\说明.txt"
    Delete "$INSTDIR\licences.txt"
    Delete "$INSTDIR\uninstall.exe"
    RMDir "$INSTDIR"
    Delete "${SHORTCUT}"
    DeleteRegKey HKCU "${UNINSTALL_KEY}"
SectionEnd
