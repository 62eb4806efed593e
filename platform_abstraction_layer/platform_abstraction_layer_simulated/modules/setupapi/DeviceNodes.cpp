// modules/setupapi/DeviceNodes.cpp
//
// Numbers of devices, given out in the order in which they are first asked for, and their properties, lines
// of their sections.

#include "modules/setupapi/DeviceNodes.h"

#include "base/GuidText.h"
#include "base/Text.h"
#include "machine/DeviceTree.h"

#include <setupapi.h>

#include <algorithm>
#include <mutex>

namespace simulated::nodes
{

namespace
{

struct Numbers
{
    std::mutex mutex;
    std::vector<std::string> ids; ///< number 1 stands first
};

Numbers& TheNumbers()
{
    static Numbers& numbers = *new Numbers;
    return numbers;
}

const char* KeyOf(DWORD number)
{
    return number == SPDRP_DEVICEDESC     ? "Description"
           : number == SPDRP_FRIENDLYNAME ? "FriendlyName"
                                          : nullptr;
}

} // namespace

DWORD NumberOf(const std::string& instanceId)
{
    Numbers& numbers = TheNumbers();
    const std::lock_guard lock(numbers.mutex);
    const auto found = std::find_if(numbers.ids.begin(), numbers.ids.end(),
                                    [&](const std::string& id) { return EqualIgnoringCase(id, instanceId); });
    const auto number = static_cast<DWORD>(found - numbers.ids.begin()) + 1;
    if (found == numbers.ids.end())
    {
        numbers.ids.push_back(instanceId);
    }
    return number;
}

std::optional<std::string> IdOf(DWORD number)
{
    Numbers& numbers = TheNumbers();
    const std::lock_guard lock(numbers.mutex);
    return number == 0 || number > numbers.ids.size() ? std::nullopt : std::optional(numbers.ids[number - 1]);
}

GUID SetupClassOf(const std::string& instanceId)
{
    return ParseGuid(DeviceTree::Value(instanceId, "Class").value_or("")).value_or(GUID{});
}

bool IsProperty(DWORD number)
{
    return KeyOf(number) != nullptr;
}

std::optional<std::vector<wchar_t>> Property(const std::string& instanceId, DWORD number)
{
    const std::optional<std::string> text = DeviceTree::Value(instanceId, KeyOf(number));
    if (!text)
    {
        return std::nullopt;
    }
    std::vector<wchar_t> units = ToUtf16(*text);
    units.push_back(0);
    return units;
}

} // namespace simulated::nodes
