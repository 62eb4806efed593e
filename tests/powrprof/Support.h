// tests/powrprof/Support.h
//
// Helpers of the power manager's tests, which run natively and, with the powrprof.dll of the same sources, on
// Windows or Wine.
#pragma once

#include "FreshStore.h"
#include "support/LastError.h"
#include "support/WideText.h"

#include <windows.h>

// Some editions of this header have no guard; nothing else here includes it.
#include <powrprof.h>

#include <string>
#include <type_traits>
#include <vector>

/// Below the user's key and below the machine's.
inline const std::string kUserPower = "Control Panel\\PowerCfg";
inline const std::string kMachinePower =
    "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Controls Folder\\PowerCfg";

/// What the functions that answer a number answer for success.
inline constexpr DWORD kDone = ERROR_SUCCESS;

template <class Record>
std::vector<BYTE> BytesOf(const Record& record)
{
    const BYTE* begin = reinterpret_cast<const BYTE*>(&record);
    return {begin, begin + sizeof record};
}

/// The bytes of a registry value; empty when it is missing.
inline std::vector<BYTE> ReadValue(HKEY root, const std::string& path, const wchar_t* name)
{
    HKEY key = nullptr;
    if (RegOpenKeyExW(root, Wide(path).data(), 0, KEY_READ, &key) != ERROR_SUCCESS)
    {
        return {};
    }
    BYTE data[1024];
    DWORD size = sizeof data;
    const LSTATUS error = RegQueryValueExW(key, name, nullptr, nullptr, data, &size);
    RegCloseKey(key);
    return error == ERROR_SUCCESS ? std::vector<BYTE>(data, data + size) : std::vector<BYTE>();
}

inline LSTATUS WriteValue(HKEY root, const std::string& path, const wchar_t* name, DWORD type,
                          const std::vector<BYTE>& data)
{
    HKEY key = nullptr;
    LSTATUS error =
        RegCreateKeyExW(root, Wide(path).data(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr);
    if (error == ERROR_SUCCESS)
    {
        error = RegSetValueExW(key, name, 0, type, data.data(), static_cast<DWORD>(data.size()));
        RegCloseKey(key);
    }
    return error;
}

inline bool KeyExists(HKEY root, const std::string& path)
{
    HKEY key = nullptr;
    return RegOpenKeyExW(root, Wide(path).data(), 0, KEY_READ, &key) == ERROR_SUCCESS &&
           RegCloseKey(key) == ERROR_SUCCESS;
}

inline std::vector<BYTE> TextBytes(const std::string& text)
{
    const std::vector<wchar_t> wide = Wide(text);
    const BYTE* begin = reinterpret_cast<const BYTE*>(wide.data());
    return {begin, begin + wide.size() * sizeof(wchar_t)};
}

/// A function of the power manager found at run time, as a program does that also runs on version 5.
template <class Function>
Function* Find(const char* name)
{
    const FARPROC found = GetProcAddress(LoadLibraryW(L"powrprof.dll"), name);
    return reinterpret_cast<Function*>(reinterpret_cast<void (*)()>(found));
}
