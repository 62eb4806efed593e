// modules/advapi32/RegistryShell.h
//
// Argument and buffer handling that the registry functions share.
#pragma once

#include "base/PlatformCall.h"
#include "modules/advapi32/RegistryKey.h"

#include <cstring>

namespace simulated::registry
{

/// The arguments for the trace, with a predefined key by its name.
template <class... Rest>
void NoteArguments(PlatformCall& call, HKEY key, const Rest&... rest)
{
    if (const char* const name = PredefinedName(key))
    {
        call.Arguments(name, rest...);
    }
    else
    {
        call.Arguments(static_cast<const void*>(key), rest...);
    }
}

/// The base behind a handle, when it allows `rights`.
DWORD BaseFor(HKEY key, REGSAM rights, Base& base);

/// And the names of what is in it.
DWORD ListFor(HKEY key, REGSAM rights, EntryKind kind, Base& base, std::vector<std::string>& names);

/// Copies a name with its terminator. `size` comes in as the room in characters and goes out as the length;
/// ERROR_MORE_DATA, with everything left alone, when the room is too small.
DWORD CopyName(std::string_view source, LPWSTR name, DWORD& size);

/// Copies a value out by the rules of RegQueryValueExW; every pointer may be null.
DWORD CopyValue(const Value& value, LPDWORD type, LPBYTE data, LPDWORD size);

} // namespace simulated::registry
