// base/Text.cpp
//
// UTF-16 and UTF-8, and the folding of case.

#include "base/Text.h"

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

void AppendUtf8(std::string& target, unsigned point)
{
    const auto put = [&target](unsigned byte) { target += static_cast<char>(byte); };
    if (point < 0x80)
    {
        put(point);
    }
    else if (point < 0x800)
    {
        put(0xC0 | (point >> 6));
        put(0x80 | (point & 0x3F));
    }
    else if (point < 0x10000)
    {
        put(0xE0 | (point >> 12));
        put(0x80 | ((point >> 6) & 0x3F));
        put(0x80 | (point & 0x3F));
    }
    else
    {
        put(0xF0 | (point >> 18));
        put(0x80 | ((point >> 12) & 0x3F));
        put(0x80 | ((point >> 6) & 0x3F));
        put(0x80 | (point & 0x3F));
    }
}

// The code point at `place`, which moves behind it. A byte that begins no sequence stands for U+FFFD.
unsigned NextPoint(std::string_view source, std::size_t& place)
{
    const auto byteAt = [source](std::size_t at)
    { return at < source.size() ? static_cast<unsigned char>(source[at]) : 0u; };
    const unsigned lead = byteAt(place++);
    const unsigned trailing = lead < 0x80   ? 0
                              : lead < 0xC2 ? 4
                              : lead < 0xE0 ? 1
                              : lead < 0xF0 ? 2
                              : lead < 0xF5 ? 3
                                            : 4;
    if (trailing == 0)
    {
        return lead;
    }
    if (trailing == 4)
    {
        return 0xFFFD;
    }
    unsigned point = lead & (0x3Fu >> trailing);
    for (unsigned index = 0; index < trailing; ++index)
    {
        const unsigned next = byteAt(place + index);
        if ((next & 0xC0) != 0x80)
        {
            return 0xFFFD;
        }
        point = (point << 6) | (next & 0x3F);
    }
    place += trailing;
    return point;
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
    for (std::size_t index = 0; index < units.size(); ++index)
    {
        target[index] = units[index];
    }
    target[units.size()] = 0;
    return true;
}

std::string FoldCase(std::string_view source)
{
    // Nearly all names are plain to their end.
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
