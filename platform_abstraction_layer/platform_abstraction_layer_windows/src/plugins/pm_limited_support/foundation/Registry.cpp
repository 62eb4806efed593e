// foundation/Registry.cpp
//
// Reading texts from the registry.

#include "foundation/Registry.h"

#include <algorithm>

namespace registry
{

LSTATUS ReadText(HKEY key, const wchar_t* name, wchar_t* target, DWORD& bytes) noexcept
{
    const std::size_t capacity = bytes / sizeof(wchar_t);
    if (capacity == 0)
    {
        return ERROR_MORE_DATA;
    }
    std::fill_n(target, capacity, L'\0');
    const LSTATUS read =
        RegQueryValueExW(key, name, nullptr, nullptr, reinterpret_cast<LPBYTE>(target), &bytes);
    if (read != ERROR_SUCCESS)
    {
        target[0] = L'\0';
        return read;
    }
    // An odd last byte belongs to no character.
    target[std::min<std::size_t>(bytes / sizeof(wchar_t), capacity - 1)] = L'\0';
    return read;
}

} // namespace registry
