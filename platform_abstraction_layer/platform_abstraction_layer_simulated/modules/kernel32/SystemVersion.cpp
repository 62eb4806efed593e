// modules/kernel32/SystemVersion.cpp
//
// The version of the operating system, as machine.ini says it.
//
// Known differences from Windows: from 6.2 on the answer doesn't depend on what the program's manifest says;
// GetVersionExW reports no service pack.

#include "modules/kernel32/SystemVersion.h"

#include "base/PlatformCall.h"
#include "machine/Machine.h"

#include <windows.h>

namespace simulated
{

namespace
{

constexpr const char* kMachineSection = "Machine";

DWORD ReadPart(const char* key, DWORD otherwise)
{
    return static_cast<DWORD>(Machine::ReadNumber(kMachineSection, key, otherwise));
}

} // namespace

SystemVersion ReadSystemVersion()
{
    return {ReadPart("Major", 5), ReadPart("Minor", 1), ReadPart("Build", 2600), ReadPart("ServicePack", 3)};
}

} // namespace simulated

using namespace simulated;

SIM_API DWORD WINAPI GetVersion()
{
    PlatformCall call(CallClass::System, "GetVersion", SIM_CALLER);
    const SystemVersion version = ReadSystemVersion();
    return call.Answer<DWORD>((version.major & 0xFF) | ((version.minor & 0xFF) << 8) |
                              ((version.build & 0x7FFF) << 16));
}

SIM_API BOOL WINAPI GetVersionExW(LPOSVERSIONINFOW information)
{
    PlatformCall call(CallClass::System, "GetVersionExW", SIM_CALLER);
    return call.Boolean(
        [&]() -> DWORD
        {
            if (information->dwOSVersionInfoSize != sizeof *information)
            {
                return ERROR_INSUFFICIENT_BUFFER;
            }
            const SystemVersion version = ReadSystemVersion();
            *information = {sizeof *information, version.major,         version.minor,
                            version.build,       VER_PLATFORM_WIN32_NT, {}};
            return ERROR_SUCCESS;
        });
}
