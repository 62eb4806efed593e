// base/HexText.h
//
// Registers as machine.ini shows them: "0x000027B9", bytes and rows of them separated by blanks.
#pragma once

#include <windef.h>

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace simulated
{

/// "0x" and at least `digits` hexadecimal digits.
std::string ToHex(std::uint64_t value, unsigned digits);

/// Decimal, or hexadecimal behind "0x"; nothing when the text is anything else.
std::optional<std::uint64_t> ParseNumber(std::string_view text);

/// Numbers separated by blanks; nothing when one of them can't be read or has more than 32 bits.
std::optional<std::vector<DWORD>> ParseWords(std::string_view text);
std::string ToWords(std::span<const DWORD> words);

/// Pairs of hexadecimal digits separated by blanks; nothing when one of them can't be read.
std::optional<std::vector<BYTE>> ParseBytes(std::string_view text);
std::string ToBytes(std::span<const BYTE> bytes);

} // namespace simulated
