// modules/kernel32/Profile.cpp
//
// The profile functions. Reading takes no lock and, while nothing changes, no access to the file; one lock,
// one edit and one rename per writing.
//
// Known differences from Windows: there are no lists of sections and keys, so a read without a section or a
// key gives the default; a handle that is open on the file while it is changed goes on reading the old
// content; a last line keeps its missing end when its value is replaced.

#include "base/Descriptor.h"
#include "base/IniDocument.h"
#include "base/PlatformCall.h"
#include "base/Remembered.h"
#include "base/Text.h"
#include "base/WholeFile.h"
#include "machine/Machine.h"
#include "modules/kernel32/Paths.h"
#include "modules/kernel32/ShareModes.h"

#include <windows.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <fcntl.h>
#include <memory>

using namespace simulated;

namespace
{

constexpr std::string_view kWindowsFolder = "C:\\WINDOWS\\";

// Prefixes of a number's digits, in lower case alone.
constexpr std::pair<std::string_view, int> kPrefixes[] = {{"0x", 16}, {"0o", 8}, {"0b", 2}};

// A bare name means the Windows folder.
std::string PathOf(LPCWSTR file)
{
    std::string path = ToUtf8(file);
    return path.find_first_of("/\\:") != std::string::npos ? path : std::string(kWindowsFolder) + path;
}

DWORD FindForWriting(const std::string& path, paths::Place& place)
{
    if (const DWORD error = paths::FindAnew(path, place); error != ERROR_SUCCESS)
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

using Document = std::shared_ptr<const IniDocument>;

// The content of a file, or why it can't be read.
Outcome<Document> Load(const std::string& path)
{
    paths::Place place;
    if (const DWORD error = paths::FindExisting(path, place); error != ERROR_SUCCESS)
    {
        return {nullptr, error};
    }
    const Descriptor opened(open(place.host.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (opened.IsOpen() && share_modes::Check(opened.Get(), GENERIC_READ) != ERROR_SUCCESS)
    {
        return {nullptr, ERROR_SHARING_VIOLATION};
    }
    const std::optional<std::string> bytes = opened.IsOpen() ? ReadWhole(opened.Get()) : std::nullopt;
    if (!bytes)
    {
        return {nullptr, paths::ErrorOf(errno)};
    }
    return {std::make_shared<const IniDocument>(*bytes, Machine::AnsiEncoding())};
}

Outcome<Document> Read(LPCWSTR file)
{
    static auto& documents = *new Remembered<Outcome<Document>>;
    const std::string path = PathOf(file);
    return documents.Find(path, [&path] { return Load(path); });
}

// Sets or, with a null pointer in its place, removes a value or a section, and makes the file where it is
// missing.
DWORD Write(LPCWSTR section, LPCWSTR key, LPCWSTR value, const std::string& path)
{
    paths::Place place;
    if (const DWORD error = FindForWriting(path, place); error != ERROR_SUCCESS)
    {
        return error;
    }
    const FileLock lock(place.host);
    if (!lock.IsHeld())
    {
        return paths::ErrorOf(errno);
    }
    // Another writer may have made the file, under another spelling of its name, while this one waited.
    if (const DWORD error = FindForWriting(path, place); error != ERROR_SUCCESS)
    {
        return error;
    }
    const std::optional<std::string> before = place.Exists() ? ReadWhole(place.host) : std::string();
    if (!before)
    {
        return paths::ErrorOf(errno);
    }
    IniDocument document(*before, Machine::AnsiEncoding());
    if (key == nullptr)
    {
        document.Remove(ToUtf8(section));
    }
    else if (value == nullptr)
    {
        document.Remove(ToUtf8(section), ToUtf8(key));
    }
    else
    {
        document.Set(ToUtf8(section), ToUtf8(key), ToUtf8(value));
    }
    const std::string after = document.Bytes();
    const bool isWritten = (place.Exists() && after == *before) || WriteWhole(place.host, after);
    return isWritten ? ERROR_SUCCESS : paths::ErrorOf(errno);
}

// One pair of matching quotes around a value is no part of it.
std::string_view Unquote(std::string_view value) noexcept
{
    const bool isQuoted =
        value.size() >= 2 && value.front() == value.back() && (value.front() == '"' || value.front() == '\'');
    return isQuoted ? value.substr(1, value.size() - 2) : value;
}

// The leading number of a value; 0 where there is none.
UINT ToNumber(std::string_view value) noexcept
{
    const bool isNegative = value.starts_with('-');
    value.remove_prefix(isNegative || value.starts_with('+') ? 1 : 0);
    int base = 10;
    for (const auto& [prefix, prefixBase] : kPrefixes)
    {
        if (value.starts_with(prefix))
        {
            base = prefixBase;
            value.remove_prefix(prefix.size());
            break;
        }
    }
    std::uint64_t number = 0; // of which the lower half counts
    std::from_chars(value.data(), value.data() + value.size(), number, base);
    return static_cast<UINT>(isNegative ? 0 - number : number);
}

// The characters copied; of a text that doesn't fit `size` - 1.
DWORD CopyText(std::string_view text, LPWSTR buffer, DWORD size)
{
    if (size == 0 || buffer == nullptr)
    {
        return 0;
    }
    const std::vector<wchar_t> units = ToUtf16(text);
    const std::size_t count = std::min<std::size_t>(units.size(), size - 1);
    *std::copy_n(units.begin(), count, buffer) = 0;
    return static_cast<DWORD>(count);
}

// Blanks at the end of a default are no part of it.
DWORD CopyDefault(LPCWSTR otherwise, LPWSTR buffer, DWORD size)
{
    const std::string text = ToUtf8(otherwise);
    return CopyText(Unquote(std::string_view(text).substr(0, text.find_last_not_of(' ') + 1)), buffer, size);
}

// A value without its quotes, or why there is none.
Outcome<std::optional<std::string>> Find(LPCWSTR section, LPCWSTR key, LPCWSTR file)
{
    const Outcome<Document> document = Read(file);
    if (document.value == nullptr || section == nullptr || key == nullptr)
    {
        return {std::nullopt,
                document.value != nullptr ? static_cast<DWORD>(ERROR_NOT_SUPPORTED) : document.error};
    }
    const std::optional<std::string> value = document.value->Value(ToUtf8(section), ToUtf8(key));
    return value ? Outcome<std::optional<std::string>>{std::string(Unquote(*value))}
                 : Outcome<std::optional<std::string>>{std::nullopt, ERROR_FILE_NOT_FOUND};
}

} // namespace

SIM_API DWORD WINAPI GetPrivateProfileStringW(LPCWSTR section, LPCWSTR key, LPCWSTR otherwise, LPWSTR buffer,
                                              DWORD size, LPCWSTR file)
{
    PlatformCall call(CallClass::Profile, "GetPrivateProfileStringW", SIM_CALLER);
    call.Arguments(section, key, otherwise, size, file);
    // A read that is refused ends like one of a file that can't be opened.
    const DWORD refused = call.IsRefused() ? CopyDefault(otherwise, buffer, size) : 0;
    return call.Result<DWORD>(refused,
                              [&]() -> Outcome<DWORD>
                              {
                                  const auto found = Find(section, key, file);
                                  return {found.value ? CopyText(*found.value, buffer, size)
                                                      : CopyDefault(otherwise, buffer, size),
                                          found.error};
                              });
}

SIM_API UINT WINAPI GetPrivateProfileIntW(LPCWSTR section, LPCWSTR key, INT otherwise, LPCWSTR file)
{
    PlatformCall call(CallClass::Profile, "GetPrivateProfileIntW", SIM_CALLER);
    call.Arguments(section, key, otherwise, file);
    const auto missing = static_cast<UINT>(otherwise);
    return call.Result<UINT>(missing,
                             [&]() -> Outcome<UINT>
                             {
                                 const auto found = Find(section, key, file);
                                 const bool hasNumber = found.value && !found.value->empty();
                                 return {hasNumber ? ToNumber(*found.value) : missing, found.error};
                             });
}

SIM_API BOOL WINAPI WritePrivateProfileStringW(LPCWSTR section, LPCWSTR key, LPCWSTR value, LPCWSTR file)
{
    PlatformCall call(CallClass::Profile, "WritePrivateProfileStringW", SIM_CALLER);
    call.Arguments(section, key, value, file);
    return call.Boolean(
        [&]() -> DWORD
        {
            if (section == nullptr)
            {
                return ERROR_FILE_NOT_FOUND;
            }
            return file == nullptr || *file == 0 ? ERROR_ACCESS_DENIED
                                                 : Write(section, key, value, PathOf(file));
        });
}
