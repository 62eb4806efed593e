// foundation/LogFile.h
//
// What the two logs of the system share: a file that each line opens, extends and closes again. Its folder is
// the switch: where it doesn't exist the line is lost, and nothing creates it.
#pragma once

#include <windows.h>

namespace logging
{

/// Appends `line` and a line end to the file `path`, in the ANSI code page, with "?" for what that lacks and
/// CR LF for each newline.
void AppendLine(const wchar_t* path, const wchar_t* line) noexcept;

} // namespace logging
