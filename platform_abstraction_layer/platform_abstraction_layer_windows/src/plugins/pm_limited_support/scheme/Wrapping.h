// scheme/Wrapping.h
//
// 32-bit arithmetic on numbers that a file or the operating system holds. They may be anything, so it wraps
// where plain signed arithmetic would have no meaning.
#pragma once

#include <windows.h>

constexpr LONG WrappingSum(LONG left, LONG right) noexcept
{
    return static_cast<LONG>(static_cast<ULONG>(left) + static_cast<ULONG>(right));
}

constexpr LONG WrappingDifference(LONG left, LONG right) noexcept
{
    return static_cast<LONG>(static_cast<ULONG>(left) - static_cast<ULONG>(right));
}

constexpr LONG WrappingProduct(LONG left, LONG right) noexcept
{
    return static_cast<LONG>(static_cast<ULONG>(left) * static_cast<ULONG>(right));
}
