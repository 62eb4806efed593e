// scheme/SettingCatalogue.cpp
//
// The setting catalogue: option lists, texts and the operating system's settings of the variables.

#include "scheme/SettingCatalogue.h"

#include "foundation/EntryLimit.h"
#include "foundation/GuidText.h"
#include "foundation/PowerProfile.h"
#include "scheme/SchemeFiles.h"
#include "scheme/VariableTable.h"

namespace
{

constexpr const wchar_t* kOptionCount = L"OptionNumber";

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

// The first option of the variable for which `accepts` holds, in file order; false for none.
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

bool ReadGuid(CORVLCfg& file, const wchar_t* name, const wchar_t* key, GUID& guid) noexcept
{
    files::ShortText value;
    return file.GetString(name, key, value) > 0 && ParseGuid(value, &guid) != 0;
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
    int found = 0;
    const bool isFound =
        IsPwrHibernateAllowed() &&
        FindOption(
            VariableOf(kHibernateTimeOut).name, [standby](int option) { return option > standby; }, found);
    return isFound ? found : 0;
}

bool catalogue::ReadSetting(const wchar_t* name, GUID& subGroup, GUID& setting) noexcept
{
    CORVLCfg file;
    return OpenFor(file, name) && ReadGuid(file, name, L"SubGroupGuid", subGroup) &&
           ReadGuid(file, name, L"Guid", setting);
}

int catalogue::OptionCount(const wchar_t* name) noexcept
{
    CORVLCfg file;
    return OpenFor(file, name) ? file.GetInt(name, kOptionCount, -1) : -1;
}

int catalogue::Option(const wchar_t* name, int option) noexcept
{
    CORVLCfg file;
    return OpenFor(file, name) ? ReadOption(file, name, option) : -1;
}

int catalogue::CopyText(const wchar_t* name, const wchar_t* key, wchar_t* buffer, int size) noexcept
{
    CORVLCfg file;
    files::ShortText value;
    if (buffer == nullptr || size <= 0 || !OpenFor(file, name) || file.GetString(name, key, value) == 0)
    {
        return -1;
    }
    text::Copy(buffer, static_cast<std::size_t>(size), value);
    return static_cast<int>(text::Length(buffer));
}
