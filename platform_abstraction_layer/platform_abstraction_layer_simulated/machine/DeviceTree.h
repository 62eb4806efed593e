// machine/DeviceTree.h
//
// The devices of the machine, their parents and their states. machine.ini has a section for each,
// "Device PCI\VEN_10EC&DEV_8168\4&1B2F3C5D&0&00E0", in the order in which they are enumerated:
//
//   Class={4D36E972-E325-11CE-BFC1-08002BE10318}   setup class
//   Description=Realtek PCIe GBE Family Controller
//   FriendlyName=...    where it has one
//   Driver={4D36E972-E325-11CE-BFC1-08002BE10318}\0000   its key below the class keys
//   Parent=...          instance id; a device without one stands below the root
//   Interface=...       interface class that the device exposes, as a battery does
//   Present=1           0: it was there once
//   Disableable=1
//   Disabled=0          1: disabled in all hardware profiles
//   DisabledInProfile=0 1: disabled in the current one
//   SwitchedOff=0       1: a switch of the machine has taken it off
//   Problem=0           any other problem that keeps it from starting
#pragma once

#include <windef.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace simulated
{

class DeviceTree
{
public:
    /// The root, above all devices. It has no properties and can't be changed.
    static constexpr const char* kRoot = "HTREE\\ROOT\\0";

    struct Description
    {
        std::string instanceId;
        GUID setupClass;
        std::string description;
        std::string parent = {}; ///< instance id; empty: the root
        std::string driver = {}; ///< "{class}\0000"
        std::optional<GUID> interfaceClass = {};
        std::vector<std::pair<std::string, std::string>> values = {}; ///< more lines of its section
    };

    /// Adds a device behind the others, present and enabled.
    static void Add(const Description& device);

    /// Removes it completely.
    static void Remove(const std::string& instanceId);

    /// Instance ids of all devices, those included that aren't present; not the root.
    static std::vector<std::string> All();

    /// The id as the machine spells it, of a device or of the root; nothing when there is none.
    static std::optional<std::string> Find(const std::string& instanceId);

    /// Empty for the root.
    static std::string Parent(const std::string& instanceId);

    /// The present devices below this one.
    static std::vector<std::string> Children(const std::string& instanceId);

    /// A line of the device's section.
    static std::optional<std::string> Value(const std::string& instanceId, const std::string& key);
    static std::optional<ULONG> Number(const std::string& instanceId, const std::string& key);
    static void SetValue(const std::string& instanceId, const std::string& key, const std::string& value);

    struct State
    {
        bool isPresent;
        bool isDisableable;
        DWORD problem; ///< 0 when it runs, else CM_PROB_...
    };
    static State StateOf(const std::string& instanceId);

    /// The present devices that expose an interface class, and the path to open one by:
    /// "\\?\acpi#pnp0c0a#0#{72631e54-78a4-11d0-bcf7-00aa00b7b32a}".
    static std::vector<std::string> WithInterface(const GUID& interfaceClass);
    static std::string InterfacePath(const std::string& instanceId, const GUID& interfaceClass);

    /// What the device installer does to a device: `change` is DICS_..., `scope` DICS_FLAG_.... A device
    /// runs when neither all profiles nor the current one disable it. ERROR_NOT_DISABLEABLE for a device
    /// that must run or that a switch has taken off.
    static DWORD Change(const std::string& instanceId, DWORD change, DWORD scope);
};

} // namespace simulated
