// tests/acceptance/Seeding.h
//
// Setting a machine up and looking at it through Windows functions alone, so that the same tests run natively
// and on Windows. Texts are UTF-8 here.
#pragma once

#include "support/WideText.h"

#include <windows.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace seeding
{

using ::Utf8;
using ::Wide;

/// Makes a key, or writes a value and makes its key; false when the registry refuses.
bool MakeKey(HKEY root, std::string_view key);
bool SetText(HKEY root, std::string_view key, std::string_view name, std::string_view text);
bool SetNumber(HKEY root, std::string_view key, std::string_view name, DWORD number);
bool RemoveValue(HKEY root, std::string_view key, std::string_view name);
std::optional<DWORD> GetNumber(HKEY root, std::string_view key, std::string_view name);
std::optional<std::string> GetText(HKEY root, std::string_view key, std::string_view name);

/// One key of a configuration file.
bool SetKey(std::string_view file, std::string_view section, std::string_view key, std::string_view value);
std::string GetKey(std::string_view file, std::string_view section, std::string_view key);

/// Whole files. `WriteBytes` makes the folder of the file, too.
bool WriteBytes(std::string_view file, std::string_view bytes);
std::optional<std::string> ReadBytes(std::string_view file);
bool Exists(std::string_view path);
void Remove(std::string_view file);
bool MakeFolder(std::string_view folder);

/// The local application data folder of the running account.
std::string LocalAppData();

/// The two logs: their folder is the switch. `LogLines` gives the lines of "orvl.log" or "trxpm.log" without
/// their ends; nothing where there is no such file.
void SwitchLogsOn();
std::vector<std::string> LogLines(std::string_view log);

} // namespace seeding
