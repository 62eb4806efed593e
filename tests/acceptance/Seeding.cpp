// tests/acceptance/Seeding.cpp
//
// A machine set up and looked at through Windows functions.

#include "acceptance/Seeding.h"

#include "foundation/Owners.h"
#include "support/WholeFiles.h"

#include <shlobj.h>
#include <shlwapi.h>

#include <algorithm>

namespace seeding
{

namespace
{

constexpr std::string_view kLogFolder = "C:\\temp1234567890";

std::string LogFile(std::string_view log)
{
    return std::string(kLogFolder) + "\\" + std::string(log);
}

owners::Key Opened(HKEY root, std::string_view path)
{
    owners::Key key;
    RegOpenKeyExW(root, Wide(path).data(), 0, KEY_ALL_ACCESS, key.Put());
    return key;
}

owners::Key Made(HKEY root, std::string_view path)
{
    owners::Key key;
    RegCreateKeyExW(root, Wide(path).data(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, key.Put(), nullptr);
    return key;
}

bool SetValue(HKEY root, std::string_view key, std::string_view name, DWORD type, const void* data,
              std::size_t size)
{
    return RegSetValueExW(Made(root, key).Get(), Wide(name).data(), 0, type, static_cast<const BYTE*>(data),
                          static_cast<DWORD>(size)) == ERROR_SUCCESS;
}

// What `RegQueryValueExW` returns.
bool GetValue(HKEY root, std::string_view key, std::string_view name, void* data, DWORD size)
{
    return RegQueryValueExW(Opened(root, key).Get(), Wide(name).data(), nullptr, nullptr,
                            static_cast<LPBYTE>(data), &size) == ERROR_SUCCESS;
}

} // namespace

bool MakeKey(HKEY root, std::string_view key)
{
    return static_cast<bool>(Made(root, key));
}

bool SetText(HKEY root, std::string_view key, std::string_view name, std::string_view text)
{
    const std::vector<wchar_t> wide = Wide(text);
    return SetValue(root, key, name, REG_SZ, wide.data(),
                    (static_cast<std::size_t>(lstrlenW(wide.data())) + 1) * sizeof(wchar_t));
}

bool SetNumber(HKEY root, std::string_view key, std::string_view name, DWORD number)
{
    return SetValue(root, key, name, REG_DWORD, &number, sizeof number);
}

bool RemoveValue(HKEY root, std::string_view key, std::string_view name)
{
    return RegDeleteValueW(Opened(root, key).Get(), Wide(name).data()) == ERROR_SUCCESS;
}

std::optional<DWORD> GetNumber(HKEY root, std::string_view key, std::string_view name)
{
    DWORD number = 0;
    return GetValue(root, key, name, &number, sizeof number) ? std::optional(number) : std::nullopt;
}

std::optional<std::string> GetText(HKEY root, std::string_view key, std::string_view name)
{
    wchar_t text[1024] = {};
    return GetValue(root, key, name, text, sizeof text - sizeof *text) ? std::optional(Utf8(text))
                                                                       : std::nullopt;
}

bool SetKey(std::string_view file, std::string_view section, std::string_view key, std::string_view value)
{
    return WritePrivateProfileStringW(Wide(section).data(), Wide(key).data(), Wide(value).data(),
                                      Wide(file).data()) != 0;
}

std::string GetKey(std::string_view file, std::string_view section, std::string_view key)
{
    std::vector<wchar_t> text(1024);
    GetPrivateProfileStringW(Wide(section).data(), Wide(key).data(), Wide("(absent)").data(), text.data(),
                             static_cast<DWORD>(text.size()), Wide(file).data());
    return Utf8(text.data());
}

bool WriteBytes(std::string_view file, std::string_view bytes)
{
    MakeFolder(file.substr(0, file.find_last_of('\\')));
    return ::WriteBytes(Wide(file).data(), bytes);
}

std::optional<std::string> ReadBytes(std::string_view file)
{
    return ::ReadBytes(Wide(file).data());
}

bool Exists(std::string_view path)
{
    return PathFileExistsW(Wide(path).data()) != 0;
}

void Remove(std::string_view file)
{
    DeleteFileW(Wide(file).data());
}

bool MakeFolder(std::string_view folder)
{
    SHCreateDirectoryExW(nullptr, Wide(folder).data(), nullptr);
    return Exists(folder);
}

std::string LocalAppData()
{
    wchar_t folder[MAX_PATH] = {};
    SHGetFolderPathW(nullptr, CSIDL_LOCAL_APPDATA, nullptr, 0, folder);
    return Utf8(folder);
}

void SwitchLogsOn()
{
    MakeFolder(kLogFolder);
}

std::vector<std::string> LogLines(std::string_view log)
{
    const std::string bytes = ReadBytes(LogFile(log)).value_or("");
    std::vector<std::string> lines;
    for (std::size_t begin = 0; begin < bytes.size();)
    {
        const std::size_t end = std::min(bytes.find("\r\n", begin), bytes.size());
        lines.push_back(bytes.substr(begin, end - begin));
        begin = end + 2;
    }
    return lines;
}

} // namespace seeding
