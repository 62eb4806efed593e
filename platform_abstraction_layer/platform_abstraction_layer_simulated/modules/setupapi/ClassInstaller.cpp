// modules/setupapi/ClassInstaller.cpp
//
// Enabling, disabling and restarting devices. Known differences: no class has an installer or co-installers
// of its own, so that the default handler does the work, and every account may change devices.

#include "machine/DeviceTree.h"
#include "modules/setupapi/DeviceList.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace simulated
{

namespace
{

constexpr DWORD kChanges[] = {DICS_ENABLE, DICS_DISABLE, DICS_PROPCHANGE};
constexpr DWORD kScopes[] = {DICS_FLAG_GLOBAL, DICS_FLAG_CONFIGSPECIFIC};
constexpr DWORD kHardwareProfiles[] = {0, 1}; // the current one, and the only one by its number

template <std::size_t N>
bool IsOneOf(const DWORD (&values)[N], DWORD value)
{
    return std::find(std::begin(values), std::end(values), value) != std::end(values);
}

bool IsValid(const SP_PROPCHANGE_PARAMS& parameters)
{
    return IsOneOf(kChanges, parameters.StateChange) && IsOneOf(kScopes, parameters.Scope) &&
           IsOneOf(kHardwareProfiles, parameters.HwProfile);
}

DWORD SetParameters(DeviceList::Device& device, const SP_CLASSINSTALL_HEADER* header, DWORD size)
{
    if (header == nullptr && size == 0)
    {
        device.parameters.reset();
        return ERROR_SUCCESS;
    }
    if (header == nullptr || size < sizeof *header)
    {
        return ERROR_INVALID_PARAMETER;
    }
    if (header->cbSize != sizeof *header)
    {
        return ERROR_INVALID_USER_BUFFER;
    }
    SP_PROPCHANGE_PARAMS parameters = {};
    if (header->InstallFunction != DIF_PROPERTYCHANGE || size != sizeof parameters)
    {
        return ERROR_INVALID_PARAMETER;
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
