// base/CodePage.h
//
// The encodings that text on the machine can have, and the two code pages that can be its ANSI one.
#pragma once

#include <windef.h>

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

} // namespace simulated
