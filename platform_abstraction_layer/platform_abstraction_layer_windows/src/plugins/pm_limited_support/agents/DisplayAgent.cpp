// agents/DisplayAgent.cpp
//
// The display as a tuner without levels.

#include "agents/DisplayAgent.h"

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
