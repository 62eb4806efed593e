// machine/DeviceTree.cpp
//
// Devices in machine.ini. Known differences: there is one hardware profile, and a device can be restarted and
// disabled at any time, because nobody holds it open.

#include "machine/DeviceTree.h"

#include "base/GuidText.h"
#include "base/Text.h"
#include "machine/Machine.h"

#include <cfgmgr32.h>
#include <setupapi.h>

#include <algorithm>

namespace simulated
{

namespace
{

constexpr std::string_view kDeviceSectionBegin = "Device ";

std::string DeviceSection(const std::string& instanceId)
{
    return std::string(kDeviceSectionBegin) + instanceId;
}

bool Flag(const std::string& instanceId, const char* key, bool otherwise)
{
    return Machine::ReadNumber(DeviceSection(instanceId), key, otherwise) != 0;
}

void SetFlag(const std::string& instanceId, const char* key, bool on)
{
    Machine::WriteNumber(DeviceSection(instanceId), key, on);
}

const char* FlagOf(DWORD scope)
{
    return scope == DICS_FLAG_GLOBAL ? "Disabled" : "DisabledInProfile";
}

DWORD Disable(const std::string& instanceId, DWORD scope)
{
    const DeviceTree::State state = DeviceTree::StateOf(instanceId);
    if (!state.isDisableable || state.problem == CM_PROB_HARDWARE_DISABLED)
    {
        return ERROR_NOT_DISABLEABLE;
    }
    SetFlag(instanceId, FlagOf(scope), true);
    return ERROR_SUCCESS;
}

} // namespace

void DeviceTree::Add(const Description& device)
{
    Machine::Entries entries = {{"Class", ToText(device.setupClass)}, {"Description", device.description}};
    if (!device.parent.empty())
    {
        entries.emplace_back("Parent", device.parent);
    }
    if (!device.driver.empty())
    {
        entries.emplace_back("Driver", device.driver);
    }
    if (device.interfaceClass)
    {
        entries.emplace_back("Interface", ToText(*device.interfaceClass));
    }
    entries.insert(entries.end(), device.values.begin(), device.values.end());
    Machine::Write(DeviceSection(device.instanceId), entries);
}

void DeviceTree::Remove(const std::string& instanceId)
{
    Machine::Remove(DeviceSection(instanceId));
}

std::vector<std::string> DeviceTree::All()
{
    return Machine::Sections(kDeviceSectionBegin);
}

std::optional<std::string> DeviceTree::Find(const std::string& instanceId)
{
    if (EqualIgnoringCase(instanceId, kRoot))
    {
        return kRoot;
    }
    const std::vector<std::string> ids = All();
    const auto found = std::find_if(ids.begin(), ids.end(),
                                    [&](const std::string& id) { return EqualIgnoringCase(id, instanceId); });
    return found == ids.end() ? std::nullopt : std::optional(*found);
}

std::string DeviceTree::Parent(const std::string& instanceId)
{
    if (EqualIgnoringCase(instanceId, kRoot))
    {
        return {};
    }
    return Find(Value(instanceId, "Parent").value_or(kRoot)).value_or(kRoot);
}

std::vector<std::string> DeviceTree::Children(const std::string& instanceId)
{
    std::vector<std::string> children;
    for (std::string& id : All())
    {
        if (StateOf(id).isPresent && EqualIgnoringCase(Parent(id), instanceId))
        {
            children.push_back(std::move(id));
        }
    }
    return children;
}

std::optional<std::string> DeviceTree::Value(const std::string& instanceId, const std::string& key)
{
    return Machine::Read(DeviceSection(instanceId), key);
}

std::optional<ULONG> DeviceTree::Number(const std::string& instanceId, const std::string& key)
{
    const auto number = Machine::ReadNumber(DeviceSection(instanceId), key);
    return number ? std::optional(static_cast<ULONG>(*number)) : std::nullopt;
}

void DeviceTree::SetValue(const std::string& instanceId, const std::string& key, const std::string& value)
{
    Machine::Write(DeviceSection(instanceId), key, value);
}

DeviceTree::State DeviceTree::StateOf(const std::string& instanceId)
{
    if (EqualIgnoringCase(instanceId, kRoot))
    {
        return {true, false, 0};
    }
    State state = {Flag(instanceId, "Present", true), Flag(instanceId, "Disableable", true), 0};
    if (Flag(instanceId, "Disabled", false) || Flag(instanceId, "DisabledInProfile", false))
    {
        state.problem = CM_PROB_DISABLED;
    }
    else if (Flag(instanceId, "SwitchedOff", false))
    {
        state.problem = CM_PROB_HARDWARE_DISABLED;
    }
    else
    {
        state.problem = static_cast<DWORD>(Machine::ReadNumber(DeviceSection(instanceId), "Problem", 0));
    }
    return state;
}

std::vector<std::string> DeviceTree::WithInterface(const GUID& interfaceClass)
{
    const std::string wanted = ToText(interfaceClass);
    std::vector<std::string> ids = All();
    std::erase_if(ids,
                  [&](const std::string& id) {
                      return !EqualIgnoringCase(Value(id, "Interface").value_or(""), wanted) ||
                             !StateOf(id).isPresent;
                  });
    return ids;
}

std::string DeviceTree::InterfacePath(const std::string& instanceId, const GUID& interfaceClass)
{
    std::string path = instanceId + '#' + ToText(interfaceClass);
    std::transform(path.begin(), path.end(), path.begin(),
                   [](char letter)
                   {
                       const bool isUpper = letter >= 'A' && letter <= 'Z';
                       return letter == '\\' ? '#' : static_cast<char>(isUpper ? letter - 'A' + 'a' : letter);
                   });
    return "\\\\?\\" + path;
}

DWORD DeviceTree::Change(const std::string& instanceId, DWORD change, DWORD scope)
{
    if (!StateOf(instanceId).isPresent)
    {
        return ERROR_NO_SUCH_DEVINST;
    }
    switch (change)
    {
    case DICS_ENABLE:
        SetFlag(instanceId, FlagOf(scope), false);
        return ERROR_SUCCESS;
    case DICS_DISABLE:
        return Disable(instanceId, scope);
    case DICS_PROPCHANGE: // a restart, which leaves no trace
        return ERROR_SUCCESS;
    default:
        return ERROR_INVALID_PARAMETER;
    }
}

} // namespace simulated
