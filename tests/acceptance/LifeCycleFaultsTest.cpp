// tests/acceptance/LifeCycleFaultsTest.cpp
//
// Start, stop and notification when a Windows call fails, and the order of their calls.

#include "acceptance/AcceptanceTest.h"
#include "base/Trace.h"

#include <utility>

using simulated::Faults;
using simulated::Leaks;
using simulated::Trace;

namespace
{

class LifeCycleFaults : public AcceptanceTest
{
protected:
    Host host;
};

TEST_F(LifeCycleFaults, AStartThatFailsLeavesNothing)
{
    host.Uninitialize();
    seeding::SwitchLogsOn();
    const unsigned held = Leaks::Count();
    for (const auto& [function, nth] : {std::pair("HeapAlloc", 1U),
                                        {"CreateEventW", 1U},
                                        {"CreateEventW", 2U},
                                        {"GetModuleHandleExW", 1U},
                                        {"CreateThread", 1U}})
    {
        Faults::Inject(function, nth, ERROR_NOT_ENOUGH_MEMORY);
        EXPECT_EQ(6, host.Initialize()) << function << ' ' << nth;
        EXPECT_TRUE(Faults::AllHit()) << function << ' ' << nth;
        EXPECT_EQ(held, Leaks::Count()) << function << ' ' << nth << '\n' << Leaks::Describe();
        EXPECT_FALSE(IsListenedFor()) << function << ' ' << nth;
    }
    EXPECT_TRUE(seeding::LogLines("trxpm.log").empty());
    EXPECT_EQ(0, host.Initialize());
    EXPECT_TRUE(SignalArrives(host));
    host.Unload();
    EXPECT_EQ(nullptr, GetModuleHandleW(L"pm_limited_support.dll")) << "a failed start took a reference";
}

TEST_F(LifeCycleFaults, AWaitThatFailsEndsTheStart)
{
    Faults::Inject("WaitForMultipleObjects", 1, ERROR_INVALID_HANDLE);
    SignalApplied(); // the thread may be in its first wait already
    WaitUntil([] { return !IsListenedFor(); });
    host.TakeEvents();
    EXPECT_EQ(0, host.Initialize());
    EXPECT_TRUE(SignalArrives(host));
}

// Waiting for a thread that wasn't asked to end would never return.
TEST_F(LifeCycleFaults, AThreadThatCantBeStoppedGoesOnListening)
{
    Faults::Inject("SetEvent", 1, ERROR_INVALID_HANDLE);
    EXPECT_EQ(0, host.Uninitialize());
    EXPECT_TRUE(Faults::AllHit());
    EXPECT_TRUE(SignalArrives(host));
    EXPECT_EQ(0, host.Uninitialize());
    EXPECT_FALSE(IsListenedFor());
}

TEST_F(LifeCycleFaults, AThreadNeedsNoEventToStopItself)
{
    bool isFirst = true;
    host.onEvent = [&](const Event&)
    {
        if (std::exchange(isFirst, false))
        {
            Faults::Inject("SetEvent", 1, ERROR_INVALID_HANDLE);
            EXPECT_EQ(0, host.Uninitialize());
            EXPECT_TRUE(Faults::AllHit());
            EXPECT_EQ(0, host.Initialize());
        }
    };
    for (int start = 0; start < 2; ++start)
    {
        EXPECT_TRUE(SignalArrives(host));
    }
}

// A user's first request looks the user up; none of its calls may leave half of an entry.
TEST_F(LifeCycleFaults, AFailedLookupOfAUserIsMadeAgain)
{
    host.user = environment::OtherUserName();
    unsigned nth = 1;
    for (bool wasHit = true; wasHit && nth < 100; ++nth)
    {
        host.Unload();
        ASSERT_TRUE(host.Load());
        Faults::Inject("*", nth, ERROR_GEN_FAILURE);
        const LONG code = host.Send("INIT_CFG_FILE").code;
        wasHit = Faults::AllHit();
        Faults::Clear();
        EXPECT_TRUE(code == 0 || code == 6) << nth;
        EXPECT_EQ(0, host.Send("INIT_CFG_FILE").code) << nth;
    }
    EXPECT_LT(10U, nth);
    EXPECT_GT(100U, nth);
}

// A host that restarts the plug-in from within its event never calls a stop that waits, so each start takes
// away what the ended ones left.
TEST_F(LifeCycleFaults, RestartsFromWithinAnEventDontPileUp)
{
    constexpr unsigned kRestarts = 20;
    constexpr unsigned kNotYetEnded = 4;
    const unsigned running = Leaks::Count();
    host.onEvent = [this](const Event&)
    {
        EXPECT_EQ(0, host.Uninitialize());
        EXPECT_EQ(0, host.Initialize());
    };
    for (unsigned restart = 0; restart < kRestarts; ++restart)
    {
        ASSERT_TRUE(SignalArrives(host));
    }
    EXPECT_LE(Leaks::Count(), kNotYetEnded * running) << Leaks::Describe();
    host.Uninitialize();
    EXPECT_EQ(0U, Leaks::Count()) << Leaks::Describe();
}

// A signal that arrives after the reset starts another round; an earlier one is covered by the number that is
// read next.
TEST_F(LifeCycleFaults, TheEventIsResetBeforeTheNumberIsRead)
{
    ASSERT_TRUE(seeding::SetNumber(HKEY_LOCAL_MACHINE, "Software\\Kelvo\\ORVA", "CurrentPwrSchemeID", 3));
    Trace::Clear();
    SignalApplied();
    EXPECT_EQ(3, host.WaitForEvent().value().Number());
    host.Uninitialize();
    std::vector<std::string> order;
    for (const simulated::TracedCall& call : Trace::Calls())
    {
        if (call.function == "ResetEvent" || call.function.starts_with("Reg"))
        {
            order.push_back(call.function);
        }
    }
    EXPECT_EQ((std::vector<std::string>{"ResetEvent", "RegOpenKeyExW", "RegQueryValueExW", "RegCloseKey"}),
              order);
}

} // namespace
