// modules/kernel32/ProfileApi.cpp
//
// The public profile functions: arguments, buffers, answers.
//
// Known difference from Windows: there are no lists of sections and keys, so a read without a section or a
// key gives the default.

#include "base/PlatformCall.h"
#include "base/Text.h"
#include "modules/kernel32/Profile.h"

#include <windows.h>

#include <algorithm>

using namespace simulated;

namespace
{

constexpr LPCWSTR kDefaultFile = L"win.ini";

std::optional<std::string> Optional(LPCWSTR text)
{
    return text == nullptr ? std::nullopt : std::optional(ToUtf8(text));
}

std::string FileName(LPCWSTR file)
{
    return ToUtf8(file == nullptr ? kDefaultFile : file);
}

// The characters copied; of a text that doesn't fit `size` - 1.
DWORD CopyText(std::string_view text, LPWSTR buffer, DWORD size)
{
    const std::vector<wchar_t> units = ToUtf16(text);
    const std::size_t count = std::min<std::size_t>(units.size(), size - 1);
    std::copy_n(units.begin(), count, buffer);
    buffer[count] = 0;
    return static_cast<DWORD>(count);
}

// Blanks at the end of a default are no part of it.
std::string DefaultText(LPCWSTR otherwise)
{
    std::string text = ToUtf8(otherwise);
    text.resize(text.find_last_not_of(' ') + 1);
    return text;
}

DWORD CopyDefault(LPCWSTR otherwise, LPWSTR buffer, DWORD size)
{
    return size == 0 || buffer == nullptr ? 0
                                          : CopyText(profile::Unquote(DefaultText(otherwise)), buffer, size);
}

Outcome<DWORD> GetString(LPCWSTR section, LPCWSTR key, LPCWSTR otherwise, LPWSTR buffer, DWORD size,
                         const std::string& file)
{
    if (size == 0 || buffer == nullptr)
    {
        return {0, ERROR_SUCCESS};
    }
    const Outcome<std::optional<IniDocument>> document = profile::Read(file);
    const auto answerDefault = [&](DWORD error) -> Outcome<DWORD> {
        return {CopyDefault(otherwise, buffer, size), error};
    };
    if (!document.value)
    {
        return answerDefault(document.error);
    }
    if (section == nullptr || key == nullptr)
    {
        return answerDefault(ERROR_NOT_SUPPORTED);
    }
    const std::optional<std::string> value = document.value->Value(ToUtf8(section), ToUtf8(key));
    return value ? Outcome<DWORD>{CopyText(profile::Unquote(*value), buffer, size), ERROR_SUCCESS}
                 : answerDefault(ERROR_FILE_NOT_FOUND);
}

Outcome<UINT> GetInt(LPCWSTR section, LPCWSTR key, INT otherwise, const std::string& file)
{
    const auto missing = static_cast<UINT>(otherwise);
    const Outcome<std::optional<IniDocument>> document = profile::Read(file);
    if (!document.value || section == nullptr || key == nullptr)
    {
        return {missing, document.error};
    }
    const std::optional<std::string> value = document.value->Value(ToUtf8(section), ToUtf8(key));
    if (!value)
    {
        return {missing, ERROR_FILE_NOT_FOUND};
    }
    const std::string_view text = profile::Unquote(*value);
    return {text.empty() ? missing : profile::ToNumber(text), ERROR_SUCCESS};
}

} // namespace

SIM_API DWORD WINAPI GetPrivateProfileStringW(LPCWSTR section, LPCWSTR key, LPCWSTR otherwise, LPWSTR buffer,
                                              DWORD size, LPCWSTR file)
{
    PlatformCall call(CallClass::Profile, "GetPrivateProfileStringW", SIM_CALLER);
    call.Arguments(section, key, otherwise, size, file);
    // A read that is refused ends like one of a file that can't be opened.
    const DWORD refused = call.IsRefused() ? CopyDefault(otherwise, buffer, size) : 0;
    return call.Result<DWORD>(refused, [&]
                              { return GetString(section, key, otherwise, buffer, size, FileName(file)); });
}

SIM_API UINT WINAPI GetPrivateProfileIntW(LPCWSTR section, LPCWSTR key, INT otherwise, LPCWSTR file)
{
    PlatformCall call(CallClass::Profile, "GetPrivateProfileIntW", SIM_CALLER);
    call.Arguments(section, key, otherwise, file);
    return call.Result<UINT>(static_cast<UINT>(otherwise),
                             [&] { return GetInt(section, key, otherwise, FileName(file)); });
}

SIM_API BOOL WINAPI WritePrivateProfileStringW(LPCWSTR section, LPCWSTR key, LPCWSTR value, LPCWSTR file)
{
    PlatformCall call(CallClass::Profile, "WritePrivateProfileStringW", SIM_CALLER);
    call.Arguments(section, key, value, file);
    return call.Boolean(
        [&] { return profile::Write(FileName(file), Optional(section), Optional(key), Optional(value)); });
}
