// scheme/DeleteScheme.cpp
//
// Deleting a scheme: from the operating system first, then its stored variables, last its owner's entry.
// Whether the scheme is the active one is the operating system's business.

#include "scheme/PowerDispatch.h"
#include "scheme/SchemeEx.h"
#include "scheme/SchemeMapping.h"
#include "scheme/UserSchemes.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace
{

constexpr unsigned int kLastStandardNumber = 5;
constexpr int kMostEntries = 10000; // read, of all users together

// Power saver, high performance, balanced.
constexpr GUID kStandardSchemes[] = {
    {0xA1841308, 0x3541, 0x4FAB, {0xBC, 0x81, 0xF7, 0x15, 0x56, 0xF2, 0x0B, 0x4A}},
    {0x8C5E7FDA, 0xE8BF, 0x4A96, {0x9A, 0x85, 0xA6, 0xE2, 0x3A, 0x8C, 0x63, 0x5C}},
    {0x381B4222, 0xF694, 0x41F0, {0x96, 0x85, 0xFF, 0x5B, 0xB2, 0x60, 0xDF, 0x2E}},
};

// A negative number isn't protected; the operating system refuses it.
bool IsStandardNumber(int index) noexcept
{
    return static_cast<unsigned int>(index) <= kLastStandardNumber;
}

bool IsStandardScheme(const GUID& scheme) noexcept
{
    return std::any_of(std::begin(kStandardSchemes), std::end(kStandardSchemes),
                       [&scheme](const GUID& standard)
                       { return std::memcmp(&standard, &scheme, sizeof scheme) == 0; });
}

int DeleteNumber(int index) noexcept
{
    if (IsStandardNumber(index))
    {
        return 0;
    }
    if (!DeletePwrScheme(static_cast<UINT>(index)))
    {
        CORVLBase::DBGOUT(L"delete windows power scheme failed %d", GetLastError());
        return 0;
    }
    CORVLCfg root;
    if (!files::OpenRoot(root))
    {
        CORVLBase::DBGOUT(L"orvlCfg.Initialize finished");
        return 0;
    }
    CORVLProfile values;
    if (!files::OpenOwn(values, root, files::kValuesName))
    {
        CORVLBase::DBGOUT(L"orvlScheme.Initialize(buffer) failed");
        return 0;
    }
    mapping::RemoveSection(values, index);
    return 1;
}

int DeleteRow(int index) noexcept
{
    const auto deleteScheme = PowerDispatch.PowerDeleteScheme.load();
    GUID scheme;
    if (deleteScheme == nullptr || !mapping::RowToGuid(index, scheme) || IsStandardScheme(scheme) ||
        deleteScheme(nullptr, &scheme) != ERROR_SUCCESS)
    {
        return 0;
    }
    CORVLProfile values;
    if (!files::OpenValues(values))
    {
        return 0;
    }
    mapping::RemoveSection(values, index);
    return 1;
}

} // namespace

int CSchemeEx::DeletePwrScheme(int index) noexcept
{
    return m_bVista != 0 ? DeleteRow(index) : DeleteNumber(index);
}

int CSchemeEx::DeletePwrScheme(int index, const wchar_t*) noexcept
{
    if (m_bVista == 0 && IsStandardNumber(index))
    {
        return 0;
    }
    files::ShortText section;
    text::Copy(section, m_szSubKey);
    EntryLimit limit(kMostEntries);
    // A deletion that is refused leaves no file behind.
    CORVLProfile users;
    const bool isOpen = files::OpenPresentUsers(users);
    if (isOpen && user_schemes::BelongsToAnother(users, section, index, limit))
    {
        DBGOUT(L"DeletePwrScheme: scheme %d belongs to another user", index);
        return 0;
    }
    if (DeletePwrScheme(index) == 0)
    {
        return 0;
    }
    if (isOpen || files::OpenUsers(users))
    {
        user_schemes::Remove(users, section, index, limit);
    }
    return 1;
}
