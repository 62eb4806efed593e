// scheme/xp/Policies.h
//
// The two records in which the operating system keeps a scheme on the XP path. They hold each setting twice,
// for AC and for battery power; the views show one of the two, so that no rule is written twice.
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

namespace xp
{

/// Both records. Each writer has its own order and its own log lines for writing them.
struct Policies
{
    POWER_POLICY power;
    MACHINE_PROCESSOR_POWER_POLICY processor;
};

/// What is logged, with the scheme's number, when a record can't be read.
struct ReadTexts
{
    const wchar_t* power;
    const wchar_t* processor;
};

/// The texts of reading, writing and copying a scheme's settings.
constexpr ReadTexts kReadTexts{L"CSchemeEx::GetPwrVariable: Can't read pwr scheme: %ld",
                               L"CSchemeEx::GetPwrVariable: Can't read cpu scheme: %ld"};

/// Reads both records. False, with the text of the one that can't be read logged.
[[nodiscard]] bool ReadPolicies(int index, Policies& policies, const ReadTexts& texts) noexcept;

} // namespace xp
