// base/HexText.cpp
//
// Numbers to text and back.

#include "base/HexText.h"

#include <charconv>
#include <cstdio>
#include <limits>

namespace simulated
{

namespace
{

std::optional<std::uint64_t> Parse(std::string_view text, int base)
{
    std::uint64_t number = 0;
    const auto [stopped, problem] = std::from_chars(text.data(), text.data() + text.size(), number, base);
    if (problem != std::errc() || stopped != text.data() + text.size())
    {
        return std::nullopt;
    }
    return number;
}

template <class Number, class Parse>
std::optional<std::vector<Number>> ParseList(std::string_view text, Parse parse)
{
    std::vector<Number> numbers;
    while (text.find_first_not_of(' ') != std::string_view::npos)
    {
        text.remove_prefix(text.find_first_not_of(' '));
        const std::size_t end = std::min(text.find(' '), text.size());
        const std::optional<std::uint64_t> number = parse(text.substr(0, end));
        if (!number || *number > std::numeric_limits<Number>::max())
        {
            return std::nullopt;
        }
        numbers.push_back(static_cast<Number>(*number));
        text.remove_prefix(end);
    }
    return numbers;
}

template <class Number, class Show>
std::string ToList(std::span<const Number> numbers, Show show)
{
    std::string text;
    for (const Number number : numbers)
    {
        text += text.empty() ? "" : " ";
        text += show(number);
    }
    return text;
}

} // namespace

std::string ToHex(std::uint64_t value, unsigned digits)
{
    char text[24];
    std::snprintf(text, sizeof text, "0x%0*llX", static_cast<int>(digits),
                  static_cast<unsigned long long>(value));
    return text;
}

std::optional<std::uint64_t> ParseNumber(std::string_view text)
{
    const bool isHex = text.starts_with("0x") || text.starts_with("0X");
    return isHex ? Parse(text.substr(2), 16) : Parse(text, 10);
}

std::optional<std::vector<DWORD>> ParseWords(std::string_view text)
{
    return ParseList<DWORD>(text, &ParseNumber);
}

std::string ToWords(std::span<const DWORD> words)
{
    return ToList(words, [](DWORD word) { return ToHex(word, 8); });
}

std::optional<std::vector<BYTE>> ParseBytes(std::string_view text)
{
    return ParseList<BYTE>(text, [](std::string_view word) { return Parse(word, 16); });
}

std::string ToBytes(std::span<const BYTE> bytes)
{
    return ToList(bytes, [](BYTE byte) { return ToHex(byte, 2).substr(2); });
}

} // namespace simulated
