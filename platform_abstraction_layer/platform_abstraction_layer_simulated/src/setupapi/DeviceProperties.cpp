// setupapi/DeviceProperties.cpp
//
// From the lines of a device's section to registry types.

#include "setupapi/DeviceProperties.h"

#include "notebook/DeviceTree.h"
#include "notebook/GuidText.h"
#include "notebook/HexText.h"
#include "notebook/Text.h"

#include <devguid.h>
#include <setupapi.h>

#include <algorithm>
#include <cstring>
#include <iterator>

namespace simulated::properties
{

namespace
{

struct ClassName
{
    GUID setupClass;
    const char* name;
};

constexpr ClassName kClassNames[] = {
    {GUID_DEVCLASS_NET, "Net"},
    {GUID_DEVCLASS_SYSTEM, "System"},
    {GUID_DEVCLASS_DISPLAY, "Display"},
    {GUID_DEVCLASS_BATTERY, "Battery"},
};

std::optional<std::string> Enumerator(const std::string& instanceId)
{
    return instanceId.substr(0, instanceId.find('\\'));
}

std::optional<std::string> ClassNameOf(const std::string& instanceId)
{
    const auto setupClass = ParseGuid(DeviceTree::Value(instanceId, "Class").value_or(""));
    for (const ClassName& row : kClassNames)
    {
        if (setupClass && IsSame(*setupClass, row.setupClass))
        {
            return row.name;
        }
    }
    return std::nullopt;
}

// Where a property comes from: a line of the device's section, or else a function.
struct Source
{
    DWORD number;
    DWORD type;
    const char* key;
    std::optional<std::string> (*compute)(const std::string& instanceId) = nullptr;
};

constexpr Source kSources[] = {
    {SPDRP_DEVICEDESC, REG_SZ, "Description"},
    {SPDRP_HARDWAREID, REG_MULTI_SZ, "HardwareId"},
    {SPDRP_COMPATIBLEIDS, REG_MULTI_SZ, "CompatibleId"},
    {SPDRP_SERVICE, REG_SZ, "Service"},
    {SPDRP_CLASS, REG_SZ, nullptr, &ClassNameOf},
    {SPDRP_CLASSGUID, REG_SZ, "Class"},
    {SPDRP_DRIVER, REG_SZ, "Driver"},
    {SPDRP_CONFIGFLAGS, REG_DWORD, "Disabled"}, // CONFIGFLAG_DISABLED is 1
    {SPDRP_MFG, REG_SZ, "Manufacturer"},
    {SPDRP_FRIENDLYNAME, REG_SZ, "FriendlyName"},
    {SPDRP_LOCATION_INFORMATION, REG_SZ, "Location"},
    {SPDRP_PHYSICAL_DEVICE_OBJECT_NAME, REG_SZ, "ObjectName"},
    {SPDRP_CAPABILITIES, REG_DWORD, "Capabilities"},
    {SPDRP_BUSNUMBER, REG_DWORD, "BusNumber"},
    {SPDRP_ENUMERATOR_NAME, REG_SZ, nullptr, &Enumerator},
    {SPDRP_ADDRESS, REG_DWORD, "Address"},
};

const Source* FindSource(DWORD number)
{
    const auto* const found = std::find_if(std::begin(kSources), std::end(kSources),
                                           [&](const Source& row) { return row.number == number; });
    return found == std::end(kSources) ? nullptr : found;
}

template <class Unit>
std::vector<BYTE> BytesOf(const std::vector<Unit>& units)
{
    std::vector<BYTE> bytes(units.size() * sizeof(Unit));
    std::memcpy(bytes.data(), units.data(), bytes.size());
    return bytes;
}

std::optional<std::vector<BYTE>> Encode(const std::string& text, DWORD type)
{
    if (type == REG_DWORD)
    {
        const std::optional<std::vector<DWORD>> words = ParseWords(text);
        return words && words->size() == 1 ? std::optional(BytesOf(*words)) : std::nullopt;
    }
    std::vector<wchar_t> units = ToUtf16(text);
    units.insert(units.end(), type == REG_MULTI_SZ ? 2 : 1, 0);
    return BytesOf(units);
}

} // namespace

bool IsKnown(DWORD number)
{
    return FindSource(number) != nullptr;
}

std::optional<Property> Read(const std::string& instanceId, DWORD number)
{
    const Source* const source = FindSource(number);
    if (source == nullptr)
    {
        return std::nullopt;
    }
    const std::optional<std::string> text =
        source->compute == nullptr ? DeviceTree::Value(instanceId, source->key) : source->compute(instanceId);
    std::optional<std::vector<BYTE>> bytes = text ? Encode(*text, source->type) : std::nullopt;
    return bytes ? std::optional(Property{source->type, std::move(*bytes)}) : std::nullopt;
}

} // namespace simulated::properties
