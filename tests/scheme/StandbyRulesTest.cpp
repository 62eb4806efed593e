// tests/scheme/StandbyRulesTest.cpp
//
// Standby and hibernation in three fields: the effect of each rule on each state.

#include "scheme/xp/StandbyRules.h"

#include <gtest/gtest.h>

#include <limits>

namespace
{

constexpr LONG kNone = 0;
constexpr LONG kSleep = 2;
constexpr LONG kHibernate = 3;
constexpr LONG kHuge = std::numeric_limits<LONG>::max();
constexpr bool kAc = true;
constexpr bool kDc = false;

// The hibernate times of a catalogue, in file order.
int LaterTime(int standby) noexcept
{
    for (const int offered : {900, 1800, 3600, 0})
    {
        if (offered > standby)
        {
            return offered;
        }
    }
    return 0;
}

enum Moved
{
    Standby,
    Hibernate
};

struct Case
{
    Moved moved;
    const char* name;
    IdleState before;
    bool ac;
    LONG value;
    bool reconciled;
    IdleState after;
};

const Case kCases[] = {
    {Standby, "hibernation stays where it is", {600, kSleep, 1200}, kAc, 1200, true, {1200, kSleep, 600}},
    {Standby, "hibernation gives way", {600, kSleep, 1200}, kAc, 1800, true, {1800, kSleep, 1800}},
    {Standby, "no later hibernation", {600, kSleep, 1200}, kAc, 7200, true, {7200, kSleep, 0}},
    {Standby, "off, hibernation stays", {600, kSleep, 1200}, kAc, 0, true, {1800, kHibernate, 0}},
    {Standby, "off, no hibernation", {600, kSleep, 0}, kAc, 0, true, {0, kNone, 0}},
    {Standby, "hibernation alone is lost", {3600, kHibernate, 0}, kAc, 900, true, {900, kSleep, 0}},
    {Standby, "doze without idle is dropped", {0, kSleep, 1200}, kAc, 1800, true, {1800, kSleep, 0}},
    {Standby, "hibernating with a doze", {600, kHibernate, 1200}, kAc, 2000, true, {2000, kSleep, 1600}},
    {Standby, "later time at idle on mains", {3600, kSleep, -1800}, kAc, 2000, false, {}},
    {Standby, "later time at idle on battery", {3600, kSleep, -1800}, kDc, 2000, true, {2000, kSleep, 0}},
    {Standby, "times beyond all bounds", {kHuge, kSleep, 1}, kAc, 600, false, {}},
    {Hibernate, "behind standby", {600, kSleep, 0}, kAc, 1800, true, {600, kSleep, 1200}},
    {Hibernate, "before standby", {600, kSleep, 0}, kAc, 300, false, {}},
    {Hibernate, "off", {600, kSleep, 1200}, kAc, 0, true, {600, kSleep, 0}},
    {Hibernate, "without standby", {0, kNone, 0}, kAc, 1200, true, {1200, kHibernate, 0}},
    {Hibernate, "at standby on mains", {600, kSleep, 1200}, kAc, 600, false, {}},
    {Hibernate, "at standby on battery", {600, kSleep, 1200}, kDc, 600, true, {600, kSleep, 0}},
    {Hibernate, "hibernating already", {3600, kHibernate, 0}, kAc, 1800, true, {1800, kHibernate, 0}},
    {Hibernate, "hibernating already, off", {3600, kHibernate, 0}, kAc, 0, true, {0, kHibernate, 0}},
    {Hibernate, "wraps", {-kHuge, kSleep, 0}, kAc, kHuge, false, {}},
};

TEST(StandbyRules, MoveOneTimeAndKeepTheOther)
{
    for (const Case& row : kCases)
    {
        SCOPED_TRACE(testing::Message()
                     << (row.moved == Standby ? "standby: " : "hibernation: ") << row.name);
        IdleState state = row.before;
        const bool reconciled = row.moved == Standby ? ChangeStandbyTime(state, row.ac, row.value, LaterTime)
                                                     : ChangeHibernateTime(state, row.ac, row.value);
        ASSERT_EQ(row.reconciled, reconciled);
        EXPECT_TRUE(!reconciled || row.after == state)
            << state.idle << ' ' << state.action << ' ' << state.doze;
    }
}

} // namespace
