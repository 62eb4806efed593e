// tests/powrprof/GenerationsTest.cpp
//
// What each generation of Windows has of the power manager, and that accounts and processes share it rightly.
// On the simulated notebook alone.

#include "Support.h"

#include "notebook/Machine.h"
#include "notebook/Notebook.h"

namespace
{

using simulated::Machine;
using simulated::Notebook;

using GenerationsTest = FreshStore;

const char* const kIndexed[] = {"GetActivePwrScheme",  "SetActivePwrScheme",     "ReadPwrScheme",
                                "WritePwrScheme",      "ReadProcessorPwrScheme", "WriteProcessorPwrScheme",
                                "EnumPwrSchemes",      "DeletePwrScheme",        "IsPwrHibernateAllowed",
                                "ReadGlobalPwrPolicy", "WriteGlobalPwrPolicy",   "CallNtPowerInformation"};
const char* const kGuidBased[] = {"PowerGetActiveScheme",   "PowerSetActiveScheme",  "PowerReadFriendlyName",
                                  "PowerReadACValueIndex",  "PowerReadDCValueIndex", "PowerWriteACValueIndex",
                                  "PowerWriteDCValueIndex", "PowerDeleteScheme",     "PowerDuplicateScheme",
                                  "PowerWriteFriendlyName"};

TEST_F(GenerationsTest, TheGuidGenerationBeginsWithVersion6)
{
    for (const DWORD major : {5U, 6U, 10U})
    {
        SCOPED_TRACE(major);
        Recreate({.major = major, .minor = major == 5U ? 1U : 0U});
        const bool hasGuids = major != 5;
        const HMODULE module = LoadLibraryW(L"PowrProf.dll");
        ASSERT_NE(nullptr, module);
        for (const char* name : kIndexed)
        {
            EXPECT_NE(nullptr, GetProcAddress(module, name)) << name;
        }
        for (const char* name : kGuidBased)
        {
            EXPECT_EQ(hasGuids, GetProcAddress(module, name) != nullptr) << name;
        }
        EXPECT_EQ(hasGuids, KeyExists(HKEY_LOCAL_MACHINE,
                                      "SYSTEM\\CurrentControlSet\\Control\\Power\\User\\PowerSchemes"));
        UINT active = 0;
        EXPECT_TRUE(GetActivePwrScheme(&active));
        EXPECT_EQ(1u, active);
    }
}

TEST_F(GenerationsTest, AnAbsentLibraryLeavesWhatIsBoundAtLinkTime)
{
    ASSERT_TRUE(Notebook::SetModule("PowrProf.dll", false));
    EXPECT_EQ(nullptr, LoadLibraryW(L"PowrProf.dll"));
    POWER_POLICY policy{};
    EXPECT_TRUE(ReadPwrScheme(0, &policy));
    ASSERT_TRUE(Notebook::SetModule("powrprof.dll", true));
    EXPECT_NE(nullptr, LoadLibraryW(L"PowrProf.dll"));
}

// Names, user parts and the active scheme are each account's own; the machine's parts are everybody's.
TEST_F(GenerationsTest, EachAccountHasItsOwnSchemes)
{
    POWER_POLICY policy{};
    ASSERT_TRUE(ReadPwrScheme(0, &policy));
    policy.user.VideoTimeoutAc = 4242;
    policy.mach.DozeS4TimeoutAc = 4343;
    UINT scheme = 0;
    ASSERT_TRUE(WritePwrScheme(&scheme, nullptr, nullptr, &policy));
    ASSERT_TRUE(SetActivePwrScheme(0, nullptr, nullptr));

    Machine::RunAs(Notebook::kFirstUser);
    ASSERT_TRUE(ReadPwrScheme(0, &policy));
    EXPECT_EQ(1200u, policy.user.VideoTimeoutAc);
    EXPECT_EQ(4343u, policy.mach.DozeS4TimeoutAc);
    UINT active = 0;
    ASSERT_TRUE(GetActivePwrScheme(&active));
    EXPECT_EQ(1u, active);
}

} // namespace
