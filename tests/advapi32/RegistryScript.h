// tests/advapi32/RegistryScript.h
//
// A small language for a test's steps on the registry, so that a case is one line:
//
//     make Child\Grand; open cHILD\; set Name text; get nAME
//
// Each step prints a word or two; a step that begins with "-" prints nothing. A subkey or name "null"
// is a null pointer, "''" an empty text. "hold PATH ACCESS" opens a key that the steps in "@" work on ("@set
// v x"). Plain Win32, for Windows too.
#pragma once

#include <windows.h>

#include <string>

namespace registry_script
{

constexpr const wchar_t* kScratch = L"Software\\PmConformance";

/// Runs a script on `key`. Returns the output of its steps, with blanks between them.
std::string Play(HKEY key, const std::string& script);

/// Deletes a key with all that is below it, when it is there.
void RemoveTree(HKEY parent, const wchar_t* name);

} // namespace registry_script
