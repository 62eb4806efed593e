// modules/kernel32/SystemVersion.cpp
//
// The version of the operating system, as machine.ini says it.
//
// Known difference from Windows: from 6.2 on the answer doesn't depend on what the program's manifest says.

#include "modules/kernel32/SystemVersion.h"

#include "base/PlatformCall.h"
#include "base/Text.h"
#include "machine/Machine.h"

#include <windows.h>

#include <cstring>
#include <iterator>
#include <string>

namespace simulated
{

namespace
{

constexpr const char* kMachineSection = "Machine";

DWORD ReadPart(const char* key, DWORD otherwise)
{
    return static_cast<DWORD>(Machine::ReadNumber(kMachineSection, key, otherwise));
}

DWORD Fill(OSVERSIONINFOW* information)
{
    if (information == nullptr)
    {
        return ERROR_NOACCESS;
    }
    const DWORD size = information->dwOSVersionInfoSize;
    if (size != sizeof(OSVERSIONINFOW) && size != sizeof(OSVERSIONINFOEXW))
    {
        return ERROR_INSUFFICIENT_BUFFER;
    }
    const SystemVersion version = ReadSystemVersion();
    OSVERSIONINFOEXW filled{};
    filled.dwOSVersionInfoSize = size;
    filled.dwMajorVersion = version.major;
    filled.dwMinorVersion = version.minor;
    filled.dwBuildNumber = version.build;
    filled.dwPlatformId = VER_PLATFORM_WIN32_NT;
    filled.wServicePackMajor = static_cast<WORD>(version.servicePack);
    filled.wSuiteMask = VER_SUITE_SINGLEUSERTS;
    filled.wProductType = VER_NT_WORKSTATION;
    if (version.servicePack != 0)
    {
        CopyToUtf16("Service Pack " + std::to_string(version.servicePack), filled.szCSDVersion,
                    std::size(filled.szCSDVersion));
    }
    std::memcpy(static_cast<void*>(information), &filled, size);
    return ERROR_SUCCESS;
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
    return call.Boolean([&] { return Fill(information); });
}
