// modules/kernel32/Profile.h
//
// Profile files of the simulated machine, found, read and changed. Text is UTF-8; what isn't there is
// nothing, not empty. Each call opens the file once; a change replaces it whole, under a lock that keeps
// other writers away, so a reader needs none.
//
// Known differences from Windows: a handle that is open on the file while it is changed goes on reading the
// old content; a last line keeps its missing end when its value is replaced.
#pragma once

#include "base/IniDocument.h"
#include "base/PlatformCall.h"

#include <optional>
#include <string>
#include <string_view>

namespace simulated::profile
{

/// The content of `file`; a bare name means the Windows folder. The error number when it can't be read.
Outcome<std::optional<IniDocument>> Read(std::string_view file);

/// Sets or, with nothing in its place, removes a value or a section, and makes the file where it is missing.
/// A section that is nothing: ERROR_FILE_NOT_FOUND. A file or folder that can't be written, or that another
/// opener doesn't share: the fitting error, with nothing changed.
DWORD Write(std::string_view file, const std::optional<std::string>& section,
            const std::optional<std::string>& key, const std::optional<std::string>& value);

/// The value as GetPrivateProfileStringW gives it: one pair of matching quotes is taken off.
std::string_view Unquote(std::string_view value) noexcept;

/// The leading number of a value as GetPrivateProfileIntW reads it; 0 where there is none.
UINT ToNumber(std::string_view value) noexcept;

} // namespace simulated::profile
