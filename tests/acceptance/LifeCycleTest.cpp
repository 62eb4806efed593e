// tests/acceptance/LifeCycleTest.cpp
//
// Load, start, stop, unload, in every order that a host may choose, and the event of an applied scheme:
// another party signals, the host gets the event.

#include "acceptance/AcceptanceTest.h"

#include <algorithm>

namespace
{

constexpr const char* kKey = "Software\\Kelvo\\ORVA";
constexpr const char* kValue = "CurrentPwrSchemeID";

constexpr int kManyCycles = 200;
constexpr int kWarmUpCycles = 20; // what the system itself keeps is there after these

class LifeCycle : public AcceptanceTest
{
protected:
    // A thread that nobody waits for unloads the library when it ends.
    static void WaitUntilUnloaded()
    {
        WaitUntil([] { return GetModuleHandleW(L"pm_limited_support.dll") == nullptr; });
    }

    // The scheme of the event that a signal gives.
    LONG SignalledScheme()
    {
        EXPECT_TRUE(SignalApplied());
        const std::optional<Event> event = host.WaitForEvent();
        return event.has_value() ? event->Number() : -100;
    }

    // The host's thread and the plug-in's each log a line of a start at the same time. Logs have no lock, so
    // now and then one line overwrites the other; the start is then repeated. True when the log holds both
    // lines, followed by those of one signal.
    bool StartUntilBothLinesAreWhole()
    {
        const auto isWhole = []
        {
            const std::vector<std::string> lines = seeding::LogLines("trxpm.log");
            return std::count(lines.begin(), lines.end(), "Create Event APPLY_SCHEME_EVENT") == 1 &&
                   std::count(lines.begin(), lines.end(), "enter PMNotifyHandler") == 1;
        };
        for (int attempt = 0; attempt < 20 && !isWhole(); ++attempt)
        {
            host.Uninitialize();
            seeding::Remove("C:\\temp1234567890\\trxpm.log");
            EXPECT_EQ(0, host.Initialize());
            EXPECT_EQ(3, SignalledScheme());
        }
        return isWhole();
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
    EXPECT_TRUE(SignalArrives(host));
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
        EXPECT_TRUE(SignalArrives(host));
    }
    host.Unload();
    WaitUntilUnloaded();
    EXPECT_TRUE(host.TakeEvents().empty());
}

TEST_F(LifeCycle, ANotifiedHostMayUnloadThePlugIn)
{
    host.onEvent = [&](const Event&) { host.Unload(); };
    ASSERT_TRUE(SignalArrives(host));
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
    EXPECT_TRUE(SignalArrives(host));
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
        host.Send("GET_LCD_BRIGHTNESS"); // opens the driver where there is one
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

TEST_F(LifeCycle, OneSignalGivesOneEvent)
{
    const HANDLE applied = OpenEventW(EVENT_ALL_ACCESS, FALSE, L"ApplySchemeEvent");
    for (const DWORD scheme : {3U, 0U, 0xFFFFFFFFU})
    {
        ASSERT_TRUE(seeding::SetNumber(HKEY_LOCAL_MACHINE, kKey, kValue, scheme));
        EXPECT_TRUE(SignalApplied());
        const std::optional<Event> event = host.WaitForEvent();
        ASSERT_TRUE(event.has_value());
        EXPECT_EQ("Kelvo Power Manager", event->module);
        EXPECT_EQ("SCHEME_APPLIED", event->name);
        EXPECT_EQ(static_cast<LONG>(scheme), event->Number());
        EXPECT_NE(GetCurrentThreadId(), event->thread);
        EXPECT_EQ(DWORD{WAIT_TIMEOUT}, WaitForSingleObject(applied, 0));
    }
    CloseHandle(applied);
    host.Uninitialize();
    EXPECT_TRUE(host.TakeEvents().empty());
}

TEST_F(LifeCycle, EachStartAndEachRoundAreLogged)
{
    ASSERT_TRUE(seeding::SetNumber(HKEY_LOCAL_MACHINE, kKey, kValue, 3));
    seeding::SwitchLogsOn();
    ASSERT_TRUE(StartUntilBothLinesAreWhole());
    ASSERT_TRUE(seeding::RemoveValue(HKEY_LOCAL_MACHINE, kKey, kValue));
    EXPECT_EQ(0, SignalledScheme());
    ASSERT_EQ(ERROR_SUCCESS, RegDeleteKeyW(HKEY_LOCAL_MACHINE, seeding::Wide(kKey).data()));
    EXPECT_EQ(0, SignalledScheme());
    EXPECT_EQ(0, host.Initialize());
    host.Uninitialize();
    std::vector<std::string> lines = seeding::LogLines("trxpm.log");
    std::sort(lines.begin(), lines.end()); // a start's two lines come in either order
    EXPECT_EQ((std::vector<std::string>{
                  "Create Event APPLY_SCHEME_EVENT", "Create Event APPLY_SCHEME_EVENT",
                  "PMNotifyHandler: Query CurrentSchemeID at 2 failed", "PMNotifyHandler: open key failed 2 ",
                  "Wait PM_APPLY_SCHEME and send back event", "Wait PM_APPLY_SCHEME and send back event",
                  "Wait PM_APPLY_SCHEME and send back event", "enter PMNotifyHandler",
                  "return PMNotifyHandler", "send event PM_SCHEME_APPLIED back with 0",
                  "send event PM_SCHEME_APPLIED back with 0", "send event PM_SCHEME_APPLIED back with 3"}),
              lines);
}

// A signal that arrives while the host handles the last one starts another round.
TEST_F(LifeCycle, ASignalDuringAnEventIsntLost)
{
    ASSERT_TRUE(seeding::SetNumber(HKEY_LOCAL_MACHINE, kKey, kValue, 3));
    int rounds = 0;
    host.onEvent = [&](const Event&)
    {
        if (++rounds == 1)
        {
            EXPECT_TRUE(seeding::SetNumber(HKEY_LOCAL_MACHINE, kKey, kValue, 4));
            EXPECT_TRUE(SignalApplied());
        }
    };
    EXPECT_TRUE(SignalApplied());
    EXPECT_EQ(3, host.WaitForEvent()->Number());
    EXPECT_EQ(4, host.WaitForEvent()->Number());
}

} // namespace
