// modules/powrprof/PowerStoreSchemes.cpp
//
// The index-based schemes in the registry.

#include "PowerStoreSchemes.h"

#include <algorithm>

namespace power_store
{

namespace
{

// Reads the value "Policies" of the key at `path`.
template <class Record>
DWORD ReadRecord(HKEY root, const WideText& path, Record& record)
{
    Key key;
    const DWORD error = key.Open(root, path);
    return error == ERROR_SUCCESS ? key.ReadBytes(kPoliciesValue, &record, sizeof record) : error;
}

template <class Record>
DWORD WriteRecord(HKEY root, const WideText& path, const Record& record)
{
    Key key;
    const DWORD error = key.Create(root, path);
    return error == ERROR_SUCCESS ? key.WriteBytes(kPoliciesValue, &record, sizeof record) : error;
}

WideText UserKey(UINT scheme)
{
    return Join(ToText(kUserSchemesKey), static_cast<DWORD>(scheme));
}

WideText MachineKey(UINT scheme)
{
    return Join(ToText(kMachineSchemesKey), static_cast<DWORD>(scheme));
}

WideText ProcessorKey(UINT scheme)
{
    return Join(ToText(kProcessorSchemesKey), static_cast<DWORD>(scheme));
}

// The numbers of the schemes below a key, ascending; other subkeys are none of the power manager's.
DWORD Numbers(HKEY root, const wchar_t* path, std::vector<DWORD>& numbers)
{
    Key key;
    std::vector<WideText> names;
    DWORD error = key.Open(root, ToText(path));
    error = error == ERROR_SUCCESS ? key.Subkeys(names) : error;
    numbers.clear();
    for (const WideText& name : names)
    {
        if (DWORD number = 0; ParseNumber(name.data(), number))
        {
            numbers.push_back(number);
        }
    }
    std::sort(numbers.begin(), numbers.end());
    return error;
}

// The number above the highest in use, which "LastID" remembers from then on.
DWORD TakeNewNumber(UINT& scheme)
{
    std::vector<DWORD> numbers;
    if (const DWORD error = Numbers(HKEY_LOCAL_MACHINE, kMachineSchemesKey, numbers); error != ERROR_SUCCESS)
    {
        return error;
    }
    scheme = numbers.empty() ? 0 : static_cast<UINT>(numbers.back() + 1);
    if (scheme == kNewScheme)
    {
        return ERROR_INVALID_PARAMETER;
    }
    Key key;
    const DWORD error = key.Create(HKEY_LOCAL_MACHINE, ToText(kMachinePowerKey));
    return error == ERROR_SUCCESS ? key.WriteText(kLastIdValue, ToText(static_cast<DWORD>(scheme)).data())
                                  : error;
}

DWORD WriteTexts(UINT scheme, const wchar_t* name, const wchar_t* description)
{
    Key key;
    DWORD error = key.Create(HKEY_CURRENT_USER, UserKey(scheme));
    if (error == ERROR_SUCCESS && name != nullptr)
    {
        error = key.WriteText(kNameValue, name);
    }
    if (error == ERROR_SUCCESS && description != nullptr)
    {
        error = key.WriteText(kDescriptionValue, description);
    }
    return error;
}

// The text of a value, empty when it is missing: a scheme may have been written without one.
WideText TextOf(const Key& key, const wchar_t* name)
{
    WideText text;
    return key.ReadText(name, text) == ERROR_SUCCESS ? text : WideText(1, 0);
}

DWORD SizeOf(const WideText& text)
{
    return static_cast<DWORD>(text.size() * sizeof(wchar_t));
}

} // namespace

DWORD GetActive(UINT& scheme)
{
    Key key;
    WideText text;
    DWORD error = key.Open(HKEY_CURRENT_USER, ToText(kUserPowerKey));
    error = error == ERROR_SUCCESS ? key.ReadText(kCurrentSchemeValue, text) : error;
    if (error != ERROR_SUCCESS)
    {
        return error;
    }
    DWORD number = 0;
    if (!ParseNumber(text.data(), number))
    {
        return ERROR_INVALID_DATA;
    }
    scheme = static_cast<UINT>(number);
    return ERROR_SUCCESS;
}

DWORD SetActive(UINT scheme)
{
    POWER_POLICY policy{};
    if (const DWORD error = ReadScheme(scheme, policy); error != ERROR_SUCCESS)
    {
        return error;
    }
    Key key;
    const DWORD error = key.Create(HKEY_CURRENT_USER, ToText(kUserPowerKey));
    return error == ERROR_SUCCESS
               ? key.WriteText(kCurrentSchemeValue, ToText(static_cast<DWORD>(scheme)).data())
               : error;
}

DWORD ReadScheme(UINT scheme, POWER_POLICY& policy)
{
    POWER_POLICY found{};
    DWORD error = ReadRecord(HKEY_CURRENT_USER, UserKey(scheme), found.user);
    error = error == ERROR_SUCCESS ? ReadRecord(HKEY_LOCAL_MACHINE, MachineKey(scheme), found.mach) : error;
    if (error == ERROR_SUCCESS)
    {
        policy = found;
    }
    return error;
}

DWORD WriteScheme(UINT& scheme, const wchar_t* name, const wchar_t* description, const POWER_POLICY* policy)
{
    if (policy == nullptr)
    {
        return ERROR_INVALID_PARAMETER;
    }
    UINT number = scheme;
    DWORD error = number == kNewScheme ? TakeNewNumber(number) : static_cast<DWORD>(ERROR_SUCCESS);

    // A scheme exists by its user part, so that comes last: nobody sees half a scheme.
    error =
        error == ERROR_SUCCESS ? WriteRecord(HKEY_LOCAL_MACHINE, MachineKey(number), policy->mach) : error;
    error = error == ERROR_SUCCESS ? WriteRecord(HKEY_CURRENT_USER, UserKey(number), policy->user) : error;
    error = error == ERROR_SUCCESS ? WriteTexts(number, name, description) : error;
    if (error == ERROR_SUCCESS)
    {
        scheme = number;
    }
    return error;
}

DWORD ReadProcessorScheme(UINT scheme, MACHINE_PROCESSOR_POWER_POLICY& policy)
{
    MACHINE_PROCESSOR_POWER_POLICY found{};
    const DWORD error = ReadRecord(HKEY_LOCAL_MACHINE, ProcessorKey(scheme), found);
    if (error == ERROR_SUCCESS)
    {
        policy = found;
    }
    return error;
}

DWORD WriteProcessorScheme(UINT scheme, const MACHINE_PROCESSOR_POWER_POLICY& policy)
{
    return WriteRecord(HKEY_LOCAL_MACHINE, ProcessorKey(scheme), policy);
}

DWORD EnumerateSchemes(PWRSCHEMESENUMPROC callback, LPARAM argument)
{
    if (callback == nullptr)
    {
        return ERROR_INVALID_PARAMETER;
    }
    std::vector<DWORD> numbers;
    if (const DWORD error = Numbers(HKEY_CURRENT_USER, kUserSchemesKey, numbers); error != ERROR_SUCCESS)
    {
        return error;
    }
    for (const DWORD number : numbers)
    {
        POWER_POLICY policy{};
        Key key;
        if (key.Open(HKEY_CURRENT_USER, UserKey(number)) != ERROR_SUCCESS ||
            ReadScheme(number, policy) != ERROR_SUCCESS)
        {
            continue;
        }
        WideText name = TextOf(key, kNameValue);
        WideText description = TextOf(key, kDescriptionValue);
        if (!callback(static_cast<UINT>(number), SizeOf(name), name.data(), SizeOf(description),
                      description.data(), &policy, argument))
        {
            break;
        }
    }
    return ERROR_SUCCESS;
}

DWORD DeleteScheme(UINT scheme)
{
    if (UINT active = 0; GetActive(active) == ERROR_SUCCESS && active == scheme)
    {
        return ERROR_ACCESS_DENIED;
    }
    if (const DWORD error = Key::RemoveTree(HKEY_CURRENT_USER, UserKey(scheme)); error != ERROR_SUCCESS)
    {
        return error;
    }
    // The machine's parts may have gone already, with another user's scheme of this number.
    for (const WideText& path : {MachineKey(scheme), ProcessorKey(scheme)})
    {
        const DWORD error = Key::RemoveTree(HKEY_LOCAL_MACHINE, path);
        if (error != ERROR_SUCCESS && error != ERROR_FILE_NOT_FOUND)
        {
            return error;
        }
    }
    return ERROR_SUCCESS;
}

DWORD ReadGlobalPolicy(GLOBAL_POWER_POLICY& policy)
{
    GLOBAL_POWER_POLICY found{};
    DWORD error = ReadRecord(HKEY_CURRENT_USER, ToText(kUserGlobalKey), found.user);
    error = error == ERROR_SUCCESS ? ReadRecord(HKEY_LOCAL_MACHINE, ToText(kMachineGlobalKey), found.mach)
                                   : error;
    if (error == ERROR_SUCCESS)
    {
        policy = found;
    }
    return error;
}

DWORD WriteGlobalPolicy(const GLOBAL_POWER_POLICY& policy)
{
    const DWORD error = WriteRecord(HKEY_LOCAL_MACHINE, ToText(kMachineGlobalKey), policy.mach);
    return error == ERROR_SUCCESS ? WriteRecord(HKEY_CURRENT_USER, ToText(kUserGlobalKey), policy.user)
                                  : error;
}

} // namespace power_store
