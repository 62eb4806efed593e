// msvcrt/Conversion.h
//
// One conversion of a format, read from its text: flags, width, precision, size, letter.
#pragma once

#include <algorithm>
#include <array>
#include <climits>
#include <string_view>
#include <type_traits>

namespace simulated::runtime
{

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
inline constexpr std::array kSizePrefixes = {
    SizePrefix{"I64", Size::LongLong}, SizePrefix{"I32", Size::Long},   SizePrefix{"I", Size::Pointer},
    SizePrefix{"hh", Size::Short},     SizePrefix{"h", Size::Short},    SizePrefix{"ll", Size::LongLong},
    SizePrefix{"l", Size::Long},       SizePrefix{"L", Size::LongLong}, SizePrefix{"j", Size::LongLong},
    SizePrefix{"w", Size::Long},       SizePrefix{"z", Size::Pointer},  SizePrefix{"t", Size::Pointer},
};

/// What stands between "%" and its letter, and the letter.
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

/// Reads the conversions of a format of `Unit`s. `NextInt` gives the next argument, for a "*".
template <class Unit, class NextInt>
class ConversionReader
{
public:
    ConversionReader(const Unit* place, NextInt nextInt) : m_place(place), m_nextInt(nextInt)
    {
    }

    /// Reads the conversion behind a "%". Its letter is 0 when the format ends before.
    Conversion Read()
    {
        Conversion conversion;
        ReadFlags(conversion);
        conversion.width = ReadNumber();
        if (conversion.width < 0)
        {
            conversion.leftAligned = true;
            conversion.width = conversion.width == INT_MIN ? INT_MAX : -conversion.width;
        }
        if (*m_place == '.')
        {
            ++m_place;
            conversion.precision = ReadNumber();
        }
        ReadSize(conversion);
        conversion.letter = static_cast<std::make_unsigned_t<Unit>>(*m_place);
        m_place += *m_place == 0 ? 0 : 1;
        return conversion;
    }

    /// Where the format goes on.
    const Unit* Place() const noexcept
    {
        return m_place;
    }

private:
    void ReadFlags(Conversion& conversion)
    {
        for (;; ++m_place)
        {
            switch (*m_place)
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
                return;
            }
        }
    }

    int ReadNumber()
    {
        if (*m_place == '*')
        {
            ++m_place;
            return m_nextInt();
        }
        int number = 0;
        for (; *m_place >= '0' && *m_place <= '9'; ++m_place)
        {
            number = std::min(number, INT_MAX / 10 - 1) * 10 + (static_cast<int>(*m_place) - '0');
        }
        return number;
    }

    void ReadSize(Conversion& conversion)
    {
        for (const SizePrefix& prefix : kSizePrefixes)
        {
            // The comparison ends at the format's terminator, which no prefix holds.
            if (std::equal(prefix.text.begin(), prefix.text.end(), m_place,
                           [](char wanted, Unit unit) { return unit == static_cast<Unit>(wanted); }))
            {
                conversion.size = prefix.size;
                m_place += prefix.text.size();
                return;
            }
        }
    }

    const Unit* m_place;
    NextInt m_nextInt;
};

} // namespace simulated::runtime
