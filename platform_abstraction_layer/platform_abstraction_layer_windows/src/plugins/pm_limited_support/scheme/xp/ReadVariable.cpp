// scheme/xp/ReadVariable.cpp
//
// Reading one variable on the XP path.

#include "foundation/OrvlBase.h"
#include "scheme/StoredVariables.h"
#include "scheme/xp/Operations.h"
#include "scheme/xp/Policies.h"

namespace
{

int ReadStandbyTime(const PolicyFields& fields, bool ac) noexcept
{
    const IdleState state = IdleStateOf(fields);
    const LONG time = StandbyTimeOf(state);
    if (ac && state.action == PowerActionSleep)
    {
        CORVLBase::DBGOUT(L"pwrPolicy.user.IdleAc.Action==PowerActionSleep, iRetVar=%d\n", time);
    }
    else if (ac)
    {
        CORVLBase::DBGOUT(L"pwrPolicy.user.IdleAc.Action!=PowerActionSleep\n");
    }
    return static_cast<int>(time);
}

int ReadFromPolicies(int index, bool ac, const Variable& variable) noexcept
{
    xp::Policies policies;
    if (!xp::ReadPolicies(index, policies, xp::kReadTexts))
    {
        return -1;
    }
    const PolicyFields fields = FieldsOf(policies.power, ac);
    switch (variable.xp)
    {
    case XpStorage::Timeout:
        return static_cast<int>(*(fields.*variable.timeout));
    case XpStorage::Standby:
        return ReadStandbyTime(fields, ac);
    case XpStorage::Hibernate:
        return static_cast<int>(HibernateTimeOf(IdleStateOf(fields)));
    case XpStorage::ThrottlePolicy:
        return *fields.throttlePolicy;
    case XpStorage::Speed:
    {
        const bool isAdaptive = *fields.throttlePolicy != 0 && DynamicThrottleOf(policies.processor, ac) != 0;
        return isAdaptive ? 0 : *fields.forcedThrottle;
    }
    case XpStorage::Unsupported:
    case XpStorage::File:
        break;
    }
    return -1;
}

int ReadFromFile(int index, bool ac, const Variable& variable) noexcept
{
    StoredVariables stored(index);
    return stored.ValueOrDefault(variable, ac, stored.Read(variable), kNoValue);
}

} // namespace

int xp::ReadVariable(int index, bool ac, const Variable& variable) noexcept
{
    return variable.xp == XpStorage::File ? ReadFromFile(index, ac, variable)
                                          : ReadFromPolicies(index, ac, variable);
}
