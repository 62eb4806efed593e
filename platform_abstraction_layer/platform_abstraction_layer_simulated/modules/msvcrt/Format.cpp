// modules/msvcrt/Format.cpp
//
// One pass over the format: each conversion is read, its argument fetched by kind and size, and its text
// padded.

#include "modules/msvcrt/Format.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <string>
#include <type_traits>

namespace simulated::runtime
{

namespace
{

constexpr int kLargestWidth = INT_MAX / 10 - 1;

// What stands between "%" and its letter, and the letter.
struct Conversion
{
    bool leftAligned = false;
    bool zeroPadded = false;
    std::size_t width = 0;
    wchar_t size = 0;   // 'h', 'l' or none
    wchar_t letter = 0; // 0 when the format ends before
};

// Moves `place` behind the conversion that begins there.
Conversion ReadConversion(const wchar_t*& place)
{
    Conversion conversion;
    for (; *place == L'-' || *place == L'0'; ++place)
    {
        (*place == L'-' ? conversion.leftAligned : conversion.zeroPadded) = true;
    }
    int width = 0;
    for (; *place >= L'0' && *place <= L'9'; ++place)
    {
        width = std::min(width, kLargestWidth) * 10 + (*place - L'0');
    }
    conversion.width = static_cast<std::size_t>(width);
    if (*place == L'h' || *place == L'l' || *place == L'w')
    {
        conversion.size = *place++ == L'h' ? L'h' : L'l';
    }
    conversion.letter = *place;
    place += *place == 0 ? 0 : 1;
    return conversion;
}

std::u16string Digits(std::uint32_t value, unsigned base, bool upper)
{
    const char16_t* const all = upper ? u"0123456789ABCDEF" : u"0123456789abcdef";
    std::u16string digits;
    do
    {
        digits += all[value % base];
        value /= base;
    } while (value != 0);
    std::reverse(digits.begin(), digits.end());
    return digits;
}

// The small letter is wide text as the format is, the capital narrow, unless a size says which.
bool IsWideText(const Conversion& conversion)
{
    const bool isSmall = conversion.letter == L's' || conversion.letter == L'c';
    return conversion.size == 0 ? isSmall : conversion.size == L'l';
}

template <class Unit>
std::u16string Units(const Unit* text)
{
    std::u16string units;
    for (; *text != 0; ++text)
    {
        units += static_cast<char16_t>(static_cast<std::make_unsigned_t<Unit>>(*text));
    }
    return units;
}

class Formatter
{
public:
    // Fetches from `arguments`, which stay the caller's to end.
    Formatter(wchar_t* target, std::size_t count, va_list* arguments)
        : m_target(target), m_count(count), m_arguments(arguments)
    {
    }

    int Run(const wchar_t* format)
    {
        while (*format != 0)
        {
            if (*format != L'%')
            {
                Fill(static_cast<char16_t>(*format++), 1);
                continue;
            }
            ++format;
            Convert(ReadConversion(format));
        }
        if (m_length > m_count)
        {
            return -1;
        }
        if (m_length < m_count)
        {
            m_target[m_length] = 0;
        }
        return static_cast<int>(m_length);
    }

private:
    void Fill(char16_t unit, std::size_t number)
    {
        const std::size_t room = m_count - std::min(m_count, m_length);
        std::fill_n(m_target + m_count - room, std::min(room, number), static_cast<wchar_t>(unit));
        m_length += number;
    }

    void Put(const std::u16string& text)
    {
        for (const char16_t unit : text)
        {
            Fill(unit, 1);
        }
    }

    void Convert(const Conversion& conversion)
    {
        switch (conversion.letter)
        {
        case 0:
            break;
        case L'd':
        case L'i':
        {
            const int argument = va_arg(*m_arguments, int);
            const int value = conversion.size == L'h' ? static_cast<std::int16_t>(argument) : argument;
            const auto bits = static_cast<std::uint32_t>(value);
            Pad(value < 0 ? u"-" : u"", Digits(value < 0 ? 0 - bits : bits, 10, false), conversion);
            break;
        }
        case L'u':
        case L'x':
        case L'X':
        {
            const unsigned argument = va_arg(*m_arguments, unsigned);
            const unsigned value = conversion.size == L'h' ? argument & 0xFFFF : argument;
            Pad({}, Digits(value, conversion.letter == L'u' ? 10 : 16, conversion.letter == L'X'),
                conversion);
            break;
        }
        case L'c':
        case L'C':
        {
            const int value = va_arg(*m_arguments, int);
            const auto unit = static_cast<char16_t>(IsWideText(conversion) ? value : value & 0xFF);
            Pad({}, {unit}, conversion);
            break;
        }
        case L's':
        case L'S':
            Pad({}, FetchText(IsWideText(conversion)), conversion);
            break;
        default:
            Fill(static_cast<char16_t>(conversion.letter), 1);
            break;
        }
    }

    std::u16string FetchText(bool isWide)
    {
        const void* const text = va_arg(*m_arguments, const void*);
        return text == nullptr ? u"(null)"
               : isWide        ? Units(static_cast<const wchar_t*>(text))
                               : Units(static_cast<const char*>(text));
    }

    // Zeros go behind the sign, blanks before it.
    void Pad(const std::u16string& sign, const std::u16string& text, const Conversion& conversion)
    {
        const std::size_t length = sign.size() + text.size();
        const std::size_t padding = conversion.width - std::min(conversion.width, length);
        const bool zeros = conversion.zeroPadded && !conversion.leftAligned;
        Fill(u' ', zeros || conversion.leftAligned ? 0 : padding);
        Put(sign);
        Fill(u'0', zeros ? padding : 0);
        Put(text);
        Fill(u' ', conversion.leftAligned ? padding : 0);
    }

    wchar_t* m_target;
    std::size_t m_count;
    std::size_t m_length = 0; // of the whole text, also behind the target's end
    va_list* m_arguments;
};

} // namespace

int Format(wchar_t* target, std::size_t count, const wchar_t* format, va_list arguments)
{
    va_list own;
    va_copy(own, arguments);
    const int length = Formatter(target, count, &own).Run(format);
    va_end(own);
    return length;
}

} // namespace simulated::runtime
