// foundation/GuidText.cpp
//
// The shell's parser of GUID texts, which is exported by number only.

#include "foundation/GuidText.h"

#include "foundation/Modules.h"

namespace
{

using GuidParser = BOOL(WINAPI*)(LPCWSTR, GUID*);
constexpr WORD kGuidParserOrdinal = 270;

} // namespace

int ParseGuid(const wchar_t* text, GUID* guid) noexcept
{
    const HMODULE library = LoadLibraryW(L"Shlwapi.dll");
    if (library == nullptr || text == nullptr || guid == nullptr)
    {
        return 0;
    }
    const auto parse = FindFunction<GuidParser>(library, MAKEINTRESOURCEA(kGuidParserOrdinal));
    return parse == nullptr ? 0 : parse(text, guid);
}
