// scheme/GlobalPolicy.cpp
//
// Bringing the requesting user's own power settings to the account in which this process runs: his disk and
// hibernate times into a scheme, his buttons, lid actions and battery alarms into the global policy. Every
// failure is logged and skips at most what depends on it.

#include "foundation/Modules.h"
#include "foundation/Owners.h"
#include "foundation/Registry.h"
#include "scheme/SchemeEx.h"
#include "scheme/SettingCatalogue.h"

#include <cstdint>

namespace
{

constexpr const wchar_t* kPowerKey = L"Control Panel\\PowerCfg";
constexpr const wchar_t* kSchemesKey = L"Control Panel\\PowerCfg\\PowerPolicies";
constexpr const wchar_t* kGlobalKey = L"Control Panel\\PowerCfg\\GlobalPowerPolicy";

using GlobalPolicyFunction = BOOLEAN(WINAPI*)(PGLOBAL_POWER_POLICY);

// A key of the user below HKEY_USERS.
class UserKey
{
public:
    UserKey(const CSchemeEx& engine, const wchar_t* key) noexcept
    {
        text::Format(m_path, L"%s\\%s", static_cast<const wchar_t*>(engine.m_szSubKey), key);
    }
    const wchar_t* Path() const noexcept
    {
        return m_path;
    }

private:
    wchar_t m_path[text::kPathCapacity];
};

template <class Record>
unsigned char* BytesOf(Record& record) noexcept
{
    return reinterpret_cast<unsigned char*>(&record);
}

// A hibernate time that the target's standby time has overtaken gives way to a later one.
void CopyHibernateTime(CSchemeEx& engine, int index, int ifAC, int time, int standby) noexcept
{
    if (time != 0 && time <= standby)
    {
        time = catalogue::HibernateTimeAfter(standby);
    }
    engine.SetPwrVariable(index, ifAC, L"HibernateTimeOut", time);
}

// Disk and hibernate times of the user's active scheme into scheme `index`.
void CopyTimes(CSchemeEx& engine, int index) noexcept
{
    const int active = engine.ReadUserActivePowerScheme(UserKey(engine, kPowerKey).Path());
    POWER_POLICY policy = {};
    ULONG size = sizeof policy.user;
    if (engine.ReadUserPowerPolicy(active, UserKey(engine, kSchemesKey).Path(), BytesOf(policy.user),
                                   &size) == 0)
    {
        CORVLBase::DBGOUT(L"SetGolbalPwrPolicyFromCurrentUser: Can't read user power policy: %ld", index);
        return;
    }
    engine.SetPwrVariable(index, 1, L"DiskOffTimeOut", static_cast<int>(policy.user.SpindownTimeoutAc));
    engine.SetPwrVariable(index, 0, L"DiskOffTimeOut", static_cast<int>(policy.user.SpindownTimeoutDc));

    size = sizeof policy.mach;
    if (engine.ReadMachinePowerPolicy(active, BytesOf(policy.mach), &size) == 0)
    {
        CORVLBase::DBGOUT(L"SetGolbalPwrPolicyFromCurrentUser: Can't read machine power policy: %ld", index);
        return;
    }
    const int acTime = engine.GetHibernateTimeOutFromUserPowerPolicy(true, policy);
    const int dcTime = engine.GetHibernateTimeOutFromUserPowerPolicy(false, policy);
    const int acStandby = engine.GetPwrVariable(index, 1, L"StandbyTimeOut");
    const int dcStandby = engine.GetPwrVariable(index, 0, L"StandbyTimeOut");
    CopyHibernateTime(engine, index, 1, acTime, acStandby);
    CopyHibernateTime(engine, index, 0, dcTime, dcStandby);
}

bool ReadUserGlobalPolicy(HKEY key, const wchar_t* path, GLOBAL_USER_POWER_POLICY& policy) noexcept
{
    auto size = static_cast<DWORD>(sizeof policy);
    const LSTATUS read = registry::ReadRecord(key, L"Policies", BytesOf(policy), &size, sizeof policy);
    if (read != ERROR_SUCCESS)
    {
        CORVLBase::DBGOUT(L"ReadUserPowerPolicy: Query value Policies at Key %s failed, nsize=%d,error=%d",
                          path, size, registry::ErrorOfRecord(read));
        return false;
    }
    return true;
}

// Joins the user's part with the machine's part of this process's own policy and installs the two.
void InstallGlobalPolicy(const GLOBAL_USER_POWER_POLICY& user) noexcept
{
    const HMODULE library = LoadLibraryW(L"powrprof.dll");
    CORVLBase::DBGOUT(L"iHandlePowrProfDll: 0x%x\n",
                      static_cast<ULONG>(reinterpret_cast<std::uintptr_t>(library)));

    GLOBAL_POWER_POLICY merged = {};
    const auto read = FindFunction<GlobalPolicyFunction>(library, "ReadGlobalPwrPolicy");
    if (read == nullptr)
    {
        CORVLBase::DBGOUT(L"Error! Can't get ReadGlobalPwrPolicy");
    }
    else
    {
        read(&merged);
    }
    const auto write = FindFunction<GlobalPolicyFunction>(library, "WriteGlobalPwrPolicy");
    if (write == nullptr)
    {
        CORVLBase::DBGOUT(L"Error! Can't get WriteGlobalPwrPolicy");
        return;
    }
    if (read == nullptr)
    {
        // There is no machine part to join.
        return;
    }
    merged.user = user;
    write(&merged);
    CORVLBase::DBGOUT(L"********************************************");
    CORVLBase::DBGOUT(L"Success! fn_PWRDL_WriteGlobalPwrPolicy");
}

} // namespace

void CSchemeEx::SetGolbalPwrPolicyFromCurrentUser(int nIndex) noexcept
{
    DBGOUT(L"enter SetGolbalPwrPolicyFromCurrentUser");
    CopyTimes(*this, nIndex);

    const UserKey place(*this, kGlobalKey);
    DBGOUT(L"query global power policy at %s", place.Path());
    owners::Key key;
    if (RegOpenKeyExW(HKEY_USERS, place.Path(), 0, KEY_READ, key.Receive()) != ERROR_SUCCESS)
    {
        DBGOUT(L"ReadUserPowerPolicy: Open key %s failed, error=%d", place.Path(), GetLastError());
        return;
    }
    GLOBAL_USER_POWER_POLICY user = {};
    if (!ReadUserGlobalPolicy(key.Get(), place.Path(), user))
    {
        return;
    }
    InstallGlobalPolicy(user);
    DBGOUT(L"Start recording log information:");
}
