// tests/powrprof/SchemesTest.cpp
//
// The index-based schemes: functions and registry are one store.

#include "Support.h"

namespace
{

using SchemesTest = FreshStore;

POWER_POLICY Read(UINT scheme)
{
    POWER_POLICY policy{};
    EXPECT_TRUE(ReadPwrScheme(scheme, &policy)) << scheme << ", error " << GetLastError();
    return policy;
}

std::string UserKey(UINT scheme)
{
    return kUserPower + "\\PowerPolicies\\" + std::to_string(scheme);
}

std::string MachineKey(const std::string& kind, UINT scheme)
{
    return kMachinePower + '\\' + kind + '\\' + std::to_string(scheme);
}

UINT Active()
{
    UINT scheme = 0xFFFF;
    EXPECT_TRUE(GetActivePwrScheme(&scheme));
    return scheme;
}

/// What `EnumPwrSchemes` told.
struct Walk
{
    std::size_t stopAfter;
    std::vector<UINT> numbers = {};
    std::vector<std::string> told = {}; ///< of each: name and its length, description, a time of the policy
};

BOOLEAN CALLBACK Note(UINT number, DWORD nameSize, LPWSTR name, DWORD, LPWSTR description,
                      PPOWER_POLICY policy, LPARAM argument)
{
    Walk& walk = *reinterpret_cast<Walk*>(argument);
    walk.numbers.push_back(number);
    walk.told.push_back(Utf8(name) + ' ' + std::to_string(nameSize / sizeof(wchar_t)) + ' ' +
                        Utf8(description) + ' ' + std::to_string(policy->user.VideoTimeoutAc));
    return walk.told.size() < walk.stopAfter ? TRUE : FALSE;
}

Walk Enumerate(std::size_t stopAfter = 100)
{
    Walk walk{stopAfter};
    EXPECT_TRUE(EnumPwrSchemes(Note, reinterpret_cast<LPARAM>(&walk)));
    return walk;
}

TEST_F(SchemesTest, WhatIsWrittenOnOneSideIsReadOnTheOther)
{
    POWER_POLICY policy = Read(2);
    policy.user.VideoTimeoutDc = 777;
    policy.mach.DozeS4TimeoutAc = 888;
    UINT scheme = 2;
    ASSERT_TRUE(WritePwrScheme(&scheme, nullptr, nullptr, &policy));
    EXPECT_EQ(BytesOf(policy.user), ReadValue(HKEY_CURRENT_USER, UserKey(2), L"Policies"));
    EXPECT_EQ(BytesOf(policy.mach),
              ReadValue(HKEY_LOCAL_MACHINE, MachineKey("PowerPolicies", 2), L"Policies"));
    EXPECT_EQ(TextBytes("Presentation"), ReadValue(HKEY_CURRENT_USER, UserKey(2), L"Name"));

    MACHINE_PROCESSOR_POWER_POLICY processor{};
    ASSERT_TRUE(ReadProcessorPwrScheme(2, &processor));
    processor.ProcessorPolicyAc.DynamicThrottle = 1;
    ASSERT_TRUE(WriteProcessorPwrScheme(2, &processor));
    EXPECT_EQ(BytesOf(processor),
              ReadValue(HKEY_LOCAL_MACHINE, MachineKey("ProcessorPolicies", 2), L"Policies"));

    policy.user.IdleTimeoutAc = 4321;
    ASSERT_EQ(ERROR_SUCCESS,
              WriteValue(HKEY_CURRENT_USER, UserKey(2), L"Policies", REG_BINARY, BytesOf(policy.user)));
    EXPECT_EQ(4321u, Read(2).user.IdleTimeoutAc);
    ASSERT_EQ(ERROR_SUCCESS,
              WriteValue(HKEY_CURRENT_USER, kUserPower, L"CurrentPowerPolicy", REG_SZ, TextBytes("4")));
    EXPECT_EQ(4u, Active());
}

TEST_F(SchemesTest, ASchemeIsWrittenUnderTheNumberThatTheCallerChose)
{
    POWER_POLICY policy = Read(0);
    policy.user.VideoTimeoutAc = 60;
    UINT chosen = 17;
    wchar_t name[] = L"Train";
    wchar_t description[] = L"On the way";
    ASSERT_TRUE(WritePwrScheme(&chosen, name, description, &policy));
    EXPECT_EQ(17u, chosen);
    EXPECT_EQ(BytesOf(policy), BytesOf(Read(17)));

    // A number that nobody chose is the one above the highest.
    UINT fresh = 0xFFFFFFFFu;
    ASSERT_TRUE(WritePwrScheme(&fresh, nullptr, nullptr, &policy));
    EXPECT_EQ(18u, fresh);
    EXPECT_EQ(TextBytes("18"), ReadValue(HKEY_LOCAL_MACHINE, kMachinePower, L"LastID"));

    // Numbers order the walk, not the texts of the registry keys.
    UINT nine = 9;
    wchar_t nineName[] = L"Nine";
    ASSERT_TRUE(WritePwrScheme(&nine, nineName, nullptr, &policy));
    WriteValue(HKEY_CURRENT_USER, kUserPower + "\\PowerPolicies\\no number", L"Name", REG_SZ, TextBytes("x"));
    const Walk walk = Enumerate();
    EXPECT_EQ((std::vector<UINT>{0, 1, 2, 3, 4, 5, 9, 17, 18}), walk.numbers);
    EXPECT_EQ("Nine 5  60", walk.told[6]);
    EXPECT_EQ("Train 6 On the way 60", walk.told[7]);
    EXPECT_EQ((std::vector<UINT>{0, 1, 2}), Enumerate(3).numbers) << "the callback ends the walk";
    EXPECT_EQ(ERROR_INVALID_PARAMETER, ErrorOf(EnumPwrSchemes(nullptr, 0)));
}

TEST_F(SchemesTest, DeletionSparesTheActiveScheme)
{
    EXPECT_EQ(ERROR_ACCESS_DENIED, ErrorOf(DeletePwrScheme(1)));
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, ErrorOf(DeletePwrScheme(6)));
    EXPECT_EQ(6u, Enumerate().numbers.size());

    ASSERT_TRUE(DeletePwrScheme(5));
    EXPECT_FALSE(KeyExists(HKEY_CURRENT_USER, UserKey(5)));
    EXPECT_FALSE(KeyExists(HKEY_LOCAL_MACHINE, MachineKey("PowerPolicies", 5)));
    EXPECT_FALSE(KeyExists(HKEY_LOCAL_MACHINE, MachineKey("ProcessorPolicies", 5)));
    EXPECT_EQ((std::vector<UINT>{0, 1, 2, 3, 4}), Enumerate().numbers);

    // Another can become active when it exists, and is spared then.
    ASSERT_TRUE(SetActivePwrScheme(3, nullptr, nullptr));
    EXPECT_EQ(TextBytes("3"), ReadValue(HKEY_CURRENT_USER, kUserPower, L"CurrentPowerPolicy"));
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, ErrorOf(SetActivePwrScheme(6, nullptr, nullptr)));
    EXPECT_TRUE(DeletePwrScheme(1));
    EXPECT_FALSE(DeletePwrScheme(3));
    EXPECT_EQ(3u, Active());
}

// A store that something else has damaged is told as such and gives nothing half read.
TEST_F(SchemesTest, ADamagedStoreIsRefused)
{
    WriteValue(HKEY_CURRENT_USER, UserKey(0), L"Policies", REG_BINARY, std::vector<BYTE>(79, 0xAA));
    WriteValue(HKEY_LOCAL_MACHINE, MachineKey("PowerPolicies", 2), L"Policies", REG_BINARY,
               std::vector<BYTE>(65, 0xAA));
    for (const UINT scheme : {0u, 2u})
    {
        POWER_POLICY policy{};
        EXPECT_EQ(ERROR_INVALID_DATA, ErrorOf(ReadPwrScheme(scheme, &policy)));
        EXPECT_EQ(BytesOf(POWER_POLICY{}), BytesOf(policy));
    }
    EXPECT_EQ((std::vector<UINT>{1, 3, 4, 5}), Enumerate().numbers);
}

} // namespace
