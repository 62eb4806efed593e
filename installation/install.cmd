@echo off
rem install.cmd ACCOUNT [FOLDER]
rem
rem Installs the plug-in for a host service that runs in ACCOUNT: the files into FOLDER, the registry keys that the
rem plug-in looks for, and the scheme rows into the account's local application data. What didn't exist before is
rem noted in FOLDER\installed.lst, so that uninstall.cmd can remove exactly that. A file that is there already is
rem replaced, as an update.
setlocal
set here=%~dp0
set account=%~1
set folder=%~2
if "%account%"=="" goto usage
if "%folder%"=="" set folder=%ProgramFiles%\Kelvo\ORVL

call "%here%find-folder.cmd" "%account%"
if "%appdata_folder%"=="" goto no_account

set list=%TEMP%\orvl-installed.lst
if exist "%list%" del "%list%"
rem An installation over another one goes on with its list.
if exist "%folder%\installed.lst" copy /y "%folder%\installed.lst" "%list%" >nul

call :make_folder "%folder%"
if errorlevel 1 goto failed
call :make_folder "%folder%\Cfg"
if errorlevel 1 goto failed
for %%f in (pm_limited_support.dll trxhost.exe orvlservice.exe hardware_tour.exe) do call :copy_file "%here%bin\%%f" "%folder%\%%f"
for %%f in (ORVLCfg.ini PowerSetting.ini SBXCfg.ini) do call :copy_file "%here%cfg\%%f" "%folder%\Cfg\%%f"

call :make_folder "%appdata_folder%\Kelvo\ORVL\Cfg"
if errorlevel 1 goto failed
call :copy_file "%here%cfg\PowerSchemes.ini" "%appdata_folder%\Kelvo\ORVL\Cfg\PowerSchemes.ini"
rem The plug-in creates these two on first use.
for %%f in (UserSchemes.ini OrvProfile.ini) do call :expect_file "%appdata_folder%\Kelvo\ORVL\Cfg\%%f"

call :make_key "HKEY_LOCAL_MACHINE\Software\Kelvo"
call :make_key "HKEY_LOCAL_MACHINE\Software\Kelvo\ORVL"
call :make_key "HKEY_LOCAL_MACHINE\Software\Kelvo\ORVA"
reg query "HKEY_LOCAL_MACHINE\Software\Kelvo\ORVL" /v CfgPath >nul 2>nul
if errorlevel 1 call :note value "HKEY_LOCAL_MACHINE\Software\Kelvo\ORVL" CfgPath
rem A backslash before a closing quote would escape it, so the final one is doubled.
reg add "HKEY_LOCAL_MACHINE\Software\Kelvo\ORVL" /v CfgPath /t REG_SZ /d "%folder%\Cfg\\" /f >nul
if errorlevel 1 goto failed

copy /y "%list%" "%folder%\installed.lst" >nul
del "%list%"
echo Installed in %folder%
echo Scheme rows in %appdata_folder%\Kelvo\ORVL\Cfg
exit /b 0

:usage
echo usage: install.cmd ACCOUNT [FOLDER]
echo   ACCOUNT is the account in which the host service runs: SYSTEM, LocalService, NetworkService or a user
exit /b 2

:no_account
echo The local application data folder of %account% was not found: the account has never been logged on.
exit /b 1

:failed
echo The installation failed; run uninstall.cmd to remove what was created.
if exist "%list%" copy /y "%list%" "%folder%\installed.lst" >nul
exit /b 1

rem :note KIND NAME [VALUE]: the newest entry stands first, because removal goes backwards.
:note
echo %~1;%~2;%~3>"%list%.new"
if exist "%list%" type "%list%" >>"%list%.new"
move /y "%list%.new" "%list%" >nul
exit /b 0

rem :make_folder PATH: with its parents, each of them noted.
:make_folder
if exist "%~1\" exit /b 0
for %%p in ("%~1\..") do if not exist "%%~fp\" call :make_folder "%%~fp"
md "%~1" 2>nul
if not exist "%~1\" exit /b 1
call :note folder "%~1"
exit /b 0

:copy_file
if not exist "%~1" exit /b 0
call :expect_file "%~2"
copy /y "%~1" "%~2" >nul
exit /b 0

:expect_file
if not exist "%~1" call :note file "%~1"
exit /b 0

:make_key
reg query "%~1" >nul 2>nul
if not errorlevel 1 exit /b 0
reg add "%~1" /f >nul
call :note key "%~1"
exit /b 0
