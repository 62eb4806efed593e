@echo off
rem install.cmd ACCOUNT [FOLDER]
rem
rem Installs the plug-in, or updates it, for a host service that runs in ACCOUNT: the files into FOLDER, the registry
rem keys that the plug-in looks for, and the scheme rows into the account's local application data. Programs and setting
rem catalogue are replaced. A settings file that is there already stays, with the shipped one beside it as .new where
rem the two differ. What didn't exist before is noted in FOLDER\installed.lst, so that uninstall.cmd removes exactly
rem that; what a first installation finds there is noted too, so that uninstall.cmd can say what it leaves.
setlocal
set "here=%~dp0"
set "account=%~1"
set "folder=%~2"
if "%account%"=="" goto usage
set "programs=%ProgramFiles%"
if defined ProgramFiles(x86) set "programs=%ProgramFiles(x86)%"
if "%folder%"=="" set "folder=%programs%\Kelvo\ORVL"
for %%p in ("%folder%") do set "folder=%%~fp"
if "%folder:~-1%"=="\" set "folder=%folder:~0,-1%"

call "%here%find-folder.cmd" "%account%"
if "%appdata_folder%"=="" goto no_account
set "rows=%appdata_folder%\Kelvo\ORVL\Cfg"

set failed=no
set first=yes
set "list=%TEMP%\orvl-installed.lst"
if exist "%list%" del "%list%"
rem An installation over an earlier one continues its list.
if exist "%folder%\installed.lst" set first=no
if %first%==no call :copy "%folder%\installed.lst" "%list%"
rem Another program's file would be overwritten now and removed with the plug-in.
if %first%==yes if exist "%folder%\uninstall.cmd" call :fail "%folder%\uninstall.cmd belongs to another program"
if %failed%==yes goto refused
if %first%==yes call :note_path "HKEY_LOCAL_MACHINE\Software\Kelvo\ORVL"

for %%p in ("%folder%" "%folder%\Cfg" "%rows%") do call :make_folder "%%~p"
rem The DLL comes first: while a host has it loaded, nothing is replaced.
for %%f in (pm_limited_support.dll trxhost.exe orvlservice.exe hardware_tour.exe) do call :copy_file "%here%bin\%%f" "%folder%\%%f"
call :copy_file "%here%cfg\PowerSetting.ini" "%folder%\Cfg\PowerSetting.ini"
for %%f in (ORVLCfg.ini SBXCfg.ini) do call :copy_settings "%here%cfg\%%f" "%folder%\Cfg\%%f"
call :copy_settings "%here%cfg\PowerSchemes.ini" "%rows%\PowerSchemes.ini"
rem The plug-in creates these two on first use.
for %%f in (UserSchemes.ini OrvProfile.ini) do call :note_file "%rows%\%%f"
rem Like the list it isn't noted: uninstall.cmd removes both when nothing else is left to remove.
call :copy "%here%uninstall.cmd" "%folder%\uninstall.cmd"
if %failed%==yes goto failed

for %%k in (Kelvo Kelvo\ORVL Kelvo\ORVA) do call :make_key "HKEY_LOCAL_MACHINE\Software\%%k"
call :set_path "HKEY_LOCAL_MACHINE\Software\Kelvo\ORVL"
if %failed%==yes goto failed
call :copy "%list%" "%folder%\installed.lst"
if %failed%==yes goto failed
del "%list%"
echo Installed in %folder%
echo Scheme rows in %rows%
exit /b 0

:usage
echo usage: install.cmd ACCOUNT [FOLDER]
echo   ACCOUNT is the account in which the host service runs: SYSTEM, LocalService, NetworkService or a user
exit /b 2

:no_account
echo The local application data folder of %account% was not found. A user must be logged on.
exit /b 1

:failed
if exist "%list%" if exist "%folder%\" copy /y "%list%" "%folder%\installed.lst" >nul
:refused
if exist "%list%" del "%list%"
echo The installation failed. Stop the host and whatever else uses the files, and run install.cmd as an
echo administrator again; uninstall.cmd removes what was created.
exit /b 1

rem :note KIND NAME [VALUE]: the newest entry comes first, because removal goes backwards.
:note
echo %~1;"%~2";%~3>"%list%.new"
if exist "%list%" type "%list%" >>"%list%.new"
move /y "%list%.new" "%list%" >nul
exit /b 0

:note_file
if exist "%~1" if %first%==yes call :note kept "%~1"
if not exist "%~1" call :note file "%~1"
exit /b 0

rem :make_folder PATH: with its parents, each of them noted. A drive or a share is its own parent. Like the copying, it
rem does nothing after a failure.
:make_folder
if exist "%~1\" exit /b 0
for %%p in ("%~1\..") do set "parent=%%~fp"
if "%parent:~-1%"=="\" set "parent=%parent:~0,-1%"
if /i "%parent%"=="%~1" exit /b 0
call :make_folder "%parent%"
if %failed%==yes exit /b 0
md "%~1" 2>nul
if exist "%~1\" call :note folder "%~1"
if not exist "%~1\" call :fail "Can't create %~1"
exit /b 0

:fail
echo %~1
set failed=yes
exit /b 0

:copy
if %failed%==yes exit /b 0
copy /y "%~1" "%~2" >nul
if errorlevel 1 call :fail "Can't copy %~1 to %~2"
rem A copy from a compact disc is read-only.
if %failed%==no attrib -r "%~2"
exit /b 0

:copy_file
call :note_file "%~2"
goto copy

rem The call lets a command file stand in for fc where there is no working one.
:copy_settings
if exist "%~2" if %first%==yes call :note kept "%~2"
if %failed%==yes exit /b 0
if not exist "%~2" goto copy_file
call fc /b "%~1" "%~2" >nul
if errorlevel 1 goto copy_beside
if exist "%~2.new" del "%~2.new"
exit /b 0

:copy_beside
echo Kept %~2
echo   The shipped file differs and is beside it as .new; take over what you need.
call :note_file "%~2.new"
call :copy "%~1" "%~2.new"
exit /b 0

rem :view KEY: sets `key` to the plug-in's key as this prompt sees it. The plug-in has the 32-bit view of the registry,
rem which 64-bit programs find below Wow6432Node.
:view
set "key=%~1"
if not "%PROCESSOR_ARCHITECTURE%"=="x86" set "key=%key:\Software\=\Software\Wow6432Node\%"
exit /b 0

:make_key
call :view "%~1"
reg query "%key%" >nul 2>nul
if not errorlevel 1 exit /b 0
reg add "%key%" /f >nul
if errorlevel 1 call :fail "Can't create %key%"
call :note key "%~1"
exit /b 0

rem :note_path KEY: called before anything can fail: a second attempt finds a list and takes CfgPath for its own.
:note_path
call :view "%~1"
reg query "%key%" /v CfgPath >nul 2>nul
if errorlevel 1 exit /b 0
call :note kept_value "%~1" CfgPath
echo Replacing CfgPath of %key%, which was there before
exit /b 0

:set_path
call :view "%~1"
reg query "%key%" /v CfgPath >nul 2>nul
if errorlevel 1 call :note value "%~1" CfgPath
rem A backslash before a closing quote would escape it, so the final one is doubled.
reg add "%key%" /v CfgPath /t REG_SZ /d "%folder%\Cfg\\" /f >nul
if errorlevel 1 call :fail "Can't write CfgPath of %key%"
exit /b 0
