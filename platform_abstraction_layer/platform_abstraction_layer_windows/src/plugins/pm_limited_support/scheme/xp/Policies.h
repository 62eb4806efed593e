// scheme/xp/Policies.h
//
// The two records in which the operating system keeps a scheme on the XP path, read together. Each writer has
// its own order and its own log lines for writing them.
#pragma once

#include "foundation/PowerProfile.h"

namespace xp
{

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
bool ReadPolicies(int index, Policies& policies, const ReadTexts& texts) noexcept;

} // namespace xp
