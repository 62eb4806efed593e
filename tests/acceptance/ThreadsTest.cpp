// tests/acceptance/ThreadsTest.cpp
//
// Several threads at the plug-in's door, and hosts that call it from within their own event function.

#include "acceptance/AcceptanceTest.h"
#include "acceptance/HostThread.h"

#include <atomic>
#include <chrono>
#include <thread>

namespace
{

void SignalApplied()
{
    const HANDLE event = OpenEventW(EVENT_ALL_ACCESS, FALSE, L"ApplySchemeEvent");
    ASSERT_NE(nullptr, event);
    SetEvent(event);
    CloseHandle(event);
}

// The one request that sends an event on a machine without any of the hardware.
constexpr const char* kRequestWithEvent = "SET_CPU_SPEED";

bool IsFromRequest(const Event& event)
{
    return event.name == "CPU_SPEED_CHANGED";
}

// What never comes fails the test and doesn't hold it up for good.
void WaitFor(const std::atomic<bool>& flag)
{
    for (int round = 0; !flag && round < 10'000; ++round)
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    EXPECT_TRUE(flag);
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
            EXPECT_EQ(0, host.Send(kRequestWithEvent, speed).code);
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

TEST_F(Threads, AnEventMaySendAnotherRequest)
{
    std::vector<LONG> codes;
    host.onEvent = [&](const Event& event)
    {
        if (IsFromRequest(event))
        {
            codes.push_back(host.Send("GET_CPU_SPEED").code);
            codes.push_back(host.Send("GET_ACTIVE_SCHEME").code);
        }
    };
    EXPECT_EQ(0, host.Send(kRequestWithEvent, LONG{2}).code);
    EXPECT_EQ((std::vector<LONG>{0, 0}), codes);
}

// The request gives its lock up whole while the plug-in stops: here the notification thread waits for it.
TEST_F(Threads, ARequestsEventMayStopThePlugIn)
{
    std::atomic<bool> isNotified = false;
    LONG innerCode = -1;
    host.onEvent = [&](const Event& event)
    {
        if (!IsFromRequest(event))
        {
            isNotified = true;
            innerCode = host.Send("GET_CPU_SPEED").code;
        }
        else
        {
            SignalApplied();
            WaitFor(isNotified);
            EXPECT_EQ(0, host.Uninitialize());
            EXPECT_EQ(0, innerCode) << "the thread has ended, so its request has too";
        }
    };
    EXPECT_EQ(0, host.Send(kRequestWithEvent, LONG{2}).code);
    EXPECT_EQ(0, host.Send("GET_CPU_SPEED").code);
}

// Whoever stops the plug-in meets no event of a request any more when that has returned.
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
    HostThread requester([&] { host.Send(kRequestWithEvent, LONG{2}); });
    WaitFor(isInside);
    host.Uninitialize();
    isStopped = true;
    requester.Join();
}

// The second of two callers finds nothing left to stop, and still returns only when the thread has ended.
TEST_F(Threads, EachOfTwoStopsWaitsForTheNotificationThread)
{
    std::atomic<bool> isInside = false;
    std::atomic<bool> isOver = false;
    host.onEvent = [&](const Event&)
    {
        isInside = true;
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        isOver = true;
    };
    SignalApplied();
    WaitFor(isInside);
    const auto stop = [&]
    {
        host.Uninitialize();
        EXPECT_TRUE(isOver);
    };
    HostThread first(stop);
    HostThread second(stop);
    first.Join();
    second.Join();
}

} // namespace
