// control/Adapters.cpp
//
// Each adapter is a device and a driver key.

#include "control/Adapters.h"

#include "base/GuidText.h"
#include "base/Text.h"
#include "control/RegistryEditor.h"
#include "machine/DeviceTree.h"

#include <devguid.h>

#include <algorithm>
#include <cstdio>
#include <tuple>

namespace simulated
{

namespace
{

constexpr const char* kClassKeys = "HKLM\\SYSTEM\\CurrentControlSet\\Control\\Class\\";

std::string DriverPath(const std::string& instanceId)
{
    return kClassKeys + DeviceTree::Value(instanceId, "Driver").value_or("");
}

bool IsDriverTaken(const std::string& driver)
{
    const std::vector<std::string> all = Adapters::All();
    return std::any_of(all.begin(), all.end(),
                       [&](const std::string& id)
                       { return EqualIgnoringCase(DeviceTree::Value(id, "Driver").value_or(""), driver); });
}

std::string Numbered(const char* format, unsigned number)
{
    char text[64];
    std::snprintf(text, sizeof text, format, number);
    return text;
}

} // namespace

std::string Adapters::Add(const std::string& description, const Settings& settings)
{
    unsigned number = 0;
    const std::string begin = ToText(GUID_DEVCLASS_NET) + '\\';
    while (IsDriverTaken(begin + Numbered("%04u", number)))
    {
        ++number;
    }
    DeviceTree::Description device = {Numbered("PCI\\VEN_1AF4&DEV_10D3\\4&1B2F3C5D&0&%04X", number),
                                      GUID_DEVCLASS_NET, description};
    device.driver = begin + Numbered("%04u", number);
    DeviceTree::Add(device);
    const std::string key = DriverPath(device.instanceId);
    bool isWritten = RegistryEditor::WriteText(key, "DriverDesc", description);
    for (const auto& [name, text] : settings)
    {
        isWritten = RegistryEditor::WriteText(key, name, text) && isWritten;
    }
    return isWritten ? device.instanceId : std::string();
}

void Adapters::Clear()
{
    for (const std::string& id : All())
    {
        std::ignore = RegistryEditor::RemoveKey(DriverPath(id)); // one added without a driver has none
        DeviceTree::Remove(id);
    }
}

std::vector<std::string> Adapters::All()
{
    const std::string netClass = ToText(GUID_DEVCLASS_NET);
    std::vector<std::string> ids = DeviceTree::All();
    std::erase_if(ids, [&](const std::string& id)
                  { return !EqualIgnoringCase(DeviceTree::Value(id, "Class").value_or(""), netClass); });
    return ids;
}

std::optional<std::string> Adapters::Setting(const std::string& instanceId, const std::string& name)
{
    return RegistryEditor::ReadText(DriverPath(instanceId), name);
}

bool Adapters::SetSetting(const std::string& instanceId, const std::string& name, const std::string& text)
{
    return RegistryEditor::WriteText(DriverPath(instanceId), name, text);
}

} // namespace simulated
