// tests/acceptance/LifeCycleTest.cpp
//
// Load, start, stop, unload, in every order that a host may choose.

#include "acceptance/AcceptanceTest.h"

namespace
{

constexpr int kManyCycles = 1000;
constexpr int kWarmUpCycles = 20; // what the system itself keeps is there after these

class LifeCycle : public AcceptanceTest
{
protected:
    // A thread that nobody waits for takes the library along when it ends.
    static void WaitUntilUnloaded()
    {
        WaitUntil([] { return GetModuleHandleW(L"pm_limited_support.dll") == nullptr; });
    }

    Host host;
};

// The library is loaded anew here: nothing is left of the start that the host has made.
TEST_F(LifeCycle, WhatWorksBeforeTheFirstStart)
{
    host.Unload();
    ASSERT_EQ(nullptr, GetModuleHandleW(L"pm_limited_support.dll"));
    ASSERT_TRUE(host.Load());
    EXPECT_STREQ("Kelvo Power Manager", host.ModuleId());
    EXPECT_STREQ("Kelvo Power Management Library", host.Description());
    EXPECT_EQ(host.ModuleId(), host.ModuleId());
    EXPECT_EQ(TRX_OPERATION_REFUSED, host.Send("GET_LUMS_LEVEL").code);
    EXPECT_EQ(TRX_UNKNOWN_COMMAND, host.Send("NO_SUCH").code);
    EXPECT_EQ(0, host.Send("SET_CPU_SPEED", Payload(LONG{2})).code);
    EXPECT_TRUE(host.TakeEvents().empty());
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
    SignalApplied();
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
    SignalApplied();
    WaitForSingleObject(arrived, 10'000);
    host.Uninitialize();
    EXPECT_EQ(1, count);
    EXPECT_TRUE(host.TakeEvents().empty());
}

// The request sends an event whatever hardware there is.
TEST_F(LifeCycle, AHostWithoutAFunctionIsTakenAndEventsAreDropped)
{
    PM_HostInterface empty{};
    for (PM_HostInterface* const none : {static_cast<PM_HostInterface*>(nullptr), &empty})
    {
        EXPECT_EQ(0, host.Initialize(none));
        EXPECT_EQ(0, host.Send("SET_CPU_SPEED", Payload(LONG{2})).code);
    }
    EXPECT_TRUE(host.TakeEvents().empty());
}

// Threads of starts that were stopped at once may not even have begun when the last one is there.
TEST_F(LifeCycle, AHostThatStoppedWhenNotifiedMayStartAtOnceAndAgain)
{
    bool first = true;
    host.onEvent = [&](const Event&)
    {
        for (int start = 0; first && start < 5; ++start)
        {
            EXPECT_EQ(0, host.Uninitialize());
            EXPECT_EQ(0, host.Initialize());
        }
        first = false;
    };
    for (int round = 0; round < 2; ++round)
    {
        SignalApplied();
        EXPECT_TRUE(host.WaitForEvent().has_value());
    }
    host.Unload();
    WaitUntilUnloaded();
    EXPECT_TRUE(host.TakeEvents().empty());
}

TEST_F(LifeCycle, ANotifiedHostMayUnloadThePlugIn)
{
    host.onEvent = [&](const Event&) { host.Unload(); };
    SignalApplied();
    ASSERT_TRUE(host.WaitForEvent().has_value());
    host.onEvent = nullptr;
    WaitUntilUnloaded();
    ASSERT_TRUE(host.Load());
    EXPECT_EQ(0, host.Initialize());
}

// The thread keeps the library for as long as it runs in it.
TEST_F(LifeCycle, UnloadingWithoutAStopTakesNothingFromUnderTheThread)
{
    const HMODULE library = GetModuleHandleW(L"pm_limited_support.dll");
    ASSERT_NE(nullptr, library);
    FreeLibrary(library);
    SignalApplied();
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
            SignalApplied();
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
