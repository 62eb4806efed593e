// tests/acceptance/ThreadsTest.cpp
//
// Several threads that call the plug-in at once, and hosts that call it from within their own event function.

#include "acceptance/AcceptanceTest.h"
#include "acceptance/HostThread.h"

#include <atomic>
#include <utility>

namespace
{

// The one request that sends an event on a machine without any of the hardware.
constexpr const char* kRequestWithEvent = "SET_CPU_SPEED";

bool IsFromRequest(const Event& event)
{
    return event.name == "CPU_SPEED_CHANGED";
}

class Threads : public AcceptanceTest
{
protected:
    Host host;
};

// Events are sent under the lock of their request, so no two requests' events are under way at once.
TEST_F(Threads, RequestsRunOneAfterTheOther)
{
    std::atomic<int> inside = 0;
    std::atomic<int> overlaps = 0;
    host.onEvent = [&](const Event& event)
    {
        if (IsFromRequest(event))
        {
            overlaps += ++inside > 1 ? 1 : 0;
            std::this_thread::yield();
            --inside;
        }
    };
    const auto work = [&](LONG speed)
    {
        for (int round = 0; round < 10; ++round)
        {
            EXPECT_EQ(0, host.Send(kRequestWithEvent, Payload(speed)).code);
            EXPECT_EQ(0, host.Send("GET_ACTIVE_SCHEME").code);
        }
    };
    HostThread first([&] { work(1); });
    HostThread second([&] { work(3); });
    SignalApplied();
    first.Join();
    second.Join();
    EXPECT_EQ(0, overlaps);
    EXPECT_TRUE(host.WaitForEvent().has_value());
}

// A request and one from within its event release the lock entirely while the plug-in stops: here the
// notification thread waits for it.
TEST_F(Threads, ARequestsEventMayStopThePlugIn)
{
    std::atomic<bool> isNotified = false;
    LONG innerCode = -1;
    bool isNested = false;
    host.onEvent = [&](const Event& event)
    {
        if (!IsFromRequest(event))
        {
            isNotified = true;
            innerCode = host.Send("GET_CPU_SPEED").code;
        }
        else if (!std::exchange(isNested, true))
        {
            EXPECT_EQ(0, host.Send(kRequestWithEvent, Payload(LONG{3})).code);
        }
        else
        {
            SignalApplied();
            WaitUntil([&] { return isNotified.load(); });
            EXPECT_EQ(0, host.Uninitialize());
            EXPECT_EQ(0, innerCode) << "the thread has ended, so its request has too";
        }
    };
    EXPECT_EQ(0, host.Send(kRequestWithEvent, Payload(LONG{2})).code);
    HostThread other([&] { EXPECT_EQ(0, host.Send("GET_CPU_SPEED").code) << "the lock is free again"; });
}

// Once the plug-in is stopped, no event of a request arrives any more.
TEST_F(Threads, AStopWaitsForTheRequestsThatRun)
{
    std::atomic<bool> isInside = false;
    std::atomic<bool> isStopped = false;
    host.onEvent = [&](const Event& event)
    {
        if (IsFromRequest(event))
        {
            isInside = true;
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            EXPECT_FALSE(isStopped);
        }
    };
    HostThread requester([&] { host.Send(kRequestWithEvent, Payload(LONG{2})); });
    WaitUntil([&] { return isInside.load(); });
    host.Uninitialize();
    isStopped = true;
    requester.Join();
}

// Also the threads of starts that the host stopped from within an event, and whoever stopped a start before.
TEST_F(Threads, EachStopWaitsForAllNotificationThreads)
{
    for (const int starts : {0, 1, 2})
    {
        std::atomic<int> inside = 0;
        std::atomic<int> over = 0;
        host.Initialize();
        host.onEvent = [&](const Event&)
        {
            // Each but the last thread stops its own start and begins the next one.
            if (inside < starts)
            {
                EXPECT_EQ(0, host.Uninitialize());
                EXPECT_EQ(0, host.Initialize());
            }
            const int earlier = inside++;
            std::this_thread::sleep_for(std::chrono::milliseconds(50 * (starts + 1 - earlier)));
            ++over;
        };
        for (int thread = 0; thread <= starts; ++thread)
        {
            SignalApplied();
            WaitUntil([&] { return inside == thread + 1; });
        }
        const auto stop = [&]
        {
            host.Uninitialize();
            EXPECT_EQ(starts + 1, over);
        };
        HostThread first(stop);
        HostThread second(stop);
    }
}

// Two threads of the plug-in are in the host's function, and each waits for the other.
TEST_F(Threads, AStopOnANotificationThreadWaitsForNone)
{
    std::atomic<int> inside = 0;
    std::atomic<bool> isStopped = false;
    host.onEvent = [&](const Event&)
    {
        if (++inside == 1)
        {
            EXPECT_EQ(0, host.Uninitialize());
            EXPECT_EQ(0, host.Initialize());
            SignalApplied();
            WaitUntil([&] { return inside == 2; });
            EXPECT_EQ(0, host.Uninitialize());
            SignalApplied(); // comes too late for the other thread, too
            isStopped = true;
        }
        else
        {
            WaitUntil([&] { return isStopped.load(); });
        }
    };
    EXPECT_TRUE(SignalArrives(host));
    host.Uninitialize();
    EXPECT_EQ(2, inside);
}

TEST_F(Threads, AStopDoesntWaitForAStartThatFollowsIt)
{
    std::atomic<int> inside = 0;
    std::atomic<bool> goesOn = false;
    host.onEvent = [&](const Event&)
    {
        if (++inside == 1)
        {
            WaitUntil([&] { return goesOn.load(); });
        }
    };
    SignalApplied();
    WaitUntil([&] { return inside == 1; });
    HostThread stopper([&] { host.Uninitialize(); });
    WaitUntil([&] { return host.Initialize() == 0 && SignalApplied() && inside > 1; });
    goesOn = true;
    stopper.Join();
    const int before = inside;
    EXPECT_TRUE(SignalApplied());
    WaitUntil([&] { return inside > before; });
}

} // namespace
