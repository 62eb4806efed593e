// modules/setupapi/DeviceInterfaces.cpp
//
// The interfaces of a list's devices and the paths to open them by. Known difference: they don't lead to
// their devices.

#include "base/Text.h"
#include "machine/DeviceTree.h"
#include "modules/setupapi/DeviceList.h"

#include <cstddef>
#include <cstring>

namespace simulated
{

namespace
{

// Where a caller wants an interface's path.
struct DetailTarget
{
    SP_DEVICE_INTERFACE_DETAIL_DATA_W* detail;
    DWORD size;
    PDWORD required;
};

DWORD GetDetail(const DeviceList& list, const SP_DEVICE_INTERFACE_DATA* data, const DetailTarget& target)
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
    return ERROR_SUCCESS;
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
            return device != nullptr || interfaceClass == nullptr
                       ? DWORD{ERROR_INVALID_PARAMETER}
                       : WithList(list, [&](DeviceList& found)
                                  { return found.DescribeInterface(*interfaceClass, index, data); });
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
            return device != nullptr ? DWORD{ERROR_INVALID_PARAMETER}
                                     : WithList(list,
                                                [&](DeviceList& found) {
                                                    return GetDetail(found, data, {detail, size, required});
                                                });
        });
}
