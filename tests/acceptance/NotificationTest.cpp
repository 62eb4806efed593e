// tests/acceptance/NotificationTest.cpp
//
// The event of an applied scheme: another party signals, the host is told.

#include "acceptance/AcceptanceTest.h"

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
        seeding::SwitchLogsOn();
        seeding::SetNumber(HKEY_LOCAL_MACHINE, kKey, kValue, 3);
    }

    bool LogHolds(const std::string& line) const
    {
        const std::vector<std::string> lines = seeding::LogLines("trxpm.log");
        return std::find(lines.begin(), lines.end(), line) != lines.end();
    }

    Host host;
};

TEST_F(Notification, OneSignalGivesOneEvent)
{
    for (const DWORD scheme : {3U, 0U, 0xFFFFFFFFU})
    {
        seeding::SetNumber(HKEY_LOCAL_MACHINE, kKey, kValue, scheme);
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

TEST_F(Notification, WithoutAValueTheNumberIsZero)
{
    seeding::RemoveValue(HKEY_LOCAL_MACHINE, kKey, kValue);
    EXPECT_TRUE(SignalApplied());
    EXPECT_EQ(0, host.WaitForEvent()->Number());
    EXPECT_TRUE(LogHolds("PMNotifyHandler: Query CurrentSchemeID at 2 failed"));

    ASSERT_EQ(ERROR_SUCCESS, RegDeleteKeyW(HKEY_LOCAL_MACHINE, seeding::Wide(kKey).data()));
    EXPECT_TRUE(SignalApplied());
    EXPECT_EQ(0, host.WaitForEvent()->Number());
    EXPECT_TRUE(LogHolds("PMNotifyHandler: open key failed 2 "));
}

TEST_F(Notification, TheThreadSaysWhatItDoes)
{
    EXPECT_TRUE(SignalApplied());
    ASSERT_TRUE(host.WaitForEvent().has_value());
    host.Uninitialize();
    // The first line came before the log was switched on, or after it.
    for (const char* const line : {"Wait PM_APPLY_SCHEME and send back event",
                                   "send event PM_SCHEME_APPLIED back with 3", "return PMNotifyHandler"})
    {
        EXPECT_TRUE(LogHolds(line)) << line;
    }
}

// A signal that comes while the host is being told of the last one makes another round.
TEST_F(Notification, ASignalDuringAnEventIsntLost)
{
    int rounds = 0;
    host.onEvent = [&](const Event&)
    {
        if (++rounds == 1)
        {
            seeding::SetNumber(HKEY_LOCAL_MACHINE, kKey, kValue, 4);
            EXPECT_TRUE(SignalApplied());
        }
    };
    EXPECT_TRUE(SignalApplied());
    EXPECT_EQ(3, host.WaitForEvent()->Number());
    EXPECT_EQ(4, host.WaitForEvent()->Number());
}

// A request may come from within an event, on the plug-in's own thread.
TEST_F(Notification, AnEventMaySendARequest)
{
    LONG code = -1;
    host.onEvent = [&](const Event&) { code = host.Send("GET_LUMS_LEVEL").code; };
    EXPECT_TRUE(SignalApplied());
    ASSERT_TRUE(host.WaitForEvent().has_value());
    EXPECT_EQ(TRX_OPERATION_REFUSED, code);
}

} // namespace
