// foundation/Registry.h
//
// Texts in the registry. Nothing there vouches for a terminator, nor for a whole number of characters.
#pragma once

#include <windows.h>

#include <cstddef>

namespace registry
{

/// Reads the value `name` of `key` into `target`, which has room for `bytes` bytes; on return `bytes` is the
/// value's own size. The text in `target` is always terminated; a value that fills the room whole loses its
/// last character to the terminator. The system's code: ERROR_MORE_DATA when the room is too small, and
/// `target` is then empty, as after every failure.
LSTATUS ReadText(HKEY key, const wchar_t* name, wchar_t* target, DWORD& bytes) noexcept;

/// The same into an array, for callers who don't want the size.
template <std::size_t N>
LSTATUS ReadText(HKEY key, const wchar_t* name, wchar_t (&target)[N]) noexcept
{
    auto bytes = static_cast<DWORD>(sizeof target);
    return ReadText(key, name, target, bytes);
}

} // namespace registry
