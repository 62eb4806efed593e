// tests/powrprof/Support.h
//
// Helpers of the power manager's tests, which run natively and, with the powrprof.dll of the same sources, on
// Windows or Wine.
#pragma once

#include "FreshStore.h"

#include <windows.h>

// Some editions of this header have no guard; nothing else here includes it.
#include <powrprof.h>

#include <string>
#include <type_traits>
#include <vector>

inline constexpr const wchar_t* kUserSchemes = L"Control Panel\\PowerCfg\\PowerPolicies";
inline constexpr const wchar_t* kMachinePower =
    L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Controls Folder\\PowerCfg";

/// ASCII text as a narrow string, so that a failing comparison can show it.
inline std::string Narrow(const wchar_t* text)
{
    std::string narrow;
    for (; *text != 0; ++text)
    {
        narrow.push_back(*text < 0x80 ? static_cast<char>(*text) : '?');
    }
    return narrow;
}

inline std::vector<wchar_t> Wide(const std::string& text)
{
    std::vector<wchar_t> wide(text.begin(), text.end());
    wide.push_back(0);
    return wide;
}

/// A registry path from a wide prefix and ASCII parts.
inline std::vector<wchar_t> Path(const wchar_t* prefix, const std::string& rest)
{
    return Wide(Narrow(prefix) + rest);
}

template <class Record>
std::vector<BYTE> BytesOf(const Record& record)
{
    const BYTE* begin = reinterpret_cast<const BYTE*>(&record);
    return {begin, begin + sizeof record};
}

/// The bytes of a registry value; empty when it is missing.
inline std::vector<BYTE> ReadValue(HKEY root, const std::vector<wchar_t>& path, const wchar_t* name)
{
    HKEY key = nullptr;
    if (RegOpenKeyExW(root, path.data(), 0, KEY_READ, &key) != ERROR_SUCCESS)
    {
        return {};
    }
    BYTE data[1024];
    DWORD size = sizeof data;
    const LSTATUS error = RegQueryValueExW(key, name, nullptr, nullptr, data, &size);
    RegCloseKey(key);
    return error == ERROR_SUCCESS ? std::vector<BYTE>(data, data + size) : std::vector<BYTE>();
}

inline LSTATUS WriteValue(HKEY root, const std::vector<wchar_t>& path, const wchar_t* name, DWORD type,
                          const std::vector<BYTE>& data)
{
    HKEY key = nullptr;
    LSTATUS error = RegCreateKeyExW(root, path.data(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr);
    if (error == ERROR_SUCCESS)
    {
        error = RegSetValueExW(key, name, 0, type, data.data(), static_cast<DWORD>(data.size()));
        RegCloseKey(key);
    }
    return error;
}

inline bool KeyExists(HKEY root, const std::vector<wchar_t>& path)
{
    HKEY key = nullptr;
    const bool exists = RegOpenKeyExW(root, path.data(), 0, KEY_READ, &key) == ERROR_SUCCESS;
    if (exists)
    {
        RegCloseKey(key);
    }
    return exists;
}

inline std::vector<BYTE> TextBytes(const std::string& text)
{
    const std::vector<wchar_t> wide = Wide(text);
    const BYTE* begin = reinterpret_cast<const BYTE*>(wide.data());
    return {begin, begin + wide.size() * sizeof(wchar_t)};
}

inline HMODULE PowerModule()
{
    return LoadLibraryW(L"powrprof.dll");
}

/// A function of the power manager found at run time, as a program does that also runs on version 5.
template <class Function>
Function* Find(const char* name)
{
    const FARPROC found = GetProcAddress(PowerModule(), name);
    return reinterpret_cast<Function*>(reinterpret_cast<void (*)()>(found));
}
