// host/TextTools.cpp
//
// Words, numbers and code pages.

#include "TextTools.h"

#include <windows.h>

#include <algorithm>
#include <charconv>
#include <limits>

namespace host
{

namespace
{

// A native terminal uses UTF-8; a Windows program gets its arguments in the ANSI code page already.
#ifdef _WIN32
constexpr UINT kConsoleCodePage = CP_ACP;
#else
constexpr UINT kConsoleCodePage = CP_UTF8;
#endif

char LowerCase(char letter) noexcept
{
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

bool IsBlank(char letter) noexcept
{
    return letter == ' ' || letter == '\t' || letter == '\r';
}

std::string Narrow(const wchar_t* wide, int units, UINT to)
{
    std::string narrow(static_cast<std::size_t>(units) * 4, '\0');
    const int bytes = WideCharToMultiByte(to, 0, wide, units, narrow.data(), static_cast<int>(narrow.size()),
                                          nullptr, nullptr);
    narrow.resize(static_cast<std::size_t>(bytes));
    return narrow;
}

std::string Convert(std::string_view text, UINT from, UINT to)
{
    if (text.empty() || from == to)
    {
        return std::string(text);
    }
    const int length = static_cast<int>(text.size());
    std::vector<wchar_t> wide(text.size());
    return Narrow(wide.data(), MultiByteToWideChar(from, 0, text.data(), length, wide.data(), length), to);
}

} // namespace

bool EqualIgnoringCase(std::string_view left, std::string_view right) noexcept
{
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char one, char other) { return LowerCase(one) == LowerCase(other); });
}

std::optional<std::vector<std::string>> SplitWords(std::string_view line)
{
    std::vector<std::string> words;
    std::size_t position = 0;
    for (;;)
    {
        while (position < line.size() && IsBlank(line[position]))
        {
            ++position;
        }
        if (position == line.size() || line[position] == '#')
        {
            return words;
        }
        std::string word;
        bool quoted = false;
        for (; position < line.size() && (quoted || !IsBlank(line[position])); ++position)
        {
            if (line[position] != '"')
            {
                word += line[position];
            }
            else if (quoted && position + 1 < line.size() && line[position + 1] == '"')
            {
                word += line[++position];
            }
            else
            {
                quoted = !quoted;
            }
        }
        if (quoted)
        {
            return std::nullopt;
        }
        words.push_back(std::move(word));
    }
}

std::optional<std::int32_t> ParseNumber(std::string_view text) noexcept
{
    const bool negative = text.starts_with('-');
    text.remove_prefix(negative ? 1 : 0);
    const bool hex = text.starts_with("0x") || text.starts_with("0X");
    text.remove_prefix(hex ? 2 : 0);

    std::uint32_t magnitude = 0;
    const auto [end, error] =
        std::from_chars(text.data(), text.data() + text.size(), magnitude, hex ? 16 : 10);
    if (text.empty() || error != std::errc() || end != text.data() + text.size())
    {
        return std::nullopt;
    }
    if (negative && magnitude > static_cast<std::uint32_t>(std::numeric_limits<std::int32_t>::max()) + 1u)
    {
        return std::nullopt;
    }
    return static_cast<std::int32_t>(negative ? 0u - magnitude : magnitude);
}

std::optional<std::uint32_t> ParseMilliseconds(std::string_view text) noexcept
{
    const auto number = ParseNumber(text);
    return number && *number >= 0 ? std::optional(static_cast<std::uint32_t>(*number)) : std::nullopt;
}

std::string ToWire(std::string_view consoleText)
{
    return Convert(consoleText, kConsoleCodePage, CP_ACP);
}

std::string FromWire(std::string_view wireText)
{
    return Convert(wireText, CP_ACP, kConsoleCodePage);
}

std::string RunningAccount()
{
    constexpr DWORD kLongestName = 256;
    wchar_t name[kLongestName + 1] = {};
    DWORD size = kLongestName + 1;
    const bool known = GetUserNameW(name, &size) != 0 && size > 1;
    return known ? Narrow(name, static_cast<int>(size - 1), kConsoleCodePage) : std::string();
}

} // namespace host
