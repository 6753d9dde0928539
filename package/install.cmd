@echo off
rem Installs the plugin into an administration host, or takes it out again.
rem   install.cmd HOST-FOLDER          copies and registers
rem   install.cmd /undo HOST-FOLDER    unregisters, and puts back what was there before
setlocal enableextensions
set "undo="
if /i "%~1"=="/undo" (
  set "undo=yes"
  shift
)
set "host=%~1"
if "%host%"=="" goto usage
if not exist "%host%\" (
  echo There is no folder "%host%".
  goto usage
)
rem The component has 32 bits, and so has the program that registers it.
set "register=%SystemRoot%\SysWOW64\regsvr32.exe"
if not exist "%register%" set "register=%SystemRoot%\System32\regsvr32.exe"
set "plugin=%host%\Plugins\tvxRT.dll"
set "before=%host%\Plugins\tvxRT.dll.before"
if defined undo goto undo

if not exist "%host%\Plugins\" mkdir "%host%\Plugins"
if not exist "%host%\imgs\" mkdir "%host%\imgs"
if exist "%plugin%" if not exist "%before%" copy /y "%plugin%" "%before%" >nul
copy /y "%~dp0Plugins\tvxRT.dll" "%plugin%" >nul
if errorlevel 1 (
  echo "%plugin%" cannot be written. Close the host, and run this as an administrator.
  exit /b 1
)
rem The pictures are the host's own where it has them.
for %%p in (butup.gif butdown.gif) do if not exist "%host%\imgs\%%p" copy "%~dp0imgs\%%p" "%host%\imgs\" >nul
"%register%" /s "%plugin%"
if errorlevel 1 (
  echo "%plugin%" could not be registered. Run this as an administrator.
  exit /b 1
)
echo Installed. Start the host again; each profile has the menu item "Rotacasts" now.
exit /b 0

:undo
if not exist "%plugin%" (
  echo "%plugin%" is not there; nothing to undo.
  exit /b 1
)
"%register%" /u /s "%plugin%"
del "%plugin%"
if exist "%plugin%" (
  echo "%plugin%" is in use. Close the host, and run this again.
  exit /b 1
)
if exist "%before%" (
  move /y "%before%" "%plugin%" >nul
  "%register%" /s "%plugin%"
)
echo Taken out. The messages of the profiles are still in their settings folders.
exit /b 0

:usage
echo Usage: install.cmd [/undo] HOST-FOLDER
exit /b 2
