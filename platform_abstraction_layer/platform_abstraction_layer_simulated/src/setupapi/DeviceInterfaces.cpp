// setupapi/DeviceInterfaces.cpp
//
// The interfaces of a list's devices and the paths to open them by.

#include "notebook/DeviceTree.h"
#include "notebook/Text.h"
#include "setupapi/DeviceList.h"

#include <cstddef>
#include <cstring>

namespace simulated
{

namespace
{

DWORD Enumerate(DeviceList& list, const SP_DEVINFO_DATA* device, const GUID* interfaceClass, DWORD index,
                SP_DEVICE_INTERFACE_DATA* data)
{
    if (interfaceClass == nullptr)
    {
        return ERROR_INVALID_PARAMETER;
    }
    std::string id;
    if (device != nullptr)
    {
        const DWORD error = list.With(device,
                                      [&](const DeviceList::Device& row)
                                      {
                                          id = row.instanceId;
                                          return DWORD{ERROR_SUCCESS};
                                      });
        if (error != ERROR_SUCCESS)
        {
            return error;
        }
    }
    return list.DescribeInterface(*interfaceClass, device == nullptr ? nullptr : &id, index, data);
}

// Where a caller wants an interface's path, and its device.
struct Target
{
    SP_DEVICE_INTERFACE_DETAIL_DATA_W* detail;
    DWORD size;
    PDWORD required;
    SP_DEVINFO_DATA* device;
};

DWORD GetDetail(DeviceList& list, const SP_DEVICE_INTERFACE_DATA* data, const Target& target)
{
    DeviceList::Interface found;
    if (const DWORD error = list.Resolve(data, found); error != ERROR_SUCCESS)
    {
        return error;
    }
    const bool hasDetail = target.detail != nullptr;
    if (hasDetail != (target.size != 0) || (hasDetail && (target.size < sizeof *target.detail ||
                                                          target.detail->cbSize != sizeof *target.detail)))
    {
        return ERROR_INVALID_USER_BUFFER;
    }
    std::vector<wchar_t> path = ToUtf16(DeviceTree::InterfacePath(found.instanceId, found.interfaceClass));
    path.push_back(0);
    constexpr std::size_t kPathOffset = offsetof(SP_DEVICE_INTERFACE_DETAIL_DATA_W, DevicePath);
    const std::size_t pathSize = path.size() * sizeof path[0];
    if (target.required != nullptr)
    {
        *target.required = static_cast<DWORD>(kPathOffset + pathSize);
    }
    if (kPathOffset + pathSize > target.size)
    {
        return ERROR_INSUFFICIENT_BUFFER;
    }
    std::memcpy(reinterpret_cast<BYTE*>(target.detail) + kPathOffset, path.data(), pathSize);
    return target.device == nullptr ? DWORD{ERROR_SUCCESS}
                                    : list.Describe(list.Add(found.instanceId), target.device);
}

} // namespace

} // namespace simulated

using namespace simulated;

SIM_API BOOL WINAPI SetupDiEnumDeviceInterfaces(HDEVINFO list, PSP_DEVINFO_DATA device,
                                                const GUID* interfaceClass, DWORD index,
                                                PSP_DEVICE_INTERFACE_DATA data)
{
    PlatformCall call(CallClass::Device, "SetupDiEnumDeviceInterfaces", SIM_CALLER);
    call.Arguments(list, index);
    return call.Boolean(
        [&]
        {
            return WithList(list, [&](DeviceList& found)
                            { return Enumerate(found, device, interfaceClass, index, data); });
        });
}

SIM_API BOOL WINAPI SetupDiGetDeviceInterfaceDetailW(HDEVINFO list, PSP_DEVICE_INTERFACE_DATA data,
                                                     PSP_DEVICE_INTERFACE_DETAIL_DATA_W detail, DWORD size,
                                                     PDWORD required, PSP_DEVINFO_DATA device)
{
    PlatformCall call(CallClass::Device, "SetupDiGetDeviceInterfaceDetailW", SIM_CALLER);
    call.Arguments(list, size);
    return call.Boolean(
        [&]
        {
            return WithList(list,
                            [&](DeviceList& found) {
                                return GetDetail(found, data, {detail, size, required, device});
                            });
        });
}
