// tests/acceptance/NotificationTest.cpp
//
// The event of an applied scheme: another party signals, the host is told.

#include "acceptance/AcceptanceTest.h"

#include <algorithm>

namespace
{

constexpr const char* kKey = "Software\\Kelvo\\ORVA";
constexpr const char* kValue = "CurrentPwrSchemeID";

bool IsSignalled()
{
    const HANDLE event = OpenEventW(EVENT_ALL_ACCESS, FALSE, L"ApplySchemeEvent");
    const bool signalled = WaitForSingleObject(event, 0) == WAIT_OBJECT_0;
    CloseHandle(event);
    return signalled;
}

class Notification : public AcceptanceTest
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(seeding::SetNumber(HKEY_LOCAL_MACHINE, kKey, kValue, 3));
    }

    // The scheme of the event that a signal gives.
    LONG SignalledScheme()
    {
        EXPECT_TRUE(SignalApplied());
        const std::optional<Event> event = host.WaitForEvent();
        return event.has_value() ? event->Number() : -100;
    }

    Host host;
};

TEST_F(Notification, OneSignalGivesOneEvent)
{
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
        EXPECT_FALSE(IsSignalled());
    }
    host.Uninitialize();
    EXPECT_TRUE(host.TakeEvents().empty());
}

TEST_F(Notification, TheLogTellsOfEachStartAndOfEachRound)
{
    host.Uninitialize();
    seeding::SwitchLogsOn();
    EXPECT_EQ(0, host.Initialize());
    EXPECT_EQ(3, SignalledScheme());
    ASSERT_TRUE(seeding::RemoveValue(HKEY_LOCAL_MACHINE, kKey, kValue));
    EXPECT_EQ(0, SignalledScheme());
    ASSERT_EQ(ERROR_SUCCESS, RegDeleteKeyW(HKEY_LOCAL_MACHINE, seeding::Wide(kKey).data()));
    EXPECT_EQ(0, SignalledScheme());
    EXPECT_EQ(0, host.Initialize());
    host.Uninitialize();
    std::vector<std::string> lines = seeding::LogLines("trxpm.log");
    std::sort(lines.begin(), lines.end()); // the host's thread and the plug-in's write at once
    EXPECT_EQ((std::vector<std::string>{
                  "Create Event APPLY_SCHEME_EVENT", "Create Event APPLY_SCHEME_EVENT",
                  "PMNotifyHandler: Query CurrentSchemeID at 2 failed", "PMNotifyHandler: open key failed 2 ",
                  "Wait PM_APPLY_SCHEME and send back event", "Wait PM_APPLY_SCHEME and send back event",
                  "Wait PM_APPLY_SCHEME and send back event", "enter PMNotifyHandler",
                  "return PMNotifyHandler", "send event PM_SCHEME_APPLIED back with 0",
                  "send event PM_SCHEME_APPLIED back with 0", "send event PM_SCHEME_APPLIED back with 3"}),
              lines);
}

// A signal that comes while the host is being told of the last one makes another round.
TEST_F(Notification, ASignalDuringAnEventIsntLost)
{
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
