@echo off
rem find-folder.cmd ACCOUNT
rem
rem Sets appdata_folder to the local application data folder of an account, read from the account's hive. Empty
rem when it isn't known. Called by install.cmd.
set appdata_folder=
set shell_folders=Software\Microsoft\Windows\CurrentVersion\Explorer\Shell Folders
if /i "%~1"=="%USERNAME%" call :ask "HKCU\%shell_folders%"
if /i "%~1"=="SYSTEM" call :ask "HKU\S-1-5-18\%shell_folders%"
if /i "%~1"=="LocalService" call :ask "HKU\S-1-5-19\%shell_folders%"
if /i "%~1"=="NetworkService" call :ask "HKU\S-1-5-20\%shell_folders%"
if not "%appdata_folder%"=="" goto found

rem A user who is logged on now: the key is named by the SID, and the profile folder by the account.
reg query "HKLM\SOFTWARE\Microsoft\Windows NT\CurrentVersion\ProfileList" >"%TEMP%\orvl-profiles.txt" 2>nul
for /f "usebackq tokens=*" %%k in ("%TEMP%\orvl-profiles.txt") do call :try_profile "%%k" "%~1"
del "%TEMP%\orvl-profiles.txt"
if "%appdata_folder%"=="" exit /b 0

:found
rem A 32-bit program that asks for a folder below system32 gets the one below SysWOW64.
if exist "%SystemRoot%\SysWOW64\" set "appdata_folder=%appdata_folder:\system32\=\SysWOW64\%"
exit /b 0

rem :query KEY VALUE: writes the line with the value to a file, which is empty when there is none.
:query
reg query %1 /v %2 2>nul | find "REG_" >"%TEMP%\orvl-query.txt"
exit /b 0

rem :ask KEY: the value's text comes after its name, which contains a blank, and its type.
:ask
call :query %1 "Local AppData"
for /f "usebackq tokens=3*" %%a in ("%TEMP%\orvl-query.txt") do set "appdata_folder=%%b"
del "%TEMP%\orvl-query.txt"
exit /b 0

:try_profile
for %%s in (%1) do set sid=%%~nxs
call :query %1 ProfileImagePath
set image=
for /f "usebackq tokens=2*" %%a in ("%TEMP%\orvl-query.txt") do set image=%%b
del "%TEMP%\orvl-query.txt"
for %%p in ("%image%") do if /i "%%~nxp"=="%~2" call :ask "HKU\%sid%\%shell_folders%"
exit /b 0
