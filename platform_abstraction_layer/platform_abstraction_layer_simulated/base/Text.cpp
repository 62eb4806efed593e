// base/Text.cpp
//
// UTF-16 and UTF-8, and the folding of case.

#include "base/Text.h"

#include <algorithm>

namespace simulated
{

namespace
{

constexpr bool IsHighSurrogate(unsigned unit)
{
    return unit >= 0xD800 && unit <= 0xDBFF;
}

constexpr bool IsLowSurrogate(unsigned unit)
{
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

constexpr unsigned kReplacement = 0xFFFD;

void AppendUtf8(std::string& target, unsigned point)
{
    if (point < 0x80)
    {
        target += static_cast<char>(point);
        return;
    }
    const unsigned trailing = point < 0x800 ? 1 : point < 0x10000 ? 2 : 3;
    target += static_cast<char>((0xFF00U >> (trailing + 1)) | (point >> (6 * trailing)));
    for (unsigned left = trailing; left-- > 0;)
    {
        target += static_cast<char>(0x80 | ((point >> (6 * left)) & 0x3F));
    }
}

// The code point at `place`, which moves behind it. Invalid UTF-8 becomes U+FFFD.
unsigned NextPoint(std::string_view source, std::size_t& place)
{
    const unsigned lead = static_cast<unsigned char>(source[place++]);
    if (lead < 0x80)
    {
        return lead;
    }
    const unsigned trailing = lead < 0xC2 || lead > 0xF4 ? 0 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
    unsigned point = lead & (0x3FU >> trailing);
    unsigned met = 0;
    for (; met < trailing && place < source.size() && (source[place] & 0xC0) == 0x80; ++met, ++place)
    {
        point = (point << 6) | (static_cast<unsigned>(source[place]) & 0x3F);
    }
    constexpr unsigned kLowest[] = {0, 0x80, 0x800, 0x10000};
    const bool isCharacter =
        trailing > 0 && met == trailing && point >= kLowest[trailing] && point <= 0x10FFFF;
    return isCharacter ? point : kReplacement;
}

// Upper case of the alphabets that names on such a machine are written in: Latin, Greek, Cyrillic.
unsigned UpperCase(unsigned point)
{
    const bool plainLatin = point >= 'a' && point <= 'z';
    const bool latin1 = point >= 0xE0 && point <= 0xFE && point != 0xF7;
    const bool greek = point >= 0x3B1 && point <= 0x3C9 && point != 0x3C2;
    const bool cyrillic = point >= 0x430 && point <= 0x44F;
    if (plainLatin || latin1 || greek || cyrillic)
    {
        return point - 0x20;
    }
    if (point == 0xFF)
    {
        return 0x178;
    }
    if (point >= 0x450 && point <= 0x45F)
    {
        return point - 0x50;
    }
    const bool evenIsUpper = (point >= 0x100 && point <= 0x137) || (point >= 0x14A && point <= 0x177);
    const bool oddIsUpper = (point >= 0x139 && point <= 0x148) || (point >= 0x179 && point <= 0x17E);
    if ((evenIsUpper && point % 2 == 1) || (oddIsUpper && point % 2 == 0))
    {
        return point - 1;
    }
    return point;
}

} // namespace

std::size_t Length(const wchar_t* source)
{
    std::size_t length = 0;
    while (source[length] != 0)
    {
        ++length;
    }
    return length;
}

std::string ToUtf8(const wchar_t* source, std::size_t length)
{
    std::string target;
    for (std::size_t index = 0; index < length; ++index)
    {
        unsigned point = source[index];
        if (IsHighSurrogate(point) && index + 1 < length && IsLowSurrogate(source[index + 1]))
        {
            ++index;
            point = 0x10000 + ((point - 0xD800) << 10) + (static_cast<unsigned>(source[index]) - 0xDC00);
        }
        AppendUtf8(target, point);
    }
    return target;
}

std::string ToUtf8(const wchar_t* source)
{
    return source == nullptr ? std::string() : ToUtf8(source, Length(source));
}

std::vector<wchar_t> ToUtf16(std::string_view source)
{
    std::vector<wchar_t> target;
    target.reserve(source.size());
    for (std::size_t place = 0; place < source.size();)
    {
        const unsigned point = NextPoint(source, place);
        if (point >= 0x10000)
        {
            target.push_back(static_cast<wchar_t>(0xD800 + ((point - 0x10000) >> 10)));
            target.push_back(static_cast<wchar_t>(0xDC00 + ((point - 0x10000) & 0x3FF)));
        }
        else
        {
            target.push_back(static_cast<wchar_t>(point));
        }
    }
    return target;
}

bool CopyToUtf16(std::string_view source, wchar_t* target, std::size_t capacity)
{
    const std::vector<wchar_t> units = ToUtf16(source);
    if (units.size() + 1 > capacity)
    {
        return false;
    }
    *std::copy(units.begin(), units.end(), target) = 0;
    return true;
}

std::string FoldCase(std::string_view source)
{
    // Nearly all names are ASCII.
    std::string target(source);
    std::size_t place = 0;
    for (char* at = target.data(); place < source.size() && static_cast<unsigned char>(*at) < 0x80; ++at)
    {
        *at = static_cast<char>(*at >= 'a' && *at <= 'z' ? *at - 0x20 : *at);
        ++place;
    }
    target.resize(place);
    while (place < source.size())
    {
        AppendUtf8(target, UpperCase(NextPoint(source, place)));
    }
    return target;
}

bool EqualIgnoringCase(std::string_view left, std::string_view right)
{
    std::size_t leftPlace = 0;
    std::size_t rightPlace = 0;
    while (leftPlace < left.size() && rightPlace < right.size())
    {
        if (UpperCase(NextPoint(left, leftPlace)) != UpperCase(NextPoint(right, rightPlace)))
        {
            return false;
        }
    }
    return leftPlace == left.size() && rightPlace == right.size();
}

wchar_t FoldCase(wchar_t unit)
{
    return static_cast<wchar_t>(UpperCase(unit));
}

} // namespace simulated
