// machine/EmbeddedController.h
//
// The embedded controller and the firmware's control methods in front of it.
//
// machine.ini, section "EmbeddedController", has a line for each item: "0xC0=0x05". The value 0xFF stands for
// a device that isn't fitted; writing such an item changes nothing. Section "ControlMethods" has a line for
// each method that the firmware knows, with its result: "_STA=0x0000000F", "GWRI=0x00000001". "GRDI"
// returns an item's value and needs no number; "EBTR 0x0F" holds the twelve rows of the battery record with
// selector 15.
#pragma once

#include <windef.h>

#include <array>
#include <optional>
#include <string>

namespace simulated
{

class EmbeddedController
{
public:
    static constexpr DWORD kBacklight = 0xC0;
    static constexpr DWORD kWifi = 0xC1;
    static constexpr DWORD kLan = 0xC2;
    static constexpr DWORD k3G = 0xC3;
    static constexpr DWORD kBluetooth = 0xC4;
    static constexpr DWORD kNotFitted = 0xFF;

    /// The items by the names that people use.
    struct NamedItem
    {
        const char* name;
        DWORD number;
    };
    static constexpr NamedItem kNamedItems[] = {
        {"backlight", kBacklight}, {"wifi", kWifi}, {"lan", kLan}, {"3g", k3G}, {"bluetooth", kBluetooth},
    };

    /// An item's value, or nothing when the controller has no such item.
    static std::optional<DWORD> Item(DWORD item);

    /// Sets an item, and adds it when the controller had none.
    static void SetItem(DWORD item, DWORD value);
    static void RemoveItem(DWORD item);

    /// The result of a method, or nothing when the firmware doesn't know it.
    static std::optional<DWORD> Method(const std::string& name);
    static void SetMethod(const std::string& name, DWORD answer);

    using BatteryRows = std::array<DWORD, 12>;
    static std::optional<BatteryRows> Battery(DWORD selector);
    static void SetBattery(DWORD selector, const BatteryRows& rows);
    static void RemoveBattery(DWORD selector);
};

} // namespace simulated
