// modules/setupapi/ConfigurationManager.cpp
//
// The device tree as the configuration manager enumerates it, and the state of its nodes. Known difference:
// only the root can be located.

#include "base/PlatformCall.h"
#include "base/Text.h"
#include "machine/DeviceTree.h"
#include "modules/setupapi/DeviceNodes.h"

#include <cfgmgr32.h>

#include <algorithm>
#include <cstring>

namespace simulated
{

namespace
{

// The flags that every node has; the others follow from its state.
constexpr ULONG kAnyNode = DN_NT_ENUMERATOR | DN_NT_DRIVER;

// Passes the instance id of a present node to `work`.
template <class Work>
CONFIGRET WithNode(DEVINST node, ULONG flags, Work work)
{
    if (flags != 0)
    {
        return CR_INVALID_FLAG;
    }
    const std::optional<std::string> known = nodes::IdOf(node);
    if (!known)
    {
        return CR_INVALID_DEVNODE;
    }
    const std::optional<std::string> id = DeviceTree::Find(*known);
    if (!id || !DeviceTree::StateOf(*id).isPresent)
    {
        return CR_NO_SUCH_DEVNODE;
    }
    return work(*id);
}

// The call of a function that works on a node.
template <class Work>
CONFIGRET OnNode(PlatformCall& call, DEVINST node, ULONG flags, Work work)
{
    return static_cast<CONFIGRET>(call.Status([&] { return WithNode(node, flags, work); }));
}

CONFIGRET Locate(PDEVINST node, const wchar_t* instanceId, ULONG flags)
{
    if (node == nullptr)
    {
        return CR_INVALID_POINTER;
    }
    if (flags != CM_LOCATE_DEVNODE_NORMAL)
    {
        return CR_INVALID_FLAG;
    }
    if (instanceId != nullptr)
    {
        return CR_NO_SUCH_DEVNODE;
    }
    *node = nodes::NumberOf(DeviceTree::kRoot);
    return CR_SUCCESS;
}

CONFIGRET Answer(PDEVINST target, const std::string& id)
{
    if (target == nullptr)
    {
        return CR_INVALID_POINTER;
    }
    if (id.empty())
    {
        return CR_NO_SUCH_DEVNODE;
    }
    *target = nodes::NumberOf(id);
    return CR_SUCCESS;
}

std::string FirstChild(const std::string& id)
{
    const std::vector<std::string> children = DeviceTree::Children(id);
    return children.empty() ? std::string() : children.front();
}

std::string NextSibling(const std::string& id)
{
    const std::vector<std::string> siblings = DeviceTree::Children(DeviceTree::Parent(id));
    const auto self = std::find(siblings.begin(), siblings.end(), id);
    return self == siblings.end() || self + 1 == siblings.end() ? std::string() : *(self + 1);
}

CONFIGRET GetStatus(const std::string& id, PULONG status, PULONG problem)
{
    if (status == nullptr || problem == nullptr)
    {
        return CR_INVALID_POINTER;
    }
    const DeviceTree::State state = DeviceTree::StateOf(id);
    *status = kAnyNode | (state.isDisableable ? DN_DISABLEABLE : 0u) |
              (state.problem == 0 ? DN_DRIVER_LOADED | DN_STARTED : DN_HAS_PROBLEM);
    *problem = state.problem;
    return CR_SUCCESS;
}

CONFIGRET GetIdSize(const std::string& id, PULONG length)
{
    if (length == nullptr)
    {
        return CR_INVALID_POINTER;
    }
    *length = static_cast<ULONG>(ToUtf16(id).size());
    return CR_SUCCESS;
}

CONFIGRET GetId(const std::string& id, LPWSTR text, ULONG capacity)
{
    if (text == nullptr)
    {
        return CR_INVALID_POINTER;
    }
    return CopyToUtf16(id, text, capacity) ? CR_SUCCESS : CR_BUFFER_SMALL;
}

CONFIGRET GetProperty(const std::string& id, ULONG number, PULONG type, PVOID buffer, PULONG size)
{
    if (size == nullptr || (buffer == nullptr && *size != 0))
    {
        return CR_INVALID_POINTER;
    }
    if (number == 0 || !nodes::IsProperty(number - 1))
    {
        return CR_INVALID_PROPERTY;
    }
    const std::optional<std::vector<wchar_t>> property = nodes::Property(id, number - 1);
    if (!property)
    {
        *size = 0;
        return CR_NO_SUCH_VALUE;
    }
    const ULONG room = *size;
    *size = static_cast<ULONG>(property->size() * sizeof(wchar_t));
    if (type != nullptr)
    {
        *type = REG_SZ;
    }
    if (buffer == nullptr || *size > room)
    {
        return CR_BUFFER_SMALL;
    }
    std::memcpy(buffer, property->data(), *size);
    return CR_SUCCESS;
}

} // namespace

} // namespace simulated

using namespace simulated;

SIM_API CONFIGRET WINAPI CM_Locate_DevNodeW(PDEVINST device, DEVINSTID_W instanceId, ULONG flags)
{
    PlatformCall call(CallClass::Device, "CM_Locate_DevNodeW", SIM_CALLER);
    call.Arguments(instanceId, flags);
    return static_cast<CONFIGRET>(call.Status([&] { return Locate(device, instanceId, flags); }));
}

SIM_API CONFIGRET WINAPI CM_Get_Child(PDEVINST child, DEVINST device, ULONG flags)
{
    PlatformCall call(CallClass::Device, "CM_Get_Child", SIM_CALLER);
    call.Arguments(device, flags);
    return OnNode(call, device, flags, [&](const std::string& id) { return Answer(child, FirstChild(id)); });
}

SIM_API CONFIGRET WINAPI CM_Get_Sibling(PDEVINST sibling, DEVINST device, ULONG flags)
{
    PlatformCall call(CallClass::Device, "CM_Get_Sibling", SIM_CALLER);
    call.Arguments(device, flags);
    return OnNode(call, device, flags,
                  [&](const std::string& id) { return Answer(sibling, NextSibling(id)); });
}

SIM_API CONFIGRET WINAPI CM_Get_Parent(PDEVINST parent, DEVINST device, ULONG flags)
{
    PlatformCall call(CallClass::Device, "CM_Get_Parent", SIM_CALLER);
    call.Arguments(device, flags);
    return OnNode(call, device, flags,
                  [&](const std::string& id) { return Answer(parent, DeviceTree::Parent(id)); });
}

SIM_API CONFIGRET WINAPI CM_Get_Device_ID_Size(PULONG length, DEVINST device, ULONG flags)
{
    PlatformCall call(CallClass::Device, "CM_Get_Device_ID_Size", SIM_CALLER);
    call.Arguments(device, flags);
    return OnNode(call, device, flags, [&](const std::string& id) { return GetIdSize(id, length); });
}

SIM_API CONFIGRET WINAPI CM_Get_Device_IDW(DEVINST device, LPWSTR text, ULONG capacity, ULONG flags)
{
    PlatformCall call(CallClass::Device, "CM_Get_Device_IDW", SIM_CALLER);
    call.Arguments(device, capacity, flags);
    return OnNode(call, device, flags, [&](const std::string& id) { return GetId(id, text, capacity); });
}

SIM_API CONFIGRET WINAPI CM_Get_DevNode_Registry_PropertyW(DEVINST device, ULONG property, PULONG type,
                                                           PVOID buffer, PULONG size, ULONG flags)
{
    PlatformCall call(CallClass::Device, "CM_Get_DevNode_Registry_PropertyW", SIM_CALLER);
    call.Arguments(device, property, flags);
    return OnNode(call, device, flags,
                  [&](const std::string& id) { return GetProperty(id, property, type, buffer, size); });
}

SIM_API CONFIGRET WINAPI CM_Get_DevNode_Status(PULONG status, PULONG problem, DEVINST device, ULONG flags)
{
    PlatformCall call(CallClass::Device, "CM_Get_DevNode_Status", SIM_CALLER);
    call.Arguments(device, flags);
    return OnNode(call, device, flags, [&](const std::string& id) { return GetStatus(id, status, problem); });
}
