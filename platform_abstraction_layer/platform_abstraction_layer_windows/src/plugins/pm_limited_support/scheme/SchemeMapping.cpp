// scheme/SchemeMapping.cpp
//
// Scheme indexes, rows and GUIDs.

#include "scheme/SchemeMapping.h"

#include "foundation/EntryLimit.h"
#include "foundation/GuidText.h"
#include "scheme/PolicyStore.h"
#include "scheme/PowerDispatch.h"
#include "scheme/SchemeEx.h"
#include "scheme/SchemeFiles.h"

#include <cstring>
#include <iterator>
#include <limits>

namespace
{

constexpr const wchar_t* kRowsSection = L"Schemes";
constexpr const wchar_t* kNextRow = L"SchemeMaxIndex";
constexpr const wchar_t* kGuid = L"GUID";

// Rows that a search looks at. Their numbers aren't used again, so a file may have more of them than schemes.
constexpr int kMostRows = 5000;

// Room of a GUID's text. The text proper has 39 characters, its leading blank included.
constexpr ULONG kGuidLength = 39;
using GuidText = wchar_t[text::kPathCapacity];

void FormatRow(files::ShortText& section, int row) noexcept
{
    text::Format(section, files::kRowSection, row);
}

// The text of a row's GUID; false for a row that isn't there.
bool ReadRow(CORVLProfile& values, int row, GuidText& guid) noexcept
{
    files::ShortText section;
    FormatRow(section, row);
    guid[0] = L'\0';
    return values.GetString(section, kGuid, nullptr, guid, static_cast<int>(std::size(guid))) > 0;
}

// Whether a row holds a scheme's GUID.
enum class Holds
{
    No,
    Yes,
    NoGuid ///< but a text that is none
};

Holds CompareRow(CORVLProfile& values, int row, const GUID& guid) noexcept
{
    GuidText guidText;
    if (!ReadRow(values, row, guidText))
    {
        return Holds::No;
    }
    GUID found;
    if (ParseGuid(guidText, &found) == 0)
    {
        return Holds::NoGuid;
    }
    return std::memcmp(&found, &guid, sizeof found) == 0 ? Holds::Yes : Holds::No;
}

// The blank in front is dropped when the file is read.
void FormatGuid(const GUID& guid, wchar_t* target, std::size_t capacity) noexcept
{
    const unsigned char* rest = guid.Data4;
    text::Format(target, capacity, L" {%08lX-%04X-%04x-%02X%02X-%02X%02X%02X%02X%02X%02X}", guid.Data1,
                 guid.Data2, guid.Data3, rest[0], rest[1], rest[2], rest[3], rest[4], rest[5], rest[6],
                 rest[7]);
}

int NextFreeRow() noexcept
{
    CORVLProfile values;
    return files::OpenValues(values) ? values.GetInt(kRowsSection, kNextRow, -1) : -1;
}

} // namespace

bool mapping::SchemeExists(const CSchemeEx& engine, int index) noexcept
{
    GUID guid;
    return engine.m_bVista != 0 ? RowToGuid(index, guid) : policy_store::HasScheme(index);
}

bool mapping::RowToGuid(int row, GUID& guid) noexcept
{
    CORVLProfile values;
    GuidText guidText;
    if (!files::OpenValues(values) || !ReadRow(values, row, guidText) || ParseGuid(guidText, &guid) == 0)
    {
        return false;
    }
    const auto readName = PowerDispatch.PowerReadFriendlyName.load();
    if (readName == nullptr)
    {
        return false;
    }
    DWORD size = 0;
    const DWORD known = readName(nullptr, &guid, nullptr, nullptr, nullptr, &size);
    if (known == ERROR_SUCCESS || known == ERROR_MORE_DATA)
    {
        return true;
    }
    RemoveSection(values, row);
    return false;
}

int mapping::AddRow(const GUID& guid) noexcept
{
    CORVLProfile values;
    if (!files::OpenValues(values))
    {
        return -1;
    }
    const int row = values.GetInt(kRowsSection, kNextRow, -1);
    if (row < 0)
    {
        return -1;
    }
    // The row added last may be this scheme's: a search that ended early doesn't get there.
    if (row > 0 && CompareRow(values, row - 1, guid) == Holds::Yes)
    {
        return row - 1;
    }
    if (row == std::numeric_limits<int>::max())
    {
        return -1;
    }
    GuidText guidText;
    FormatGuid(guid, guidText, std::size(guidText));
    files::ShortText section;
    FormatRow(section, row);
    if (values.PutString(section, kGuid, guidText) == 0)
    {
        return -1;
    }
    values.PutInt(kRowsSection, kNextRow, row + 1);
    return row;
}

void mapping::RemoveSection(CORVLProfile& values, int index) noexcept
{
    files::ShortText section;
    FormatRow(section, index);
    values.PutString(section, nullptr, nullptr);
}

int CSchemeEx::FindPwrScheme(int index) noexcept
{
    return mapping::SchemeExists(*this, index) ? 1 : 0;
}

int CSchemeEx::SchemeIndexToGuid(int index, GUID* guid) noexcept
{
    return guid != nullptr && mapping::RowToGuid(index, *guid) ? 1 : 0;
}

int CSchemeEx::SchemeGuidToIndex(const GUID* guid) noexcept
{
    CORVLProfile values;
    if (guid == nullptr || !files::OpenValues(values))
    {
        return -1;
    }
    const int next = GetPwrSchemeMaxIndex();
    if (next < 0)
    {
        return -1;
    }
    // One past the last used row is looked at too.
    const int last = EntryLimit(kMostRows).Take(next);
    for (int row = 0; row <= last; ++row)
    {
        const Holds holds = CompareRow(values, row, *guid);
        if (holds == Holds::Yes)
        {
            return row;
        }
        if (holds == Holds::NoGuid)
        {
            return -1;
        }
    }
    return -1;
}

int CSchemeEx::GuidIntoString(GUID* guid, wchar_t* buffer, ULONG* size) noexcept
{
    if (guid == nullptr || buffer == nullptr || size == nullptr)
    {
        return 0;
    }
    if (*size < kGuidLength)
    {
        *size = kGuidLength;
        return 0;
    }
    if (*size == kGuidLength)
    {
        // The text alone; its terminator wants one more.
        *size = kGuidLength + 1;
        return 0;
    }
    FormatGuid(*guid, buffer, *size);
    return 1;
}

int CSchemeEx::GetPwrSchemeMaxIndex() noexcept
{
    return m_bVista != 0 ? NextFreeRow() : policy_store::HighestScheme();
}
