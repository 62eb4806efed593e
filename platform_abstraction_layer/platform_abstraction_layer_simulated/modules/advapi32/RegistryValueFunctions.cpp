// modules/advapi32/RegistryValueFunctions.cpp
//
// The registry functions on values, and on what a key holds as a whole.
//
// Known differences from Windows: values are enumerated in the order of their names, not of their making. A
// text whose length leaves out its terminator is stored without it; Windows looks for one behind the given
// bytes.

#include "base/Text.h"
#include "modules/advapi32/RegistryShell.h"

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

SIM_API LSTATUS WINAPI RegSetValueExW(HKEY key, LPCWSTR name, DWORD reserved, DWORD type, const BYTE* data,
                                      DWORD size)
{
    PlatformCall call(CallClass::Registry, "RegSetValueExW", SIM_CALLER);
    registry::NoteArguments(call, key, name, type, size);
    return call.Status(
        [&]() -> DWORD {
            return reserved != 0 ? ERROR_INVALID_PARAMETER : registry::SetValue(key, name, type, data, size);
        });
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
