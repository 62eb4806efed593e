// base/GuidText.cpp
//
// GUIDs to text and back.

#include "base/GuidText.h"

#include <charconv>
#include <cstdio>
#include <cstring>

namespace simulated
{

namespace
{

constexpr std::string_view kPattern = "{xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx}";

// Where the digits of each field stand in the text.
constexpr std::size_t kData2 = 10;
constexpr std::size_t kData3 = 15;
constexpr std::size_t kData4[] = {20, 22, 25, 27, 29, 31, 33, 35};

bool IsHexDigit(char letter)
{
    return (letter >= '0' && letter <= '9') || (letter >= 'a' && letter <= 'f') ||
           (letter >= 'A' && letter <= 'F');
}

bool MatchesPattern(std::string_view text)
{
    if (text.size() != kPattern.size())
    {
        return false;
    }
    for (std::size_t place = 0; place < text.size(); ++place)
    {
        if (kPattern[place] == 'x' ? !IsHexDigit(text[place]) : text[place] != kPattern[place])
        {
            return false;
        }
    }
    return true;
}

template <class Field>
Field Digits(std::string_view text, std::size_t place)
{
    Field field = 0;
    std::from_chars(text.data() + place, text.data() + place + 2 * sizeof(Field), field, 16);
    return field;
}

} // namespace

std::string ToText(const GUID& guid)
{
    char text[kPattern.size() + 1];
    std::snprintf(text, sizeof text, "{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}", guid.Data1,
                  guid.Data2, guid.Data3, guid.Data4[0], guid.Data4[1], guid.Data4[2], guid.Data4[3],
                  guid.Data4[4], guid.Data4[5], guid.Data4[6], guid.Data4[7]);
    return text;
}

std::optional<GUID> ParseGuid(std::string_view text)
{
    if (!MatchesPattern(text))
    {
        return std::nullopt;
    }
    GUID guid = {Digits<DWORD>(text, 1), Digits<WORD>(text, kData2), Digits<WORD>(text, kData3), {}};
    for (std::size_t index = 0; index < sizeof guid.Data4; ++index)
    {
        guid.Data4[index] = Digits<BYTE>(text, kData4[index]);
    }
    return guid;
}

bool IsSame(const GUID& left, const GUID& right)
{
    return std::memcmp(&left, &right, sizeof left) == 0;
}

} // namespace simulated
