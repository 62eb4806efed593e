// tests/acceptance/ThreadsTest.cpp
//
// Several threads at the plug-in's door, and hosts that call it from within their own event function.

#include "acceptance/AcceptanceTest.h"
#include "plugin/WireRecords.h"

#include <atomic>
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

bool IsFromRequest(const Event& event)
{
    return event.name != "SCHEME_APPLIED";
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
    const auto work = [&](LONG level)
    {
        for (int round = 0; round < 10; ++round)
        {
            EXPECT_EQ(0, host.Send("SET_LCD_BRIGHTNESS", level).code);
            EXPECT_EQ(0, host.Send("GET_ACTIVE_SCHEME").code);
        }
    };
    std::thread first(work, 1);
    std::thread second(work, 6);
    SignalApplied();
    first.join();
    second.join();
    EXPECT_EQ(0, overlaps);
    EXPECT_TRUE(host.WaitForEvent().has_value());
}

TEST_F(Threads, AnEventMaySendAnotherRequest)
{
    std::vector<LONG> codes;
    host.onEvent = [&](const Event& event)
    {
        if (event.name == "LCD_BRIGHTNESS_CHANGED")
        {
            codes.push_back(host.Send("SET_BLUETOOTH_STATUS", LONG{0}).code);
            codes.push_back(host.Send("GET_ACTIVE_SCHEME").code);
        }
    };
    EXPECT_EQ(0, host.Send("SET_LCD_BRIGHTNESS", LONG{2}).code);
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
            innerCode = host.Send("SET_BLUETOOTH_STATUS", LONG{0}).code;
        }
        else if (event.name == "LCD_BRIGHTNESS_CHANGED")
        {
            SignalApplied();
            while (!isNotified)
            {
                std::this_thread::yield();
            }
            EXPECT_EQ(0, host.Uninitialize());
            EXPECT_EQ(0, innerCode) << "the thread has ended, so its request has too";
        }
    };
    EXPECT_EQ(0, host.Send("SET_LCD_BRIGHTNESS", LONG{2}).code);
    EXPECT_EQ(0, host.Send("GET_LCD_BRIGHTNESS").code);
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
    std::thread requester([&] { host.Send("SET_LCD_BRIGHTNESS", LONG{2}); });
    while (!isInside)
    {
        std::this_thread::yield();
    }
    host.Uninitialize();
    isStopped = true;
    requester.join();
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
    while (!isInside)
    {
        std::this_thread::yield();
    }
    const auto stop = [&]
    {
        host.Uninitialize();
        EXPECT_TRUE(isOver);
    };
    std::thread first(stop);
    std::thread second(stop);
    first.join();
    second.join();
}

TEST_F(Threads, StartsAndStopsMayMeet)
{
    const auto work = [&]
    {
        for (int round = 0; round < 50; ++round)
        {
            EXPECT_EQ(0, host.Initialize());
            EXPECT_EQ(0, host.Uninitialize());
        }
    };
    std::thread first(work);
    std::thread second(work);
    first.join();
    second.join();
    host.Uninitialize();
    EXPECT_EQ(nullptr, OpenEventW(EVENT_ALL_ACCESS, FALSE, L"ApplySchemeEvent"));
}

} // namespace
