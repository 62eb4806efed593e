// msvcrt/Format.cpp
//
// One formatter for both widths of text: it fetches the argument of a conversion by its kind and size, and
// pads what comes out.

#include "msvcrt/Format.h"

#include "msvcrt/Conversion.h"
#include "msvcrt/NumberText.h"

#include <windef.h>

#include <algorithm>
#include <climits>
#include <string_view>
#include <type_traits>

namespace simulated::runtime
{

namespace
{

template <class Unit>
class Formatter
{
public:
    // Fetches from `arguments`, which stay the caller's to end.
    Formatter(Unit* target, std::size_t count, va_list* arguments)
        : m_target(target), m_count(target == nullptr ? 0 : count), m_arguments(arguments)
    {
    }

    int Run(const Unit* format)
    {
        while (*format != 0)
        {
            if (*format != '%')
            {
                Put(static_cast<std::make_unsigned_t<Unit>>(*format++));
                continue;
            }
            ConversionReader reader(format + 1, [this] { return va_arg(*m_arguments, int); });
            Convert(reader.Read());
            format = reader.Place();
        }
        return Finish();
    }

private:
    int Finish()
    {
        if (m_failed || m_length > INT_MAX || (m_target != nullptr && m_length > m_count))
        {
            return -1;
        }
        if (m_target != nullptr && m_length < m_count)
        {
            m_target[m_length] = 0;
        }
        return static_cast<int>(m_length);
    }

    void Put(unsigned unit)
    {
        if (m_length < m_count)
        {
            m_target[m_length] = static_cast<Unit>(unit);
        }
        ++m_length;
    }

    void Fill(char character, std::size_t number)
    {
        const std::size_t room = m_count - std::min(m_count, m_length);
        std::fill_n(m_target + m_count - room, std::min(room, number), static_cast<Unit>(character));
        m_length += number;
    }

    void Convert(const Conversion& conversion)
    {
        switch (conversion.letter)
        {
        case 0:
            break;
        case 'd':
        case 'i':
            PutSigned(conversion);
            break;
        case 'u':
            PutUnsigned(conversion, 10);
            break;
        case 'o':
            PutUnsigned(conversion, 8);
            break;
        case 'x':
        case 'X':
            PutUnsigned(conversion, 16);
            break;
        case 'p':
            PutPointer(conversion);
            break;
        case 'e':
        case 'E':
        case 'f':
        case 'g':
        case 'G':
            PutNumber(WithSign(FromDouble(va_arg(*m_arguments, double), conversion), conversion), 0,
                      conversion);
            break;
        case 'c':
        case 'C':
            PutCharacter(conversion);
            break;
        case 's':
        case 'S':
            PutText(conversion);
            break;
        case 'n':
            static_cast<void>(va_arg(*m_arguments, void*));
            break;
        default:
            Put(conversion.letter);
            break;
        }
    }

    std::uint64_t FetchUnsigned(Size size)
    {
        switch (size)
        {
        case Size::LongLong:
            return va_arg(*m_arguments, unsigned long long);
        case Size::Pointer:
            return va_arg(*m_arguments, std::size_t);
        case Size::Short:
            return static_cast<std::uint16_t>(va_arg(*m_arguments, unsigned));
        default:
            return va_arg(*m_arguments, unsigned);
        }
    }

    std::int64_t FetchSigned(Size size)
    {
        switch (size)
        {
        case Size::LongLong:
            return va_arg(*m_arguments, long long);
        case Size::Pointer:
            return va_arg(*m_arguments, std::ptrdiff_t);
        case Size::Short:
            return static_cast<std::int16_t>(va_arg(*m_arguments, int));
        default:
            return va_arg(*m_arguments, int);
        }
    }

    static Digits WithSign(Digits number, const Conversion& conversion)
    {
        if (number.prefix.empty())
        {
            number.prefix = conversion.plusSign ? "+" : conversion.blankSign ? " " : "";
        }
        return number;
    }

    // No digit is a number too: without a precision it shows as one zero.
    static std::size_t DigitCount(const Conversion& conversion)
    {
        return static_cast<std::size_t>(conversion.precision < 0 ? 1 : conversion.precision);
    }

    void PutSigned(const Conversion& conversion)
    {
        const std::int64_t value = FetchSigned(conversion.size);
        const auto bits = static_cast<std::uint64_t>(value);
        Digits number = FromInteger(value < 0 ? 0 - bits : bits, 10, false);
        number.prefix = value < 0 ? "-" : "";
        PutNumber(WithSign(std::move(number), conversion), DigitCount(conversion), conversion);
    }

    void PutUnsigned(const Conversion& conversion, unsigned base)
    {
        const bool upper = conversion.letter == 'X';
        Digits number = FromInteger(FetchUnsigned(conversion.size), base, upper);
        if (conversion.alternate && !number.digits.empty())
        {
            number.prefix = base == 8 ? "0" : base == 16 ? (upper ? "0X" : "0x") : "";
        }
        PutNumber(number, DigitCount(conversion), conversion);
    }

    // All digits of an address, in capitals and without a prefix.
    void PutPointer(const Conversion& conversion)
    {
        const auto value = reinterpret_cast<std::uintptr_t>(va_arg(*m_arguments, void*));
        Digits number = FromInteger(value, 16, true);
        number.prefix = conversion.alternate ? "0X" : "";
        PutNumber(number, 2 * sizeof value, conversion);
    }

    void PutNumber(const Digits& number, std::size_t digitCount, const Conversion& conversion)
    {
        const std::size_t zeros = digitCount - std::min(digitCount, number.digits.size());
        const std::size_t length = number.prefix.size() + zeros + number.digits.size();
        const std::size_t padding = Padding(length, conversion);
        const bool zeroPadded = conversion.zeroPadded && !conversion.leftAligned;
        if (!conversion.leftAligned && !zeroPadded)
        {
            Fill(' ', padding);
        }
        PutPlain(number.prefix);
        Fill('0', zeroPadded ? padding + zeros : zeros);
        PutPlain(number.digits);
        if (conversion.leftAligned)
        {
            Fill(' ', padding);
        }
    }

    void PutPlain(std::string_view text)
    {
        for (const char character : text)
        {
            Put(static_cast<unsigned char>(character));
        }
    }

    static std::size_t Padding(std::size_t length, const Conversion& conversion)
    {
        const auto width = static_cast<std::size_t>(conversion.width);
        return width - std::min(width, length);
    }

    // Text is as wide as the format says by "h", "l" or "w", else as the format itself for the small letter
    // and of the other width for the capital.
    static bool IsWideText(const Conversion& conversion)
    {
        constexpr bool isWideFormat = std::is_same_v<Unit, wchar_t>;
        const bool isSmall = conversion.letter == 's' || conversion.letter == 'c';
        return conversion.size == Size::Long    ? true
               : conversion.size == Size::Short ? false
                                                : isSmall == isWideFormat;
    }

    void PutCharacter(const Conversion& conversion)
    {
        const auto value = static_cast<unsigned>(va_arg(*m_arguments, int));
        if (IsWideText(conversion))
        {
            const auto unit = static_cast<wchar_t>(value);
            PutUnits(&unit, 1, conversion);
        }
        else
        {
            const auto unit = static_cast<char>(value);
            PutUnits(&unit, 1, conversion);
        }
    }

    void PutText(const Conversion& conversion)
    {
        const void* const text = va_arg(*m_arguments, const void*);
        if (text == nullptr)
        {
            PutTerminated("(null)", conversion);
        }
        else if (IsWideText(conversion))
        {
            PutTerminated(static_cast<const wchar_t*>(text), conversion);
        }
        else
        {
            PutTerminated(static_cast<const char*>(text), conversion);
        }
    }

    // With a precision the text needn't be terminated.
    template <class Source>
    void PutTerminated(const Source* text, const Conversion& conversion)
    {
        const std::size_t limit =
            conversion.precision < 0 ? SIZE_MAX : static_cast<std::size_t>(conversion.precision);
        std::size_t length = 0;
        while (length < limit && text[length] != 0)
        {
            ++length;
        }
        PutUnits(text, length, conversion);
    }

    template <class Source>
    void PutUnits(const Source* units, std::size_t length, const Conversion& conversion)
    {
        const std::size_t padding = Padding(length, conversion);
        if (!conversion.leftAligned)
        {
            Fill(conversion.zeroPadded ? '0' : ' ', padding);
        }
        for (std::size_t index = 0; index < length; ++index)
        {
            const unsigned unit = static_cast<std::make_unsigned_t<Source>>(units[index]);
            // The runtime's own locale knows no wide character beyond a byte.
            m_failed = m_failed || (sizeof(Unit) == 1 && unit > 0xFF);
            Put(unit);
        }
        if (conversion.leftAligned)
        {
            Fill(' ', padding);
        }
    }

    Unit* m_target;
    std::size_t m_count;
    std::size_t m_length = 0; ///< of the whole text, also behind the target's end
    bool m_failed = false;
    va_list* m_arguments;
};

template <class Unit>
int FormatUnits(Unit* target, std::size_t count, const Unit* format, va_list arguments)
{
    va_list own;
    va_copy(own, arguments);
    const int length = Formatter<Unit>(target, count, &own).Run(format);
    va_end(own);
    return length;
}

} // namespace

int Format(wchar_t* target, std::size_t count, const wchar_t* format, va_list arguments)
{
    return FormatUnits(target, count, format, arguments);
}

int Format(char* target, std::size_t count, const char* format, va_list arguments)
{
    return FormatUnits(target, count, format, arguments);
}

} // namespace simulated::runtime
