// agents/EblTuner.cpp
//
// The no-op tuner.

#include "agents/EblTuner.h"

CEblTuner::CEblTuner() noexcept = default;
CEblTuner::CEblTuner(const CEblTuner&) noexcept = default;
CEblTuner& CEblTuner::operator=(const CEblTuner&) noexcept = default;
CEblTuner::~CEblTuner() = default;

ULONG CEblTuner::GetVersion() noexcept
{
    return kClassVersion;
}

ULONG CEblTuner::CheckSupportStatus() noexcept
{
    return 0;
}

int CEblTuner::GetEblLevel() noexcept
{
    return 0;
}

int CEblTuner::SetEblLevel(int) noexcept
{
    return 0;
}
