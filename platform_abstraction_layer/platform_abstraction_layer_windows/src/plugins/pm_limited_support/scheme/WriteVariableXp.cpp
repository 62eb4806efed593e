// scheme/WriteVariableXp.cpp
//
// Writing one variable on the XP path. The two records of the operating system are read, changed and written
// back whole, the processor's first.

#include "foundation/OrvlBase.h"
#include "scheme/SettingCatalogue.h"
#include "scheme/StoredVariables.h"
#include "scheme/VariableAccess.h"
#include "scheme/XpPolicies.h"

namespace
{

constexpr int kIrreconcilable = -2;
constexpr UCHAR kFullSpeed = 100;

void SetThrottle(xp::Policies& policies, bool ac, UCHAR policy, UCHAR speed) noexcept
{
    const PolicyFields fields = FieldsOf(policies.power, ac);
    DynamicThrottleOf(policies.processor, ac) = policy;
    *fields.throttlePolicy = policy;
    *fields.forcedThrottle = speed;
}

bool ChangeIdleState(const PolicyFields& fields, bool ac, const Variable& variable, LONG value) noexcept
{
    IdleState state = IdleStateOf(fields);
    const bool reconciled = variable.xp == XpPlace::Standby
                                ? ChangeStandbyTime(state, ac, value, catalogue::HibernateTimeAfter)
                                : ChangeHibernateTime(state, ac, value);
    if (reconciled)
    {
        StoreIdleState(fields, state);
    }
    return reconciled;
}

// False when the standby and the hibernate time can't be reconciled.
bool ChangePolicies(xp::Policies& policies, bool ac, const Variable& variable, int value) noexcept
{
    const PolicyFields fields = FieldsOf(policies.power, ac);
    switch (variable.xp)
    {
    case XpPlace::Timeout:
        *(fields.*variable.timeout) = static_cast<ULONG>(value);
        return true;
    case XpPlace::Standby:
    case XpPlace::Hibernate:
        return ChangeIdleState(fields, ac, variable, value);
    case XpPlace::ThrottlePolicy:
        SetThrottle(policies, ac, static_cast<UCHAR>(value), kFullSpeed);
        return true;
    case XpPlace::Speed:
        if (value == 0)
        {
            SetThrottle(policies, ac, PO_THROTTLE_ADAPTIVE, kFullSpeed);
        }
        else
        {
            SetThrottle(policies, ac, PO_THROTTLE_NONE, static_cast<UCHAR>(value));
        }
        return true;
    default:
        return true;
    }
}

int WriteToPolicies(int index, bool ac, const wchar_t* name, const Variable& variable, int value) noexcept
{
    xp::Policies policies;
    if (!xp::ReadPolicies(index, policies, xp::kReadTexts))
    {
        return -1;
    }
    if (!xp::Accepts(name, value))
    {
        CORVLBase::DBGOUT(L"ValidateData error");
        return -1;
    }
    if (!ChangePolicies(policies, ac, variable, value))
    {
        return kIrreconcilable;
    }
    auto scheme = static_cast<UINT>(index);
    if (!WriteProcessorPwrScheme(scheme, &policies.processor))
    {
        CORVLBase::DBGOUT(L"::WriteProcessorPwrScheme error");
        return -1;
    }
    // Without a name and a description these stay as they are.
    if (!WritePwrScheme(&scheme, nullptr, nullptr, &policies.power))
    {
        CORVLBase::DBGOUT(L"::WritePwrScheme error");
        return -1;
    }
    return 1;
}

int WriteToFile(int index, bool ac, const wchar_t* name, const Variable& variable, int value) noexcept
{
    StoredVariables stored(index);
    if (!xp::Accepts(name, value))
    {
        return -1;
    }
    if (variable.xp == XpPlace::Whole)
    {
        stored.Write(variable, value);
    }
    else
    {
        stored.Merge(variable, ac, value);
    }
    return value;
}

} // namespace

bool xp::Accepts(const wchar_t* name, int value) noexcept
{
    if (text::Equal(name, L"HibernateTimeOut") && !IsPwrHibernateAllowed() && value != 0)
    {
        return false;
    }
    return catalogue::Offers(name, value);
}

int xp::WriteVariable(int index, bool ac, const wchar_t* name, int value) noexcept
{
    const int number = FindVariable(name);
    if (number < 0)
    {
        CORVLBase::DBGOUT(L"ParseVarName error");
        return -1;
    }
    const Variable& variable = VariableOf(number);
    return variable.xp < XpPlace::Packed ? WriteToPolicies(index, ac, name, variable, value)
                                         : WriteToFile(index, ac, name, variable, value);
}
