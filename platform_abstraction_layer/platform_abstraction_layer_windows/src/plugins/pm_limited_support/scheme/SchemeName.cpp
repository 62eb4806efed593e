// scheme/SchemeName.cpp
//
// A scheme's name as it is taken from a caller.

#include "scheme/SchemeName.h"

#include <algorithm>

namespace
{

constexpr std::size_t kLongestGiven = 258;
constexpr std::size_t kLongestXp = 29;
constexpr std::size_t kLongestVista = 127;

bool IsControl(wchar_t character) noexcept
{
    const auto code = static_cast<unsigned>(character);
    return code < 0x20 || (code >= 0x7F && code < 0xA0);
}

} // namespace

bool SchemeName::Take(const wchar_t* name) noexcept
{
    m_text[0] = L'\0';
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
    if (first == last || std::any_of(first, last, IsControl))
    {
        return false;
    }
    *std::copy(first, last, m_text) = L'\0';
    return true;
}

bool SchemeName::IsShortEnough(bool isVista) const noexcept
{
    return text::Length(m_text) <= (isVista ? kLongestVista : kLongestXp);
}

wchar_t* SchemeName::Text() noexcept
{
    return m_text;
}
