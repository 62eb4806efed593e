// foundation/GuidText.h
//
// GUIDs as text, read by the system's own parser.
#pragma once

#include <windows.h>

/// Turns a GUID text in braces into `guid`. Nonzero on success; 0 for any other text and where the system
/// has no parser. The parser's library stays loaded.
int ParseGuid(const wchar_t* text, GUID* guid) noexcept;
