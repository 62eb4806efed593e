// control/tool/HardwareVerbs.cpp
//
// The verbs for the hardware: power, driver, embedded controller, devices.

#include "control/Adapters.h"
#include "control/Batteries.h"
#include "control/PowerSource.h"
#include "control/tool/Verbs.h"
#include "machine/DeviceTree.h"
#include "machine/EmbeddedController.h"
#include "machine/Graphics.h"
#include "machine/KernelDriver.h"

#include <setupapi.h>

#include <cstdio>

using namespace simulated;

namespace notebook_tool
{

namespace
{

// What a verb with two words for on and off sets. A verb may have several rows.
struct Switch
{
    std::string_view verb;
    const char* on;
    const char* off;
    bool (*set)(bool isOn);
};
constexpr Switch kSwitches[] = {
    {"mains", "in", "out", &PowerSource::SetMains},
    {"hibernation", "allowed", "refused", &PowerSource::AllowHibernate},
    {"driver", "present", "absent", &KernelDriver::SetPresent},
    {"driver", "busy", "free", &KernelDriver::SetBusy},
    {"graphics", "installed", "missing", &Graphics::SetInstalled},
    {"graphics", "locked", "unlocked",
     [](bool isOn) {
         return Graphics::Refuse("PowerApiOpen", {S_OK, isOn ? Graphics::kLocked : 0});
     }},
};

Outcome SetSwitch(const Request& request)
{
    for (const Switch& row : kSwitches)
    {
        bool isOn = false;
        if (request.verb == row.verb && ParseSwitch(request.Argument(0), row.on, row.off, isOn))
        {
            return DoneIf(row.set(isOn));
        }
    }
    return Outcome::Misused;
}

Outcome SetCharge(const Request& request)
{
    unsigned percent = 0;
    return ParseNumber(request.Argument(0), percent) && percent <= 100
               ? DoneIf(PowerSource::SetCharge(percent))
               : Outcome::Misused;
}

Outcome SetRate(const Request& request)
{
    unsigned milliwatts = 0;
    return ParseNumber(request.Argument(0), milliwatts) ? DoneIf(PowerSource::SetRate(milliwatts))
                                                        : Outcome::Misused;
}

Outcome SetBattery(const Request& request)
{
    if (request.Argument(0) == "add" && request.arguments.size() == 1)
    {
        std::printf("%u\n", Batteries::Add());
        return Outcome::Done;
    }
    bool isIn = false;
    unsigned index = 0;
    if (!ParseSwitch(request.Argument(0), "in", "out", isIn) ||
        (request.arguments.size() > 1 && !ParseNumber(request.Argument(1), index)))
    {
        return Outcome::Misused;
    }
    if (index >= Batteries::Count())
    {
        return Outcome::Refused;
    }
    isIn ? Batteries::Insert(index) : Batteries::Eject(index);
    return DoneIf(index != 0 || PowerSource::SetBattery(isIn));
}

Outcome SetItem(const Request& request)
{
    unsigned value = 0;
    for (const EmbeddedController::NamedItem& item : EmbeddedController::kNamedItems)
    {
        if (request.Argument(0) != item.name || request.arguments.size() != 2)
        {
            continue;
        }
        if (request.Argument(1) == "absent")
        {
            EmbeddedController::RemoveItem(item.number);
            return Outcome::Done;
        }
        if (ParseNumber(request.Argument(1), value))
        {
            EmbeddedController::SetItem(item.number, value);
            return Outcome::Done;
        }
    }
    return Outcome::Misused;
}

Outcome ChangeAdapters(const Request& request)
{
    if (request.Argument(0) == "clear")
    {
        Adapters::Clear();
        return Outcome::Done;
    }
    if (request.Argument(0) == "add" && request.arguments.size() > 1)
    {
        const std::string adapter = Adapters::Add(request.Rest(1), {{"*SpeedDuplex", "0"}});
        std::puts(adapter.c_str());
        return adapter.empty() ? Outcome::Refused : Outcome::Done;
    }
    return Outcome::Misused;
}

// The device with an instance id, else the first whose description holds the text.
std::optional<std::string> FindDevice(const std::string& text)
{
    if (std::optional<std::string> device = DeviceTree::Find(text); device || text.empty())
    {
        return device;
    }
    for (const std::string& id : DeviceTree::All())
    {
        if (DeviceTree::Value(id, "Description").value_or("").find(text) != std::string::npos)
        {
            return id;
        }
    }
    return std::nullopt;
}

Outcome ChangeDevice(const Request& request)
{
    const std::optional<std::string> device = FindDevice(request.Rest(1));
    bool isOn = false;
    if (ParseSwitch(request.Argument(0), "enable", "disable", isOn) && device)
    {
        const DWORD change = isOn ? DICS_ENABLE : DICS_DISABLE;
        return DoneIf(DeviceTree::Change(*device, change, DICS_FLAG_GLOBAL) == ERROR_SUCCESS);
    }
    if (ParseSwitch(request.Argument(0), "plug", "unplug", isOn) && device)
    {
        DeviceTree::SetValue(*device, "Present", isOn ? "1" : "0");
        return Outcome::Done;
    }
    if (ParseSwitch(request.Argument(0), "switch-on", "switch-off", isOn) && device)
    {
        DeviceTree::SetValue(*device, "SwitchedOff", isOn ? "0" : "1");
        return Outcome::Done;
    }
    return request.arguments.size() >= 2 && !device ? Outcome::Refused : Outcome::Misused;
}

constexpr Verb kVerbs[] = {
    {"mains", "in|out", "plugs the mains in or out", &SetSwitch},
    {"charge", "PERCENT", "the charge of the battery", &SetCharge},
    {"rate", "MILLIWATTS", "how fast the battery is charged or discharged", &SetRate},
    {"battery", "in|out [INDEX] | add", "puts a battery in, takes it out, adds a slot with one", &SetBattery},
    {"hibernation", "allowed|refused", "whether Windows lets the machine hibernate", &SetSwitch},
    {"driver", "present|absent|busy|free", "the kernel driver", &SetSwitch},
    {"ec", "backlight|wifi|lan|3g|bluetooth VALUE|absent", "an item of the embedded controller", &SetItem},
    {"adapter", "add DESCRIPTION | clear", "network adapters", &ChangeAdapters},
    {"device", "enable|disable|plug|unplug|switch-on|switch-off DEVICE",
     "a device of the tree, by instance id or part of its description", &ChangeDevice},
    {"graphics", "installed|missing|locked|unlocked", "the graphics driver", &SetSwitch},
};

} // namespace

std::span<const Verb> HardwareVerbs()
{
    return kVerbs;
}

} // namespace notebook_tool
