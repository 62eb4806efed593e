// scheme/xp/PolicyStore.cpp
//
// The operating system's schemes in the registry.

#include "scheme/xp/PolicyStore.h"

#include "foundation/OrvlBase.h"
#include "foundation/Owners.h"
#include "foundation/PowerProfile.h"
#include "foundation/Registry.h"
#include "foundation/Text.h"

#include <algorithm>
#include <iterator>

namespace
{

constexpr const wchar_t* kOwnSchemes = L"Control Panel\\PowerCfg\\PowerPolicies";
constexpr const wchar_t* kMachineSchemes =
    L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Controls Folder\\PowerCfg\\PowerPolicies";

// The key of one scheme, opened for reading, the size of the record in it, and what is logged when the key
// can't be opened or the value is no such record.
struct PolicyKey
{
    HKEY root;
    const wchar_t* parent;
    DWORD recordSize;
    const wchar_t* openText;
    const wchar_t* queryText;
};

// Calls `visit` with the number of each scheme below a key until it answers false. A key that can't be
// opened has none.
template <class Visitor>
void VisitSchemes(HKEY root, const wchar_t* parent, Visitor visit) noexcept
{
    owners::Key key;
    if (RegOpenKeyExW(root, parent, 0, KEY_READ, key.Put()) != ERROR_SUCCESS)
    {
        return;
    }
    for (DWORD place = 0;; ++place)
    {
        wchar_t name[text::kPathCapacity];
        auto length = static_cast<DWORD>(std::size(name));
        if (RegEnumKeyExW(key.Get(), place, name, &length, nullptr, nullptr, nullptr, nullptr) !=
                ERROR_SUCCESS ||
            !visit(text::ToInt(name)))
        {
            return;
        }
    }
}

// The value "Policies" of one scheme into `*size` bytes.
int ReadPolicy(const PolicyKey& place, int index, unsigned char* data, ULONG* size) noexcept
{
    const text::Formatted<text::kPathCapacity> path(L"%s\\%d", place.parent, index);
    owners::Key key;
    if (RegOpenKeyExW(place.root, path.Text(), 0, KEY_READ, key.Put()) != ERROR_SUCCESS)
    {
        CORVLBase::DBGOUT(place.openText, path.Text(), GetLastError());
        return 0;
    }
    const LSTATUS read = registry::ReadRecord(key.Get(), L"Policies", data, size, place.recordSize);
    if (read != ERROR_SUCCESS)
    {
        CORVLBase::DBGOUT(place.queryText, path.Text(), registry::ErrorOfRecord(read));
        return 0;
    }
    return 1;
}

} // namespace

bool policy_store::HasScheme(int index) noexcept
{
    bool found = false;
    VisitSchemes(HKEY_CURRENT_USER, kOwnSchemes,
                 [&found, index](int number)
                 {
                     found = number == index;
                     return !found;
                 });
    return found;
}

int policy_store::HighestScheme() noexcept
{
    int highest = 0;
    VisitSchemes(HKEY_LOCAL_MACHINE, kMachineSchemes,
                 [&highest](int number)
                 {
                     highest = std::max(highest, number);
                     return true;
                 });
    return highest;
}

int policy_store::ReadUserActiveScheme(const wchar_t* subKey) noexcept
{
    owners::Key key;
    if (RegOpenKeyExW(HKEY_USERS, subKey, 0, KEY_READ, key.Put()) != ERROR_SUCCESS)
    {
        CORVLBase::DBGOUT(L"ReadUserActivePowerScheme: Open key %s failed, error=%d", subKey, GetLastError());
        return 0;
    }
    wchar_t number[130];
    static_assert(sizeof number == 260);
    DWORD type = REG_NONE;
    if (registry::ReadText(key.Get(), L"CurrentPowerPolicy", number, &type) != ERROR_SUCCESS ||
        (type != REG_SZ && type != REG_EXPAND_SZ))
    {
        CORVLBase::DBGOUT(L"ReadUserActivePowerScheme: Query CurrentPowerPolicy at Key %s failed", subKey);
        return 0;
    }
    const int active = text::ToInt(number);
    CORVLBase::DBGOUT(L"ReadUserActivePowerScheme: Query current ID is %d", active);
    return active;
}

int policy_store::ReadUserPolicy(int index, const wchar_t* subKey, unsigned char* data, ULONG* size) noexcept
{
    const PolicyKey place{HKEY_USERS, subKey, sizeof(USER_POWER_POLICY),
                          L"ReadUserPowerPolicy: Open key %s failed, error=%d",
                          L"ReadUserPowerPolicy: Query value Policies at Key %s failed, error=%d"};
    return ReadPolicy(place, index, data, size);
}

int policy_store::ReadMachinePolicy(int index, unsigned char* data, ULONG* size) noexcept
{
    const PolicyKey place{HKEY_LOCAL_MACHINE, kMachineSchemes, sizeof(MACHINE_POWER_POLICY),
                          L"ReadMachinePowerPolicy: Open key %s failed, error=%d",
                          L"ReadMachinePowerPolicy: Query value Policies at Key %s failed, error=%d"};
    return ReadPolicy(place, index, data, size);
}
