// notebook/tool/HardwareVerbs.cpp
//
// The verbs for the hardware: power, driver, embedded controller, devices.

#include "notebook/Adapters.h"
#include "notebook/Batteries.h"
#include "notebook/DeviceTree.h"
#include "notebook/EmbeddedController.h"
#include "notebook/KernelDriver.h"
#include "notebook/PowerSource.h"
#include "tool/Verbs.h"

#include <cstdio>

using namespace simulated;

namespace notebook_tool
{

namespace
{

Outcome SetMains(const Request& request)
{
    bool isIn = false;
    if (!ParseSwitch(request.Argument(0), "in", "out", isIn))
    {
        return Outcome::Misused;
    }
    return DoneIf(isIn ? PowerSource::Plug() : PowerSource::Unplug());
}

Outcome SetCharge(const Request& request)
{
    unsigned percent = 0;
    return ParseNumber(request.Argument(0), percent) && percent <= 100
               ? DoneIf(PowerSource::SetCharge(percent))
               : Outcome::Misused;
}

Outcome SetBattery(const Request& request)
{
    bool isIn = false;
    unsigned index = 0;
    if (!ParseSwitch(request.Argument(0), "in", "out", isIn) ||
        (request.arguments.size() > 1 && !ParseNumber(request.Argument(1), index)))
    {
        return Outcome::Misused;
    }
    if (index >= Batteries::All().size())
    {
        return Outcome::Refused;
    }
    isIn ? Batteries::Insert(index) : Batteries::Eject(index);
    return DoneIf(index != 0 || (isIn ? PowerSource::InsertBattery() : PowerSource::RemoveBattery()));
}

Outcome SetHibernation(const Request& request)
{
    bool isAllowed = false;
    return ParseSwitch(request.Argument(0), "allowed", "refused", isAllowed)
               ? DoneIf(PowerSource::AllowHibernate(isAllowed))
               : Outcome::Misused;
}

Outcome SetDriver(const Request& request)
{
    const std::string state = request.Argument(0);
    bool isOn = false;
    if (ParseSwitch(state, "present", "absent", isOn))
    {
        KernelDriver::SetPresent(isOn);
        return Outcome::Done;
    }
    if (ParseSwitch(state, "busy", "free", isOn))
    {
        KernelDriver::SetBusy(isOn);
        return Outcome::Done;
    }
    return Outcome::Misused;
}

struct ControllerItem
{
    const char* name;
    DWORD number;
};
constexpr ControllerItem kItems[] = {
    {"backlight", EmbeddedController::kBacklight},
    {"wifi", EmbeddedController::kWifi},
    {"lan", EmbeddedController::kLan},
    {"3g", EmbeddedController::k3G},
    {"bluetooth", EmbeddedController::kBluetooth},
};

Outcome SetItem(const Request& request)
{
    unsigned value = 0;
    for (const ControllerItem& item : kItems)
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
        std::puts(Adapters::Add(request.Rest(1), {{"*SpeedDuplex", "0"}}).c_str());
        return Outcome::Done;
    }
    return Outcome::Misused;
}

Outcome ChangeDevice(const Request& request)
{
    const std::optional<std::string> device = DeviceTree::Find(request.Argument(1));
    bool isOn = false;
    if (ParseSwitch(request.Argument(0), "plug", "unplug", isOn) && device)
    {
        DeviceTree::SetPresent(*device, isOn);
        return Outcome::Done;
    }
    if (ParseSwitch(request.Argument(0), "switch-on", "switch-off", isOn) && device)
    {
        DeviceTree::SwitchOff(*device, !isOn);
        return Outcome::Done;
    }
    return request.arguments.size() == 2 ? Outcome::Refused : Outcome::Misused;
}

constexpr Verb kVerbs[] = {
    {"mains", "in|out", "plugs the mains in or out", &SetMains},
    {"charge", "PERCENT", "the charge of the battery", &SetCharge},
    {"battery", "in|out [INDEX]", "puts a battery in, or takes it out", &SetBattery},
    {"hibernation", "allowed|refused", "whether Windows lets the machine hibernate", &SetHibernation},
    {"driver", "present|absent|busy|free", "the kernel driver", &SetDriver},
    {"ec", "backlight|wifi|lan|3g|bluetooth VALUE|absent", "an item of the embedded controller", &SetItem},
    {"adapter", "add DESCRIPTION | clear", "network adapters", &ChangeAdapters},
    {"device", "plug|unplug|switch-on|switch-off INSTANCE", "a device of the tree", &ChangeDevice},
};

} // namespace

std::span<const Verb> HardwareVerbs()
{
    return kVerbs;
}

} // namespace notebook_tool
