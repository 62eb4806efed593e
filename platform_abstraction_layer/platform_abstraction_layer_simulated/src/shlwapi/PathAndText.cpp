// shlwapi/PathAndText.cpp
//
// Questions about paths, search in texts, and the parser of GUID texts that the DLL exports by number.

#include "kernel32/Files.h"
#include "kernel32/Modules.h"

#include "notebook/PlatformCall.h"
#include "notebook/Text.h"

#include <windows.h>

#include <shlwapi.h>

#include <algorithm>
#include <cstring>

using namespace simulated;

namespace
{

constexpr WORD kGuidFromStringNumber = 270;

// "{01234567-89AB-CDEF-0123-456789ABCDEF}" with the number of the byte that each pair of digits fills.
constexpr int kText = -1;
constexpr struct
{
    wchar_t character;
    int byte;
} kGuidForm[] = {
    {L'{', kText}, {0, 3},  {0, 2},  {0, 1},        {0, 0},  {L'-', kText}, {0, 5},        {0, 4},
    {L'-', kText}, {0, 7},  {0, 6},  {L'-', kText}, {0, 8},  {0, 9},        {L'-', kText}, {0, 10},
    {0, 11},       {0, 12}, {0, 13}, {0, 14},       {0, 15}, {L'}', kText}, {0, kText},
};

bool ReadDigit(wchar_t character, unsigned& value)
{
    const wchar_t upper = FoldCase(character);
    if (upper >= L'0' && upper <= L'9')
    {
        value = value * 16 + (upper - L'0');
        return true;
    }
    value = value * 16 + (upper - L'A' + 10U);
    return upper >= L'A' && upper <= L'F';
}

// The last row of the form is the terminator, so a longer text doesn't fit it.
bool ParseGuid(LPCWSTR text, GUID& guid)
{
    BYTE bytes[sizeof(GUID)] = {};
    for (const auto& step : kGuidForm)
    {
        if (step.byte == kText)
        {
            if (*text++ != step.character)
            {
                return false;
            }
            continue;
        }
        unsigned value = 0;
        if (!ReadDigit(text[0], value) || !ReadDigit(text[1], value))
        {
            return false;
        }
        bytes[step.byte] = static_cast<BYTE>(value);
        text += 2;
    }
    std::memcpy(&guid, bytes, sizeof guid);
    return true;
}

LPCWSTR FindIgnoringCase(LPCWSTR whole, LPCWSTR part)
{
    if (whole == nullptr || part == nullptr || *part == 0)
    {
        return nullptr;
    }
    const std::size_t wholeLength = Length(whole);
    const auto* const found =
        std::search(whole, whole + wholeLength, part, part + Length(part),
                    [](wchar_t left, wchar_t right) { return FoldCase(left) == FoldCase(right); });
    return found == whole + wholeLength ? nullptr : found;
}

} // namespace

SIM_API BOOL WINAPI PathFileExistsW(LPCWSTR path)
{
    PlatformCall call(CallClass::File, "PathFileExistsW", SIM_CALLER);
    call.Arguments(path);
    return call.Boolean(
        [&]
        {
            DWORD attributes = 0;
            return files::Attributes(ToUtf8(path), attributes);
        });
}

SIM_API BOOL WINAPI PathIsDirectoryW(LPCWSTR path)
{
    PlatformCall call(CallClass::File, "PathIsDirectoryW", SIM_CALLER);
    call.Arguments(path);
    return call.Result<BOOL>(FALSE,
                             [&]() -> Outcome<BOOL>
                             {
                                 DWORD attributes = 0;
                                 const DWORD error = files::Attributes(ToUtf8(path), attributes);
                                 return {static_cast<BOOL>(attributes & FILE_ATTRIBUTE_DIRECTORY), error};
                             });
}

SIM_API LPWSTR WINAPI StrStrIW(LPCWSTR whole, LPCWSTR part)
{
    PlatformCall call(CallClass::Text, "StrStrIW", SIM_CALLER);
    call.Arguments(whole, part);
    return call.Answer(const_cast<LPWSTR>(FindIgnoringCase(whole, part)));
}

/// Turns a GUID text in braces into a GUID. The target is left alone when the text isn't one.
static BOOL WINAPI GuidFromStringW(LPCWSTR text, GUID* guid)
{
    PlatformCall call(CallClass::Text, "GUIDFromStringW", SIM_CALLER);
    call.Arguments(text);
    return call.Result<BOOL>(FALSE,
                             [&]() -> Outcome<BOOL>
                             {
                                 const bool isValid =
                                     text != nullptr && guid != nullptr && ParseGuid(text, *guid);
                                 return {isValid ? TRUE : FALSE, ERROR_SUCCESS};
                             });
}

namespace
{

const modules::Export kExports[] = {
    {nullptr, kGuidFromStringNumber, modules::Address(&GuidFromStringW), 0},
    {"PathFileExistsW", 0, modules::Address(&PathFileExistsW), 0},
    {"PathIsDirectoryW", 0, modules::Address(&PathIsDirectoryW), 0},
    {"StrStrIW", 0, modules::Address(&StrStrIW), 0},
};
const modules::Registration kRegistration("Shlwapi.dll", kExports);

} // namespace
