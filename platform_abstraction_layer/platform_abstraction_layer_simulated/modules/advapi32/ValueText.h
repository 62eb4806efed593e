// modules/advapi32/ValueText.h
//
// A registry value as a registry export writes it, readable and editable for a person:
//
//     "C:\\Program Files\\Kelvo"       REG_SZ with its terminator
//     dword:0000002a                   REG_DWORD of four bytes
//     hex:01,02,ff                     REG_BINARY
//     hex(2):41,00,00,00               the bytes of any type, also where its own form says less
//
// Many bytes go over several lines, each but the last of which ends with a backslash.
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

/// Without a line end behind the last line.
std::string FormatValue(const Value& value);

/// Nothing when `text` has none of the forms.
std::optional<Value> ParseValue(std::string_view text);

/// A text with its terminator, of type REG_SZ or another that holds text.
Value TextValue(std::string_view text, DWORD type);
Value NumberValue(DWORD number);

/// Text between quotes, with a backslash before each quote and backslash inside.
std::string Quote(std::string_view text);

/// The text between the quotes at the beginning of `source`, which moves behind them. Nothing, with `source`
/// left alone, when there are none.
std::optional<std::string> TakeQuoted(std::string_view& source);

} // namespace simulated::registry
