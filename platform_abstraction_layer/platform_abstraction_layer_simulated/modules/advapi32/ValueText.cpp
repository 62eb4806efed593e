// modules/advapi32/ValueText.cpp
//
// Registry values to readable text and back. A form that wouldn't restore the same bytes isn't used.

#include "modules/advapi32/ValueText.h"

#include "base/Text.h"

#include <winnt.h>

#include <algorithm>
#include <charconv>
#include <cstring>

namespace simulated::registry
{

namespace
{

constexpr std::string_view kNumberForm = "dword:";
constexpr std::string_view kBytesForm = "hex:";
constexpr std::string_view kTypedForm = "hex(";
constexpr std::string_view kTypedFormEnd = "):";
constexpr std::string_view kNextLine = "\\\n  ";
constexpr std::size_t kBytesOfALine = 25;

std::string WideBytes(std::string_view text)
{
    std::vector<wchar_t> units = ToUtf16(text);
    units.push_back(0);
    return {reinterpret_cast<const char*>(units.data()), units.size() * sizeof(wchar_t)};
}

bool IsSurrogate(wchar_t unit)
{
    return unit >= 0xD800 && unit <= 0xDFFF;
}

// The text of a REG_SZ that is well formed and ends with its only zero.
std::optional<std::string> WellFormedText(const Value& value)
{
    std::vector<wchar_t> units(value.bytes.size() / sizeof(wchar_t));
    if (value.type != REG_SZ || units.empty() || value.bytes.size() % sizeof(wchar_t) != 0)
    {
        return std::nullopt;
    }
    std::memcpy(units.data(), value.bytes.data(), value.bytes.size());
    // Pairs of surrogates are rare enough to be shown as bytes too.
    const bool isWellFormed = std::find(units.begin(), units.end(), 0) == units.end() - 1 &&
                              std::none_of(units.begin(), units.end(), &IsSurrogate);
    return isWellFormed ? std::optional(ToUtf8(units.data(), units.size() - 1)) : std::nullopt;
}

void AppendHex(std::string& text, DWORD number, std::size_t digits)
{
    for (std::size_t place = digits; place != 0; --place)
    {
        text += "0123456789abcdef"[(number >> (4 * (place - 1))) & 15];
    }
}

std::string FormatBytes(const Value& value)
{
    std::string text(kBytesForm);
    if (value.type != REG_BINARY)
    {
        char digits[8];
        const auto end = std::to_chars(std::begin(digits), std::end(digits), value.type, 16).ptr;
        text = kTypedForm;
        text.append(std::begin(digits), end);
        text += kTypedFormEnd;
    }
    text.reserve(text.size() + 4 * value.bytes.size());
    for (std::size_t index = 0; index < value.bytes.size(); ++index)
    {
        text += index == 0 ? "" : ",";
        text += index != 0 && index % kBytesOfALine == 0 ? kNextLine : "";
        AppendHex(text, static_cast<unsigned char>(value.bytes[index]), 2);
    }
    return text;
}

std::optional<DWORD> ParseHex(std::string_view text)
{
    DWORD number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, 16);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(number) : std::nullopt;
}

std::optional<std::string> ParseBytes(std::string_view text)
{
    std::string bytes;
    while (!text.empty())
    {
        std::string_view digits = text.substr(0, text.find(','));
        text.remove_prefix(std::min(digits.size() + 1, text.size()));
        digits.remove_prefix(std::min(digits.find_first_not_of("\\\r\n "), digits.size()));
        const std::optional<DWORD> byte = ParseHex(digits);
        if (!byte || *byte > 0xFF)
        {
            return std::nullopt;
        }
        bytes += static_cast<char>(*byte);
    }
    return bytes;
}

std::optional<Value> ParseTyped(std::string_view text)
{
    const std::size_t end = text.find(kTypedFormEnd);
    if (end == std::string_view::npos)
    {
        return std::nullopt;
    }
    const std::optional<DWORD> type = ParseHex(text.substr(0, end));
    const std::optional<std::string> bytes = ParseBytes(text.substr(end + kTypedFormEnd.size()));
    return type && bytes ? std::optional(Value{*type, *bytes}) : std::nullopt;
}

} // namespace

std::string FormatValue(const Value& value)
{
    DWORD number = 0;
    if (value.type == REG_DWORD && value.bytes.size() == sizeof number)
    {
        std::memcpy(&number, value.bytes.data(), sizeof number);
        std::string shown(kNumberForm);
        AppendHex(shown, number, 8);
        return shown;
    }
    const std::optional<std::string> text = WellFormedText(value);
    return text ? Quote(*text) : FormatBytes(value);
}

std::optional<Value> ParseValue(std::string_view text)
{
    if (const std::optional<std::string> quoted = TakeQuoted(text))
    {
        return text.empty() ? std::optional(TextValue(*quoted, REG_SZ)) : std::nullopt;
    }
    if (text.starts_with(kNumberForm))
    {
        const std::optional<DWORD> number = ParseHex(text.substr(kNumberForm.size()));
        return number ? std::optional(NumberValue(*number)) : std::nullopt;
    }
    if (text.starts_with(kBytesForm))
    {
        const std::optional<std::string> bytes = ParseBytes(text.substr(kBytesForm.size()));
        return bytes ? std::optional(Value{REG_BINARY, *bytes}) : std::nullopt;
    }
    return text.starts_with(kTypedForm) ? ParseTyped(text.substr(kTypedForm.size())) : std::nullopt;
}

Value TextValue(std::string_view text, DWORD type)
{
    return {type, WideBytes(text)};
}

Value NumberValue(DWORD number)
{
    return {REG_DWORD, std::string(reinterpret_cast<const char*>(&number), sizeof number)};
}

std::string Quote(std::string_view text)
{
    std::string quoted = "\"";
    for (const char character : text)
    {
        quoted += character == '"' || character == '\\' ? "\\" : "";
        quoted += character;
    }
    return quoted += '"';
}

std::optional<std::string> TakeQuoted(std::string_view& source)
{
    std::string text;
    for (std::size_t at = 1; source.starts_with('"') && at < source.size(); ++at)
    {
        if (source[at] == '"')
        {
            source.remove_prefix(at + 1);
            return text;
        }
        at += source[at] == '\\' && at + 1 < source.size() ? 1 : 0;
        text += source[at];
    }
    return std::nullopt;
}

} // namespace simulated::registry
