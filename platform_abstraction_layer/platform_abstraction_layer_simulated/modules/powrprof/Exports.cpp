// modules/powrprof/Exports.cpp
//
// The functions of PowrProf.dll: thin shells over the power store. Built natively, and for Windows with the
// entry of windows/base/PlatformCall.h.

#include "PowerStoreMachine.h"
#include "PowerStoreSchemes.h"
#include "PowerStoreSettings.h"
#include "base/PlatformCall.h"
#include "modules/kernel32/LocalMemory.h"

#include <cstring>

using simulated::CallClass;
using simulated::PlatformCall;

namespace
{

constexpr DWORD kStatusSuccess = 0;
constexpr DWORD kStatusUnsuccessful = 0xC0000001u;
constexpr DWORD kStatusInvalidParameter = 0xC000000Du;
constexpr DWORD kStatusBufferTooSmall = 0xC0000023u;

BOOLEAN ToBoolean(BOOL value) noexcept
{
    return value ? TRUE : FALSE;
}

// A null record is refused before the store is asked.
template <class Record, class Work>
DWORD WithRecord(Record* record, Work work)
{
    return record == nullptr ? static_cast<DWORD>(ERROR_INVALID_PARAMETER) : work(*record);
}

// The common rule of the GUID-based functions: the root key is reserved and null.
template <class Work>
DWORD WithoutRoot(PlatformCall& call, HKEY root, Work work)
{
    return static_cast<DWORD>(
        call.Status([&] { return root != nullptr ? static_cast<DWORD>(ERROR_INVALID_PARAMETER) : work(); }));
}

// A GUID for the caller to give back with LocalFree.
DWORD HandOut(const GUID& guid, GUID** target, PlatformCall& call)
{
    void* block = simulated::AllocateLocal(sizeof guid, call);
    if (block == nullptr)
    {
        return ERROR_NOT_ENOUGH_MEMORY;
    }
    std::memcpy(block, &guid, sizeof guid);
    *target = static_cast<GUID*>(block);
    return ERROR_SUCCESS;
}

DWORD ReadIndex(PlatformCall& call, HKEY root, const power_store::SettingPlace& place, const wchar_t* source,
                LPDWORD value)
{
    return WithoutRoot(call, root,
                       [&] {
                           return WithRecord(value, [&](DWORD& to)
                                             { return power_store::ReadValueIndex(place, source, to); });
                       });
}

DWORD WriteIndex(PlatformCall& call, HKEY root, const power_store::SettingPlace& place, const wchar_t* source,
                 DWORD value)
{
    call.Arguments(value);
    return WithoutRoot(call, root, [&] { return power_store::WriteValueIndex(place, source, value); });
}

DWORD ReadBatteryState(const void* input, ULONG inputSize, void* output, ULONG outputSize)
{
    if (input != nullptr || inputSize != 0 || output == nullptr)
    {
        return kStatusInvalidParameter;
    }
    if (outputSize < sizeof(SYSTEM_BATTERY_STATE))
    {
        return kStatusBufferTooSmall;
    }
    SYSTEM_BATTERY_STATE state{};
    if (power_store::ReadBatteryState(state) != ERROR_SUCCESS)
    {
        return kStatusUnsuccessful;
    }
    std::memcpy(output, &state, sizeof state);
    return kStatusSuccess;
}

} // namespace

SIM_API BOOLEAN WINAPI GetActivePwrScheme(PUINT scheme)
{
    PlatformCall call(CallClass::Power, "GetActivePwrScheme", SIM_CALLER);
    return ToBoolean(call.Boolean([&] { return WithRecord(scheme, power_store::GetActive); }));
}

// Both policies are for this activation alone and nothing here acts on one.
SIM_API BOOLEAN WINAPI SetActivePwrScheme(UINT scheme, PGLOBAL_POWER_POLICY globalPolicy,
                                          PPOWER_POLICY policy)
{
    PlatformCall call(CallClass::Power, "SetActivePwrScheme", SIM_CALLER);
    call.Arguments(scheme, static_cast<const void*>(globalPolicy), static_cast<const void*>(policy));
    return ToBoolean(call.Boolean([&] { return power_store::SetActive(scheme); }));
}

SIM_API BOOLEAN WINAPI ReadPwrScheme(UINT scheme, PPOWER_POLICY policy)
{
    PlatformCall call(CallClass::Power, "ReadPwrScheme", SIM_CALLER);
    call.Arguments(scheme);
    return ToBoolean(call.Boolean(
        [&] {
            return WithRecord(policy, [&](POWER_POLICY& to) { return power_store::ReadScheme(scheme, to); });
        }));
}

SIM_API BOOLEAN WINAPI WritePwrScheme(PUINT scheme, LPWSTR name, LPWSTR description, PPOWER_POLICY policy)
{
    PlatformCall call(CallClass::Power, "WritePwrScheme", SIM_CALLER);
    call.Arguments(scheme == nullptr ? 0u : *scheme, static_cast<const wchar_t*>(name),
                   static_cast<const wchar_t*>(description));
    return ToBoolean(call.Boolean(
        [&]
        {
            return WithRecord(scheme, [&](UINT& number)
                              { return power_store::WriteScheme(number, name, description, policy); });
        }));
}

SIM_API BOOLEAN WINAPI ReadProcessorPwrScheme(UINT scheme, PMACHINE_PROCESSOR_POWER_POLICY policy)
{
    PlatformCall call(CallClass::Power, "ReadProcessorPwrScheme", SIM_CALLER);
    call.Arguments(scheme);
    return ToBoolean(call.Boolean(
        [&]
        {
            return WithRecord(policy, [&](MACHINE_PROCESSOR_POWER_POLICY& to)
                              { return power_store::ReadProcessorScheme(scheme, to); });
        }));
}

SIM_API BOOLEAN WINAPI WriteProcessorPwrScheme(UINT scheme, PMACHINE_PROCESSOR_POWER_POLICY policy)
{
    PlatformCall call(CallClass::Power, "WriteProcessorPwrScheme", SIM_CALLER);
    call.Arguments(scheme);
    return ToBoolean(call.Boolean(
        [&]
        {
            return WithRecord(policy, [&](const MACHINE_PROCESSOR_POWER_POLICY& from)
                              { return power_store::WriteProcessorScheme(scheme, from); });
        }));
}

SIM_API BOOLEAN WINAPI EnumPwrSchemes(PWRSCHEMESENUMPROC callback, LPARAM argument)
{
    PlatformCall call(CallClass::Power, "EnumPwrSchemes", SIM_CALLER);
    return ToBoolean(call.Boolean([&] { return power_store::EnumerateSchemes(callback, argument); }));
}

SIM_API BOOLEAN WINAPI DeletePwrScheme(UINT scheme)
{
    PlatformCall call(CallClass::Power, "DeletePwrScheme", SIM_CALLER);
    call.Arguments(scheme);
    return ToBoolean(call.Boolean([&] { return power_store::DeleteScheme(scheme); }));
}

SIM_API BOOLEAN WINAPI IsPwrHibernateAllowed()
{
    PlatformCall call(CallClass::Power, "IsPwrHibernateAllowed", SIM_CALLER);
    BOOLEAN allowed = FALSE;
    if (!call.IsRefused() && power_store::ReadHibernateAllowed(allowed) != ERROR_SUCCESS)
    {
        allowed = FALSE;
    }
    return call.Answer(allowed);
}

SIM_API BOOLEAN WINAPI ReadGlobalPwrPolicy(PGLOBAL_POWER_POLICY policy)
{
    PlatformCall call(CallClass::Power, "ReadGlobalPwrPolicy", SIM_CALLER);
    return ToBoolean(call.Boolean([&] { return WithRecord(policy, power_store::ReadGlobalPolicy); }));
}

SIM_API BOOLEAN WINAPI WriteGlobalPwrPolicy(PGLOBAL_POWER_POLICY policy)
{
    PlatformCall call(CallClass::Power, "WriteGlobalPwrPolicy", SIM_CALLER);
    return ToBoolean(call.Boolean([&] { return WithRecord(policy, power_store::WriteGlobalPolicy); }));
}

// Of the information levels the machine knows the batteries' state alone; it refuses the rest.
SIM_API NTSTATUS WINAPI CallNtPowerInformation(POWER_INFORMATION_LEVEL level, PVOID input, ULONG inputSize,
                                               PVOID output, ULONG outputSize)
{
    PlatformCall call(CallClass::Power, "CallNtPowerInformation", SIM_CALLER);
    call.Arguments(static_cast<int>(level));
    const LSTATUS status = call.Status(
        [&]
        {
            return level == SystemBatteryState ? ReadBatteryState(input, inputSize, output, outputSize)
                                               : kStatusInvalidParameter;
        });
    // An injected fault is a Win32 error number, which as a status would mean success.
    return static_cast<NTSTATUS>(call.IsRefused() ? kStatusUnsuccessful : static_cast<DWORD>(status));
}

SIM_API DWORD WINAPI PowerGetActiveScheme(HKEY root, GUID** scheme)
{
    PlatformCall call(CallClass::Power, "PowerGetActiveScheme", SIM_CALLER);
    return WithoutRoot(call, root,
                       [&]() -> DWORD
                       {
                           if (scheme == nullptr)
                           {
                               return ERROR_INVALID_PARAMETER;
                           }
                           GUID active{};
                           const DWORD error = power_store::GetActiveScheme(active);
                           return error == ERROR_SUCCESS ? HandOut(active, scheme, call) : error;
                       });
}

SIM_API DWORD WINAPI PowerSetActiveScheme(HKEY root, const GUID* scheme)
{
    PlatformCall call(CallClass::Power, "PowerSetActiveScheme", SIM_CALLER);
    return WithoutRoot(call, root, [&] { return WithRecord(scheme, power_store::SetActiveScheme); });
}

SIM_API DWORD WINAPI PowerReadFriendlyName(HKEY root, const GUID* scheme, const GUID* subGroup,
                                           const GUID* setting, PUCHAR buffer, LPDWORD size)
{
    PlatformCall call(CallClass::Power, "PowerReadFriendlyName", SIM_CALLER);
    return WithoutRoot(
        call, root,
        [&]
        {
            return WithRecord(
                size,
                [&](DWORD& room) {
                    return power_store::ReadFriendlyName({scheme, subGroup, setting}, buffer, room);
                });
        });
}

SIM_API DWORD WINAPI PowerReadACValueIndex(HKEY root, const GUID* scheme, const GUID* subGroup,
                                           const GUID* setting, LPDWORD value)
{
    PlatformCall call(CallClass::Power, "PowerReadACValueIndex", SIM_CALLER);
    return ReadIndex(call, root, {scheme, subGroup, setting}, power_store::kMainsValue, value);
}

SIM_API DWORD WINAPI PowerReadDCValueIndex(HKEY root, const GUID* scheme, const GUID* subGroup,
                                           const GUID* setting, LPDWORD value)
{
    PlatformCall call(CallClass::Power, "PowerReadDCValueIndex", SIM_CALLER);
    return ReadIndex(call, root, {scheme, subGroup, setting}, power_store::kBatteryValue, value);
}

SIM_API DWORD WINAPI PowerWriteACValueIndex(HKEY root, const GUID* scheme, const GUID* subGroup,
                                            const GUID* setting, DWORD value)
{
    PlatformCall call(CallClass::Power, "PowerWriteACValueIndex", SIM_CALLER);
    return WriteIndex(call, root, {scheme, subGroup, setting}, power_store::kMainsValue, value);
}

SIM_API DWORD WINAPI PowerWriteDCValueIndex(HKEY root, const GUID* scheme, const GUID* subGroup,
                                            const GUID* setting, DWORD value)
{
    PlatformCall call(CallClass::Power, "PowerWriteDCValueIndex", SIM_CALLER);
    return WriteIndex(call, root, {scheme, subGroup, setting}, power_store::kBatteryValue, value);
}

SIM_API DWORD WINAPI PowerDeleteScheme(HKEY root, const GUID* scheme)
{
    PlatformCall call(CallClass::Power, "PowerDeleteScheme", SIM_CALLER);
    return WithoutRoot(call, root, [&] { return WithRecord(scheme, power_store::DeleteSettingScheme); });
}

// `destination` points to a GUID for the copy, or to null for one that the power manager chooses.
SIM_API DWORD WINAPI PowerDuplicateScheme(HKEY root, const GUID* source, GUID** destination)
{
    PlatformCall call(CallClass::Power, "PowerDuplicateScheme", SIM_CALLER);
    return WithoutRoot(call, root,
                       [&]() -> DWORD
                       {
                           if (source == nullptr || destination == nullptr)
                           {
                               return ERROR_INVALID_PARAMETER;
                           }
                           if (*destination != nullptr)
                           {
                               return power_store::DuplicateScheme(*source, **destination);
                           }
                           GUID chosen{};
                           DWORD error = power_store::ChooseGuid(chosen);
                           error =
                               error == ERROR_SUCCESS ? power_store::DuplicateScheme(*source, chosen) : error;
                           return error == ERROR_SUCCESS ? HandOut(chosen, destination, call) : error;
                       });
}
