@echo off
rem uninstall.cmd [FOLDER]
rem
rem Removes what install.cmd created, as noted in FOLDER\installed.lst, newest first. What was there before, and what
rem came into being later, stays.
setlocal
set folder=%~1
if "%folder%"=="" set folder=%ProgramFiles%\Kelvo\ORVL
set list=%TEMP%\orvl-uninstall.lst
if not exist "%folder%\installed.lst" goto nothing
move /y "%folder%\installed.lst" "%list%" >nul
for /f "usebackq tokens=1,2,3 delims=;" %%a in ("%list%") do call :remove_%%a "%%b" "%%c"
del "%list%"
echo Removed.
exit /b 0

:nothing
echo Nothing is installed in %folder%.
exit /b 1

:remove_file
if exist "%~1" del /f /q "%~1"
exit /b 0

:remove_folder
rd "%~1" 2>nul
exit /b 0

rem A key below which others have put keys of their own meanwhile stays.
:remove_key
set others=no
reg query "%~1" >"%TEMP%\orvl-key.txt" 2>nul
for /f "usebackq tokens=*" %%k in ("%TEMP%\orvl-key.txt") do call :look_at "%~1" "%%k"
del "%TEMP%\orvl-key.txt"
if %others%==no reg delete "%~1" /f >nul 2>nul
exit /b 0

:look_at
set line=%~2
if /i "%line:~0,5%"=="HKEY_" if /i not "%line%"=="%~1" set others=yes
exit /b 0

:remove_value
reg delete "%~1" /v "%~2" /f >nul 2>nul
exit /b 0
