// modules/kernel32/Profile.cpp
//
// One open and one walk per reading; one lock, one edit and one rename per writing.

#include "modules/kernel32/Profile.h"

#include "base/CodePage.h"
#include "base/Descriptor.h"
#include "base/WholeFile.h"
#include "machine/Machine.h"
#include "modules/kernel32/Paths.h"
#include "modules/kernel32/ShareModes.h"

#include <winnt.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <utility>

namespace simulated::profile
{

namespace
{

// "-0x10" is -16; the letters are lower-case alone.
struct Prefix
{
    std::string_view text;
    UINT base;
};
constexpr std::array kPrefixes = {Prefix{"0x", 16}, Prefix{"0o", 8}, Prefix{"0b", 2}};

std::string WithFolder(std::string_view file)
{
    if (file.find_first_of("/\\:") != std::string_view::npos)
    {
        return std::string(file);
    }
    std::string path(paths::kWindowsFolder);
    path += '\\';
    path += file;
    return path;
}

DWORD FindForWriting(std::string_view file, paths::Place& place)
{
    if (file.empty())
    {
        return ERROR_ACCESS_DENIED;
    }
    if (const DWORD error = paths::Find(WithFolder(file), place); error != ERROR_SUCCESS)
    {
        return error;
    }
    if (place.IsFolder() || place.IsReadOnly())
    {
        return ERROR_ACCESS_DENIED;
    }
    const DWORD error = paths::CheckFolder(place);
    return error == ERROR_SUCCESS && place.Exists()
               ? share_modes::Check(place.host, GENERIC_READ | GENERIC_WRITE)
               : error;
}

void Change(IniDocument& document, const std::string& section, const std::optional<std::string>& key,
            const std::optional<std::string>& value)
{
    if (!key)
    {
        document.Remove(section);
    }
    else if (!value)
    {
        document.Remove(section, *key);
    }
    else
    {
        document.Set(section, *key, *value);
    }
}

// 36 for what is no digit of any base.
UINT DigitOf(char character)
{
    if (character >= '0' && character <= '9')
    {
        return static_cast<UINT>(character - '0');
    }
    const char lower = static_cast<char>(character | 0x20);
    return lower >= 'a' && lower <= 'z' ? static_cast<UINT>(lower - 'a' + 10) : 36;
}

} // namespace

Outcome<std::optional<IniDocument>> Read(std::string_view file)
{
    paths::Place place;
    if (const DWORD error = paths::FindExisting(WithFolder(file), place); error != ERROR_SUCCESS)
    {
        return {std::nullopt, error};
    }
    const Descriptor opened(open(place.host.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (opened.IsOpen() && share_modes::Check(opened.Get(), GENERIC_READ) != ERROR_SUCCESS)
    {
        return {std::nullopt, ERROR_SHARING_VIOLATION};
    }
    std::optional<std::string> bytes = opened.IsOpen() ? ReadWhole(opened.Get()) : std::nullopt;
    if (!bytes)
    {
        return {std::nullopt, paths::ErrorOf(errno)};
    }
    return {IniDocument(*std::move(bytes), Machine::AnsiEncoding()), ERROR_SUCCESS};
}

DWORD Write(std::string_view file, const std::optional<std::string>& section,
            const std::optional<std::string>& key, const std::optional<std::string>& value)
{
    if (!section)
    {
        return ERROR_FILE_NOT_FOUND;
    }
    paths::Place place;
    if (const DWORD error = FindForWriting(file, place); error != ERROR_SUCCESS)
    {
        return error;
    }
    const FileLock lock(place.host);
    if (!lock.IsHeld())
    {
        return paths::ErrorOf(errno);
    }
    // Another writer may have made the file, under another spelling of its name, while this one waited.
    if (const DWORD error = FindForWriting(file, place); error != ERROR_SUCCESS)
    {
        return error;
    }
    std::string bytes;
    if (place.Exists())
    {
        std::optional<std::string> read = ReadWhole(place.host);
        if (!read)
        {
            return paths::ErrorOf(errno);
        }
        bytes = *std::move(read);
    }
    const std::string before = bytes;
    IniDocument document(std::move(bytes), Machine::AnsiEncoding());
    Change(document, *section, key, value);
    if (place.Exists() && document.Bytes() == before)
    {
        return ERROR_SUCCESS;
    }
    return WriteWhole(place.host, document.Bytes()) ? ERROR_SUCCESS : paths::ErrorOf(errno);
}

std::string_view Unquote(std::string_view value) noexcept
{
    const bool isQuoted =
        value.size() >= 2 && value.front() == value.back() && (value.front() == '"' || value.front() == '\'');
    return isQuoted ? value.substr(1, value.size() - 2) : value;
}

UINT ToNumber(std::string_view value) noexcept
{
    value.remove_prefix(std::min(value.find_first_not_of(" \t\v\f"), value.size()));
    const bool isNegative = value.starts_with('-');
    if (isNegative || value.starts_with('+'))
    {
        value.remove_prefix(1);
    }
    UINT base = 10;
    for (const Prefix& prefix : kPrefixes)
    {
        if (value.starts_with(prefix.text))
        {
            base = prefix.base;
            value.remove_prefix(prefix.text.size());
            break;
        }
    }
    UINT number = 0;
    for (const char character : value)
    {
        const UINT digit = DigitOf(character);
        if (digit >= base)
        {
            break;
        }
        number = number * base + digit;
    }
    return isNegative ? 0U - number : number;
}

} // namespace simulated::profile
