// scheme/PackedValue.h
//
// The packed form of a stored variable: the value for mains power in the low 16 bits, the one for battery
// power in the high 16 bits, in one number.
#pragma once

#include <windows.h>

/// What stands for "no value set". A half of it reads as 65535 once the other half has been written.
constexpr LONG kNoValue = -1;

constexpr LONG PackHalves(ULONG ac, ULONG dc) noexcept
{
    return static_cast<LONG>((dc << 16) | (ac & 0xFFFFu));
}

/// The half for one power source, unsigned.
constexpr LONG HalfOf(LONG packed, bool ac) noexcept
{
    const auto bits = static_cast<ULONG>(packed);
    return static_cast<LONG>(ac ? bits & 0xFFFFu : bits >> 16);
}

/// `packed` with the half for one power source replaced.
constexpr LONG ReplaceHalf(LONG packed, bool ac, LONG value) noexcept
{
    const auto half = static_cast<ULONG>(value);
    return ac ? PackHalves(half, static_cast<ULONG>(packed) >> 16)
              : PackHalves(static_cast<ULONG>(packed), half);
}

static_assert(PackHalves(3, 3) == 196611 && HalfOf(0x00320064, true) == 100 &&
              HalfOf(0x00320064, false) == 50);
static_assert(static_cast<ULONG>(ReplaceHalf(kNoValue, true, 100)) == 0xFFFF0064u);
