// msvcrt/Format.cpp
//
// One formatter for both widths of text: it reads a conversion, fetches its argument by the conversion's kind
// and size, and pads what comes out.

#include "msvcrt/Format.h"

#include <windef.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cstdio>
#include <string>
#include <string_view>
#include <type_traits>

namespace simulated::runtime
{

namespace
{

constexpr int kLargestFloatPrecision = 512;
constexpr int kDefaultFloatPrecision = 6;
constexpr std::size_t kExponentDigits = 3;

/// The size prefix of a conversion.
enum class Size
{
    Default,
    Short,    ///< h: 16 bits, narrow text
    Long,     ///< l, w: 32 bits, wide text
    LongLong, ///< ll, I64: 64 bits
    Pointer   ///< I, z, t: as wide as a pointer
};

/// A size prefix as it is spelled; longer spellings stand before shorter ones that they begin with.
struct SizePrefix
{
    std::string_view text;
    Size size;
};
constexpr std::array kSizePrefixes = {
    SizePrefix{"I64", Size::LongLong}, SizePrefix{"I32", Size::Long},   SizePrefix{"I", Size::Pointer},
    SizePrefix{"hh", Size::Short},     SizePrefix{"h", Size::Short},    SizePrefix{"ll", Size::LongLong},
    SizePrefix{"l", Size::Long},       SizePrefix{"L", Size::LongLong}, SizePrefix{"j", Size::LongLong},
    SizePrefix{"w", Size::Long},       SizePrefix{"z", Size::Pointer},  SizePrefix{"t", Size::Pointer},
};

struct Conversion
{
    bool leftAligned = false;
    bool plusSign = false;
    bool blankSign = false;
    bool alternate = false;
    bool zeroPadded = false;
    int width = 0;
    int precision = -1; ///< -1 when none is given
    Size size = Size::Default;
    unsigned letter = 0;
};

/// A number as text: what stands before the padding zeros, and its digits.
struct Digits
{
    std::string prefix;
    std::string digits;
};

Digits FromInteger(std::uint64_t value, unsigned base, bool upper)
{
    static constexpr std::string_view kLower = "0123456789abcdef";
    static constexpr std::string_view kUpper = "0123456789ABCDEF";
    Digits number;
    for (; value != 0; value /= base)
    {
        number.digits += (upper ? kUpper : kLower)[value % base];
    }
    std::reverse(number.digits.begin(), number.digits.end());
    return number;
}

// The Microsoft runtime writes exponents with three digits.
void WidenExponent(std::string& digits)
{
    const std::size_t sign = digits.find_last_of("+-");
    const bool hasExponent = sign != std::string::npos && sign > 0 && (digits[sign - 1] | 0x20) == 'e';
    if (hasExponent && digits.size() - sign - 1 < kExponentDigits)
    {
        digits.insert(sign + 1, kExponentDigits - (digits.size() - sign - 1), '0');
    }
}

Digits FromDouble(double value, const Conversion& conversion)
{
    const std::string format =
        std::string(conversion.alternate ? "%#.*" : "%.*") + static_cast<char>(conversion.letter);
    const int precision = conversion.precision < 0 ? kDefaultFloatPrecision
                                                   : std::min(conversion.precision, kLargestFloatPrecision);
    std::array<char, 1024> text{};
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral" // put together above, from a known letter
    std::snprintf(text.data(), text.size(), format.c_str(), precision, value);
#pragma GCC diagnostic pop
    Digits number;
    number.digits = text.data();
    if (number.digits.starts_with('-'))
    {
        number.prefix = "-";
        number.digits.erase(0, 1);
    }
    WidenExponent(number.digits);
    return number;
}

template <class Unit>
class Formatter
{
public:
    Formatter(Unit* target, std::size_t count) : m_target(target), m_count(count)
    {
    }

    int Run(const Unit* format, va_list arguments)
    {
        va_copy(m_arguments, arguments);
        while (*format != 0)
        {
            if (*format != '%')
            {
                Put(*format++);
                continue;
            }
            Conversion conversion;
            format = Read(format + 1, conversion);
            Convert(conversion);
        }
        va_end(m_arguments);
        return Finish();
    }

private:
    int Finish()
    {
        const bool asksForLength = m_target == nullptr && m_count == 0;
        if (m_failed || m_length > INT_MAX || (m_length > m_count && !asksForLength))
        {
            return -1;
        }
        if (m_length < m_count)
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

    int ReadNumber(const Unit*& format)
    {
        if (*format == '*')
        {
            ++format;
            return va_arg(m_arguments, int);
        }
        int number = 0;
        for (; *format >= '0' && *format <= '9'; ++format)
        {
            number = std::min(number, INT_MAX / 10 - 1) * 10 + (static_cast<int>(*format) - '0');
        }
        return number;
    }

    static const Unit* ReadFlags(const Unit* format, Conversion& conversion)
    {
        for (;; ++format)
        {
            switch (*format)
            {
            case '-':
                conversion.leftAligned = true;
                break;
            case '+':
                conversion.plusSign = true;
                break;
            case ' ':
                conversion.blankSign = true;
                break;
            case '#':
                conversion.alternate = true;
                break;
            case '0':
                conversion.zeroPadded = true;
                break;
            default:
                return format;
            }
        }
    }

    static const Unit* ReadSize(const Unit* format, Conversion& conversion)
    {
        for (const SizePrefix& prefix : kSizePrefixes)
        {
            // The comparison ends at the format's terminator, which no prefix holds.
            if (std::equal(prefix.text.begin(), prefix.text.end(), format,
                           [](char wanted, Unit unit) { return unit == static_cast<Unit>(wanted); }))
            {
                conversion.size = prefix.size;
                return format + prefix.text.size();
            }
        }
        return format;
    }

    const Unit* Read(const Unit* format, Conversion& conversion)
    {
        format = ReadFlags(format, conversion);
        conversion.width = ReadNumber(format);
        if (conversion.width < 0)
        {
            conversion.leftAligned = true;
            conversion.width = conversion.width == INT_MIN ? INT_MAX : -conversion.width;
        }
        if (*format == '.')
        {
            ++format;
            conversion.precision = ReadNumber(format);
        }
        format = ReadSize(format, conversion);
        conversion.letter = static_cast<std::make_unsigned_t<Unit>>(*format);
        return *format == 0 ? format : format + 1;
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
            PutNumber(WithSign(FromDouble(va_arg(m_arguments, double), conversion), conversion), 0,
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
            static_cast<void>(va_arg(m_arguments, void*));
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
            return va_arg(m_arguments, unsigned long long);
        case Size::Pointer:
            return va_arg(m_arguments, std::size_t);
        case Size::Short:
            return static_cast<std::uint16_t>(va_arg(m_arguments, unsigned));
        default:
            return va_arg(m_arguments, unsigned);
        }
    }

    std::int64_t FetchSigned(Size size)
    {
        switch (size)
        {
        case Size::LongLong:
            return va_arg(m_arguments, long long);
        case Size::Pointer:
            return va_arg(m_arguments, std::ptrdiff_t);
        case Size::Short:
            return static_cast<std::int16_t>(va_arg(m_arguments, int));
        default:
            return va_arg(m_arguments, int);
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
        const auto value = reinterpret_cast<std::uintptr_t>(va_arg(m_arguments, void*));
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
        const auto value = static_cast<unsigned>(va_arg(m_arguments, int));
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
        const void* const text = va_arg(m_arguments, const void*);
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
    va_list m_arguments;
};

} // namespace

int Format(wchar_t* target, std::size_t count, const wchar_t* format, va_list arguments)
{
    return Formatter<wchar_t>(target, count).Run(format, arguments);
}

int Format(char* target, std::size_t count, const char* format, va_list arguments)
{
    return Formatter<char>(target, count).Run(format, arguments);
}

} // namespace simulated::runtime
