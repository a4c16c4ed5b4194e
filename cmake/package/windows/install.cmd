@echo off
rem Registers the DLLs of this folder, or takes them out again.
rem
rem   install [user | machine] [platform] [/u]
rem
rem   user      for you alone (the default)
rem   machine   for everybody; needs an administrator's rights
rem   platform  OrvoPlatform.dll as well, for systems without an application server or record sets
rem   /u        take them out, OrvoPlatform.dll as well
setlocal
set how=/n /i:user
set modules=OrvoSuite OrvoMembership
set undo=
:next
if "%~1"=="" goto go
if /i "%~1"=="user" (set how=/n /i:user) else (
if /i "%~1"=="machine" (set how=) else (
if /i "%~1"=="platform" (set modules=OrvoPlatform OrvoSuite OrvoMembership) else (
if /i "%~1"=="/u" (set undo=/u) else (
echo install: there is no "%~1"; see the head of install.cmd
exit /b 2
))))
shift
goto next
:go
if not "%undo%"=="" set modules=OrvoPlatform OrvoSuite OrvoMembership
for %%m in (%modules%) do (
  regsvr32 /s %undo% %how% "%~dp0%%m.dll"
  if errorlevel 1 (
    echo install: %%m.dll could not be registered or taken out
    exit /b 1
  )
)
if "%undo%"=="" (echo Registered: %modules%) else (echo Taken out: %modules%)
