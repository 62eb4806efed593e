// modules/setupapi/DeviceNodes.cpp
//
// Numbers of devices, given out in the order in which they are first asked for.

#include "modules/setupapi/DeviceNodes.h"

#include "base/Text.h"

#include <mutex>
#include <vector>

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

} // namespace

DWORD NumberOf(const std::string& instanceId)
{
    Numbers& numbers = TheNumbers();
    const std::lock_guard lock(numbers.mutex);
    for (std::size_t index = 0; index < numbers.ids.size(); ++index)
    {
        if (EqualIgnoringCase(numbers.ids[index], instanceId))
        {
            return static_cast<DWORD>(index + 1);
        }
    }
    numbers.ids.push_back(instanceId);
    return static_cast<DWORD>(numbers.ids.size());
}

std::optional<std::string> IdOf(DWORD number)
{
    Numbers& numbers = TheNumbers();
    const std::lock_guard lock(numbers.mutex);
    return number == 0 || number > numbers.ids.size() ? std::nullopt : std::optional(numbers.ids[number - 1]);
}

} // namespace simulated::nodes
