// msvcrt/NumberText.h
//
// Numbers as text, before they are padded.
#pragma once

#include "msvcrt/Conversion.h"

#include <cstdint>
#include <string>

namespace simulated::runtime
{

/// A number as text: what stands before the padding zeros, and its digits.
struct Digits
{
    std::string prefix;
    std::string digits;
};

/// No digits for 0: how many zeros it shows is a matter of the precision.
Digits FromInteger(std::uint64_t value, unsigned base, bool upper);

/// By the conversion's letter (e, E, f, g or G) and precision.
Digits FromDouble(double value, const Conversion& conversion);

} // namespace simulated::runtime
