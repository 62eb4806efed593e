// scheme/GlobalPolicy.cpp
//
// Reading the user's settings from the hive and installing them. Every failure is logged and skips at most
// what depends on it.

#include "scheme/Operations.h"

#include "foundation/Log.h"
#include "foundation/Modules.h"
#include "foundation/OrvlBase.h"
#include "foundation/Owners.h"
#include "foundation/Registry.h"
#include "foundation/Text.h"
#include "scheme/SettingCatalogue.h"
#include "scheme/Variables.h"
#include "scheme/xp/PolicyStore.h"

#include <cstdint>

namespace
{

// By format: the user's key comes first.
constexpr const wchar_t* kPowerKey = L"%s\\Control Panel\\PowerCfg";
constexpr const wchar_t* kSchemesKey = L"%s\\Control Panel\\PowerCfg\\PowerPolicies";
constexpr const wchar_t* kGlobalKey = L"%s\\Control Panel\\PowerCfg\\GlobalPowerPolicy";

using GlobalPolicyFunction = BOOLEAN(WINAPI*)(PGLOBAL_POWER_POLICY);

// A key's path below HKEY_USERS.
using UserKey = text::Formatted<text::kPathCapacity>;

template <class Record>
unsigned char* BytesOf(Record& record) noexcept
{
    return reinterpret_cast<unsigned char*>(&record);
}

// A hibernate time that the target's standby time has overtaken is replaced by a later one.
void CopyHibernateTime(const PowerBackend& backend, int index, bool ac, int time, int standby) noexcept
{
    if (time != 0 && time <= standby)
    {
        time = catalogue::HibernateTimeAfter(standby);
    }
    variables::Write(backend, index, ac, VariableOf(kHibernateTimeOut), time);
}

// Disk and hibernate times of the user's active scheme into scheme `index`.
void CopyTimes(const PowerBackend& backend, const wchar_t* user, int index) noexcept
{
    const int active = policy_store::ReadUserActiveScheme(UserKey(kPowerKey, user).Text());
    POWER_POLICY policy = {};
    ULONG size = sizeof policy.user;
    if (policy_store::ReadUserPolicy(active, UserKey(kSchemesKey, user).Text(), BytesOf(policy.user),
                                     &size) == 0)
    {
        CORVLBase::DBGOUT(L"SetGolbalPwrPolicyFromCurrentUser: Can't read user power policy: %ld", index);
        return;
    }
    const Variable& diskOff = VariableOf(kDiskOffTimeOut);
    variables::Write(backend, index, true, diskOff, static_cast<int>(policy.user.SpindownTimeoutAc));
    variables::Write(backend, index, false, diskOff, static_cast<int>(policy.user.SpindownTimeoutDc));

    size = sizeof policy.mach;
    if (policy_store::ReadMachinePolicy(active, BytesOf(policy.mach), &size) == 0)
    {
        CORVLBase::DBGOUT(L"SetGolbalPwrPolicyFromCurrentUser: Can't read machine power policy: %ld", index);
        return;
    }
    const Variable& standby = VariableOf(kStandbyTimeOut);
    const int acStandby = variables::Read(backend, index, true, standby);
    const int dcStandby = variables::Read(backend, index, false, standby);
    CopyHibernateTime(backend, index, true, HibernateTimeOf(policy, true), acStandby);
    CopyHibernateTime(backend, index, false, HibernateTimeOf(policy, false), dcStandby);
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
    const bool isRead = Check(read != nullptr, L"Error! Can't get ReadGlobalPwrPolicy");
    if (isRead)
    {
        read(&merged);
    }
    const auto write = FindFunction<GlobalPolicyFunction>(library, "WriteGlobalPwrPolicy");
    // Without `read` there is no machine part to join.
    if (!Check(write != nullptr, L"Error! Can't get WriteGlobalPwrPolicy") || !isRead)
    {
        return;
    }
    merged.user = user;
    write(&merged);
    CORVLBase::DBGOUT(L"********************************************");
    CORVLBase::DBGOUT(L"Success! fn_PWRDL_WriteGlobalPwrPolicy");
}

} // namespace

void TakeOverUserPolicy(const PowerBackend& backend, const wchar_t* user, int index) noexcept
{
    CORVLBase::DBGOUT(L"enter SetGolbalPwrPolicyFromCurrentUser");
    CopyTimes(backend, user, index);

    const UserKey place(kGlobalKey, user);
    CORVLBase::DBGOUT(L"query global power policy at %s", place.Text());
    owners::Key key;
    if (RegOpenKeyExW(HKEY_USERS, place.Text(), 0, KEY_READ, key.Put()) != ERROR_SUCCESS)
    {
        CORVLBase::DBGOUT(L"ReadUserPowerPolicy: Open key %s failed, error=%d", place.Text(), GetLastError());
        return;
    }
    GLOBAL_USER_POWER_POLICY policy = {};
    if (!ReadUserGlobalPolicy(key.Get(), place.Text(), policy))
    {
        return;
    }
    InstallGlobalPolicy(policy);
    CORVLBase::DBGOUT(L"Start recording log information:");
}
