// setupapi/DeviceStateTest.cpp
//
// Enabling and disabling devices, in all profiles and in the current one. Restarting is in
// agents/LanAgentTest.cpp.

#include "setupapi/SetupTest.h"

namespace
{

using namespace simulated;

constexpr ULONG kNode = 0x01800000;
constexpr ULONG kRunning = kNode | DN_DISABLEABLE | DN_STARTED | DN_DRIVER_LOADED;
constexpr ULONG kStopped = kNode | DN_DISABLEABLE | DN_HAS_PROBLEM;

using State = std::pair<ULONG, ULONG>;

} // namespace

class DeviceStateTest : public SetupTest
{
protected:
    void SetUp() override
    {
        SetupTest::SetUp();
        adapter = Adapters::All()[0];
        OpenList();
        ASSERT_EQ(0U, Enumerate(0));
    }

    DWORD SetParameters(SP_PROPCHANGE_PARAMS parameters, DWORD size = sizeof(SP_PROPCHANGE_PARAMS))
    {
        return ErrorOf(SetupDiSetClassInstallParamsW(list, &device, &parameters.ClassInstallHeader, size));
    }

    DWORD Change(DWORD change, DWORD scope)
    {
        EXPECT_EQ(0U,
                  SetParameters({{sizeof(SP_CLASSINSTALL_HEADER), DIF_PROPERTYCHANGE}, change, scope, 0}));
        return ErrorOf(SetupDiCallClassInstaller(DIF_PROPERTYCHANGE, list, &device));
    }

    std::string adapter;
};

TEST_F(DeviceStateTest, ADeviceRunsWhenNoProfileDisablesIt)
{
    const struct
    {
        DWORD change;
        DWORD scope;
        State after;
    } steps[] = {
        {DICS_ENABLE, DICS_FLAG_GLOBAL, {kRunning, 0}},
        {DICS_DISABLE, DICS_FLAG_CONFIGSPECIFIC, {kStopped, CM_PROB_DISABLED}},
        {DICS_ENABLE, DICS_FLAG_GLOBAL, {kStopped, CM_PROB_DISABLED}},
        {DICS_ENABLE, DICS_FLAG_CONFIGSPECIFIC, {kRunning, 0}},
        {DICS_DISABLE, DICS_FLAG_GLOBAL, {kStopped, CM_PROB_DISABLED}},
        {DICS_PROPCHANGE, DICS_FLAG_GLOBAL, {kStopped, CM_PROB_DISABLED}},
        {DICS_ENABLE, DICS_FLAG_CONFIGSPECIFIC, {kStopped, CM_PROB_DISABLED}},
        {DICS_ENABLE, DICS_FLAG_GLOBAL, {kRunning, 0}},
    };
    EXPECT_EQ(State(kRunning, 0), Status());
    for (const auto& step : steps)
    {
        EXPECT_EQ(0U, Change(step.change, step.scope));
        EXPECT_EQ(step.after, Status());
    }
}

TEST_F(DeviceStateTest, SomeDevicesCannotBeDisabled)
{
    DeviceTree::SetDisableable(adapter, false);
    EXPECT_EQ(ERROR_NOT_DISABLEABLE, Change(DICS_DISABLE, DICS_FLAG_GLOBAL));
    EXPECT_EQ(State(kRunning & ~ULONG{DN_DISABLEABLE}, 0), Status());
    DeviceTree::SetDisableable(adapter, true);

    DeviceTree::SwitchOff(adapter, true); // by a switch of the machine
    EXPECT_EQ(State(kStopped, CM_PROB_HARDWARE_DISABLED), Status());
    EXPECT_EQ(ERROR_NOT_DISABLEABLE, Change(DICS_DISABLE, DICS_FLAG_GLOBAL));
    EXPECT_EQ(0U, Change(DICS_ENABLE, DICS_FLAG_GLOBAL));
    EXPECT_EQ(State(kStopped, CM_PROB_HARDWARE_DISABLED), Status());
    DeviceTree::SetPresent(adapter, false);
    EXPECT_EQ(ERROR_NO_SUCH_DEVINST, Change(DICS_DISABLE, DICS_FLAG_GLOBAL));
}

TEST_F(DeviceStateTest, ParametersAreChecked)
{
    EXPECT_EQ(ERROR_NO_CLASSINSTALL_PARAMS, ErrorOf(SetupDiChangeState(list, &device)));
    constexpr SP_CLASSINSTALL_HEADER kHeader = {sizeof(SP_CLASSINSTALL_HEADER), DIF_PROPERTYCHANGE};
    const struct
    {
        SP_PROPCHANGE_PARAMS parameters;
        DWORD size;
        DWORD error;
    } cases[] = {
        {{kHeader, DICS_ENABLE, DICS_FLAG_GLOBAL, 0}, 20, 0},
        {{kHeader, DICS_ENABLE, DICS_FLAG_GLOBAL, 1}, 20, 0},
        {{kHeader, DICS_ENABLE, DICS_FLAG_GLOBAL, 2}, 20, 87},
        {{kHeader, DICS_ENABLE, DICS_FLAG_GLOBAL, 0}, 19, 87},
        {{kHeader, DICS_ENABLE, DICS_FLAG_GLOBAL, 0}, 7, 87},
        {{kHeader, 9, DICS_FLAG_GLOBAL, 0}, 20, 87},
        {{kHeader, DICS_ENABLE, 3, 0}, 20, 87},
        {{{7, DIF_PROPERTYCHANGE}, DICS_ENABLE, DICS_FLAG_GLOBAL, 0}, 20, 1784},
        {{{8, 1}, DICS_ENABLE, DICS_FLAG_GLOBAL, 0}, 20, 87},
    };
    for (const auto& row : cases)
    {
        EXPECT_EQ(row.error, SetParameters(row.parameters, row.size));
    }
    EXPECT_TRUE(SetupDiChangeState(list, &device));
    EXPECT_EQ(ERROR_DI_DO_DEFAULT, ErrorOf(SetupDiCallClassInstaller(1, list, &device)));
    EXPECT_FALSE(SetupDiSetClassInstallParamsW(list, &device, nullptr, 1));
    EXPECT_TRUE(SetupDiChangeState(list, &device)) << "a refused call leaves the parameters alone";
    EXPECT_TRUE(SetupDiSetClassInstallParamsW(list, &device, nullptr, 0)); // takes them away
    EXPECT_EQ(ERROR_NO_CLASSINSTALL_PARAMS,
              ErrorOf(SetupDiCallClassInstaller(DIF_PROPERTYCHANGE, list, &device)));
}
