// notebook/Adapters.cpp
//
// Adapters as pairs of a device and a driver key. The registry is reached by its own functions, as every
// program reaches it.

#include "notebook/Adapters.h"

#include "notebook/DeviceTree.h"
#include "notebook/GuidText.h"
#include "notebook/Text.h"

#include <devguid.h>
#include <windows.h>

#include <algorithm>
#include <cstdio>

namespace simulated
{

namespace
{

constexpr const char* kClassKeys = "SYSTEM\\CurrentControlSet\\Control\\Class\\";

// Text that ends in a zero, as the registry functions take it.
class WideText
{
public:
    explicit WideText(std::string_view text) : m_units(ToUtf16(text))
    {
        m_units.push_back(0);
    }
    const wchar_t* Get() const
    {
        return m_units.data();
    }
    DWORD Size() const
    {
        return static_cast<DWORD>(m_units.size() * sizeof m_units[0]);
    }

private:
    std::vector<wchar_t> m_units;
};

// A key of the machine's hive, made when it isn't there.
class MachineKey
{
public:
    explicit MachineKey(const std::string& path)
    {
        RegCreateKeyExW(HKEY_LOCAL_MACHINE, WideText(path).Get(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                        KEY_ALL_ACCESS, nullptr, &m_key, nullptr);
    }
    ~MachineKey()
    {
        RegCloseKey(m_key);
    }
    MachineKey(const MachineKey&) = delete;
    MachineKey& operator=(const MachineKey&) = delete;

    void Put(const std::string& name, const std::string& text) const
    {
        const WideText wide(text);
        RegSetValueExW(m_key, WideText(name).Get(), 0, REG_SZ, reinterpret_cast<const BYTE*>(wide.Get()),
                       wide.Size());
    }
    std::optional<std::string> Get(const std::string& name) const
    {
        wchar_t text[MAX_PATH + 1] = {};
        DWORD size = MAX_PATH * sizeof text[0];
        const LSTATUS error = RegQueryValueExW(m_key, WideText(name).Get(), nullptr, nullptr,
                                               reinterpret_cast<BYTE*>(text), &size);
        return error == ERROR_SUCCESS ? std::optional(ToUtf8(text)) : std::nullopt;
    }

private:
    HKEY m_key = nullptr;
};

std::string DriverPath(const std::string& instanceId)
{
    return kClassKeys + DeviceTree::Value(instanceId, "Driver").value_or("");
}

bool IsDriverTaken(const std::string& driver)
{
    const std::vector<std::string> all = Adapters::All();
    return std::any_of(all.begin(), all.end(),
                       [&](const std::string& id)
                       { return EqualIgnoringCase(DeviceTree::Value(id, "Driver").value_or(""), driver); });
}

std::string Numbered(const char* format, unsigned number)
{
    char text[64];
    std::snprintf(text, sizeof text, format, number);
    return text;
}

} // namespace

std::string Adapters::Add(const std::string& description, const Settings& settings)
{
    unsigned number = 0;
    const std::string begin = ToText(GUID_DEVCLASS_NET) + '\\';
    while (IsDriverTaken(begin + Numbered("%04u", number)))
    {
        ++number;
    }
    DeviceTree::Description device = {Numbered("PCI\\VEN_1AF4&DEV_10D3\\4&1B2F3C5D&0&%04X", number),
                                      GUID_DEVCLASS_NET, description};
    device.driver = begin + Numbered("%04u", number);
    DeviceTree::Add(device);
    const MachineKey key(DriverPath(device.instanceId));
    key.Put("DriverDesc", description);
    for (const auto& [name, text] : settings)
    {
        key.Put(name, text);
    }
    return device.instanceId;
}

void Adapters::Clear()
{
    for (const std::string& id : All())
    {
        RegDeleteKeyW(HKEY_LOCAL_MACHINE, WideText(DriverPath(id)).Get());
        DeviceTree::Remove(id);
    }
}

std::vector<std::string> Adapters::All()
{
    const std::string netClass = ToText(GUID_DEVCLASS_NET);
    std::vector<std::string> ids = DeviceTree::All();
    std::erase_if(ids, [&](const std::string& id)
                  { return !EqualIgnoringCase(DeviceTree::Value(id, "Class").value_or(""), netClass); });
    return ids;
}

std::optional<std::string> Adapters::Setting(const std::string& instanceId, const std::string& name)
{
    return MachineKey(DriverPath(instanceId)).Get(name);
}

void Adapters::SetSetting(const std::string& instanceId, const std::string& name, const std::string& text)
{
    MachineKey(DriverPath(instanceId)).Put(name, text);
}

} // namespace simulated
