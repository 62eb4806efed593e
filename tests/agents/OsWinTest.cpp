// agents/OsWinTest.cpp
//
// The helpers over the operating system.

#include "agents/AgentsTest.h"

#include "agents/OsWin.h"
#include "foundation/Results.h"
#include "machine/Machine.h"

using namespace simulated;

namespace
{

/// Exposes the protected members of COsWin.
struct OpenOsWin : COsWin
{
    static void Unload()
    {
        m_hDwmLibrary = nullptr;
    }
};

using OsWinTest = AgentsTest;

TEST_F(OsWinTest, CompositionIsSwitchedWhereTheSystemHasIt)
{
    int enabled = -1;
    OpenOsWin::Unload();
    EXPECT_EQ(kGeneralFailure, COsWin::SetAero(1));
    EXPECT_EQ(kGeneralFailure, COsWin::IsAeroOn(&enabled));
    EXPECT_EQ(2U, Calls("LoadLibraryW")) << "tried again each time";
    EXPECT_EQ(0, COsWin::IsVista());
    EXPECT_EQ(0, COsWin::SetLinkPowerMgr(1));
    EXPECT_THAT(NewLogLines(), testing::ElementsAre("Failed to load dwmapi.dll 126",
                                                    "Failed to load dwmapi.dll 126", "Windows version 5.1"));

    // From 6.2 on the system says yes and leaves the composition on.
    for (const auto& [major, minor, wanted, reached] :
         {std::tuple{6U, 0U, 0, 0}, {6U, 1U, 1, 1}, {6U, 2U, 0, 1}, {10U, 0U, 0, 1}})
    {
        ASSERT_TRUE(Machine::WriteNumber("Machine", "Major", major));
        ASSERT_TRUE(Machine::WriteNumber("Machine", "Minor", minor));
        EXPECT_EQ(1, COsWin::IsVista());
        EXPECT_EQ(0, COsWin::SetAero(wanted));
        EXPECT_EQ(0, COsWin::IsAeroOn(&enabled));
        EXPECT_EQ(reached, enabled);
    }
    EXPECT_EQ(3U, Calls("LoadLibraryW")) << "loaded once";

    ASSERT_TRUE(Notebook::SetModule("dwmapi.dll.DwmEnableComposition", false));
    NewLogLines();
    EXPECT_EQ(kGeneralFailure, COsWin::SetAero(1));
    EXPECT_THAT(NewLogLines(), testing::ElementsAre("Failed to get function in dwmapi.dll"));
}

TEST_F(OsWinTest, RegistryIsOnlyCalledWithAllArguments)
{
    wchar_t key[] = L"Software\\Kelvo\\ORVL";
    ULONG type = REG_DWORD;
    ULONG value = 0x12345678;
    ULONG size = sizeof value;
    auto* const data = reinterpret_cast<unsigned char*>(&value);
    const HKEY root = HKEY_LOCAL_MACHINE;
    EXPECT_EQ(0, COsWin::WriteRegValue(root, key, key, 9, &type, &value, &size));
    type = value = 0;
    EXPECT_EQ(0, COsWin::ReadRegValue(root, key, key, &type, data, &size));
    EXPECT_EQ(std::pair(ULONG{REG_DWORD}, ULONG{0x12345678}), std::pair(type, value));
    EXPECT_EQ(0, COsWin::ReadRegValue(root, key, key, &type, nullptr, nullptr));

    // A refusal gives the last error, which the registry functions leave as it was.
    NewLogLines();
    SetLastError(77);
    EXPECT_EQ(77, COsWin::ReadRegValue(root, L"No Such", key, &type, data, &size));
    EXPECT_EQ(77, COsWin::ReadRegValue(root, key, L"No Such", &type, data, &size));
    EXPECT_EQ(77, COsWin::WriteRegValue(root, L"No Such", key, 0, &type, data, &size));
    Faults::Inject("RegSetValueExW", 1, ERROR_ACCESS_DENIED);
    EXPECT_EQ(77, COsWin::WriteRegValue(root, key, L"Probe", 0, &type, data, &size));
    EXPECT_THAT(NewLogLines(),
                testing::ElementsAre("failed to open No Such to read.", "failed to query value No Such",
                                     "failed to open No Such to write.", "failed to set value Probe ."));

    Trace::Clear();
    for (const LONG result : {COsWin::ReadRegValue(nullptr, key, key, &type, data, &size),
                              COsWin::ReadRegValue(root, nullptr, key, &type, data, &size),
                              COsWin::ReadRegValue(root, key, nullptr, &type, data, &size),
                              COsWin::ReadRegValue(root, key, key, nullptr, data, &size),
                              COsWin::WriteRegValue(nullptr, key, key, 0, &type, data, &size),
                              COsWin::WriteRegValue(root, nullptr, key, 0, &type, data, &size),
                              COsWin::WriteRegValue(root, key, nullptr, 0, &type, data, &size),
                              COsWin::WriteRegValue(root, key, key, 0, nullptr, data, &size),
                              COsWin::WriteRegValue(root, key, key, 0, &type, nullptr, &size),
                              COsWin::WriteRegValue(root, key, key, 0, &type, data, nullptr)})
    {
        EXPECT_EQ(kGeneralFailure, result);
    }
    EXPECT_EQ(0U, Trace::Count(CallClass::Registry));
}

} // namespace
