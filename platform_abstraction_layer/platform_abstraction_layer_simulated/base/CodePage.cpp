// base/CodePage.cpp
//
// Code page 1252, UTF-8 and UTF-16 as encodings of stored text.

#include "base/CodePage.h"

#include "base/Text.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace simulated
{

namespace
{

// Bytes 0x80 to 0x9F; all others are Latin-1.
constexpr std::array<wchar_t, 32> kUpperControls = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

constexpr unsigned char kFirstUpperControl = 0x80;
constexpr unsigned kLatinCodePage = 1252;
constexpr unsigned kUtf8CodePage = 65001;

// The character of a byte; the five bytes without one are control characters.
wchar_t FromWindows1252(unsigned char byte) noexcept
{
    const std::size_t index = static_cast<std::size_t>(byte) - kFirstUpperControl;
    return index < kUpperControls.size() ? kUpperControls[index] : static_cast<wchar_t>(byte);
}

// The byte of a character, or "?".
char ToWindows1252(wchar_t unit) noexcept
{
    if (unit < kFirstUpperControl || (unit >= 0xA0 && unit <= 0xFF))
    {
        return static_cast<char>(unit);
    }
    const auto* const found = std::find(kUpperControls.begin(), kUpperControls.end(), unit);
    return found == kUpperControls.end()
               ? '?'
               : static_cast<char>(kFirstUpperControl + (found - kUpperControls.begin()));
}

} // namespace

bool IsAnsiCodePage(unsigned codePage) noexcept
{
    return codePage == kLatinCodePage || codePage == kUtf8CodePage;
}

Encoding EncodingOf(unsigned codePage) noexcept
{
    return codePage == kUtf8CodePage ? Encoding::Utf8 : Encoding::Windows1252;
}

std::string Decode(Encoding encoding, std::string_view bytes)
{
    if (encoding == Encoding::Utf8)
    {
        return std::string(bytes);
    }
    std::vector<wchar_t> units;
    if (encoding == Encoding::Windows1252)
    {
        std::transform(bytes.begin(), bytes.end(), std::back_inserter(units),
                       [](char byte) { return FromWindows1252(static_cast<unsigned char>(byte)); });
    }
    else
    {
        for (std::size_t place = 0; place + 1 < bytes.size(); place += 2)
        {
            units.push_back(static_cast<wchar_t>(static_cast<unsigned char>(bytes[place]) |
                                                 (static_cast<unsigned char>(bytes[place + 1]) << 8)));
        }
    }
    return ToUtf8(units.data(), units.size());
}

std::string Encode(Encoding encoding, std::string_view text)
{
    if (encoding == Encoding::Utf8)
    {
        return std::string(text);
    }
    std::string bytes;
    for (const wchar_t unit : ToUtf16(text))
    {
        if (encoding == Encoding::Windows1252)
        {
            bytes += ToWindows1252(unit);
        }
        else
        {
            bytes += static_cast<char>(unit & 0xFF);
            bytes += static_cast<char>(unit >> 8);
        }
    }
    return bytes;
}

} // namespace simulated
