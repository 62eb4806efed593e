// agents/DeviceTree.cpp
//
// The search for a device in the tree of all devices, through the configuration manager.

#include "agents/DevMgr.h"

#include "foundation/Results.h"
#include "foundation/Text.h"

#include <cfgmgr32.h>

namespace
{

// Goes on to the next device in depth-first order; false behind the last.
bool GoOn(DEVINST& device) noexcept
{
    DEVINST next = 0;
    if (CM_Get_Child(&next, device, 0) == CR_SUCCESS)
    {
        device = next;
        return true;
    }
    while (CM_Get_Sibling(&next, device, 0) != CR_SUCCESS)
    {
        if (CM_Get_Parent(&next, device, 0) != CR_SUCCESS)
        {
            return false;
        }
        device = next;
    }
    device = next;
    return true;
}

// True when the device's description is `description`. Logs what it finds.
bool IsDescribedAs(DEVINST device, const wchar_t* description) noexcept
{
    // One character more than is read, so that a text without a terminator ends all the same.
    wchar_t found[text::kPathCapacity + 1] = {};
    ULONG size = sizeof found - sizeof(wchar_t);
    const CONFIGRET read =
        CM_Get_DevNode_Registry_PropertyW(device, CM_DRP_DEVICEDESC, nullptr, found, &size, 0);
    if (read != CR_SUCCESS)
    {
        CORVLBase::DBGOUT(L"Cannot Get_DevNode_Registry_Property for %ld,size=%ld", read, size);
        return false;
    }
    if (found[0] != L'\0')
    {
        CORVLBase::DBGOUT(L"%s", found);
    }
    return text::EqualNames(found, description);
}

// Logs `message` with `number`. Always 0x80004005.
LONG Fail(const wchar_t* message, ULONG number) noexcept
{
    CORVLBase::DBGOUT(message, number);
    return kGeneralFailure;
}

// The instance id of a device.
LONG GetInstanceId(DEVINST device, wchar_t* instanceId, ULONG size) noexcept
{
    ULONG length = 0;
    if (const CONFIGRET result = CM_Get_Device_ID_Size(&length, device, 0); result != CR_SUCCESS)
    {
        return Fail(L"Cannot Get_Device_ID_Size for %ld", result);
    }
    if (size < length + 1)
    {
        return Fail(L"Input buffer is too small for %ld", length + 1);
    }
    if (const CONFIGRET read = CM_Get_Device_IDW(device, instanceId, size, 0); read != CR_SUCCESS)
    {
        return Fail(L"Cannot Get_Device_ID for %ld", read);
    }
    CORVLBase::DBGOUT(L"%s", instanceId);
    return kSucceeded;
}

} // namespace

LONG CDevMgr::DrvDescToInstID(const wchar_t* driverDesc, wchar_t* instanceId, ULONG size) noexcept
{
    if (driverDesc == nullptr || instanceId == nullptr)
    {
        return kGeneralFailure;
    }
    DEVINST device = 0;
    if (const CONFIGRET located = CM_Locate_DevNodeW(&device, nullptr, CM_LOCATE_DEVNODE_NORMAL);
        located != CR_SUCCESS)
    {
        return Fail(L"Cannot locate devnode for %ld", located);
    }
    do
    {
        if (IsDescribedAs(device, driverDesc))
        {
            return GetInstanceId(device, instanceId, size);
        }
    } while (GoOn(device));
    return kGeneralFailure;
}
