// control/Adapters.h
//
// The network adapters: devices of the tree (DeviceTree.h) with a driver key each below the class key of
// network adapters, where their drivers keep "DriverDesc" and their settings. They are enumerated in the
// order in which they were added; driver keys are numbered in that order too.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace simulated
{

class Adapters
{
public:
    using Settings = std::vector<std::pair<std::string, std::string>>;

    /// Adds an adapter behind the others. Returns its instance id, empty when its driver key can't be
    /// written. `settings` are texts of its driver key, such as
    /// {"*SpeedDuplex", "0"}.
    [[nodiscard]] static std::string Add(const std::string& description, const Settings& settings);

    /// Removes all adapters and their driver keys.
    static void Clear();

    /// Instance ids.
    static std::vector<std::string> All();

    /// A text of the adapter's driver key; nothing when it has no such value.
    static std::optional<std::string> Setting(const std::string& instanceId, const std::string& name);
    [[nodiscard]] static bool SetSetting(const std::string& instanceId, const std::string& name,
                                         const std::string& text);
};

} // namespace simulated
