// modules/powrprof/PowerStoreText.cpp
//
// Texts from numbers and GUIDs, and back.

#include "PowerStoreText.h"

#include <string_view>

namespace power_store
{

namespace
{

constexpr std::string_view kDigits = "0123456789abcdef";

void AppendHex(WideText& text, DWORD value, int digits)
{
    for (int shift = (digits - 1) * 4; shift >= 0; shift -= 4)
    {
        text.push_back(static_cast<wchar_t>(kDigits[(value >> shift) & 0xF]));
    }
}

// The value of a hexadecimal digit, or 16.
DWORD DigitValue(wchar_t unit) noexcept
{
    if (unit >= L'A' && unit <= L'F')
    {
        unit = static_cast<wchar_t>(unit - L'A' + L'a');
    }
    const auto position = unit < 0x80 ? kDigits.find(static_cast<char>(unit)) : std::string_view::npos;
    return position == std::string_view::npos ? 16 : static_cast<DWORD>(position);
}

// Reads `digits` hexadecimal digits at `text` and moves behind them; false, for other units.
bool ReadHex(const wchar_t*& text, int digits, DWORD& value) noexcept
{
    value = 0;
    for (int i = 0; i < digits; ++i, ++text)
    {
        const DWORD digit = DigitValue(*text);
        if (digit == 16)
        {
            return false;
        }
        value = (value << 4) | digit;
    }
    return true;
}

} // namespace

std::size_t Length(const wchar_t* text) noexcept
{
    std::size_t length = 0;
    while (text != nullptr && text[length] != 0)
    {
        ++length;
    }
    return length;
}

WideText ToText(const wchar_t* text)
{
    WideText result(text, text + Length(text));
    result.push_back(0);
    return result;
}

WideText ToText(DWORD number)
{
    WideText result(1, 0);
    do
    {
        result.insert(result.begin(), static_cast<wchar_t>(L'0' + number % 10));
        number /= 10;
    } while (number != 0);
    return result;
}

WideText ToText(const GUID& guid)
{
    WideText result;
    AppendHex(result, guid.Data1, 8);
    result.push_back(L'-');
    AppendHex(result, guid.Data2, 4);
    result.push_back(L'-');
    AppendHex(result, guid.Data3, 4);
    for (std::size_t i = 0; i < sizeof guid.Data4; ++i)
    {
        if (i == 0 || i == 2)
        {
            result.push_back(L'-');
        }
        AppendHex(result, guid.Data4[i], 2);
    }
    result.push_back(0);
    return result;
}

bool ParseNumber(const wchar_t* text, DWORD& number) noexcept
{
    number = 0;
    const wchar_t* position = text;
    for (; *position >= L'0' && *position <= L'9'; ++position)
    {
        const auto digit = static_cast<DWORD>(*position - L'0');
        if (number > (0xFFFFFFFFu - digit) / 10)
        {
            return false;
        }
        number = number * 10 + digit;
    }
    return position != text && *position == 0;
}

bool ParseGuid(const wchar_t* text, GUID& guid) noexcept
{
    // How many digits each group has, and where its bytes go.
    DWORD data1 = 0;
    DWORD data2 = 0;
    DWORD data3 = 0;
    if (!ReadHex(text, 8, data1) || *text++ != L'-' || !ReadHex(text, 4, data2) || *text++ != L'-' ||
        !ReadHex(text, 4, data3) || *text++ != L'-')
    {
        return false;
    }
    guid.Data1 = data1;
    guid.Data2 = static_cast<WORD>(data2);
    guid.Data3 = static_cast<WORD>(data3);
    for (std::size_t i = 0; i < sizeof guid.Data4; ++i)
    {
        DWORD byte = 0;
        if ((i == 2 && *text++ != L'-') || !ReadHex(text, 2, byte))
        {
            return false;
        }
        guid.Data4[i] = static_cast<BYTE>(byte);
    }
    return *text == 0;
}

} // namespace power_store
