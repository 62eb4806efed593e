// agents/DriverChannelTest.cpp
//
// When the connection is opened and closed, who may be in the driver, and how its errors come back.

#include "agents/AgentsTest.h"

#include "agents/DriverRecords.h"
#include "agents/OrvlDrvMgr.h"
#include "foundation/Results.h"
#include "notebook/KernelDriver.h"

#include <thread>

using namespace simulated;

namespace
{

/// Asks the firmware for its status, through the exported function.
LONG AskDriver(DWORD code = IOCTL_EXEC_CTRL_METHOD, DWORD inputSize = sizeof(ControlMethodInput))
{
    ControlMethodInput input = {0x4154535F, {}};
    ULONG answer = 0;
    DWORD returned = 0;
    return OrvlDrvIoControl(code, &input, inputSize, &answer, sizeof answer, &returned, nullptr);
}

class DriverChannelTest : public AgentsTest
{
protected:
    void TearDown() override
    {
        UseVersion(5);
        OrvlDrvClose();
        AgentsTest::TearDown();
    }
};

TEST_F(DriverChannelTest, VersionDecidesHowOftenTheDeviceIsOpenedAndWhetherCloseCloses)
{
    for (const auto& [major, openings] : {std::pair{5U, 2U}, {6U, 1U}, {10U, 1U}})
    {
        UseVersion(major);
        Trace::Clear();
        EXPECT_EQ(kSucceeded, OrvlDrvOpen());
        EXPECT_EQ(kSucceeded, OrvlDrvOpen());
        EXPECT_EQ(openings, Calls("CreateFileW"));
        EXPECT_EQ("\"\\\\.\\orvlebl\", 0x80000000, 0, 3, 128, null",
                  Trace::CallsOf("CreateFileW").front().arguments);
        EXPECT_EQ(openings - 1, Calls("CloseHandle")) << "a replaced handle is closed";
        EXPECT_EQ(kSucceeded, OrvlDrvClose());
        EXPECT_EQ(major < 6 ? kGeneralFailure : kSucceeded, AskDriver());
        UseVersion(5);
        OrvlDrvClose();
    }
    EXPECT_EQ(kSucceeded, OrvlDrvOpen());
    KernelDriver::SetPresent(false);
    Trace::Clear();
    NewLogLines();
    EXPECT_EQ(static_cast<LONG>(0x80070002), OrvlDrvOpen());
    EXPECT_EQ(1U, Calls("CloseHandle")) << "the handle in place goes with the failed open";
    EXPECT_EQ(kGeneralFailure, AskDriver());
    EXPECT_EQ(0U, Calls("DeviceIoControl"));
    EXPECT_THAT(NewLogLines(), testing::Contains("COrvlDrvMgr::DeviceIoControl failed: device not opened"));
}

TEST_F(DriverChannelTest, SecondThreadIsRefusedAtOnceWhileTheFirstIsInTheDriver)
{
    ASSERT_EQ(kSucceeded, OrvlDrvOpen());
    NewLogLines();
    KernelDriver::Hold();
    LONG first = kGeneralFailure;
    std::thread holder([&first] { first = AskDriver(); });
    EXPECT_TRUE(KernelDriver::WaitUntilHeld(5000));

    EXPECT_EQ(kGeneralFailure, AskDriver());
    EXPECT_EQ("COrvlDrvMgr::DeviceIoControl failed for cannot enter the critical section",
              NewLogLines().at(0));
    KernelDriver::LetGo();
    holder.join();
    EXPECT_EQ(kSucceeded, first);
    EXPECT_EQ(1U, Calls("DeviceIoControl"));
}

TEST_F(DriverChannelTest, DriverErrorsAreTranslated)
{
    ASSERT_EQ(kSucceeded, OrvlDrvOpen());
    constexpr struct
    {
        DWORD code;
        DWORD inputSize;
        DWORD driverError;
        DWORD result;
    } kRefusals[] = {
        {kDriverControlBase + 4 * 12, 16, 0, 0x80070001},
        {IOCTL_EXEC_CTRL_METHOD, 15, 0, 0x80070057},
        {IOCTL_EXEC_CTRL_METHOD, 16, 0x12345, 0x80072345},
        {IOCTL_EXEC_CTRL_METHOD, 16, 0xE0000001, 0xE0000001},
    };
    for (const auto& refusal : kRefusals)
    {
        KernelDriver::RefuseRequests(refusal.driverError);
        EXPECT_EQ(refusal.result, static_cast<DWORD>(AskDriver(refusal.code, refusal.inputSize)))
            << refusal.code << ' ' << refusal.driverError;
    }
}

} // namespace
