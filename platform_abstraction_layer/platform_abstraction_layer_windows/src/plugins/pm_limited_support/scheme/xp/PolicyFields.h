// scheme/xp/PolicyFields.h
//
// The operating system's scheme records keep each setting twice, for AC and for battery power. These views
// show one of the two, so that no rule is written twice.
#pragma once

#include "foundation/PowerProfile.h"
#include "scheme/xp/StandbyRules.h"

/// The fields of one power source, in a record that outlives the view.
struct PolicyFields
{
    ULONG* videoTimeout;
    ULONG* spindownTimeout;
    ULONG* idleTimeout;
    POWER_ACTION* idleAction;
    ULONG* dozeTimeout;
    UCHAR* throttlePolicy;
    UCHAR* forcedThrottle;
};

PolicyFields FieldsOf(POWER_POLICY& policy, bool ac) noexcept;
UCHAR& DynamicThrottleOf(MACHINE_PROCESSOR_POWER_POLICY& processor, bool ac) noexcept;

IdleState IdleStateOf(const PolicyFields& fields) noexcept;
void StoreIdleState(const PolicyFields& fields, const IdleState& state) noexcept;

/// When the machine hibernates on that power source, 0 for never.
int HibernateTimeOf(POWER_POLICY& policy, bool ac) noexcept;
