// modules/powrprof/PowerStoreSettings.cpp
//
// The GUID-based schemes in the registry.

#include "PowerStoreSettings.h"

#include <cstring>

namespace power_store
{

namespace
{

WideText SchemeKey(const GUID& scheme)
{
    return Join(ToText(kSettingSchemesKey), scheme);
}

DWORD OpenScheme(const GUID& scheme, REGSAM access, Key& key)
{
    return key.Open(HKEY_LOCAL_MACHINE, SchemeKey(scheme), access);
}

// Where a name lies: with its scheme, or with the setting that all schemes share.
WideText NameKey(const SettingPlace& place)
{
    if (place.subGroup == nullptr)
    {
        return SchemeKey(*place.scheme);
    }
    const WideText subGroup = Join(ToText(kKnownSettingsKey), *place.subGroup);
    return place.setting == nullptr ? subGroup : Join(subGroup, *place.setting);
}

bool NamesSetting(const SettingPlace& place) noexcept
{
    return place.scheme != nullptr && place.subGroup != nullptr && place.setting != nullptr;
}

WideText ValueKey(const SettingPlace& place)
{
    return Join(Join(SchemeKey(*place.scheme), *place.subGroup), *place.setting);
}

} // namespace

DWORD GetActiveScheme(GUID& scheme)
{
    Key key;
    WideText text;
    DWORD error = key.Open(HKEY_LOCAL_MACHINE, ToText(kSettingSchemesKey));
    error = error == ERROR_SUCCESS ? key.ReadText(kActiveSchemeValue, text) : error;
    if (error != ERROR_SUCCESS)
    {
        return error;
    }
    return ParseGuid(text.data(), scheme) ? ERROR_SUCCESS : ERROR_INVALID_DATA;
}

DWORD SetActiveScheme(const GUID& scheme)
{
    Key known;
    Key key;
    DWORD error = OpenScheme(scheme, KEY_READ, known);
    error = error == ERROR_SUCCESS ? key.Open(HKEY_LOCAL_MACHINE, ToText(kSettingSchemesKey), KEY_SET_VALUE)
                                   : error;
    return error == ERROR_SUCCESS ? key.WriteText(kActiveSchemeValue, ToText(scheme).data()) : error;
}

DWORD ReadFriendlyName(const SettingPlace& place, BYTE* buffer, DWORD& size)
{
    if (place.scheme == nullptr || (place.subGroup == nullptr && place.setting != nullptr))
    {
        return ERROR_INVALID_PARAMETER;
    }
    Key scheme;
    Key key;
    WideText name;
    DWORD error = OpenScheme(*place.scheme, KEY_READ, scheme);
    error = error == ERROR_SUCCESS ? key.Open(HKEY_LOCAL_MACHINE, NameKey(place)) : error;
    error = error == ERROR_SUCCESS ? key.ReadText(kFriendlyNameValue, name) : error;
    if (error != ERROR_SUCCESS)
    {
        return error;
    }
    const DWORD room = size;
    size = static_cast<DWORD>(name.size() * sizeof(wchar_t));
    if (buffer == nullptr)
    {
        return ERROR_SUCCESS;
    }
    if (room < size)
    {
        return ERROR_MORE_DATA;
    }
    std::memcpy(buffer, name.data(), size);
    return ERROR_SUCCESS;
}

DWORD ReadValueIndex(const SettingPlace& place, const wchar_t* source, DWORD& value)
{
    if (!NamesSetting(place))
    {
        return ERROR_INVALID_PARAMETER;
    }
    Key key;
    const DWORD error = key.Open(HKEY_LOCAL_MACHINE, ValueKey(place));
    return error == ERROR_SUCCESS ? key.ReadNumber(source, value) : error;
}

DWORD WriteValueIndex(const SettingPlace& place, const wchar_t* source, DWORD value)
{
    if (!NamesSetting(place))
    {
        return ERROR_INVALID_PARAMETER;
    }
    Key scheme;
    Key known;
    Key key;
    DWORD error = OpenScheme(*place.scheme, KEY_READ, scheme);
    error = error == ERROR_SUCCESS ? known.Open(HKEY_LOCAL_MACHINE, NameKey(place)) : error;
    error = error == ERROR_SUCCESS ? key.Create(HKEY_LOCAL_MACHINE, ValueKey(place)) : error;
    return error == ERROR_SUCCESS ? key.WriteNumber(source, value) : error;
}

DWORD DeleteSettingScheme(const GUID& scheme)
{
    GUID active{};
    if (GetActiveScheme(active) == ERROR_SUCCESS && std::memcmp(&active, &scheme, sizeof active) == 0)
    {
        return ERROR_ACCESS_DENIED;
    }
    return Key::RemoveTree(HKEY_LOCAL_MACHINE, SchemeKey(scheme));
}

DWORD DuplicateScheme(const GUID& source, const GUID& destination)
{
    Key from;
    if (const DWORD error = OpenScheme(source, KEY_READ, from); error != ERROR_SUCCESS)
    {
        return error;
    }
    Key to;
    if (OpenScheme(destination, KEY_READ, to) == ERROR_SUCCESS)
    {
        return ERROR_ALREADY_EXISTS;
    }
    const DWORD error = to.Create(HKEY_LOCAL_MACHINE, SchemeKey(destination));
    return error == ERROR_SUCCESS ? from.CopyTo(to) : error;
}

DWORD ChooseGuid(GUID& guid)
{
    // The number of the copy in a GUID of this power manager's own.
    guid = {0, 0x504D, 0x4C53, {0x80, 0x00, 0x73, 0x63, 0x68, 0x65, 0x6D, 0x65}};
    for (guid.Data1 = 1; guid.Data1 != 0; ++guid.Data1)
    {
        Key key;
        const DWORD error = OpenScheme(guid, KEY_READ, key);
        if (error == ERROR_FILE_NOT_FOUND)
        {
            return ERROR_SUCCESS;
        }
        if (error != ERROR_SUCCESS)
        {
            return error;
        }
    }
    return ERROR_NO_MORE_ITEMS;
}

} // namespace power_store
