// scheme/SchemeName.cpp
//
// A scheme's name as it is taken from a caller.

#include "scheme/SchemeName.h"

#include <algorithm>

namespace
{

constexpr std::size_t kLongestGiven = 258;
constexpr std::size_t kLongestStored = 29;

} // namespace

bool HasLineBreak(const wchar_t* name) noexcept
{
    return text::ContainsAny(name, L"\r\n");
}

bool SchemeName::Take(const wchar_t* name) noexcept
{
    if (name == nullptr)
    {
        return false;
    }
    const std::size_t length = text::Length(name, kLongestGiven + 1);
    if (length > kLongestGiven)
    {
        return false;
    }
    const wchar_t* first = name;
    const wchar_t* last = name + length;
    while (first != last && *first == L' ')
    {
        ++first;
    }
    while (last != first && last[-1] == L' ')
    {
        --last;
    }
    if (first == last || HasLineBreak(name))
    {
        return false;
    }
    *std::copy(first, last, m_text) = L'\0';
    return true;
}

bool SchemeName::IsShortEnough() const noexcept
{
    return text::Length(m_text) <= kLongestStored;
}

wchar_t* SchemeName::Text() noexcept
{
    return m_text;
}
