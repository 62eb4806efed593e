// base/HexText.cpp
//
// Numbers to text and back.

#include "base/HexText.h"

#include <charconv>
#include <cstdio>

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

// Calls `take` with each word of `text`; false as soon as it refuses one.
template <class Take>
bool ForEachWord(std::string_view text, Take take)
{
    constexpr std::string_view kBlanks = " \t";
    for (std::size_t begin = text.find_first_not_of(kBlanks); begin != std::string_view::npos;)
    {
        const std::size_t end = std::min(text.find_first_of(kBlanks, begin), text.size());
        if (!take(text.substr(begin, end - begin)))
        {
            return false;
        }
        begin = text.find_first_not_of(kBlanks, end);
    }
    return true;
}

template <class Number>
std::optional<std::vector<Number>> ParseList(std::string_view text, std::uint64_t highest,
                                             std::optional<std::uint64_t> (*parse)(std::string_view))
{
    std::vector<Number> numbers;
    const bool all = ForEachWord(text,
                                 [&](std::string_view word)
                                 {
                                     const std::optional<std::uint64_t> number = parse(word);
                                     if (!number || *number > highest)
                                     {
                                         return false;
                                     }
                                     numbers.push_back(static_cast<Number>(*number));
                                     return true;
                                 });
    return all ? std::optional(std::move(numbers)) : std::nullopt;
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
    return ParseList<DWORD>(text, 0xFFFFFFFF, &ParseNumber);
}

std::string ToWords(std::span<const DWORD> words)
{
    return ToList(words, [](DWORD word) { return ToHex(word, 8); });
}

std::optional<std::vector<BYTE>> ParseBytes(std::string_view text)
{
    return ParseList<BYTE>(text, 0xFF, [](std::string_view word) { return Parse(word, 16); });
}

std::string ToBytes(std::span<const BYTE> bytes)
{
    return ToList(bytes, [](BYTE byte) { return ToHex(byte, 2).substr(2); });
}

} // namespace simulated
