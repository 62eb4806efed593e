// agents/OsWinTest.cpp
//
// The helpers over the operating system.

#include "agents/AgentsTest.h"

#include "agents/OsWin.h"
#include "foundation/Results.h"
#include "notebook/Machine.h"

using namespace simulated;

namespace
{

/// Reaches what COsWin keeps for itself.
struct OpenOsWin : COsWin
{
    static void Unload()
    {
        m_hDwmLibrary = nullptr;
    }
};

class OsWinTest : public AgentsTest
{
protected:
    void SetUp() override
    {
        AgentsTest::SetUp();
        OpenOsWin::Unload();
    }
};

TEST_F(OsWinTest, CompositionIsSwitchedWhereTheSystemHasIt)
{
    int enabled = -1;
    EXPECT_EQ(0, COsWin::IsVista());
    EXPECT_EQ(kGeneralFailure, COsWin::SetAero(1));
    EXPECT_EQ(kGeneralFailure, COsWin::IsAeroOn(&enabled));
    EXPECT_EQ(2U, Calls("LoadLibraryW")) << "tried again each time";
    EXPECT_THAT(NewLogLines(), testing::Contains("Failed to load dwmapi.dll 126").Times(2));

    // From 6.2 on the system says yes and leaves the composition on.
    for (const auto& [major, minor, wanted, reached] :
         {std::tuple{6U, 0U, 0, 0}, {6U, 1U, 1, 1}, {6U, 2U, 0, 1}, {10U, 0U, 0, 1}})
    {
        Machine::WriteNumber("Machine", "Major", major);
        Machine::WriteNumber("Machine", "Minor", minor);
        EXPECT_EQ(1, COsWin::IsVista());
        EXPECT_EQ(0, COsWin::SetAero(wanted));
        EXPECT_EQ(0, COsWin::IsAeroOn(&enabled));
        EXPECT_EQ(reached, enabled);
    }
    EXPECT_EQ(3U, Calls("LoadLibraryW")) << "loaded once";

    Notebook::SetModule("dwmapi.dll.DwmEnableComposition", false);
    NewLogLines();
    EXPECT_EQ(kGeneralFailure, COsWin::SetAero(1));
    EXPECT_THAT(NewLogLines(), testing::ElementsAre("Failed to get function in dwmapi.dll"));
}

TEST_F(OsWinTest, RegistryValuesAreReadAndWritten)
{
    constexpr wchar_t kKey[] = L"Software\\Kelvo\\ORVL";
    ULONG type = REG_DWORD;
    ULONG size = sizeof(ULONG);
    ULONG value = 0x12345678;
    EXPECT_EQ(0, COsWin::WriteRegValue(HKEY_LOCAL_MACHINE, kKey, L"Probe", 9, &type, &value, &size));
    type = value = 0;
    auto* data = reinterpret_cast<unsigned char*>(&value);
    EXPECT_EQ(0, COsWin::ReadRegValue(HKEY_LOCAL_MACHINE, kKey, L"Probe", &type, data, &size));
    EXPECT_EQ(0x12345678U, value);
    EXPECT_EQ(REG_DWORD, type);
    EXPECT_EQ(0, COsWin::ReadRegValue(HKEY_LOCAL_MACHINE, kKey, L"Probe", &type, nullptr, nullptr));

    // A refusal gives the last error, which the registry functions leave as it was.
    SetLastError(77);
    EXPECT_EQ(77, COsWin::ReadRegValue(HKEY_LOCAL_MACHINE, L"No Such", L"Probe", &type, data, &size));
    EXPECT_EQ(77, COsWin::ReadRegValue(HKEY_LOCAL_MACHINE, kKey, L"No Such", &type, data, &size));
    EXPECT_EQ(77, COsWin::WriteRegValue(HKEY_LOCAL_MACHINE, L"No Such", L"Probe", 0, &type, data, &size));
    EXPECT_THAT(NewLogLines(),
                testing::ElementsAre("failed to open No Such to read.", "failed to query value No Such",
                                     "failed to open No Such to write."));

    Trace::Clear();
    EXPECT_EQ(kGeneralFailure, COsWin::ReadRegValue(nullptr, kKey, L"Probe", &type, data, &size));
    EXPECT_EQ(kGeneralFailure,
              COsWin::ReadRegValue(HKEY_LOCAL_MACHINE, kKey, L"Probe", nullptr, data, &size));
    EXPECT_EQ(kGeneralFailure,
              COsWin::WriteRegValue(HKEY_LOCAL_MACHINE, kKey, L"Probe", 0, &type, data, nullptr));
    EXPECT_EQ(0U, Trace::Count(CallClass::Registry));
}

} // namespace
