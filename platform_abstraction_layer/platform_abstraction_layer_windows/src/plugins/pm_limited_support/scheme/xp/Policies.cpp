// scheme/xp/Policies.cpp
//
// Reading the two records of a scheme on the XP path.

#include "scheme/xp/Policies.h"

#include "foundation/OrvlBase.h"

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
