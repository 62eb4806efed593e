// foundation/Text.h
//
// Bounded text helpers. The native build's wchar_t has 16 bits, which the C++ library's wide functions
// don't know, so the plug-in uses these instead. A capacity counts characters and includes the terminator;
// a text that doesn't fit is cut, and what a helper writes is always terminated.
#pragma once

#include <windows.h>

#include <cstdarg>
#include <cstddef>
#include <cstdint>

namespace text
{

/// Room of a path or a user string, in characters with the terminator.
constexpr std::size_t kPathCapacity = 260;

/// Characters before the terminator, at most `capacity`. Without one the text is known to be terminated.
template <class Character>
std::size_t Length(const Character* source, std::size_t capacity = SIZE_MAX) noexcept
{
    std::size_t length = 0;
    while (length < capacity && source[length] != Character{})
    {
        ++length;
    }
    return length;
}

/// Copies `source`; true when all of it fitted. A null `source` counts as empty.
bool Copy(wchar_t* target, std::size_t capacity, const wchar_t* source) noexcept;

/// Appends `source` to the text in `target`; true when all of it fitted.
bool Append(wchar_t* target, std::size_t capacity, const wchar_t* source) noexcept;

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

/// White space: blank, tab, vertical tab, form feed and both characters of a line break.
constexpr bool IsBlank(wchar_t character) noexcept
{
    return character == L' ' || (character >= L'\t' && character <= L'\r');
}

/// printf formatting with the rules of the Microsoft runtime (`%s` is wide text). Gives the characters
/// before the terminator; a text that doesn't fit is cut.
std::size_t Format(wchar_t* target, std::size_t capacity, const wchar_t* format, ...) noexcept;
std::size_t FormatV(wchar_t* target, std::size_t capacity, const wchar_t* format, va_list arguments) noexcept;

/// The leading decimal number of `source` as `_wtoi` reads it: blanks, a sign, digits; 0 without digits.
/// Overflow wraps.
int ToInt(const wchar_t* source) noexcept;

/// Scans `source` as "%x" does: blanks, a sign, an optional prefix, hexadecimal digits; false when there is
/// no digit. Overflow wraps.
[[nodiscard]] bool ScanHex(const wchar_t* source, ULONG& value) noexcept;

/// Converts narrow text in the ANSI code page up to its terminator or `length` bytes, whichever comes
/// first. A text that is too long is cut. Gives the characters written before the terminator.
std::size_t ToWide(const char* source, std::size_t length, wchar_t* target, std::size_t capacity) noexcept;

/// Converts wide text to the ANSI code page; a text that is too long is cut at a whole character. Gives
/// the bytes written before the terminator.
std::size_t ToNarrow(const wchar_t* source, char* target, std::size_t capacity) noexcept;

/// The same into and out of arrays, whose sizes are the capacities.
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

template <std::size_t From, std::size_t To>
std::size_t ToWide(const char (&source)[From], wchar_t (&target)[To]) noexcept
{
    return ToWide(source, From, target, To);
}

/// A text of up to `N` - 1 characters that is formatted where it is declared.
template <std::size_t N>
class Formatted
{
public:
    template <class... Arguments>
    explicit Formatted(const wchar_t* format, Arguments... arguments) noexcept
    {
        Format(m_text, format, arguments...);
    }
    const wchar_t* Text() const noexcept
    {
        return m_text;
    }

private:
    wchar_t m_text[N];
};

} // namespace text
