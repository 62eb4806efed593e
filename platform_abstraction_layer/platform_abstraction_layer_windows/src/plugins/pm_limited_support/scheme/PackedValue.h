// scheme/PackedValue.h
//
// The packed form of a stored variable: the value for AC power in the low 16 bits, the one for battery power
// in the high 16 bits, in one number.
#pragma once

#include <windows.h>

/// What stands for "no value set". One value of it reads as 65535 once the other has been written.
constexpr LONG kNoValue = -1;

constexpr LONG PackValues(ULONG ac, ULONG dc) noexcept
{
    return static_cast<LONG>((dc << 16) | (ac & 0xFFFFu));
}

/// The value for one power source, unsigned.
constexpr LONG ValueFor(LONG packed, bool ac) noexcept
{
    const auto bits = static_cast<ULONG>(packed);
    return static_cast<LONG>(ac ? bits & 0xFFFFu : bits >> 16);
}

/// `packed` with the value for one power source replaced.
constexpr LONG ReplaceValue(LONG packed, bool ac, LONG value) noexcept
{
    const auto replacement = static_cast<ULONG>(value);
    return ac ? PackValues(replacement, static_cast<ULONG>(packed) >> 16)
              : PackValues(static_cast<ULONG>(packed), replacement);
}

static_assert(PackValues(3, 3) == 196611 && ValueFor(0x00320064, true) == 100 &&
              ValueFor(0x00320064, false) == 50);
static_assert(static_cast<ULONG>(ReplaceValue(kNoValue, true, 100)) == 0xFFFF0064u);
