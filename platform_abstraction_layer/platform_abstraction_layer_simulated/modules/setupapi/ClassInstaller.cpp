// modules/setupapi/ClassInstaller.cpp
//
// Enabling, disabling and restarting devices, and the registry keys of setup classes, where the drivers of a
// class keep their settings. Known differences: no class has an installer or co-installers of its own, so
// that the default handler does the work; every account may change devices; class install parameters once set
// stay.

#include "base/GuidText.h"
#include "machine/DeviceTree.h"
#include "modules/advapi32/RegistryKey.h"
#include "modules/setupapi/DeviceList.h"

#include <cstring>

namespace simulated
{

namespace
{

// There is one hardware profile, which is the current one and number 1.
bool IsValid(const SP_PROPCHANGE_PARAMS& parameters)
{
    const DWORD change = parameters.StateChange;
    return (change == DICS_ENABLE || change == DICS_DISABLE || change == DICS_PROPCHANGE) &&
           (parameters.Scope == DICS_FLAG_GLOBAL || parameters.Scope == DICS_FLAG_CONFIGSPECIFIC) &&
           parameters.HwProfile <= 1;
}

DWORD SetParameters(DeviceList::Device& device, const SP_CLASSINSTALL_HEADER* header, DWORD size)
{
    SP_PROPCHANGE_PARAMS parameters = {};
    if (header == nullptr || size != sizeof parameters || header->InstallFunction != DIF_PROPERTYCHANGE)
    {
        return ERROR_INVALID_PARAMETER;
    }
    if (header->cbSize != sizeof *header)
    {
        return ERROR_INVALID_USER_BUFFER;
    }
    std::memcpy(&parameters, header, sizeof parameters);
    if (!IsValid(parameters))
    {
        return ERROR_INVALID_PARAMETER;
    }
    device.parameters = parameters;
    return ERROR_SUCCESS;
}

DWORD ChangeState(const DeviceList::Device& device)
{
    return device.parameters ? DeviceTree::Change(device.instanceId, device.parameters->StateChange,
                                                  device.parameters->Scope)
                             : ERROR_NO_CLASSINSTALL_PARAMS;
}

DWORD CallInstaller(DI_FUNCTION function, const DeviceList::Device& device)
{
    return function == DIF_PROPERTYCHANGE ? ChangeState(device) : ERROR_DI_DO_DEFAULT;
}

const HKEY kNoKey = static_cast<HKEY>(INVALID_HANDLE_VALUE);

constexpr const char* kClassKeys = "SYSTEM\\CurrentControlSet\\Control\\Class\\";

Outcome<HKEY> OpenClassKey(const GUID* classGuid, REGSAM access, DWORD flags, PCWSTR machine,
                           const PlatformCall& call)
{
    if (flags != DIOCR_INSTALLER || machine != nullptr || classGuid == nullptr)
    {
        return {kNoKey, ERROR_INVALID_PARAMETER};
    }
    registry::Base base;
    std::shared_ptr<registry::Key> key;
    DWORD error = registry::FindBase(HKEY_LOCAL_MACHINE, base);
    error =
        error == ERROR_SUCCESS ? registry::Open(base, kClassKeys + ToText(*classGuid), access, key) : error;
    if (error != ERROR_SUCCESS)
    {
        return {kNoKey, error == ERROR_FILE_NOT_FOUND ? DWORD{ERROR_INVALID_CLASS} : error};
    }
    return {static_cast<HKEY>(HandleTable::Insert(key, call))};
}

} // namespace

} // namespace simulated

using namespace simulated;

SIM_API BOOL WINAPI SetupDiSetClassInstallParamsW(HDEVINFO list, PSP_DEVINFO_DATA device,
                                                  PSP_CLASSINSTALL_HEADER parameters, DWORD size)
{
    PlatformCall call(CallClass::Device, "SetupDiSetClassInstallParamsW", SIM_CALLER);
    call.Arguments(list, size);
    return call.Boolean(
        [&]
        {
            return WithDevice(list, device,
                              [&](DeviceList::Device& row) { return SetParameters(row, parameters, size); });
        });
}

SIM_API BOOL WINAPI SetupDiChangeState(HDEVINFO list, PSP_DEVINFO_DATA device)
{
    PlatformCall call(CallClass::Device, "SetupDiChangeState", SIM_CALLER);
    call.Arguments(list);
    return call.Boolean([&] { return WithDevice(list, device, &ChangeState); });
}

SIM_API BOOL WINAPI SetupDiCallClassInstaller(DI_FUNCTION function, HDEVINFO list, PSP_DEVINFO_DATA device)
{
    PlatformCall call(CallClass::Device, "SetupDiCallClassInstaller", SIM_CALLER);
    call.Arguments(function, list);
    return call.Boolean(
        [&]
        {
            return WithDevice(list, device,
                              [&](const DeviceList::Device& row) { return CallInstaller(function, row); });
        });
}

SIM_API HKEY WINAPI SetupDiOpenClassRegKeyExW(const GUID* classGuid, REGSAM access, DWORD flags,
                                              PCWSTR machine, PVOID)
{
    PlatformCall call(CallClass::Device, "SetupDiOpenClassRegKeyExW", SIM_CALLER);
    call.Arguments(classGuid == nullptr ? "null" : ToText(*classGuid).c_str(), access, flags);
    return call.Result<HKEY>(kNoKey, [&] { return OpenClassKey(classGuid, access, flags, machine, call); });
}
