// scheme/ReadVariableXp.cpp
//
// Reading one variable on the XP path.

#include "foundation/OrvlBase.h"
#include "scheme/StoredVariables.h"
#include "scheme/VariableAccess.h"
#include "scheme/XpPolicies.h"

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
    case XpPlace::Timeout:
        return static_cast<int>(*(fields.*variable.timeout));
    case XpPlace::Standby:
        return ReadStandbyTime(fields, ac);
    case XpPlace::Hibernate:
        return static_cast<int>(HibernateTimeOf(IdleStateOf(fields)));
    case XpPlace::ThrottlePolicy:
        return *fields.throttlePolicy;
    case XpPlace::Speed:
    {
        const bool isAdaptive = *fields.throttlePolicy != 0 && DynamicThrottleOf(policies.processor, ac) != 0;
        return isAdaptive ? 0 : *fields.forcedThrottle;
    }
    default:
        return -1;
    }
}

int ReadFromFile(int index, bool ac, const Variable& variable) noexcept
{
    StoredVariables stored(index);
    const LONG value = stored.Read(variable, kNoValue);
    if (value == kNoValue)
    {
        stored.Write(variable, kNoValue);
        return -1;
    }
    return static_cast<int>(variable.xp == XpPlace::Whole ? value : HalfOf(value, ac));
}

} // namespace

int xp::ReadVariable(int index, bool ac, const wchar_t* name) noexcept
{
    const int number = FindVariable(name);
    if (number < 0)
    {
        CORVLBase::DBGOUT(L"ParseVarName(%s) error\n", name);
        return -1;
    }
    const Variable& variable = VariableOf(number);
    return variable.xp < XpPlace::Packed ? ReadFromPolicies(index, ac, variable)
                                         : ReadFromFile(index, ac, variable);
}
