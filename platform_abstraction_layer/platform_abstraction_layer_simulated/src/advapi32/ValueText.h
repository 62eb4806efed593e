// advapi32/ValueText.h
//
// A registry value as the text that its file holds, one that a person can read and edit:
//
//     sz:C:\Program Files\Kelvo\ORVL\Cfg\      REG_SZ with its terminator
//     expand_sz:%SystemDrive%\Documents        REG_EXPAND_SZ with its terminator
//     dword:0000002a                           REG_DWORD of four bytes
//     hex:01,02,ff                             REG_BINARY
//     hex(1):41,00                             the bytes of any type, also where its own form says less
#pragma once

#include <windef.h>

#include <optional>
#include <string>
#include <string_view>

namespace simulated::registry
{

struct Value
{
    DWORD type = 0;
    std::string bytes; ///< as the registry keeps them
};

/// The file's content, with a line end.
std::string FormatValue(const Value& value);

/// Nothing when `text` has none of the forms.
std::optional<Value> ParseValue(std::string_view text);

/// A text with its terminator, of type REG_SZ or another that holds text.
Value TextValue(std::string_view text, DWORD type);
Value NumberValue(DWORD number);

} // namespace simulated::registry
