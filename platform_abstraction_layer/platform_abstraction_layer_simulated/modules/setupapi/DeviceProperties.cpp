// modules/setupapi/DeviceProperties.cpp
//
// From the lines of a device's section to properties.

#include "modules/setupapi/DeviceProperties.h"

#include "base/Text.h"
#include "machine/DeviceTree.h"

#include <setupapi.h>

namespace simulated::properties
{

namespace
{

const char* KeyOf(DWORD number)
{
    return number == SPDRP_DEVICEDESC     ? "Description"
           : number == SPDRP_FRIENDLYNAME ? "FriendlyName"
                                          : nullptr;
}

} // namespace

bool IsKnown(DWORD number)
{
    return KeyOf(number) != nullptr;
}

std::optional<std::vector<wchar_t>> Read(const std::string& instanceId, DWORD number)
{
    const char* const key = KeyOf(number);
    const std::optional<std::string> text =
        key == nullptr ? std::nullopt : DeviceTree::Value(instanceId, key);
    if (!text)
    {
        return std::nullopt;
    }
    std::vector<wchar_t> units = ToUtf16(*text);
    units.push_back(0);
    return units;
}

} // namespace simulated::properties
