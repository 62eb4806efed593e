// agents/DriverChannelTest.cpp
//
// When the connection is opened and closed, that one thread is in the driver, and how errors are returned.

#include "agents/AgentsTest.h"

#include "agents/DriverRecords.h"
#include "agents/OrvlDrvMgr.h"
#include "foundation/Results.h"
#include "machine/KernelDriver.h"

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
    void SetUp() override
    {
        AgentsTest::SetUp();
        ASSERT_EQ(kSucceeded, OrvlDrvOpen());
        NewLogLines();
        Trace::Clear();
    }
    void TearDown() override
    {
        OrvlDrvClose();
        AgentsTest::TearDown();
    }
};

TEST_F(DriverChannelTest, VersionDecidesHowOftenTheDeviceIsOpenedAndWhetherCloseCloses)
{
    for (const auto& [major, openings] : {std::pair{5U, 2U}, {6U, 1U}, {10U, 1U}})
    {
        OrvlDrvClose();
        ASSERT_TRUE(Notebook::SetVersion(major, major == 5 ? 1 : 0));
        Trace::Clear();
        EXPECT_EQ(kSucceeded, OrvlDrvOpen());
        EXPECT_EQ(kSucceeded, OrvlDrvOpen());
        EXPECT_EQ(openings, Calls("CreateFileW"));
        EXPECT_EQ("\"\\\\.\\orvlebl\", 0x80000000, 0, 3, 128, null",
                  Trace::CallsOf("CreateFileW").front().arguments);
        EXPECT_EQ(openings - 1, Calls("CloseHandle")) << "a replaced handle is closed";
        EXPECT_EQ(kSucceeded, OrvlDrvClose());
        EXPECT_EQ(major < 6 ? kGeneralFailure : kSucceeded, AskDriver());
        ASSERT_TRUE(Notebook::SetVersion(5, 1));
    }
}

TEST_F(DriverChannelTest, FailedOpenClosesWhatWasOpen)
{
    KernelDriver::SetPresent(false);
    EXPECT_EQ(static_cast<LONG>(0x80070002), OrvlDrvOpen());
    EXPECT_EQ(1U, Calls("CloseHandle"));
    EXPECT_EQ(kGeneralFailure, AskDriver());
    EXPECT_EQ(0U, Calls("DeviceIoControl"));
    EXPECT_THAT(NewLogLines(), testing::Contains("COrvlDrvMgr::DeviceIoControl failed: device not opened"));
}

TEST_F(DriverChannelTest, SecondThreadIsRefusedAtOnceWhileTheFirstIsInTheDriver)
{
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
    for (const auto& [code, inputSize, driverError, result] :
         {std::tuple{kDriverControlBase + 4 * 12, 16U, 0U, 0x80070001U},
          {IOCTL_EXEC_CTRL_METHOD, 15U, 0U, 0x80070057U},
          {IOCTL_EXEC_CTRL_METHOD, 16U, 0x12345U, 0x80072345U},
          {IOCTL_EXEC_CTRL_METHOD, 16U, 0xE0000001U, 0xE0000001U}})
    {
        KernelDriver::RefuseRequests(driverError);
        EXPECT_EQ(result, static_cast<DWORD>(AskDriver(code, inputSize))) << code << ' ' << driverError;
    }
}

} // namespace
