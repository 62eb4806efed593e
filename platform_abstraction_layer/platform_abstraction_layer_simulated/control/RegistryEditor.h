// control/RegistryEditor.h
//
// The registry for tests and tools: values by one path such as
// "HKEY_LOCAL_MACHINE\SOFTWARE\Kelvo\ORVL" or "HKLM\SOFTWARE\Kelvo\ORVL", without opening and closing keys.
// The short roots are HKLM, HKCU, HKU and HKCR.
#pragma once

#include "modules/advapi32/ValueText.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace simulated
{

class RegistryEditor
{
public:
    /// The readers return nothing for a missing key or value.
    static std::optional<registry::Value> Read(std::string_view key, std::string_view name);

    /// The text up to its first zero; nothing when the value holds no text.
    static std::optional<std::string> ReadText(std::string_view key, std::string_view name);
    static std::optional<DWORD> ReadNumber(std::string_view key, std::string_view name);

    /// The writers make the key when it isn't there. False when it can't be made, or `key` has no known root.
    [[nodiscard]] static bool Write(std::string_view key, std::string_view name,
                                    const registry::Value& value);
    [[nodiscard]] static bool WriteText(std::string_view key, std::string_view name, std::string_view text);
    [[nodiscard]] static bool WriteNumber(std::string_view key, std::string_view name, DWORD number);

    [[nodiscard]] static bool HasKey(std::string_view key);

    /// Removes a key and everything below it.
    [[nodiscard]] static bool RemoveKey(std::string_view key);
    [[nodiscard]] static bool RemoveValue(std::string_view key, std::string_view name);

    /// Names, in order.
    static std::vector<std::string> Keys(std::string_view key);
    static std::vector<std::string> Values(std::string_view key);
};

} // namespace simulated
