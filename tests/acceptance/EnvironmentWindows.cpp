// tests/acceptance/EnvironmentWindows.cpp
//
// The machine as it is, with a folder of its own for the installation's files. What these tests leave in the
// registry and in the account's configuration folder goes with each of them.

#include "acceptance/Environment.h"

#include "acceptance/Seeding.h"

#include <windows.h>

namespace environment
{

namespace
{

constexpr const char* kInstallationKey = "Software\\Kelvo\\ORVL";
constexpr const char* kFolder = "C:\\OrvlAcceptance\\";

} // namespace

std::string UserName()
{
    char name[256] = {};
    DWORD size = sizeof name;
    GetUserNameA(name, &size);
    return name;
}

Machine::Machine()
{
    EXPECT_TRUE(seeding::MakeFolder("C:\\OrvlAcceptance"));
    EXPECT_TRUE(seeding::SetText(HKEY_LOCAL_MACHINE, kInstallationKey, "CfgPath", kFolder));
    EXPECT_TRUE(seeding::SetNumber(HKEY_LOCAL_MACHINE, "Software\\Kelvo\\ORVA", "Test", 1));
}

Machine::~Machine()
{
    seeding::SwitchLogsOff();
    for (const char* const key : {"Software\\Kelvo\\ORVL", "Software\\Kelvo\\ORVA"})
    {
        RegDeleteKeyW(HKEY_LOCAL_MACHINE, seeding::Wide(key).data());
    }
}

} // namespace environment
