// modules/advapi32/RegistryShell.cpp
//
// Arguments and buffers of the registry functions.

#include "modules/advapi32/RegistryShell.h"

#include "base/Text.h"

#include <algorithm>

namespace simulated::registry
{

namespace
{

// A text that was stored without a terminator gets one in the buffer when there is room, as on Windows.
void Terminate(const Value& value, LPBYTE data, DWORD room)
{
    const std::size_t size = value.bytes.size();
    const bool isText = value.type == REG_SZ || value.type == REG_EXPAND_SZ || value.type == REG_MULTI_SZ;
    wchar_t last = 0;
    if (isText && size >= sizeof last && room - size >= sizeof last)
    {
        std::memcpy(&last, value.bytes.data() + size - sizeof last, sizeof last);
        std::memset(data + size, 0, last == 0 ? 0 : sizeof last);
    }
}

} // namespace

DWORD BaseFor(HKEY key, REGSAM rights, Base& base)
{
    const DWORD error = FindBase(key, base);
    return error == ERROR_SUCCESS && !base.Allows(rights) ? ERROR_ACCESS_DENIED : error;
}

DWORD ListFor(HKEY key, REGSAM rights, EntryKind kind, Base& base, std::vector<std::string>& names)
{
    const DWORD error = BaseFor(key, rights, base);
    return error == ERROR_SUCCESS ? ListNames(base, kind, names) : error;
}

DWORD CopyName(std::string_view source, LPWSTR name, DWORD& size)
{
    if (!CopyToUtf16(source, name, size))
    {
        return ERROR_MORE_DATA;
    }
    size = static_cast<DWORD>(Length(name));
    return ERROR_SUCCESS;
}

DWORD CopyValue(const Value& value, LPDWORD type, LPBYTE data, LPDWORD size)
{
    if (data != nullptr && size == nullptr)
    {
        return ERROR_INVALID_PARAMETER;
    }
    if (type != nullptr)
    {
        *type = value.type;
    }
    const DWORD room = size == nullptr ? 0 : *size;
    if (size != nullptr)
    {
        *size = static_cast<DWORD>(value.bytes.size());
    }
    if (data == nullptr)
    {
        return ERROR_SUCCESS;
    }
    if (value.bytes.size() > room)
    {
        return ERROR_MORE_DATA;
    }
    std::copy(value.bytes.begin(), value.bytes.end(), data);
    Terminate(value, data, room);
    return ERROR_SUCCESS;
}

} // namespace simulated::registry
