// modules/kernel32/Environment.h
//
// The environment variables that a process on the simulated machine finds: the system's drive and folder, and
// the profile of the account that it runs as. Variables of the host are no part of it.
#pragma once

#include <string>
#include <string_view>

namespace simulated::environment
{

/// True when the machine has the folders of major version 6 and later ("C:\Users", "AppData\Local").
bool HasLaterFolders();

/// `text` with each "%name%" replaced by its value; what names no variable stays as it is.
std::string Expand(std::string_view text);

} // namespace simulated::environment
