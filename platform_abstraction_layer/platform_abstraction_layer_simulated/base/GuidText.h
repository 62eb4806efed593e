// base/GuidText.h
//
// GUIDs as text, in braces: "{4D36E972-E325-11CE-BFC1-08002BE10318}".
#pragma once

#include <windef.h>

#include <optional>
#include <string>
#include <string_view>

namespace simulated
{

std::string ToText(const GUID& guid);

/// Nothing when the text is anything but a GUID in braces; its letters may have either case.
std::optional<GUID> ParseGuid(std::string_view text);

bool IsSame(const GUID& left, const GUID& right);

} // namespace simulated
