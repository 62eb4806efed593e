// control/FreshNotebook.h
//
// What a fresh notebook holds: its folders and files, its accounts, its registry and machine.ini. It is
// the same for all of one kind, so it is computed once per process.
#pragma once

#include "base/HostFiles.h"
#include "modules/kernel32/SystemVersion.h"

namespace simulated
{

inline constexpr const char* kComputerName = "NOTEBOOK";

/// A user's SID is this and a number; the first one has `kFirstUserNumber`.
inline constexpr const char* kUserSidBegin = "S-1-5-21-1220945662-1202660629-1417001333-";
inline constexpr unsigned kFirstUserNumber = 1003;

/// Where the registry lists the profiles, and a profile's path as it has it there.
inline constexpr const char* kProfileList = "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\ProfileList";
std::string UnexpandedProfile(const std::string& profile);

struct FreshNotebook
{
    host_files::Tree tree; ///< all but machine.ini
    std::string state;     ///< machine.ini

    static const FreshNotebook& Of(const SystemVersion& version, unsigned codePage);
};

} // namespace simulated
