// foundation/Registry.cpp
//
// Reading texts and records from the registry.

#include "foundation/Registry.h"

#include <algorithm>

namespace registry
{

LSTATUS ReadText(HKEY key, const wchar_t* name, wchar_t* target, DWORD& bytes, DWORD* type) noexcept
{
    const std::size_t capacity = bytes / sizeof(wchar_t);
    if (capacity == 0)
    {
        return ERROR_MORE_DATA;
    }
    const LSTATUS read = RegQueryValueExW(key, name, nullptr, type, reinterpret_cast<LPBYTE>(target), &bytes);
    if (read != ERROR_SUCCESS)
    {
        target[0] = L'\0';
        return read;
    }
    // An odd last byte belongs to no character.
    target[std::min<std::size_t>(bytes / sizeof(wchar_t), capacity - 1)] = L'\0';
    return read;
}

LSTATUS ReadRecord(HKEY key, const wchar_t* name, unsigned char* target, DWORD* bytes,
                   DWORD recordSize) noexcept
{
    DWORD type = REG_NONE;
    const LSTATUS read = RegQueryValueExW(key, name, nullptr, &type, target, bytes);
    const bool isRecord = type == REG_BINARY && bytes != nullptr && *bytes >= recordSize;
    if (read == ERROR_SUCCESS && !isRecord)
    {
        return ERROR_INVALID_DATA;
    }
    return read;
}

DWORD ErrorOfRecord(LSTATUS failed) noexcept
{
    return failed == ERROR_INVALID_DATA ? ERROR_INVALID_DATA : GetLastError();
}

} // namespace registry
