// tests/powrprof/PowerStoreTest.cpp
//
// What the power manager refuses, and the order in which it enumerates schemes: the transcripts show the
// rest.

#include "support/LastError.h"
#include "support/NotebookTest.h"

#include "control/RegistryEditor.h"

#include <windows.h>

// Some editions of this header have no guard; nothing else here includes it.
#include <powrprof.h>

#include <tuple>
#include <vector>

using namespace simulated;

namespace
{

constexpr DWORD kDone = ERROR_SUCCESS;
constexpr GUID kBalanced = {0x381B4222, 0xF694, 0x41F0, {0x96, 0x85, 0xFF, 0x5B, 0xB2, 0x60, 0xDF, 0x2E}};
constexpr GUID kPowerSaver = {0xA1841308, 0x3541, 0x4FAB, {0xBC, 0x81, 0xF7, 0x15, 0x56, 0xF2, 0x0B, 0x4A}};
constexpr GUID kUnknown = {0x11111111, 0x2222, 0x3333, {1, 2, 3, 4, 5, 6, 7, 8}};
constexpr GUID kVideo = {0x7516B95F, 0xF776, 0x4464, {0x8C, 0x53, 0x06, 0x16, 0x7F, 0x40, 0xCC, 0x99}};
constexpr GUID kVideoOff = {0x3C0BC021, 0xC8A8, 0x4E07, {0xA9, 0x73, 0x6B, 0x14, 0xCB, 0xCB, 0x2B, 0x7E}};
const std::string kUserSchemes = "HKCU\\Control Panel\\PowerCfg\\PowerPolicies\\";
const std::string kMachinePower =
    "HKLM\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Controls Folder\\PowerCfg\\";
const std::string kGuidSchemes = "HKLM\\SYSTEM\\CurrentControlSet\\Control\\Power\\User\\PowerSchemes\\";

class PowerStoreTest : public NotebookTest
{
protected:
    PowerStoreTest() : NotebookTest({.major = 6, .minor = 0})
    {
    }

    struct Enumeration
    {
        std::size_t stopAfter;
        std::vector<UINT> numbers = {};
    };

    static BOOLEAN CALLBACK Note(UINT number, DWORD, LPWSTR, DWORD, LPWSTR, PPOWER_POLICY, LPARAM argument)
    {
        Enumeration& found = *reinterpret_cast<Enumeration*>(argument);
        found.numbers.push_back(number);
        return found.numbers.size() < found.stopAfter ? TRUE : FALSE;
    }

    static std::vector<UINT> Numbers(std::size_t stopAfter = 100)
    {
        Enumeration found{stopAfter};
        EXPECT_TRUE(EnumPwrSchemes(&Note, reinterpret_cast<LPARAM>(&found)));
        return found.numbers;
    }
};

// Not by the texts of the registry keys, and without keys that aren't a scheme's.
TEST_F(PowerStoreTest, SchemesAreEnumeratedByNumber)
{
    POWER_POLICY policy{};
    ASSERT_TRUE(ReadPwrScheme(0, &policy));
    for (UINT number : {17U, 9U, 0xFFFFFFFFU})
    {
        const UINT expected = number == 0xFFFFFFFFU ? 18 : number; // one above the highest is a new one
        ASSERT_TRUE(WritePwrScheme(&number, nullptr, nullptr, &policy));
        EXPECT_EQ(expected, number);
    }
    ASSERT_TRUE(RegistryEditor::WriteText(kUserSchemes + "no number", "Name", "x"));
    EXPECT_EQ((std::vector<UINT>{0, 1, 2, 3, 4, 5, 9, 17, 18}), Numbers());
    EXPECT_EQ((std::vector<UINT>{0, 1, 2}), Numbers(3)) << "the callback ends the enumeration";
}

TEST_F(PowerStoreTest, DeletionSparesTheActiveScheme)
{
    EXPECT_EQ(ERROR_ACCESS_DENIED, ErrorOf(DeletePwrScheme(1)));
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, ErrorOf(DeletePwrScheme(6)));
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, ErrorOf(SetActivePwrScheme(6, nullptr, nullptr)));
    ASSERT_TRUE(SetActivePwrScheme(3, nullptr, nullptr));
    EXPECT_TRUE(DeletePwrScheme(1));
    EXPECT_FALSE(DeletePwrScheme(3));
    EXPECT_EQ((std::vector<UINT>{0, 2, 3, 4, 5}), Numbers());
    EXPECT_FALSE(RegistryEditor::HasKey(kMachinePower + "PowerPolicies\\1"));
    EXPECT_FALSE(RegistryEditor::HasKey(kMachinePower + "ProcessorPolicies\\1"));

    EXPECT_EQ(DWORD{ERROR_ACCESS_DENIED}, PowerDeleteScheme(nullptr, &kBalanced));
    EXPECT_EQ(DWORD{ERROR_FILE_NOT_FOUND}, PowerDeleteScheme(nullptr, &kUnknown));
    EXPECT_EQ(DWORD{ERROR_FILE_NOT_FOUND}, PowerSetActiveScheme(nullptr, &kUnknown));
    EXPECT_EQ(kDone, PowerSetActiveScheme(nullptr, &kPowerSaver));
    EXPECT_EQ(kDone, PowerDeleteScheme(nullptr, &kBalanced));
    EXPECT_FALSE(RegistryEditor::HasKey(kGuidSchemes + "381b4222-f694-41f0-9685-ff5bb260df2e"));
}

TEST_F(PowerStoreTest, UnknownSettingsAreRefused)
{
    const std::tuple<const GUID*, const GUID*, const GUID*, DWORD> rows[] = {
        {&kBalanced, &kVideo, &kVideoOff, kDone},
        {&kUnknown, &kVideo, &kVideoOff, ERROR_FILE_NOT_FOUND},
        {&kBalanced, &kVideo, &kUnknown, ERROR_FILE_NOT_FOUND},
        {&kBalanced, nullptr, &kVideoOff, ERROR_INVALID_PARAMETER}};
    for (const auto& [scheme, subGroup, setting, error] : rows)
    {
        DWORD value = 0;
        EXPECT_EQ(error, PowerReadDCValueIndex(nullptr, scheme, subGroup, setting, &value));
        EXPECT_EQ(error, PowerWriteACValueIndex(nullptr, scheme, subGroup, setting, 1));
    }
}

// A damaged record is an error, and no part of it is returned.
TEST_F(PowerStoreTest, DamagedSchemesAreRefused)
{
    const registry::Value damaged = {REG_BINARY, std::string(65, '\xAA')};
    ASSERT_TRUE(RegistryEditor::Write(kUserSchemes + '0', "Policies", damaged));
    ASSERT_TRUE(RegistryEditor::Write(kMachinePower + "PowerPolicies\\2", "Policies", damaged));
    for (const UINT scheme : {0U, 2U})
    {
        POWER_POLICY policy{};
        EXPECT_EQ(ERROR_INVALID_DATA, ErrorOf(ReadPwrScheme(scheme, &policy)));
        EXPECT_EQ(0U, policy.user.Revision + policy.mach.Revision);
    }
    EXPECT_EQ((std::vector<UINT>{1, 3, 4, 5}), Numbers());
}

} // namespace
