// modules/setupapi/DeviceLists.cpp
//
// Making lists of devices and interfaces, enumerating and reading them. Known differences: a list
// is about this machine and one class alone, and the devices of all enumerators; the type and the needed room
// of a text are not returned; interfaces do not lead to their devices.

#include "base/GuidText.h"
#include "base/Text.h"
#include "machine/DeviceTree.h"
#include "modules/setupapi/DeviceList.h"
#include "modules/setupapi/DeviceNodes.h"

#include <cstddef>
#include <cstring>

namespace simulated
{

namespace
{

const HDEVINFO kNoList = INVALID_HANDLE_VALUE;

std::optional<GUID> Optional(const GUID* guid)
{
    return guid == nullptr ? std::nullopt : std::optional(*guid);
}

// The devices that have `classGuid` in this line of their sections: "Class" or "Interface".
std::vector<std::string> DevicesWith(const char* key, const GUID& classGuid, DWORD flags)
{
    std::vector<std::string> ids = DeviceTree::All();
    std::erase_if(ids,
                  [&](const std::string& id)
                  {
                      const auto found = ParseGuid(DeviceTree::Value(id, key).value_or(""));
                      return !found || !IsSame(*found, classGuid) ||
                             ((flags & DIGCF_PRESENT) != 0 && !DeviceTree::StateOf(id).isPresent);
                  });
    return ids;
}

Outcome<HDEVINFO> List(const GUID* classGuid, PCWSTR enumerator, DWORD flags, const PlatformCall& call)
{
    if ((flags & ~DWORD{DIGCF_PRESENT | DIGCF_DEVICEINTERFACE}) != 0)
    {
        return {kNoList, ERROR_INVALID_FLAGS};
    }
    if (classGuid == nullptr || enumerator != nullptr)
    {
        return {kNoList, ERROR_INVALID_PARAMETER};
    }
    const bool isOneClass = (flags & DIGCF_DEVICEINTERFACE) == 0;
    const auto list = std::make_shared<DeviceList>(isOneClass ? Optional(classGuid) : std::nullopt);
    for (const std::string& id : DevicesWith(isOneClass ? "Class" : "Interface", *classGuid, flags))
    {
        isOneClass ? void(list->Add(id)) : list->AddInterface(id, *classGuid);
    }
    return {HandleTable::Insert(list, call)};
}

DWORD Open(DeviceList& list, PCWSTR instanceId, DWORD flags, PSP_DEVINFO_DATA device)
{
    if (flags != 0)
    {
        return ERROR_INVALID_FLAGS;
    }
    if (instanceId == nullptr)
    {
        return ERROR_INVALID_PARAMETER;
    }
    const std::optional<std::string> id = DeviceTree::Find(ToUtf8(instanceId));
    if (!id || *id == DeviceTree::kRoot)
    {
        return ERROR_NO_SUCH_DEVINST;
    }
    if (list.SetupClass() && !IsSame(*list.SetupClass(), nodes::SetupClassOf(*id)))
    {
        return ERROR_CLASS_MISMATCH;
    }
    if (device != nullptr && device->cbSize != sizeof *device)
    {
        return ERROR_INVALID_USER_BUFFER;
    }
    const std::size_t place = list.Add(*id);
    return device == nullptr ? DWORD{ERROR_SUCCESS} : list.Describe(place, device);
}

DWORD GetInstanceId(const DeviceList::Device& device, PWSTR text, DWORD capacity)
{
    if ((text == nullptr) != (capacity == 0))
    {
        return ERROR_INVALID_PARAMETER;
    }
    return CopyToUtf16(device.instanceId, text, capacity) ? ERROR_SUCCESS : ERROR_INSUFFICIENT_BUFFER;
}

DWORD GetProperty(const DeviceList::Device& device, DWORD number, PBYTE buffer, DWORD size)
{
    if (!nodes::IsProperty(number))
    {
        return ERROR_INVALID_REG_PROPERTY;
    }
    if ((buffer == nullptr) != (size == 0))
    {
        return ERROR_INVALID_PARAMETER;
    }
    const std::optional<std::vector<wchar_t>> property = nodes::Property(device.instanceId, number);
    if (!property)
    {
        return ERROR_INVALID_DATA;
    }
    const std::size_t needed = property->size() * sizeof(wchar_t);
    if (needed > size)
    {
        return ERROR_INSUFFICIENT_BUFFER;
    }
    std::memcpy(buffer, property->data(), needed);
    return ERROR_SUCCESS;
}

DWORD DescribeList(const DeviceList& list, PSP_DEVINFO_LIST_DETAIL_DATA_W detail)
{
    if (detail == nullptr || detail->cbSize != sizeof *detail)
    {
        return ERROR_INVALID_USER_BUFFER;
    }
    detail->ClassGuid = list.SetupClass().value_or(GUID{});
    detail->RemoteMachineHandle = nullptr;
    detail->RemoteMachineName[0] = 0;
    return ERROR_SUCCESS;
}

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

DWORD Destroy(HDEVINFO handle)
{
    return WithList(handle, [&](DeviceList&) { return HandleTable::Close(handle); });
}

} // namespace

} // namespace simulated

using namespace simulated;

SIM_API HDEVINFO WINAPI SetupDiCreateDeviceInfoList(const GUID* classGuid, HWND)
{
    PlatformCall call(CallClass::Device, "SetupDiCreateDeviceInfoList", SIM_CALLER);
    return call.Result<HDEVINFO>(kNoList,
                                 [&] {
                                     return Outcome<HDEVINFO>{HandleTable::Insert(
                                         std::make_shared<DeviceList>(Optional(classGuid)), call)};
                                 });
}

SIM_API HDEVINFO WINAPI SetupDiGetClassDevsW(const GUID* classGuid, PCWSTR enumerator, HWND, DWORD flags)
{
    PlatformCall call(CallClass::Device, "SetupDiGetClassDevsW", SIM_CALLER);
    call.Arguments(classGuid == nullptr ? "null" : ToText(*classGuid).c_str(), enumerator, flags);
    return call.Result<HDEVINFO>(kNoList, [&] { return List(classGuid, enumerator, flags, call); });
}

SIM_API BOOL WINAPI SetupDiDestroyDeviceInfoList(HDEVINFO list)
{
    PlatformCall call(CallClass::Device, "SetupDiDestroyDeviceInfoList", SIM_CALLER);
    call.Arguments(list);
    return call.Release([&] { return Destroy(list); });
}

SIM_API BOOL WINAPI SetupDiEnumDeviceInfo(HDEVINFO list, DWORD index, PSP_DEVINFO_DATA device)
{
    PlatformCall call(CallClass::Device, "SetupDiEnumDeviceInfo", SIM_CALLER);
    call.Arguments(list, index);
    return call.Boolean(
        [&] { return WithList(list, [&](DeviceList& found) { return found.Describe(index, device); }); });
}

SIM_API BOOL WINAPI SetupDiOpenDeviceInfoW(HDEVINFO list, PCWSTR instanceId, HWND, DWORD flags,
                                           PSP_DEVINFO_DATA device)
{
    PlatformCall call(CallClass::Device, "SetupDiOpenDeviceInfoW", SIM_CALLER);
    call.Arguments(list, instanceId, flags);
    return call.Boolean(
        [&] {
            return WithList(list, [&](DeviceList& found) { return Open(found, instanceId, flags, device); });
        });
}

SIM_API BOOL WINAPI SetupDiGetDeviceInstanceIdW(HDEVINFO list, PSP_DEVINFO_DATA device, PWSTR text,
                                                DWORD capacity, PDWORD required)
{
    PlatformCall call(CallClass::Device, "SetupDiGetDeviceInstanceIdW", SIM_CALLER);
    call.Arguments(list, capacity);
    return call.Boolean(
        [&]
        {
            return required != nullptr ? DWORD{ERROR_INVALID_PARAMETER}
                                       : WithDevice(list, device,
                                                    [&](const DeviceList::Device& row)
                                                    { return GetInstanceId(row, text, capacity); });
        });
}

SIM_API BOOL WINAPI SetupDiGetDeviceRegistryPropertyW(HDEVINFO list, PSP_DEVINFO_DATA device, DWORD property,
                                                      PDWORD type, PBYTE buffer, DWORD size, PDWORD required)
{
    PlatformCall call(CallClass::Device, "SetupDiGetDeviceRegistryPropertyW", SIM_CALLER);
    call.Arguments(list, property, size);
    return call.Boolean(
        [&]
        {
            return type != nullptr || required != nullptr
                       ? DWORD{ERROR_INVALID_PARAMETER}
                       : WithDevice(list, device,
                                    [&](const DeviceList::Device& row)
                                    { return GetProperty(row, property, buffer, size); });
        });
}

SIM_API BOOL WINAPI SetupDiGetDeviceInfoListDetailW(HDEVINFO list, PSP_DEVINFO_LIST_DETAIL_DATA_W detail)
{
    PlatformCall call(CallClass::Device, "SetupDiGetDeviceInfoListDetailW", SIM_CALLER);
    call.Arguments(list);
    return call.Boolean(
        [&] { return WithList(list, [&](DeviceList& found) { return DescribeList(found, detail); }); });
}

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
