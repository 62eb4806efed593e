// foundation/GuidText.h
//
// GUIDs as text.
#pragma once

#include <windows.h>

#include <cstddef>

/// Turns a GUID text in braces into `guid`, by the system's own parser. Nonzero on success; 0 for any other
/// text and where the system has no parser. The parser's library stays loaded.
[[nodiscard]] int ParseGuid(const wchar_t* text, GUID* guid) noexcept;

/// Characters of what `FormatGuid` gives, without the terminator.
constexpr ULONG kGuidTextLength = 39;

/// The text of `guid` in braces behind a blank, which a configuration file drops when it is read.
void FormatGuid(const GUID& guid, wchar_t* target, std::size_t capacity) noexcept;
