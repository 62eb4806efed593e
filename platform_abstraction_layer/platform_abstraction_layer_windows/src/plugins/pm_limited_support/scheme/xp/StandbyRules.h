// scheme/xp/StandbyRules.h
//
// How a scheme of the XP path holds two times in three fields: standby and hibernation. Hibernation comes at
// `idle` + `doze` seconds when the machine sleeps first, and at `idle` seconds when it doesn't. The rules
// say what becomes of the other time when one of them moves. All numbers are seconds.
#pragma once

#include <windows.h>

/// The idle times and the idle action of one power source.
struct IdleState
{
    LONG idle;   ///< time without activity until `action`
    LONG action; ///< `POWER_ACTION`: none, sleep or hibernate
    LONG doze;   ///< time asleep until hibernation, 0 for never

    bool operator==(const IdleState&) const = default;
};

/// The first hibernate time that the catalogue offers above a standby time, 0 for none.
using LaterHibernateTime = int (*)(int standby) noexcept;

/// When the machine goes to sleep, 0 for never.
LONG StandbyTimeOf(const IdleState& state) noexcept;

/// When the machine hibernates, 0 for never.
LONG HibernateTimeOf(const IdleState& state) noexcept;

/// Moves the standby time to `value`. A hibernate time that follows standby stays where it is; when `value`
/// reaches it, `laterTime` gives the next one, and 0 turns hibernation off. A hibernate time that doesn't
/// follow standby is lost. False when the two can't be reconciled; `state` is then not to be used.
[[nodiscard]] bool ChangeStandbyTime(IdleState& state, bool ac, LONG value,
                                     LaterHibernateTime laterTime) noexcept;

/// Moves the hibernate time to `value` and leaves the standby time where it is; false as above. 0 turns
/// hibernation off after standby. A time before the standby time is refused. An equal time is refused on
/// AC power; on battery it turns hibernation off. A state that hibernates without standby takes any time.
[[nodiscard]] bool ChangeHibernateTime(IdleState& state, bool ac, LONG value) noexcept;
