// host/TextTools.h
//
// Small text helpers of the host: names regardless of case, words of a line, numbers, conversion between
// the console's text and the wire's, the running account.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host
{

bool EqualIgnoringCase(std::string_view left, std::string_view right) noexcept;

/// The words of a line. Double quotes keep blanks in a word, `""` inside quotes is a quote, "#" at the start
/// of a word begins a comment. Nothing when a quote isn't closed.
std::optional<std::vector<std::string>> SplitWords(std::string_view line);

/// A decimal or "0x" number of 32 bits, signed or unsigned; nothing for every other text.
std::optional<std::int32_t> ParseNumber(std::string_view text) noexcept;

/// A time in milliseconds; nothing for other text and for negative numbers.
std::optional<std::uint32_t> ParseMilliseconds(std::string_view text) noexcept;

/// Converts between the console's text and the wire's, which is in the ANSI code page.
std::string ToWire(std::string_view consoleText);
std::string FromWire(std::string_view wireText);

/// The name of the account that this process runs in, as console text; empty when it isn't known.
std::string RunningAccount();

} // namespace host
