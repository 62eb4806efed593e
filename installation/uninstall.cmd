@echo off
rem uninstall.cmd [FOLDER]
rem
rem Removes what install.cmd created, as noted in FOLDER\installed.lst, newest first, and says what it leaves: what was
rem there before the installation, and what others have put there since. When a file or a key can't be removed, the list
rem and FOLDER\uninstall.cmd stay for another attempt.
setlocal
set "list=%TEMP%\orvl-uninstall.lst"
set "folder=%~1"
if "%folder%"=="" if exist "%~dp0installed.lst" set "folder=%~dp0"
set "programs=%ProgramFiles%"
if defined ProgramFiles(x86) set "programs=%ProgramFiles(x86)%"
if "%folder%"=="" set "folder=%programs%\Kelvo\ORVL"
for %%p in ("%folder%") do set "folder=%%~fp"
if "%folder:~-1%"=="\" set "folder=%folder:~0,-1%"
if not exist "%folder%\installed.lst" goto nothing
if not exist "%~dp0installed.lst" goto remove
rem The installed command file can't go on when it has deleted itself, so a copy takes over and doesn't return.
copy /y "%~f0" "%TEMP%\orvl-uninstall.cmd" >nul
if errorlevel 1 goto failed
"%TEMP%\orvl-uninstall.cmd" "%folder%"

:remove
rem The prompt's current folder can't be removed.
cd /d "%SystemRoot%"
set left=no
set failed=no
copy /y "%folder%\installed.lst" "%list%" >nul
if errorlevel 1 goto failed
for /f "usebackq tokens=1,2,3 delims=;" %%a in ("%list%") do if not "%%a"=="folder" call :remove_%%a "%%~b" "%%c"
if %failed%==no call :remove_file "%folder%\uninstall.cmd"
if %failed%==yes goto failed
del "%folder%\installed.lst"
for /f "usebackq tokens=1,2 delims=;" %%a in ("%list%") do if "%%a"=="folder" call :remove_folder "%%~b"
del "%list%"
if %left%==no echo Removed.
if %left%==yes echo The rest was removed.
exit /b 0

:nothing
echo Nothing is installed in %folder%.
exit /b 1

:failed
if exist "%list%" del "%list%"
echo Not everything could be removed. Stop the host and whatever else uses the files, and run uninstall.cmd as an
echo administrator again.
exit /b 1

:leave
echo Left: %~1
set left=yes
exit /b 0

:fail
echo %~1
set failed=yes
exit /b 0

:remove_file
if exist "%~1" del /f /q "%~1" 2>nul
if exist "%~1" call :fail "Can't remove %~1"
exit /b 0

:remove_kept
if exist "%~1" call :leave "%~1, which was there before the installation"
exit /b 0

:remove_folder
rd "%~1" 2>nul
if exist "%~1\" call :leave "%~1, which isn't empty or is in use"
exit /b 0

rem :view KEY: sets `key` to the plug-in's key as this prompt sees it. The plug-in has the 32-bit view of the registry,
rem which 64-bit programs find below Wow6432Node.
:view
set "key=%~1"
if not "%PROCESSOR_ARCHITECTURE%"=="x86" set "key=%key:\Software\=\Software\Wow6432Node\%"
exit /b 0

rem A key stays when others have put keys below it.
:remove_key
call :view "%~1"
set others=no
reg query "%key%" >"%TEMP%\orvl-key.txt" 2>nul
for /f "usebackq tokens=*" %%k in ("%TEMP%\orvl-key.txt") do call :look_at "%%k"
del "%TEMP%\orvl-key.txt"
if %others%==yes call :leave "%key%, which has other keys below it"
if %others%==yes exit /b 0
reg delete "%key%" /f >nul 2>nul
reg query "%key%" >nul 2>nul
if not errorlevel 1 call :fail "Can't remove %key%"
exit /b 0

:look_at
set "line=%~1"
if /i "%line:~0,5%"=="HKEY_" if /i not "%line%"=="%key%" set others=yes
exit /b 0

:remove_value
call :view "%~1"
reg delete "%key%" /v "%~2" /f >nul 2>nul
reg query "%key%" /v "%~2" >nul 2>nul
if not errorlevel 1 call :fail "Can't remove %key%, value %~2"
exit /b 0

:remove_kept_value
call :view "%~1"
reg query "%key%" /v "%~2" >nul 2>nul
if not errorlevel 1 call :leave "%key%, value %~2, which was there before the installation"
exit /b 0
