// scheme/CpuSpeed.cpp
//
// The processor's speed in the scheme that is active now, on the power source that feeds the machine now.

#include "scheme/SchemeEx.h"

namespace
{

constexpr const wchar_t* kSpeed = L"CpuSpeed";

} // namespace

int CSchemeEx::GetCPUSpeed() noexcept
{
    const int active = GetActivePwrScheme(0);
    if (active == -1)
    {
        return -1;
    }
    return GetPwrVariable(active, GetIfAC(), kSpeed);
}

int CSchemeEx::SetCPUSpeed(int speed) noexcept
{
    const int active = GetActivePwrScheme(0);
    if (active == -1)
    {
        return -1;
    }
    const int before = GetPwrVariable(active, GetIfAC(), kSpeed);
    // The write goes by the power source of its own moment. Whether it worked or not, the scheme is applied.
    SetPwrVariable(active, GetIfAC(), kSpeed, speed);
    SetActivePwrScheme(active);
    return before;
}
