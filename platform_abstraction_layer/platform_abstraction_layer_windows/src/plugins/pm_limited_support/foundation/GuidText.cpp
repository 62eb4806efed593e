// foundation/GuidText.cpp
//
// GUIDs to texts, and back by the shell's parser, which is exported by number only.

#include "foundation/GuidText.h"

#include "foundation/Modules.h"
#include "foundation/Text.h"

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

void FormatGuid(const GUID& guid, wchar_t* target, std::size_t capacity) noexcept
{
    const unsigned char* rest = guid.Data4;
    text::Format(target, capacity, L" {%08lX-%04X-%04x-%02X%02X-%02X%02X%02X%02X%02X%02X}", guid.Data1,
                 guid.Data2, guid.Data3, rest[0], rest[1], rest[2], rest[3], rest[4], rest[5], rest[6],
                 rest[7]);
}
