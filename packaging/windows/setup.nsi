; The setup file. Defined from outside: VERSION, STAGE (the folder of what is installed), OUT, ICON, PICTURE (of the last
; page), FILES (a list for the uninstaller), OWNER, HOMEPAGE.
Unicode true
Target amd64-unicode
SetCompressor /SOLID lzma
SetDateSave off
ManifestDPIAware true
ManifestSupportedOS all
RequestExecutionLevel user

!include MUI2.nsh
!include nsDialogs.nsh
!include FileFunc.nsh
!include WinVer.nsh

!define NAME "Завелик"
!define KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\Zavelik"

Name "${NAME}"
OutFile "${OUT}"
BrandingText "${NAME} ${VERSION}"
VIProductVersion "${VERSION}.0"
VIAddVersionKey /LANG=1049 ProductName "${NAME}"
VIAddVersionKey /LANG=1049 FileDescription "Установка программы ${NAME}"
VIAddVersionKey /LANG=1049 FileVersion "${VERSION}"
VIAddVersionKey /LANG=1049 ProductVersion "${VERSION}"
VIAddVersionKey /LANG=1049 LegalCopyright ""

Var ForAll ; 1: for all users of the computer
Var ForMeButton
Var ForAllButton

!define MUI_ICON "${ICON}"
!define MUI_UNICON "${ICON}"
!define MUI_ABORTWARNING
!define MUI_WELCOMEFINISHPAGE_BITMAP "${PICTURE}"
Page custom AskForWhom TakeForWhom
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!define MUI_FINISHPAGE_RUN "$INSTDIR\zavelik.exe"
!define MUI_FINISHPAGE_RUN_TEXT "Запустить программу"
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE Russian

; As long as the program runs its file cannot be opened for writing.
!macro WaitForTheProgram
  again:
    IfFileExists "$INSTDIR\zavelik.exe" 0 stopped
    ClearErrors
    FileOpen $0 "$INSTDIR\zavelik.exe" a
    IfErrors 0 free
    MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION "Программа «${NAME}» сейчас работает или нет прав на запись в папку$\r$\n$INSTDIR$\r$\n$\r$\nЗакройте программу и нажмите «Повторить»." /SD IDCANCEL IDRETRY again
    SetErrorLevel 2
    Abort
  free:
    FileClose $0
  stopped:
!macroend

; Where the program stands, by the choice and by what is installed already.
Function TakeFolder
  ${If} $ForAll = 1
    SetShellVarContext all
    StrCpy $INSTDIR "$PROGRAMFILES64\Zavelik"
    ReadRegStr $0 HKLM "${KEY}" InstallLocation
  ${Else}
    SetShellVarContext current
    StrCpy $INSTDIR "$LOCALAPPDATA\Programs\Zavelik"
    ReadRegStr $0 HKCU "${KEY}" InstallLocation
  ${EndIf}
  ${If} $0 != ""
    StrCpy $INSTDIR $0
  ${EndIf}
FunctionEnd

Function .onInit
  ${IfNot} ${AtLeastWin10}
    MessageBox MB_OK|MB_ICONSTOP "Нужна 64-разрядная система Windows 10 или новее." /SD IDOK
    Abort
  ${EndIf}
  SetRegView 64
  StrCpy $1 $INSTDIR ; given by /D=
  StrCpy $ForAll 0
  ${GetParameters} $0
  ClearErrors
  ${GetOptions} $0 "/AllUsers" $2
  IfErrors +2
    StrCpy $ForAll 1
  Call TakeFolder
  ${If} $1 != ""
    StrCpy $INSTDIR $1
  ${EndIf}
FunctionEnd

Function AskForWhom
  ${GetParameters} $0
  ClearErrors
  ${GetOptions} $0 "/AllUsers" $2
  IfErrors +2
    Abort ; chosen before the rights were asked for
  !insertmacro MUI_HEADER_TEXT "Для кого установить" "Выберите, кто будет пользоваться программой."
  nsDialogs::Create 1018
  Pop $0
  ${NSD_CreateRadioButton} 0 10u 100% 12u "&Только для меня"
  Pop $ForMeButton
  ${NSD_CreateRadioButton} 0 28u 100% 12u "Для &всех пользователей компьютера (нужны права администратора)"
  Pop $ForAllButton
  ${If} $ForAll = 1
    ${NSD_Check} $ForAllButton
  ${Else}
    ${NSD_Check} $ForMeButton
  ${EndIf}
  nsDialogs::Show
FunctionEnd

Function TakeForWhom
  ${NSD_GetState} $ForAllButton $ForAll
  UserInfo::GetAccountType
  Pop $0
  ${If} $ForAll = 1
  ${AndIf} $0 != "Admin"
    ClearErrors
    ExecShell "runas" "$EXEPATH" "/AllUsers"
    IfErrors 0 +3
      StrCpy $ForAll 0
      Abort ; the rights were refused: stays at the question
    Quit
  ${EndIf}
  Call TakeFolder
FunctionEnd

Section
  !insertmacro WaitForTheProgram
  ${If} $ForAll = 1
    SetShellVarContext all
  ${Else}
    SetShellVarContext current
  ${EndIf}
  SetOutPath $INSTDIR
  File /r "${STAGE}\*.*"
  WriteUninstaller "$INSTDIR\uninstall.exe"
  CreateShortcut "$SMPROGRAMS\${NAME}.lnk" "$INSTDIR\zavelik.exe"
  ${GetSize} "$INSTDIR" "/S=0K" $0 $1 $2
  WriteRegStr SHCTX "${KEY}" DisplayName "${NAME}"
  WriteRegStr SHCTX "${KEY}" DisplayVersion "${VERSION}"
  WriteRegStr SHCTX "${KEY}" DisplayIcon "$INSTDIR\zavelik.exe"
  WriteRegStr SHCTX "${KEY}" Publisher "${OWNER}"
  WriteRegStr SHCTX "${KEY}" URLInfoAbout "${HOMEPAGE}"
  WriteRegStr SHCTX "${KEY}" InstallLocation "$INSTDIR"
  WriteRegStr SHCTX "${KEY}" UninstallString '"$INSTDIR\uninstall.exe"'
  WriteRegStr SHCTX "${KEY}" QuietUninstallString '"$INSTDIR\uninstall.exe" /S'
  WriteRegDWORD SHCTX "${KEY}" NoModify 1
  WriteRegDWORD SHCTX "${KEY}" NoRepair 1
  WriteRegDWORD SHCTX "${KEY}" EstimatedSize $0
SectionEnd

Function un.onInit
  SetRegView 64
  ReadRegStr $0 HKLM "${KEY}" InstallLocation
  ${If} $0 == $INSTDIR
    SetShellVarContext all
  ${Else}
    SetShellVarContext current
  ${EndIf}
FunctionEnd

; Takes away what was installed and nothing else: the book may stand in the same folder.
Section Uninstall
  !insertmacro WaitForTheProgram
  !include "${FILES}"
  Delete "$INSTDIR\uninstall.exe"
  RMDir "$INSTDIR"
  Delete "$SMPROGRAMS\${NAME}.lnk"
  DeleteRegKey SHCTX "${KEY}"
SectionEnd
