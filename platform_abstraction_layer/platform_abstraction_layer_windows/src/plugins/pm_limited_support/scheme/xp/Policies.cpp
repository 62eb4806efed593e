// scheme/xp/Policies.cpp
//
// The two records of a scheme on the XP path, and the fields of one power source in them.

#include "scheme/xp/Policies.h"

#include "foundation/OrvlBase.h"

#include <cstring>

PolicyFields FieldsOf(POWER_POLICY& policy, bool ac) noexcept
{
    USER_POWER_POLICY& user = policy.user;
    MACHINE_POWER_POLICY& machine = policy.mach;
    if (ac)
    {
        return {&user.VideoTimeoutAc,     &user.SpindownTimeoutAc, &user.IdleTimeoutAc,   &user.IdleAc.Action,
                &machine.DozeS4TimeoutAc, &user.ThrottlePolicyAc,  &user.ForcedThrottleAc};
    }
    return {&user.VideoTimeoutDc,     &user.SpindownTimeoutDc, &user.IdleTimeoutDc,   &user.IdleDc.Action,
            &machine.DozeS4TimeoutDc, &user.ThrottlePolicyDc,  &user.ForcedThrottleDc};
}

UCHAR& DynamicThrottleOf(MACHINE_PROCESSOR_POWER_POLICY& processor, bool ac) noexcept
{
    return ac ? processor.ProcessorPolicyAc.DynamicThrottle : processor.ProcessorPolicyDc.DynamicThrottle;
}

// A record may hold any number where an action belongs, so actions are copied as numbers.

IdleState IdleStateOf(const PolicyFields& fields) noexcept
{
    IdleState state{static_cast<LONG>(*fields.idleTimeout), 0, static_cast<LONG>(*fields.dozeTimeout)};
    static_assert(sizeof state.action == sizeof *fields.idleAction);
    std::memcpy(&state.action, fields.idleAction, sizeof state.action);
    return state;
}

void StoreIdleState(const PolicyFields& fields, const IdleState& state) noexcept
{
    *fields.idleTimeout = static_cast<ULONG>(state.idle);
    *fields.dozeTimeout = static_cast<ULONG>(state.doze);
    std::memcpy(fields.idleAction, &state.action, sizeof state.action);
}

int HibernateTimeOf(POWER_POLICY& policy, bool ac) noexcept
{
    return static_cast<int>(HibernateTimeOf(IdleStateOf(FieldsOf(policy, ac))));
}

bool xp::ReadPolicies(int index, Policies& policies, const ReadTexts& texts) noexcept
{
    const auto scheme = static_cast<UINT>(index);
    if (!ReadPwrScheme(scheme, &policies.power))
    {
        CORVLBase::DBGOUT(texts.power, index);
        return false;
    }
    if (!ReadProcessorPwrScheme(scheme, &policies.processor))
    {
        CORVLBase::DBGOUT(texts.processor, index);
        return false;
    }
    return true;
}
