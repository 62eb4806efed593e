// base/CodePage.h
//
// The encodings that text on the machine can have, and the two code pages that can be its ANSI one.
#pragma once

#include <windef.h>

#include <optional>
#include <string>
#include <string_view>

namespace simulated
{

enum class Encoding
{
    Windows1252,
    Utf8,
    Utf16 ///< little-endian
};

/// True for the two code pages that the machine's ANSI one can be, 1252 and 65001.
bool IsAnsiCodePage(unsigned codePage) noexcept;

/// The encoding of an ANSI code page.
Encoding EncodingOf(unsigned codePage) noexcept;

/// Text as UTF-8. Bytes that encode nothing stay as they are in UTF-8 text; a lone last byte of UTF-16 is
/// left out.
std::string Decode(Encoding encoding, std::string_view bytes);

/// UTF-8 text in `encoding`, with "?" for what it lacks.
std::string Encode(Encoding encoding, std::string_view text);

/// The character of a byte in code page 1252; the five bytes without a character are control characters.
wchar_t FromWindows1252(unsigned char byte) noexcept;

/// The byte of a character in code page 1252, or of the one that looks like it; nothing when there is
/// neither.
std::optional<unsigned char> ToWindows1252(wchar_t unit) noexcept;

} // namespace simulated
