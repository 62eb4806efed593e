// advapi32/ValueText.cpp
//
// Registry values to readable text and back. A form that wouldn't give the same bytes back isn't used.

#include "advapi32/ValueText.h"

#include "notebook/Text.h"

#include <winnt.h>

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

struct TextForm
{
    std::string_view begin;
    DWORD type;
};
constexpr TextForm kTextForms[] = {{"sz:", REG_SZ}, {"expand_sz:", REG_EXPAND_SZ}};

std::string WideBytes(std::string_view text)
{
    std::vector<wchar_t> units = ToUtf16(text);
    units.push_back(0);
    return {reinterpret_cast<const char*>(units.data()), units.size() * sizeof(wchar_t)};
}

std::optional<std::string> FormatText(const Value& value)
{
    for (const TextForm& form : kTextForms)
    {
        if (form.type != value.type || value.bytes.size() < sizeof(wchar_t) ||
            value.bytes.size() % sizeof(wchar_t) != 0)
        {
            continue;
        }
        std::vector<wchar_t> units(value.bytes.size() / sizeof(wchar_t));
        std::memcpy(units.data(), value.bytes.data(), value.bytes.size());
        const std::string text = ToUtf8(units.data(), units.size() - 1);
        if (text.find('\0') == std::string::npos && WideBytes(text) == value.bytes)
        {
            return std::string(form.begin) + text;
        }
    }
    return std::nullopt;
}

// Appends `number` with at least `digits` hexadecimal digits.
void AppendHex(std::string& text, DWORD number, unsigned digits)
{
    for (unsigned place = 2 * sizeof number; place != 0; --place)
    {
        const DWORD rest = number >> (4 * (place - 1));
        if (rest != 0 || place <= digits)
        {
            text += "0123456789abcdef"[rest & 15];
        }
    }
}

std::string FormatBytes(const Value& value)
{
    std::string text(kBytesForm);
    if (value.type != REG_BINARY)
    {
        text = kTypedForm;
        AppendHex(text, value.type, 1);
        text += kTypedFormEnd;
    }
    text.reserve(text.size() + 3 * value.bytes.size() + 1);
    const std::size_t begin = text.size();
    for (const char byte : value.bytes)
    {
        if (text.size() != begin)
        {
            text += ',';
        }
        AppendHex(text, static_cast<unsigned char>(byte), 2);
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
        const std::size_t length = std::min(text.find(','), text.size());
        const std::optional<DWORD> byte = ParseHex(text.substr(0, length));
        if (!byte || *byte > 0xFF)
        {
            return std::nullopt;
        }
        bytes += static_cast<char>(*byte);
        text.remove_prefix(std::min(length + 1, text.size()));
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
        return shown + '\n';
    }
    const std::optional<std::string> text = FormatText(value);
    return (text ? *text : FormatBytes(value)) + '\n';
}

std::optional<Value> ParseValue(std::string_view text)
{
    if (text.ends_with('\n'))
    {
        text.remove_suffix(1);
    }
    for (const TextForm& form : kTextForms)
    {
        if (text.starts_with(form.begin))
        {
            return TextValue(text.substr(form.begin.size()), form.type);
        }
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

} // namespace simulated::registry
