// scheme/ActiveScheme.cpp
//
// What is in force now: the active scheme and the power source.

#include "foundation/Owners.h"
#include "scheme/PolicyFields.h"
#include "scheme/PowerDispatch.h"
#include "scheme/SchemeEx.h"
#include "scheme/SchemeMapping.h"

namespace
{

int ActiveNumber() noexcept
{
    auto active = static_cast<UINT>(-1);
    return GetActivePwrScheme(&active) ? static_cast<int>(active) : -1;
}

int ActiveRow(CSchemeEx& engine) noexcept
{
    const auto getActive = PowerDispatch.PowerGetActiveScheme.load();
    GUID* active = nullptr;
    if (getActive == nullptr || getActive(nullptr, &active) != ERROR_SUCCESS)
    {
        return -1;
    }
    const owners::LocalBlock block(active);
    if (active == nullptr)
    {
        return -1;
    }
    const int row = engine.SchemeGuidToIndex(active);
    return row >= 0 ? row : mapping::AddRow(*active);
}

} // namespace

int CSchemeEx::GetActivePwrScheme(int) noexcept
{
    return m_bVista != 0 ? ActiveRow(*this) : ActiveNumber();
}

int CSchemeEx::GetIfAC() noexcept
{
    SYSTEM_POWER_STATUS status = {};
    ::GetSystemPowerStatus(&status);
    return status.ACLineStatus == AC_LINE_ONLINE ? 1 : 0;
}

int CSchemeEx::GetHibernateTimeOutFromUserPowerPolicy(bool ifAC, POWER_POLICY& policy) noexcept
{
    return static_cast<int>(HibernateTimeOf(IdleStateOf(FieldsOf(policy, ifAC))));
}
