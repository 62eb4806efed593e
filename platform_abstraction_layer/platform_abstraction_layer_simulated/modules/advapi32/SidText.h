// modules/advapi32/SidText.h
//
// Security identifiers as bytes and as text ("S-1-5-21-...").
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <string_view>

namespace simulated::sids
{

/// The bytes of a SID; nothing for a text that is none. A number of the text is decimal, or hexadecimal with
/// "0x".
std::optional<std::string> Parse(std::string_view text);

/// The text of the SID at `sid`; nothing when it isn't valid. An authority of more than 32 bits is shown in
/// hexadecimal, as Windows does.
std::optional<std::string> Format(const void* sid);

} // namespace simulated::sids
