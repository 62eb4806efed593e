// foundation/Text.h
//
// Bounded text helpers. The native build's wchar_t has 16 bits, which the C++ library's wide functions
// don't know, so the plug-in uses these instead. A capacity counts characters and includes the terminator;
// a text that doesn't fit is cut, and what a helper writes is always terminated.
#pragma once

#include <windows.h>

#include <cstdarg>
#include <cstddef>

namespace text
{

/// Room of a path or a user string, in characters with the terminator.
constexpr std::size_t kPathCapacity = 260;

/// Characters before the terminator, at most `capacity`.
std::size_t Length(const wchar_t* source, std::size_t capacity) noexcept;
std::size_t Length(const char* source, std::size_t capacity) noexcept;

/// Characters before the terminator of a text that is known to be terminated.
std::size_t Length(const wchar_t* source) noexcept;

/// Copies `source`; true when all of it fitted. A null `source` counts as empty.
bool Copy(wchar_t* target, std::size_t capacity, const wchar_t* source) noexcept;

/// Appends `source` to the text in `target`; true when all of it fitted.
bool Append(wchar_t* target, std::size_t capacity, const wchar_t* source) noexcept;

/// Appends a backslash unless the text is empty or ends in one; true when the text then ends in one or is
/// empty.
bool AppendSeparator(wchar_t* target, std::size_t capacity) noexcept;

/// Character by character.
bool Equal(const wchar_t* left, const wchar_t* right) noexcept;

/// Without regard to the case of the letters A to Z.
bool EqualIgnoringCase(const wchar_t* left, const wchar_t* right) noexcept;

/// Without regard to case in the whole alphabet: the system's comparison, character for character.
bool EqualNames(const wchar_t* left, const wchar_t* right) noexcept;

/// True when `whole` contains `part`, case-sensitive.
bool Contains(const wchar_t* whole, const wchar_t* part) noexcept;

/// True when `whole` contains one of `characters`.
bool ContainsAny(const wchar_t* whole, const wchar_t* characters) noexcept;

/// printf formatting with the rules of the Microsoft runtime (`%s` is wide text). Gives the characters
/// before the terminator; a text that doesn't fit is cut.
std::size_t Format(wchar_t* target, std::size_t capacity, const wchar_t* format, ...) noexcept;
std::size_t FormatV(wchar_t* target, std::size_t capacity, const wchar_t* format, va_list arguments) noexcept;

/// The leading decimal number of `source` as `_wtoi` reads it: blanks, a sign, digits; 0 without digits.
/// Overflow wraps.
int ToInt(const wchar_t* source) noexcept;

/// Scans `source` as "%x" does: blanks, a sign, an optional prefix, hexadecimal digits; false when there is
/// no digit. Overflow wraps.
bool ScanHex(const wchar_t* source, ULONG& value) noexcept;

/// Converts narrow text in the ANSI code page up to its terminator or `length` bytes, whichever comes
/// first. A text that is too long is cut. Gives the characters written before the terminator.
std::size_t ToWide(const char* source, std::size_t length, wchar_t* target, std::size_t capacity) noexcept;

/// Converts wide text to the ANSI code page; a text that is too long is cut at a whole character. Gives
/// the bytes written before the terminator.
std::size_t ToNarrow(const wchar_t* source, char* target, std::size_t capacity) noexcept;

/// `Copy`, `Append` and `Format` into an array, whose size is the capacity.
template <std::size_t N>
bool Copy(wchar_t (&target)[N], const wchar_t* source) noexcept
{
    return Copy(target, N, source);
}

template <std::size_t N>
bool Append(wchar_t (&target)[N], const wchar_t* source) noexcept
{
    return Append(target, N, source);
}

template <std::size_t N, class... Arguments>
std::size_t Format(wchar_t (&target)[N], const wchar_t* format, Arguments... arguments) noexcept
{
    return Format(static_cast<wchar_t*>(target), N, format, arguments...);
}

} // namespace text
