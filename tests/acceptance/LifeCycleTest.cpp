// tests/acceptance/LifeCycleTest.cpp
//
// Load, start, stop, unload, in every order that a host may choose.

#include "acceptance/AcceptanceTest.h"

#include <chrono>
#include <utility>

namespace
{

constexpr int kManyCycles = 1000;
constexpr int kWarmUpCycles = 20; // what the system itself keeps is there after these

void Signal()
{
    const HANDLE event = OpenEventW(EVENT_ALL_ACCESS, FALSE, L"ApplySchemeEvent");
    if (event != nullptr)
    {
        SetEvent(event);
        CloseHandle(event);
    }
}

bool IsListenedFor()
{
    const HANDLE event = OpenEventW(EVENT_ALL_ACCESS, FALSE, L"ApplySchemeEvent");
    CloseHandle(event);
    return event != nullptr;
}

// True as soon as the library is gone. A thread that nobody waits for takes it along when it ends.
bool WaitUntilUnloaded()
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (GetModuleHandleW(L"pm_limited_support.dll") != nullptr)
    {
        if (std::chrono::steady_clock::now() > end)
        {
            return false;
        }
        Sleep(1);
    }
    return true;
}

class LifeCycle : public AcceptanceTest
{
protected:
    Host host;
};

TEST_F(LifeCycle, TheTextsAreThereBeforeTheStartAndStayWhereTheyAre)
{
    host.Unload();
    ASSERT_TRUE(host.Load());
    EXPECT_STREQ("Kelvo Power Manager", host.ModuleId());
    EXPECT_STREQ("Kelvo Power Management Library", host.Description());
    EXPECT_EQ(host.ModuleId(), host.ModuleId());
    EXPECT_EQ(0, host.Uninitialize());
    EXPECT_FALSE(IsListenedFor());
}

TEST_F(LifeCycle, StopTwiceAndStartAgain)
{
    EXPECT_TRUE(IsListenedFor());
    EXPECT_EQ(0, host.Uninitialize());
    EXPECT_FALSE(IsListenedFor());
    EXPECT_EQ(0, host.Uninitialize());
    EXPECT_EQ(0, host.Initialize());
    Signal();
    EXPECT_TRUE(host.WaitForEvent().has_value());
}

TEST_F(LifeCycle, ASecondStartTakesTheNewHostAndLeavesOneThread)
{
    static int count;
    count = 0;
    static HANDLE arrived = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    PM_HostInterface other{0, [](const char*, const char*, const void*, DWORD)
                           {
                               ++count;
                               SetEvent(arrived);
                               return 0;
                           }};
    EXPECT_EQ(0, host.Initialize(&other));
    EXPECT_EQ(0, host.Initialize(&other));
    Signal();
    WaitForSingleObject(arrived, 10'000);
    host.Uninitialize();
    EXPECT_EQ(1, count);
    EXPECT_TRUE(host.TakeEvents().empty());
}

TEST_F(LifeCycle, AHostWithoutAFunctionIsTakenAndEventsAreDropped)
{
    PM_HostInterface empty{};
    for (PM_HostInterface* const none : {static_cast<PM_HostInterface*>(nullptr), &empty})
    {
        EXPECT_EQ(0, host.Initialize(none));
        Signal();
        EXPECT_EQ(0, host.Uninitialize());
    }
}

TEST_F(LifeCycle, RequestsWorkBeforeTheStart)
{
    host.Uninitialize();
    EXPECT_EQ(TRX_OPERATION_REFUSED, host.Send("GET_LUMS_LEVEL").code);
    EXPECT_EQ(TRX_UNKNOWN_COMMAND, host.Send("NO_SUCH").code);
}

TEST_F(LifeCycle, ANotifiedHostMayStopThePlugIn)
{
    host.onEvent = [&](const Event&) { EXPECT_EQ(0, host.Uninitialize()); };
    Signal();
    EXPECT_TRUE(host.WaitForEvent().has_value());
    EXPECT_FALSE(IsListenedFor());
    host.Unload();
    EXPECT_TRUE(WaitUntilUnloaded());
    EXPECT_TRUE(host.TakeEvents().empty());
}

// The first thread may still be on its way out when the second one starts.
TEST_F(LifeCycle, AHostThatStoppedWhenNotifiedMayStartAtOnce)
{
    bool first = true;
    host.onEvent = [&](const Event&)
    {
        if (std::exchange(first, false))
        {
            EXPECT_EQ(0, host.Uninitialize());
            EXPECT_EQ(0, host.Initialize());
        }
    };
    for (int round = 0; round < 2; ++round)
    {
        Signal();
        EXPECT_TRUE(host.WaitForEvent().has_value());
    }
    host.Unload();
    EXPECT_TRUE(WaitUntilUnloaded());
    EXPECT_TRUE(host.TakeEvents().empty());
}

TEST_F(LifeCycle, ANotifiedHostMayUnloadThePlugIn)
{
    host.onEvent = [&](const Event&) { host.Unload(); };
    Signal();
    ASSERT_TRUE(host.WaitForEvent().has_value());
    host.onEvent = nullptr;
    EXPECT_TRUE(WaitUntilUnloaded());
    ASSERT_TRUE(host.Load());
    EXPECT_EQ(0, host.Initialize());
}

// The thread keeps the library for as long as it runs in it.
TEST_F(LifeCycle, UnloadingWithoutAStopTakesNothingFromUnderTheThread)
{
    const HMODULE library = GetModuleHandleW(L"pm_limited_support.dll");
    ASSERT_NE(nullptr, library);
    FreeLibrary(library);
    Signal();
    EXPECT_TRUE(host.WaitForEvent().has_value());
    ASSERT_TRUE(host.Load());
}

TEST_F(LifeCycle, ManyCyclesLeaveNothing)
{
    host.Unload();
    environment::Holdings held;
    for (int cycle = 0; cycle < kManyCycles; ++cycle)
    {
        ASSERT_TRUE(host.Load()) << cycle;
        ASSERT_EQ(0, host.Initialize()) << cycle;
        ASSERT_EQ(0, host.Send("GET_ACTIVE_SCHEME").code) << cycle;
        if (cycle % 10 == 0)
        {
            Signal();
        }
        host.Unload();
        host.TakeEvents();
        ASSERT_FALSE(IsListenedFor()) << cycle;
        if (cycle == kWarmUpCycles)
        {
            held = environment::Held();
        }
    }
    const environment::Holdings now = environment::Held();
    EXPECT_EQ(held.handles, now.handles);
    EXPECT_EQ(held.heapBytes, now.heapBytes);
}

} // namespace
