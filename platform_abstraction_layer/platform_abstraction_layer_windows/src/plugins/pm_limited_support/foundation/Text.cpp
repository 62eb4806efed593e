// foundation/Text.cpp
//
// Bounded text helpers.

#include "foundation/Text.h"

#include <algorithm>
#include <cstdio>

namespace text
{

namespace
{

constexpr wchar_t LowerCase(wchar_t character) noexcept
{
    return character >= L'A' && character <= L'Z' ? static_cast<wchar_t>(character + (L'a' - L'A'))
                                                  : character;
}

// The value of a hexadecimal digit, or 16.
constexpr ULONG DigitValue(wchar_t character) noexcept
{
    if (character >= L'0' && character <= L'9')
    {
        return static_cast<ULONG>(character - L'0');
    }
    const wchar_t lower = LowerCase(character);
    return lower >= L'a' && lower <= L'f' ? static_cast<ULONG>(lower - L'a' + 10) : 16;
}

const wchar_t* SkipBlanks(const wchar_t* source) noexcept
{
    while (IsBlank(*source))
    {
        ++source;
    }
    return source;
}

// Skips a sign; true when it was a minus.
bool SkipSign(const wchar_t*& source) noexcept
{
    const bool negative = *source == L'-';
    if (negative || *source == L'+')
    {
        ++source;
    }
    return negative;
}

// Compares character by character what `fold` makes of each; it makes a terminator of none but a terminator.
template <class Fold>
bool EqualAs(const wchar_t* left, const wchar_t* right, Fold fold) noexcept
{
    while (fold(*left) == fold(*right) && *left != L'\0')
    {
        ++left;
        ++right;
    }
    return fold(*left) == fold(*right);
}

constexpr ULONG Negate(ULONG value) noexcept
{
    return 0u - value;
}

// Bytes that the first `length` characters need, 0 when the system can't convert them.
std::size_t NarrowSize(const wchar_t* source, std::size_t length) noexcept
{
    const int size =
        WideCharToMultiByte(CP_ACP, 0, source, static_cast<int>(length), nullptr, 0, nullptr, nullptr);
    return size < 0 ? 0 : static_cast<std::size_t>(size);
}

// The longest beginning of `source` that needs at most `room` bytes and doesn't end inside a surrogate pair.
std::size_t FittingLength(const wchar_t* source, std::size_t length, std::size_t room) noexcept
{
    std::size_t fitting = 0;
    std::size_t tooLong = length;
    while (tooLong - fitting > 1)
    {
        const std::size_t middle = fitting + (tooLong - fitting) / 2;
        (NarrowSize(source, middle) <= room ? fitting : tooLong) = middle;
    }
    const bool splitsPair = fitting > 0 && (source[fitting - 1] & 0xFC00) == 0xD800;
    return splitsPair ? fitting - 1 : fitting;
}

} // namespace

bool Copy(wchar_t* target, std::size_t capacity, const wchar_t* source) noexcept
{
    if (capacity == 0)
    {
        return false;
    }
    target[0] = L'\0';
    return Append(target, capacity, source);
}

bool Append(wchar_t* target, std::size_t capacity, const wchar_t* source) noexcept
{
    const std::size_t begin = Length(target, capacity);
    if (begin == capacity)
    {
        return false;
    }
    if (source == nullptr)
    {
        return true;
    }
    const std::size_t room = capacity - begin - 1;
    const std::size_t copied = Length(source, room);
    std::copy_n(source, copied, target + begin);
    target[begin + copied] = L'\0';
    return source[copied] == L'\0';
}

bool Equal(const wchar_t* left, const wchar_t* right) noexcept
{
    return EqualAs(left, right, [](wchar_t character) { return character; });
}

bool EqualIgnoringCase(const wchar_t* left, const wchar_t* right) noexcept
{
    return EqualAs(left, right, LowerCase);
}

bool EqualNames(const wchar_t* left, const wchar_t* right) noexcept
{
    // The system's comparison is a linguistic one: it takes "ss" for a sharp s and reads over a soft hyphen.
    return lstrcmpiW(left, right) == 0 && Length(left) == Length(right);
}

bool Contains(const wchar_t* whole, const wchar_t* part) noexcept
{
    const wchar_t* const wholeEnd = whole + Length(whole);
    const wchar_t* const partEnd = part + Length(part);
    return part == partEnd || std::search(whole, wholeEnd, part, partEnd) != wholeEnd;
}

bool ContainsAny(const wchar_t* whole, const wchar_t* characters) noexcept
{
    const wchar_t* const wholeEnd = whole + Length(whole);
    return std::find_first_of(whole, wholeEnd, characters, characters + Length(characters)) != wholeEnd;
}

std::size_t Format(wchar_t* target, std::size_t capacity, const wchar_t* format, ...) noexcept
{
    va_list arguments;
    va_start(arguments, format);
    const std::size_t length = FormatV(target, capacity, format, arguments);
    va_end(arguments);
    return length;
}

std::size_t FormatV(wchar_t* target, std::size_t capacity, const wchar_t* format, va_list arguments) noexcept
{
    if (capacity == 0)
    {
        return 0;
    }
    // A text that fills the buffer or doesn't fit comes back without a terminator.
    target[0] = L'\0';
    const int length = _vsnwprintf(target, capacity, format, arguments);
    if (length >= 0 && static_cast<std::size_t>(length) < capacity)
    {
        return static_cast<std::size_t>(length);
    }
    target[capacity - 1] = L'\0';
    return Length(target, capacity);
}

int ToInt(const wchar_t* source) noexcept
{
    source = SkipBlanks(source);
    const bool negative = SkipSign(source);
    ULONG value = 0;
    for (; *source >= L'0' && *source <= L'9'; ++source)
    {
        value = value * 10 + static_cast<ULONG>(*source - L'0');
    }
    return static_cast<int>(negative ? Negate(value) : value);
}

bool ScanHex(const wchar_t* source, ULONG& value) noexcept
{
    source = SkipBlanks(source);
    const bool negative = SkipSign(source);
    if (source[0] == L'0' && LowerCase(source[1]) == L'x')
    {
        source += 2;
    }
    if (DigitValue(*source) == 16)
    {
        return false;
    }
    ULONG scanned = 0;
    for (; DigitValue(*source) < 16; ++source)
    {
        scanned = scanned * 16 + DigitValue(*source);
    }
    value = negative ? Negate(scanned) : scanned;
    return true;
}

std::size_t ToWide(const char* source, std::size_t length, wchar_t* target, std::size_t capacity) noexcept
{
    if (capacity == 0)
    {
        return 0;
    }
    // No byte becomes more than one character, so what is at most this long fits.
    const std::size_t bytes = Length(source, std::min(length, capacity - 1));
    int written = 0;
    if (bytes > 0)
    {
        written = MultiByteToWideChar(CP_ACP, 0, source, static_cast<int>(bytes), target,
                                      static_cast<int>(capacity - 1));
    }
    const std::size_t end = written > 0 ? static_cast<std::size_t>(written) : 0;
    target[end] = L'\0';
    return end;
}

std::size_t ToNarrow(const wchar_t* source, char* target, std::size_t capacity) noexcept
{
    if (capacity == 0)
    {
        return 0;
    }
    const std::size_t room = capacity - 1;
    std::size_t length = Length(source);
    int written = 0;
    if (length > 0 && room > 0)
    {
        written = WideCharToMultiByte(CP_ACP, 0, source, static_cast<int>(length), target,
                                      static_cast<int>(room), nullptr, nullptr);
        if (written <= 0 && GetLastError() == ERROR_INSUFFICIENT_BUFFER)
        {
            length = FittingLength(source, length, room);
            written = length == 0 ? 0
                                  : WideCharToMultiByte(CP_ACP, 0, source, static_cast<int>(length), target,
                                                        static_cast<int>(room), nullptr, nullptr);
        }
    }
    const std::size_t end = written > 0 ? static_cast<std::size_t>(written) : 0;
    target[end] = '\0';
    return end;
}

} // namespace text
