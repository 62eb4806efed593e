// agents/LanSpeed.cpp
//
// The link speed that an adapter's driver keeps in its registry key. Drivers of the first word have a value
// of their own with plain levels; the standard value has numbers of its own for the levels.

#include "agents/LanAgent.h"

#include "agents/AdapterSearch.h"
#include "foundation/Log.h"
#include "foundation/Registry.h"

#include <algorithm>
#include <iterator>

namespace
{

constexpr wchar_t kStandardSpeedValue[] = L"*SpeedDuplex";

// The number of each speed level in the standard value.
constexpr int kStandardSpeeds[] = {0, 1, 2, 3, 4, 6};

using ValueText = wchar_t[text::kPathCapacity];

// Reads a value as text, whatever its type. False when it isn't there.
bool ReadValue(HKEY key, const wchar_t* name, ValueText& value) noexcept
{
    return registry::ReadText(key, name, value) == ERROR_SUCCESS;
}

// The key that holds the network adapters' driver keys.
owners::Key OpenAdapterClass() noexcept
{
    const HKEY key =
        SetupDiOpenClassRegKeyExW(&kNetworkAdapterClass, KEY_READ, DIOCR_INSTALLER, nullptr, nullptr);
    return owners::Key(
        Check(key != INVALID_HANDLE_VALUE, L"SetupDiOpenClassRegKeyEx failed: 0x%x\n") ? key : nullptr);
}

// Opens the adapter key of that number; empty behind the last and when it refuses `access`.
owners::Key OpenAdapter(const owners::Key& adapterClass, DWORD index, REGSAM access) noexcept
{
    wchar_t name[text::kPathCapacity];
    owners::Key adapter;
    if (RegEnumKeyW(adapterClass.Get(), index, name, static_cast<DWORD>(std::size(name))) == ERROR_SUCCESS)
    {
        RegOpenKeyExW(adapterClass.Get(), name, 0, access, adapter.Put());
    }
    return adapter;
}

bool WriteNumber(HKEY key, const wchar_t* name, int number) noexcept
{
    wchar_t digits[16];
    const std::size_t length = text::Format(digits, L"%d", number);
    if (RegSetValueExW(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(digits),
                       static_cast<DWORD>((length + 1) * sizeof(wchar_t))) != ERROR_SUCCESS)
    {
        return false;
    }
    CORVLBase::DBGOUT(L"Set the registry value successfully\n");
    return true;
}

} // namespace

// True for an adapter whose description has one of the wired words. Drivers of the second word know the
// standard value alone, whose name the object uses from then on.
bool CLanAgent::TakesSpeedFrom(HKEY adapter) noexcept
{
    ValueText description;
    if (!ReadValue(adapter, L"DriverDesc", description))
    {
        return false;
    }
    const bool isSecond = HoldsWord(description, m_szLanDesc2, text::Contains);
    if (isSecond)
    {
        text::Copy(m_szSpeedValue, kStandardSpeedValue);
    }
    return isSecond || HoldsWord(description, m_szLanDesc1, text::Contains);
}

bool CLanAgent::StoreSpeed(HKEY adapter, int level) noexcept
{
    ValueText present;
    if (ReadValue(adapter, m_szSpeedValue, present))
    {
        return WriteNumber(adapter, m_szSpeedValue, level);
    }
    const bool isKnown = level < static_cast<int>(std::size(kStandardSpeeds));
    return ReadValue(adapter, kStandardSpeedValue, present) && isKnown &&
           WriteNumber(adapter, kStandardSpeedValue, kStandardSpeeds[level]);
}

int CLanAgent::SetLanSpeed(int level) noexcept
{
    if (!Check(level >= 0, L"The input value is invalid.\n"))
    {
        return -1;
    }
    const owners::Key adapterClass = OpenAdapterClass();
    if (!adapterClass)
    {
        return -1;
    }
    bool isStored = false;
    DWORD index = 0;
    while (const owners::Key adapter = OpenAdapter(adapterClass, index++, KEY_ALL_ACCESS))
    {
        isStored |= TakesSpeedFrom(adapter.Get()) && StoreSpeed(adapter.Get(), level);
    }
    return Check(isStored, L"Cannot find the hardware.\n") ? level : -1;
}

// True when the adapter has a speed; `level` is -1 for a number that the standard value doesn't have.
bool CLanAgent::LoadSpeed(HKEY adapter, int& level) noexcept
{
    ValueText present;
    const bool isPlain = ReadValue(adapter, m_szSpeedValue, present);
    if (!isPlain && !ReadValue(adapter, kStandardSpeedValue, present))
    {
        return false;
    }
    DBGOUT(L"get the registry value successfully %s\n", present);
    level = text::ToInt(present);
    if (!isPlain)
    {
        const auto* found = std::find(std::begin(kStandardSpeeds), std::end(kStandardSpeeds), level);
        level = found == std::end(kStandardSpeeds) ? -1 : static_cast<int>(found - kStandardSpeeds);
    }
    return true;
}

int CLanAgent::GetLanSpeed() noexcept
{
    const owners::Key adapterClass = OpenAdapterClass();
    if (!adapterClass)
    {
        return -1;
    }
    DWORD index = 0;
    while (const owners::Key adapter = OpenAdapter(adapterClass, index++, KEY_READ))
    {
        int level = -1;
        if (TakesSpeedFrom(adapter.Get()) && LoadSpeed(adapter.Get(), level))
        {
            return level;
        }
    }
    DBGOUT(L"Cannot find the hardware.\n");
    return -1;
}
