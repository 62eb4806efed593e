// tests/acceptance/Seeding.cpp
//
// A machine set up and looked at through Windows functions.

#include "acceptance/Seeding.h"

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

// A registry key for the length of a scope.
class Key
{
public:
    Key(HKEY root, std::string_view path, bool create)
    {
        const std::vector<wchar_t> name = Wide(path);
        if (create)
        {
            RegCreateKeyExW(root, name.data(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &m_key, nullptr);
        }
        else
        {
            RegOpenKeyExW(root, name.data(), 0, KEY_ALL_ACCESS, &m_key);
        }
    }
    ~Key()
    {
        if (m_key != nullptr)
        {
            RegCloseKey(m_key);
        }
    }
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;

    HKEY Get() const
    {
        return m_key;
    }

private:
    HKEY m_key = nullptr;
};

bool SetValue(HKEY root, std::string_view key, std::string_view name, DWORD type, const void* data,
              DWORD size)
{
    const Key opened(root, key, true);
    return RegSetValueExW(opened.Get(), Wide(name).data(), 0, type, static_cast<const BYTE*>(data), size) ==
           ERROR_SUCCESS;
}

std::vector<std::string> LinesOf(const std::string& bytes)
{
    std::vector<std::string> lines;
    for (std::size_t begin = 0; begin < bytes.size();)
    {
        const std::size_t end = std::min(bytes.find("\r\n", begin), bytes.size());
        lines.push_back(bytes.substr(begin, end - begin));
        begin = end + 2;
    }
    return lines;
}

} // namespace

std::vector<wchar_t> Wide(std::string_view text)
{
    std::vector<wchar_t> wide(text.size() + 1);
    if (!text.empty())
    {
        MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), wide.data(),
                            static_cast<int>(text.size()));
    }
    return wide;
}

std::string Utf8(const wchar_t* text)
{
    const int length = lstrlenW(text);
    std::string narrow(static_cast<std::size_t>(length) * 3, '\0');
    const int size = length == 0 ? 0
                                 : WideCharToMultiByte(CP_UTF8, 0, text, length, narrow.data(),
                                                       static_cast<int>(narrow.size()), nullptr, nullptr);
    narrow.resize(static_cast<std::size_t>(size));
    return narrow;
}

bool MakeKey(HKEY root, std::string_view key)
{
    return Key(root, key, true).Get() != nullptr;
}

bool SetText(HKEY root, std::string_view key, std::string_view name, std::string_view text)
{
    const std::vector<wchar_t> wide = Wide(text);
    const auto size =
        static_cast<DWORD>((static_cast<std::size_t>(lstrlenW(wide.data())) + 1) * sizeof(wchar_t));
    return SetValue(root, key, name, REG_SZ, wide.data(), size);
}

bool SetNumber(HKEY root, std::string_view key, std::string_view name, DWORD number)
{
    return SetValue(root, key, name, REG_DWORD, &number, sizeof number);
}

bool RemoveValue(HKEY root, std::string_view key, std::string_view name)
{
    const Key opened(root, key, false);
    return RegDeleteValueW(opened.Get(), Wide(name).data()) == ERROR_SUCCESS;
}

std::optional<DWORD> GetNumber(HKEY root, std::string_view key, std::string_view name)
{
    const Key opened(root, key, false);
    DWORD number = 0;
    DWORD size = sizeof number;
    const LSTATUS read = RegQueryValueExW(opened.Get(), Wide(name).data(), nullptr, nullptr,
                                          reinterpret_cast<LPBYTE>(&number), &size);
    return read == ERROR_SUCCESS ? std::optional(number) : std::nullopt;
}

std::optional<std::string> GetText(HKEY root, std::string_view key, std::string_view name)
{
    const Key opened(root, key, false);
    std::vector<wchar_t> text(1024);
    auto size = static_cast<DWORD>((text.size() - 1) * sizeof(wchar_t));
    const LSTATUS read = RegQueryValueExW(opened.Get(), Wide(name).data(), nullptr, nullptr,
                                          reinterpret_cast<LPBYTE>(text.data()), &size);
    return read == ERROR_SUCCESS ? std::optional(Utf8(text.data())) : std::nullopt;
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
    const auto nameBegin = file.find_last_of('\\');
    if (nameBegin != std::string_view::npos)
    {
        MakeFolder(file.substr(0, nameBegin));
    }
    const HANDLE opened = CreateFileW(Wide(file).data(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                      FILE_ATTRIBUTE_NORMAL, nullptr);
    if (opened == INVALID_HANDLE_VALUE)
    {
        return false;
    }
    DWORD written = 0;
    const bool done =
        WriteFile(opened, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) != 0 &&
        written == bytes.size();
    CloseHandle(opened);
    return done;
}

std::optional<std::string> ReadBytes(std::string_view file)
{
    const HANDLE opened = CreateFileW(Wide(file).data(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                      nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (opened == INVALID_HANDLE_VALUE)
    {
        return std::nullopt;
    }
    std::string bytes(GetFileSize(opened, nullptr), '\0');
    DWORD read = 0;
    ReadFile(opened, bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr);
    CloseHandle(opened);
    bytes.resize(read);
    return bytes;
}

bool IsWellFormed(std::string_view file)
{
    const std::vector<std::string> lines = LinesOf(ReadBytes(file).value_or(""));
    return std::all_of(lines.begin(), lines.end(),
                       [](const std::string& line)
                       {
                           const bool isHeader = line.starts_with('[') && line.ends_with(']');
                           const bool isKey = line.find('=') != std::string::npos;
                           return line.find('\0') == std::string::npos &&
                                  (line.empty() || line[0] == ';' || isHeader || isKey);
                       });
}

bool Exists(std::string_view path)
{
    return GetFileAttributesW(Wide(path).data()) != INVALID_FILE_ATTRIBUTES;
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

void SwitchLogsOff()
{
    Remove(LogFile("orvl.log"));
    Remove(LogFile("trxpm.log"));
    RemoveDirectoryW(Wide(kLogFolder).data());
}

std::vector<std::string> LogLines(std::string_view log)
{
    return LinesOf(ReadBytes(LogFile(log)).value_or(""));
}

} // namespace seeding
