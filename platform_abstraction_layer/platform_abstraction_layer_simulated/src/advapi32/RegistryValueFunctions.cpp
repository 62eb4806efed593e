// advapi32/RegistryValueFunctions.cpp
//
// The registry functions on values, and on what a key holds as a whole.
//
// Known differences from Windows: values are enumerated in the order of their names, not of their making. A
// text whose length leaves out its terminator is stored without it; Windows looks for one behind the given
// bytes.

#include "advapi32/RegistryShell.h"
#include "notebook/Text.h"

#include <algorithm>

namespace simulated::registry
{

namespace
{

DWORD QueryValue(HKEY key, LPCWSTR name, LPDWORD type, LPBYTE data, LPDWORD size)
{
    if (data != nullptr && size == nullptr)
    {
        return ERROR_INVALID_PARAMETER;
    }
    Base base;
    Value value;
    DWORD error = BaseFor(key, KEY_QUERY_VALUE, base);
    error = error == ERROR_SUCCESS ? ReadValue(base, ToUtf8(name), value) : error;
    return error == ERROR_SUCCESS ? CopyValue(value, type, data, size) : error;
}

DWORD SetValue(HKEY key, LPCWSTR name, DWORD type, const BYTE* data, DWORD size)
{
    if (data == nullptr && size != 0)
    {
        return ERROR_NOACCESS;
    }
    Base base;
    if (const DWORD error = BaseFor(key, KEY_SET_VALUE, base); error != ERROR_SUCCESS)
    {
        return error;
    }
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    return WriteValue(base, ToUtf8(name), {type, bytes});
}

DWORD DeleteNamedValue(HKEY key, LPCWSTR name)
{
    Base base;
    const DWORD error = BaseFor(key, KEY_SET_VALUE, base);
    return error == ERROR_SUCCESS ? DeleteValue(base, ToUtf8(name)) : error;
}

DWORD EnumerateValue(HKEY key, DWORD index, LPWSTR name, LPDWORD nameSize, LPDWORD type, LPBYTE data,
                     LPDWORD size)
{
    if (name == nullptr || nameSize == nullptr || (data != nullptr && size == nullptr))
    {
        return ERROR_INVALID_PARAMETER;
    }
    Base base;
    std::vector<std::string> names;
    if (const DWORD error = ListFor(key, KEY_QUERY_VALUE, EntryKind::Value, base, names);
        error != ERROR_SUCCESS)
    {
        return error;
    }
    if (index >= names.size())
    {
        return ERROR_NO_MORE_ITEMS;
    }
    Value value;
    DWORD error = ReadValue(base, names[index], value);
    error = error == ERROR_SUCCESS ? CopyName(names[index], name, *nameSize) : error;
    return error == ERROR_SUCCESS ? CopyValue(value, type, data, size) : error;
}

struct Summary
{
    DWORD count = 0;
    DWORD longestName = 0; ///< in characters
    DWORD longestData = 0; ///< in bytes
};

void Count(Summary& summary, const std::string& name, std::size_t dataSize)
{
    ++summary.count;
    summary.longestName = std::max(summary.longestName, static_cast<DWORD>(ToUtf16(name).size()));
    summary.longestData = std::max(summary.longestData, static_cast<DWORD>(dataSize));
}

DWORD Summarize(const Base& base, Summary& keys, Summary& values)
{
    std::vector<std::string> names;
    if (const DWORD error = ListNames(base, EntryKind::Key, names); error != ERROR_SUCCESS)
    {
        return error;
    }
    for (const std::string& name : names)
    {
        Count(keys, name, 0);
    }
    names.clear();
    const DWORD error = ListNames(base, EntryKind::Value, names);
    for (const std::string& name : names)
    {
        Value value;
        if (ReadValue(base, name, value) == ERROR_SUCCESS) // else it has just been deleted
        {
            Count(values, name, value.bytes.size());
        }
    }
    return error;
}

void Store(LPDWORD target, DWORD number)
{
    if (target != nullptr)
    {
        *target = number;
    }
}

} // namespace

} // namespace simulated::registry

using namespace simulated;

SIM_API LSTATUS WINAPI RegQueryValueExW(HKEY key, LPCWSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data,
                                        LPDWORD size)
{
    PlatformCall call(CallClass::Registry, "RegQueryValueExW", SIM_CALLER);
    registry::NoteArguments(call, key, name);
    return call.Status(
        [&]() -> DWORD
        {
            return reserved != nullptr ? ERROR_INVALID_PARAMETER
                                       : registry::QueryValue(key, name, type, data, size);
        });
}

SIM_API LSTATUS WINAPI RegSetValueExW(HKEY key, LPCWSTR name, DWORD, DWORD type, const BYTE* data, DWORD size)
{
    PlatformCall call(CallClass::Registry, "RegSetValueExW", SIM_CALLER);
    registry::NoteArguments(call, key, name, type, size);
    return call.Status([&] { return registry::SetValue(key, name, type, data, size); });
}

SIM_API LSTATUS WINAPI RegDeleteValueW(HKEY key, LPCWSTR name)
{
    PlatformCall call(CallClass::Registry, "RegDeleteValueW", SIM_CALLER);
    registry::NoteArguments(call, key, name);
    return call.Status([&] { return registry::DeleteNamedValue(key, name); });
}

SIM_API LSTATUS WINAPI RegEnumValueW(HKEY key, DWORD index, LPWSTR name, LPDWORD nameSize, LPDWORD reserved,
                                     LPDWORD type, LPBYTE data, LPDWORD size)
{
    PlatformCall call(CallClass::Registry, "RegEnumValueW", SIM_CALLER);
    registry::NoteArguments(call, key, index);
    return call.Status(
        [&]() -> DWORD
        {
            return reserved != nullptr
                       ? ERROR_INVALID_PARAMETER
                       : registry::EnumerateValue(key, index, name, nameSize, type, data, size);
        });
}

SIM_API LSTATUS WINAPI RegQueryInfoKeyW(HKEY key, LPWSTR keyClass, LPDWORD classSize, LPDWORD reserved,
                                        LPDWORD subKeys, LPDWORD longestSubKey, LPDWORD longestClass,
                                        LPDWORD values, LPDWORD longestValueName, LPDWORD longestValue,
                                        LPDWORD securitySize, PFILETIME lastWrite)
{
    PlatformCall call(CallClass::Registry, "RegQueryInfoKeyW", SIM_CALLER);
    registry::NoteArguments(call, key);
    return call.Status(
        [&]() -> DWORD
        {
            if (reserved != nullptr || (keyClass != nullptr && classSize == nullptr))
            {
                return ERROR_INVALID_PARAMETER;
            }
            registry::Base base;
            registry::Summary keys;
            registry::Summary held;
            DWORD error = registry::BaseFor(key, KEY_QUERY_VALUE, base);
            error = error == ERROR_SUCCESS ? registry::Summarize(base, keys, held) : error;
            if (error != ERROR_SUCCESS)
            {
                return error;
            }
            if (lastWrite != nullptr)
            {
                *lastWrite = hives::LastWrite(base.place.hive);
            }
            registry::Store(subKeys, keys.count);
            registry::Store(longestSubKey, keys.longestName);
            registry::Store(longestClass, 0);
            registry::Store(values, held.count);
            registry::Store(longestValueName, held.longestName);
            registry::Store(longestValue, held.longestData);
            registry::Store(securitySize, 0);
            return registry::CopyNoClass(keyClass, classSize);
        });
}
