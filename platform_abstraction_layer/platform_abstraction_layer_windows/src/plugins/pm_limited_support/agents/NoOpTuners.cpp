// agents/NoOpTuners.cpp
//
// The tuners without levels.

#include "agents/DisplayAgent.h"
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

CDisplayAgent::CDisplayAgent() noexcept = default;
CDisplayAgent::CDisplayAgent(const CDisplayAgent&) noexcept = default;
CDisplayAgent& CDisplayAgent::operator=(const CDisplayAgent&) noexcept = default;
CDisplayAgent::~CDisplayAgent() = default;

ULONG CDisplayAgent::GetVersion() noexcept
{
    return kClassVersion;
}

ULONG CDisplayAgent::CheckSupportStatus() noexcept
{
    return 0;
}

int CDisplayAgent::GetEblLevel() noexcept
{
    return -1;
}

int CDisplayAgent::SetEblLevel(int) noexcept
{
    return -1;
}
