// scheme/vista/SchemeRows.cpp
//
// Searching and changing the rows.

#include "scheme/vista/Operations.h"

#include "foundation/EntryLimit.h"
#include "foundation/GuidText.h"
#include "scheme/SchemeFiles.h"
#include "scheme/vista/PowerDispatch.h"

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

using GuidText = wchar_t[text::kPathCapacity];

// The text of a row's GUID; false for a row that isn't there.
bool ReadRow(CORVLProfile& values, int row, GuidText& guid) noexcept
{
    return values.GetString(files::NumberedKey(files::kRowSection, row).Text(), kGuid, guid) > 0;
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

} // namespace

bool vista::RowToGuid(int row, GUID& guid) noexcept
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
    files::RemoveScheme(values, row);
    return false;
}

int vista::AddRow(const GUID& guid) noexcept
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
    if (values.PutString(files::NumberedKey(files::kRowSection, row).Text(), kGuid, guidText) == 0)
    {
        return -1;
    }
    values.PutInt(kRowsSection, kNextRow, row + 1);
    return row;
}

int vista::NextFreeRow() noexcept
{
    CORVLProfile values;
    return files::OpenValues(values) ? values.GetInt(kRowsSection, kNextRow, -1) : -1;
}

int vista::FindRow(const GUID& guid, int (*maxIndex)() noexcept) noexcept
{
    CORVLProfile values;
    if (!files::OpenValues(values))
    {
        return -1;
    }
    const int next = maxIndex();
    if (next < 0)
    {
        return -1;
    }
    // One past the last used row is looked at too.
    const int last = EntryLimit(kMostRows).Take(next);
    for (int row = 0; row <= last; ++row)
    {
        const Holds holds = CompareRow(values, row, guid);
        if (holds != Holds::No)
        {
            return holds == Holds::Yes ? row : -1;
        }
    }
    return -1;
}
