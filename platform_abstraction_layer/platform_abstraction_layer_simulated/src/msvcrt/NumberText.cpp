// msvcrt/NumberText.cpp
//
// Digits of integers by division, those of floating-point numbers by the native library.

#include "msvcrt/NumberText.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string_view>

namespace simulated::runtime
{

namespace
{

constexpr int kLargestFloatPrecision = 512;
constexpr int kDefaultFloatPrecision = 6;
constexpr std::size_t kExponentDigits = 3;

// The Microsoft runtime writes exponents with three digits.
void WidenExponent(std::string& digits)
{
    const std::size_t sign = digits.find_last_of("+-");
    const bool hasExponent =
        sign != std::string::npos && sign > 0 && (digits[sign - 1] == 'e' || digits[sign - 1] == 'E');
    if (hasExponent && digits.size() - sign - 1 < kExponentDigits)
    {
        digits.insert(sign + 1, kExponentDigits - (digits.size() - sign - 1), '0');
    }
}

} // namespace

Digits FromInteger(std::uint64_t value, unsigned base, bool upper)
{
    static constexpr std::string_view kLower = "0123456789abcdef";
    static constexpr std::string_view kUpper = "0123456789ABCDEF";
    Digits number;
    for (; value != 0; value /= base)
    {
        number.digits += (upper ? kUpper : kLower)[static_cast<unsigned>(value % base)];
    }
    std::reverse(number.digits.begin(), number.digits.end());
    return number;
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

} // namespace simulated::runtime
