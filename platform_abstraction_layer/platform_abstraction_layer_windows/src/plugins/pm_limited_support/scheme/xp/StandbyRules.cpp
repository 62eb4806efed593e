// scheme/xp/StandbyRules.cpp
//
// Standby and hibernation in the three fields of the XP path.

#include "scheme/xp/StandbyRules.h"

#include "foundation/PowerProfile.h"
#include "scheme/Wrapping.h"

namespace
{

constexpr LONG kNone = PowerActionNone;
constexpr LONG kSleep = PowerActionSleep;
constexpr LONG kHibernate = PowerActionHibernate;

// The time asleep that takes the machine from `idle` to hibernation at `hibernateAt`; false when there is
// no such time. A hibernate time of 0 always has one: none.
bool DozeUntil(LONG hibernateAt, LONG idle, bool ac, LONG& doze) noexcept
{
    doze = WrappingDifference(hibernateAt, idle);
    const bool isTooShort = ac ? doze <= 0 : doze < 0;
    if (!isTooShort)
    {
        return true;
    }
    doze = 0;
    return hibernateAt == 0;
}

// Chooses the action that the two times want. Without a standby time the machine hibernates straight away,
// after the time that it would have slept.
void ChooseAction(IdleState& state) noexcept
{
    if (state.idle != 0)
    {
        state.action = kSleep;
    }
    else if (state.doze != 0)
    {
        state = {state.doze, kHibernate, 0};
    }
    else
    {
        state.action = kNone;
    }
}

} // namespace

LONG StandbyTimeOf(const IdleState& state) noexcept
{
    return state.action == kSleep ? state.idle : 0;
}

LONG HibernateTimeOf(const IdleState& state) noexcept
{
    if (state.action == kHibernate)
    {
        return state.idle;
    }
    const bool wakesToHibernate = state.action == kSleep && state.doze != 0;
    return wakesToHibernate ? WrappingSum(state.idle, state.doze) : 0;
}

bool ChangeStandbyTime(IdleState& state, bool ac, LONG value, LaterHibernateTime laterTime) noexcept
{
    LONG hibernateAt = state.doze != 0 ? WrappingSum(state.idle, state.doze) : 0;
    if (hibernateAt != 0 && value >= hibernateAt)
    {
        hibernateAt = laterTime(static_cast<int>(value));
        if (state.action != kHibernate)
        {
            if (!DozeUntil(hibernateAt, state.idle, ac, state.doze))
            {
                return false;
            }
            if (state.idle == 0)
            {
                state.doze = 0;
            }
        }
    }

    state.idle = value;
    if (state.doze != 0)
    {
        state.doze = WrappingDifference(hibernateAt, value);
    }
    ChooseAction(state);
    return true;
}

bool ChangeHibernateTime(IdleState& state, bool ac, LONG value) noexcept
{
    if (state.action == kHibernate)
    {
        state.idle = value;
        return true;
    }
    if (!DozeUntil(value, state.idle, ac, state.doze))
    {
        return false;
    }
    ChooseAction(state);
    return true;
}
