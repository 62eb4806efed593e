// tests/powrprof/SettingsTest.cpp
//
// The GUID-based schemes, by the functions that are found at run time.

#include "Support.h"

#include <tuple>
#include <utility>

namespace
{

constexpr GUID kBalanced = {0x381B4222, 0xF694, 0x41F0, {0x96, 0x85, 0xFF, 0x5B, 0xB2, 0x60, 0xDF, 0x2E}};
constexpr GUID kHighPerformance = {
    0x8C5E7FDA, 0xE8BF, 0x4A96, {0x9A, 0x85, 0xA6, 0xE2, 0x3A, 0x8C, 0x63, 0x5C}};
constexpr GUID kPowerSaver = {0xA1841308, 0x3541, 0x4FAB, {0xBC, 0x81, 0xF7, 0x15, 0x56, 0xF2, 0x0B, 0x4A}};
constexpr GUID kUnknown = {0x11111111, 0x2222, 0x3333, {1, 2, 3, 4, 5, 6, 7, 8}};
constexpr GUID kVideo = {0x7516B95F, 0xF776, 0x4464, {0x8C, 0x53, 0x06, 0x16, 0x7F, 0x40, 0xCC, 0x99}};
constexpr GUID kVideoOff = {0x3C0BC021, 0xC8A8, 0x4E07, {0xA9, 0x73, 0x6B, 0x14, 0xCB, 0xCB, 0x2B, 0x7E}};
const std::string kSchemes = "SYSTEM\\CurrentControlSet\\Control\\Power\\User\\PowerSchemes";

using GetActive = DWORD WINAPI(HKEY, GUID**);
using OfScheme = DWORD WINAPI(HKEY, const GUID*);
using ReadName = DWORD WINAPI(HKEY, const GUID*, const GUID*, const GUID*, PUCHAR, LPDWORD);
using ReadIndex = DWORD WINAPI(HKEY, const GUID*, const GUID*, const GUID*, LPDWORD);
using WriteIndex = DWORD WINAPI(HKEY, const GUID*, const GUID*, const GUID*, DWORD);
using Duplicate = DWORD WINAPI(HKEY, const GUID*, GUID**);

using Times = std::pair<DWORD, DWORD>;

class SettingsTest : public FreshStore
{
protected:
    static bool IsActive(const GUID& scheme)
    {
        GUID* active = nullptr;
        EXPECT_EQ(kDone, Find<GetActive>("PowerGetActiveScheme")(nullptr, &active));
        const bool same = active != nullptr && BytesOf(*active) == BytesOf(scheme);
        LocalFree(active);
        return same;
    }

    /// How a program sees that there is a scheme: the error and the length of the name with its end.
    static std::pair<DWORD, DWORD> NameOf(const GUID& scheme)
    {
        DWORD size = 0;
        const DWORD error =
            Find<ReadName>("PowerReadFriendlyName")(nullptr, &scheme, nullptr, nullptr, nullptr, &size);
        return {error, size / DWORD{sizeof(wchar_t)}};
    }

    /// The value on mains and the one on battery of "turn off display".
    static Times VideoOff(const GUID& scheme)
    {
        DWORD mains = 0xAAAA;
        DWORD battery = 0xAAAA;
        const auto readMains = Find<ReadIndex>("PowerReadACValueIndex");
        const auto readBattery = Find<ReadIndex>("PowerReadDCValueIndex");
        EXPECT_EQ(kDone, readMains(nullptr, &scheme, &kVideo, &kVideoOff, &mains));
        EXPECT_EQ(kDone, readBattery(nullptr, &scheme, &kVideo, &kVideoOff, &battery));
        return {mains, battery};
    }

    static DWORD SetVideoOff(const char* function, const GUID& scheme, DWORD value)
    {
        return Find<WriteIndex>(function)(nullptr, &scheme, &kVideo, &kVideoOff, value);
    }
};

TEST_F(SettingsTest, TheTwoPowerSourcesAreStoredApart)
{
    EXPECT_EQ(kDone, SetVideoOff("PowerWriteACValueIndex", kBalanced, 60));
    EXPECT_EQ(Times(60, 300), VideoOff(kBalanced));
    EXPECT_EQ(kDone, SetVideoOff("PowerWriteDCValueIndex", kBalanced, 0xFFFFFFFF));
    EXPECT_EQ(Times(60, 0xFFFFFFFF), VideoOff(kBalanced));
    EXPECT_EQ(Times(1200, 1200), VideoOff(kHighPerformance));

    const std::string key = "\\381b4222-f694-41f0-9685-ff5bb260df2e\\7516b95f-f776-4464-8c53-06167f40cc99"
                            "\\3c0bc021-c8a8-4e07-a973-6b14cbcb2b7e";
    EXPECT_EQ((std::vector<BYTE>{60, 0, 0, 0}),
              ReadValue(HKEY_LOCAL_MACHINE, kSchemes + key, L"ACSettingIndex"));
}

TEST_F(SettingsTest, WhatIsUnknownIsRefused)
{
    const std::tuple<const GUID*, const GUID*, const GUID*, DWORD> rows[] = {
        {&kUnknown, &kVideo, &kVideoOff, ERROR_FILE_NOT_FOUND},
        {&kBalanced, &kVideo, &kUnknown, ERROR_FILE_NOT_FOUND},
        {&kBalanced, nullptr, &kVideoOff, ERROR_INVALID_PARAMETER}};
    for (const auto& [scheme, subGroup, setting, error] : rows)
    {
        DWORD value = 0;
        EXPECT_EQ(error,
                  Find<ReadIndex>("PowerReadDCValueIndex")(nullptr, scheme, subGroup, setting, &value));
        EXPECT_EQ(error, Find<WriteIndex>("PowerWriteACValueIndex")(nullptr, scheme, subGroup, setting, 1));
    }
}

TEST_F(SettingsTest, ADeletedSchemeIsGoneWithItsSettings)
{
    const auto remove = Find<OfScheme>("PowerDeleteScheme");
    const auto activate = Find<OfScheme>("PowerSetActiveScheme");
    EXPECT_EQ(DWORD{ERROR_ACCESS_DENIED}, remove(nullptr, &kBalanced));
    EXPECT_EQ(DWORD{ERROR_FILE_NOT_FOUND}, remove(nullptr, &kUnknown));
    EXPECT_EQ(DWORD{ERROR_FILE_NOT_FOUND}, activate(nullptr, &kUnknown));
    EXPECT_TRUE(IsActive(kBalanced));

    EXPECT_EQ(kDone, activate(nullptr, &kPowerSaver));
    EXPECT_TRUE(IsActive(kPowerSaver));
    EXPECT_EQ(kDone, remove(nullptr, &kBalanced));
    EXPECT_EQ(DWORD{ERROR_FILE_NOT_FOUND}, NameOf(kBalanced).first);
    EXPECT_FALSE(KeyExists(HKEY_LOCAL_MACHINE, kSchemes + "\\381b4222-f694-41f0-9685-ff5bb260df2e"));
}

TEST_F(SettingsTest, ACopyIsWholeAndStandsForItself)
{
    const auto duplicate = Find<Duplicate>("PowerDuplicateScheme");
    GUID* first = nullptr;
    GUID* second = nullptr;
    ASSERT_EQ(kDone, duplicate(nullptr, &kPowerSaver, &first));
    ASSERT_EQ(kDone, duplicate(nullptr, &kPowerSaver, &second));
    EXPECT_NE(BytesOf(*first), BytesOf(*second));
    EXPECT_EQ(std::pair(kDone, DWORD{12}), NameOf(*first)) << "Power saver";
    EXPECT_EQ(Times(1200, 180), VideoOff(*first));

    EXPECT_EQ(kDone, SetVideoOff("PowerWriteDCValueIndex", *first, 240));
    EXPECT_EQ(Times(1200, 180), VideoOff(kPowerSaver));

    LocalFree(first);
    LocalFree(second);
}

} // namespace
