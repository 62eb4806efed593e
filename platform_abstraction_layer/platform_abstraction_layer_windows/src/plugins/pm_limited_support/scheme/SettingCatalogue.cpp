// scheme/SettingCatalogue.cpp
//
// The setting catalogue: option lists, texts and the operating system's settings of the variables.

#include "scheme/SettingCatalogue.h"

#include "foundation/EntryLimit.h"
#include "foundation/GuidText.h"
#include "foundation/PowerProfile.h"
#include "scheme/SchemeEx.h"
#include "scheme/SchemeFiles.h"
#include "scheme/VariableTable.h"

namespace
{

constexpr const wchar_t* kOptionCount = L"OptionNumber";
constexpr const wchar_t* kHibernateTime = L"HibernateTimeOut";

// Opens the catalogue to read of one variable. Without a name the system's functions would give the list of
// all sections.
bool OpenFor(CORVLCfg& file, const wchar_t* name) noexcept
{
    return name != nullptr && files::OpenCatalogue(file);
}

// Writing a whole scheme walks through the options of seventeen variables.
constexpr int kMostOptions = 1000;

int ReadOption(CORVLCfg& file, const wchar_t* name, int option) noexcept
{
    return file.GetInt(name, files::NumberedKey(L"ValueOption%d", option).Text(), -1);
}

// The first option of the variable for which `accepts` holds, in file order.
template <class Predicate>
bool FindOption(const wchar_t* name, Predicate accepts, int& value) noexcept
{
    CORVLCfg file;
    if (!OpenFor(file, name))
    {
        return false;
    }
    const int count = EntryLimit(kMostOptions).Take(file.GetInt(name, kOptionCount, 0));
    for (int option = 0; option < count; ++option)
    {
        value = ReadOption(file, name, option);
        if (accepts(value))
        {
            return true;
        }
    }
    return false;
}

// Reads a text of the catalogue; false for none.
bool ReadText(CORVLCfg& file, const wchar_t* name, const wchar_t* key, files::ShortText& value) noexcept
{
    value[0] = L'\0';
    return file.GetString(name, key, nullptr, value, static_cast<int>(files::kTextCapacity)) > 0;
}

bool ReadGuid(CORVLCfg& file, const wchar_t* name, const wchar_t* key, GUID& guid) noexcept
{
    files::ShortText value;
    return ReadText(file, name, key, value) && ParseGuid(value, &guid) != 0;
}

// Copies a text of the catalogue; its length, or -1 for none with `buffer` left alone.
int CopyText(const wchar_t* name, const wchar_t* key, wchar_t* buffer, int size) noexcept
{
    CORVLCfg file;
    files::ShortText value;
    if (buffer == nullptr || size <= 0 || !OpenFor(file, name) || !ReadText(file, name, key, value))
    {
        return -1;
    }
    text::Copy(buffer, static_cast<std::size_t>(size), value);
    return static_cast<int>(text::Length(buffer));
}

} // namespace

bool catalogue::Offers(const wchar_t* name, int value) noexcept
{
    int found = 0;
    return FindOption(
        name, [value](int option) { return option == value; }, found);
}

int catalogue::HibernateTimeAfter(int standby) noexcept
{
    if (!IsPwrHibernateAllowed())
    {
        return 0;
    }
    int found = 0;
    return FindOption(
               kHibernateTime, [standby](int option) { return option > standby; }, found)
               ? found
               : 0;
}

bool catalogue::ReadSetting(const wchar_t* name, GUID& subGroup, GUID& setting) noexcept
{
    CORVLCfg file;
    return OpenFor(file, name) && ReadGuid(file, name, L"SubGroupGuid", subGroup) &&
           ReadGuid(file, name, L"Guid", setting);
}

int CSchemeEx::ParseVarName(const wchar_t* name) noexcept
{
    return FindVariable(name);
}

int CSchemeEx::ParseVarName(const wchar_t* name, GUID* subGroup, GUID* setting) noexcept
{
    if (m_bVista == 0 || subGroup == nullptr || setting == nullptr)
    {
        return -1;
    }
    const int number = FindVariable(name);
    const bool isComplete =
        number >= 0 && (!HasSetting(VariableOf(number)) || catalogue::ReadSetting(name, *subGroup, *setting));
    return isComplete ? number : -1;
}

int CSchemeEx::GuidFromString(const wchar_t* text, GUID* guid) noexcept
{
    return ParseGuid(text, guid);
}

int CSchemeEx::GetHiberTimeFromStandbyTime(int standby) noexcept
{
    return catalogue::HibernateTimeAfter(standby);
}

int CSchemeEx::GetPwrVariableOptCount(const wchar_t* name) noexcept
{
    CORVLCfg file;
    return OpenFor(file, name) ? file.GetInt(name, kOptionCount, -1) : -1;
}

int CSchemeEx::GetPwrVariableOptValue(const wchar_t* name, int option) noexcept
{
    CORVLCfg file;
    return OpenFor(file, name) ? ReadOption(file, name, option) : -1;
}

int CSchemeEx::GetPwrVariableOptDesc(const wchar_t* name, int option, wchar_t* buffer, int size) noexcept
{
    if (option >= GetPwrVariableOptCount(name))
    {
        return -1;
    }
    return CopyText(name, files::NumberedKey(L"DescOption%d", option).Text(), buffer, size);
}

int CSchemeEx::GetPwrVariableUnit(const wchar_t* name, wchar_t* buffer, int size) noexcept
{
    return CopyText(name, L"Unit", buffer, size);
}

int CSchemeEx::GetPwrVariableName(const wchar_t* name, wchar_t* buffer, int size) noexcept
{
    const int number = FindVariable(name);
    if (number < 0)
    {
        return -1;
    }
    if (number >= kFirstUsbPort)
    {
        return 0;
    }
    return CopyText(name, L"Name", buffer, size) > 0 ? 0 : -1;
}
