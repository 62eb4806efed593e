// scheme/xp/WriteVariable.cpp
//
// Writing one variable on the XP path. The two records of the operating system are read, changed and written
// back whole, the processor's first.

#include "foundation/Log.h"
#include "scheme/SettingCatalogue.h"
#include "scheme/StoredVariables.h"
#include "scheme/xp/Operations.h"
#include "scheme/xp/Policies.h"

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
    const bool reconciled = variable.xp == XpStorage::Standby
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
    case XpStorage::Timeout:
        *(fields.*variable.timeout) = static_cast<ULONG>(value);
        break;
    case XpStorage::Standby:
    case XpStorage::Hibernate:
        return ChangeIdleState(fields, ac, variable, value);
    case XpStorage::ThrottlePolicy:
        SetThrottle(policies, ac, static_cast<UCHAR>(value), kFullSpeed);
        break;
    case XpStorage::Speed:
        SetThrottle(policies, ac, value == 0 ? PO_THROTTLE_ADAPTIVE : PO_THROTTLE_NONE,
                    value == 0 ? kFullSpeed : static_cast<UCHAR>(value));
        break;
    case XpStorage::Unsupported:
    case XpStorage::File:
        break;
    }
    return true;
}

int WriteToPolicies(int index, bool ac, const NamedVariable& variable, int value) noexcept
{
    xp::Policies policies;
    if (!xp::ReadPolicies(index, policies, xp::kReadTexts))
    {
        return -1;
    }
    if (!Check(xp::Accepts(variable.name, value), L"ValidateData error"))
    {
        return -1;
    }
    if (!ChangePolicies(policies, ac, variable.row, value))
    {
        return kIrreconcilable;
    }
    auto scheme = static_cast<UINT>(index);
    // Without a name and a description these stay as they are.
    const bool isWritten =
        Check(WriteProcessorPwrScheme(scheme, &policies.processor) != FALSE,
              L"::WriteProcessorPwrScheme error") &&
        Check(WritePwrScheme(&scheme, nullptr, nullptr, &policies.power) != FALSE, L"::WritePwrScheme error");
    return isWritten ? 1 : -1;
}

int WriteToFile(int index, bool ac, const NamedVariable& variable, int value) noexcept
{
    StoredVariables stored(index);
    if (!xp::Accepts(variable.name, value))
    {
        return -1;
    }
    stored.WriteValue(variable.row, ac, value);
    return value;
}

} // namespace

bool xp::Accepts(const wchar_t* name, int value) noexcept
{
    if (text::Equal(name, VariableOf(kHibernateTimeOut).name) && !IsPwrHibernateAllowed() && value != 0)
    {
        return false;
    }
    return catalogue::Offers(name, value);
}

int xp::WriteVariable(int index, bool ac, const NamedVariable& variable, int value) noexcept
{
    return variable.row.xp == XpStorage::File ? WriteToFile(index, ac, variable, value)
                                              : WriteToPolicies(index, ac, variable, value);
}
