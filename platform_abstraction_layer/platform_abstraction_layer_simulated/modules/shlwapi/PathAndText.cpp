// modules/shlwapi/PathAndText.cpp
//
// Tests of paths, search in texts, and the parser of GUID texts that the DLL exports by number.

#include "base/GuidText.h"
#include "base/PlatformCall.h"
#include "base/Text.h"
#include "modules/kernel32/Modules.h"
#include "modules/kernel32/Paths.h"

#include <windows.h>

#include <shlwapi.h>

#include <algorithm>
#include <optional>

using namespace simulated;

namespace
{

constexpr WORD kGuidFromStringNumber = 270;

// The target is left alone when the text isn't a GUID in braces.
BOOL ReadGuid(LPCWSTR text, GUID* guid)
{
    const std::optional<GUID> parsed = text == nullptr ? std::nullopt : ParseGuid(ToUtf8(text));
    if (!parsed || guid == nullptr)
    {
        return FALSE;
    }
    *guid = *parsed;
    return TRUE;
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
            paths::Place place;
            return paths::FindExisting(ToUtf8(path), place);
        });
}

SIM_API LPWSTR WINAPI StrStrIW(LPCWSTR whole, LPCWSTR part)
{
    PlatformCall call(CallClass::Text, "StrStrIW", SIM_CALLER);
    call.Arguments(whole, part);
    return call.Answer(const_cast<LPWSTR>(FindIgnoringCase(whole, part)));
}

// The function that the DLL exports by number alone: turns a GUID text in braces into a GUID.
static BOOL WINAPI GuidFromStringW(LPCWSTR text, GUID* guid)
{
    PlatformCall call(CallClass::Text, "GUIDFromStringW", SIM_CALLER);
    call.Arguments(text);
    return call.Result<BOOL>(FALSE,
                             [&]() -> Outcome<BOOL> {
                                 return {ReadGuid(text, guid), ERROR_SUCCESS};
                             });
}

namespace
{

const modules::Export kExports[] = {
    {nullptr, kGuidFromStringNumber, modules::Address(&GuidFromStringW), 0},
    {"PathFileExistsW", 0, modules::Address(&PathFileExistsW), 0},
    {"StrStrIW", 0, modules::Address(&StrStrIW), 0},
};
const modules::Registration kRegistration("Shlwapi.dll", kExports);

} // namespace
