// scheme/xp/CopyScheme.cpp
//
// Writing both records of a scheme under a number or name of its own. Nothing is undone.

#include "foundation/Log.h"
#include "foundation/Owners.h"
#include "scheme/SchemeName.h"
#include "scheme/Wrapping.h"
#include "scheme/xp/Operations.h"
#include "scheme/xp/Policies.h"
#include "scheme/xp/PolicyStore.h"

namespace
{

constexpr xp::ReadTexts kRenameTexts{L"CSchemeEx::SetPwrSchemeNameDesc: Can't read pwr scheme: %ld",
                                     L"CSchemeEx::SetPwrSchemeNameDesc: Can't read cpu scheme: %ld"};

// The operating system takes the texts by pointers to characters that it doesn't change.
bool WriteScheme(int number, SchemeName& name, const wchar_t* description, POWER_POLICY& policy) noexcept
{
    auto scheme = static_cast<UINT>(number);
    return WritePwrScheme(&scheme, name.Text(), const_cast<wchar_t*>(description), &policy) != FALSE;
}

// Leaves the number where the operating system's own control panel keeps the last one it gave.
void RecordLastId(int number) noexcept
{
    owners::Key key;
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, policy_store::kMachineKey, 0, KEY_ALL_ACCESS, key.Put()) !=
        ERROR_SUCCESS)
    {
        return;
    }
    wchar_t digits[20];
    const std::size_t length = text::Format(digits, L"%d", number);
    RegSetValueExW(key.Get(), L"LastID", 0, REG_SZ, reinterpret_cast<const BYTE*>(digits),
                   static_cast<DWORD>((length + 1) * sizeof(wchar_t)));
}

} // namespace

int xp::CopyScheme(SchemeName& name, const wchar_t* description, int from) noexcept
{
    if (!name.IsShortEnough())
    {
        return -1;
    }
    const int highest = policy_store::HighestScheme();
    Policies policies;
    if (!ReadPolicies(from, policies, kReadTexts))
    {
        return -1;
    }
    const int number = static_cast<int>(WrappingSum(highest, 1));
    if (number < 0 || !WriteScheme(number, name, description, policies.power) ||
        !WriteProcessorPwrScheme(static_cast<UINT>(number), &policies.processor))
    {
        return -1;
    }
    RecordLastId(number);
    return number;
}

int xp::RenameScheme(int index, SchemeName& name, const wchar_t* description) noexcept
{
    Policies policies;
    const bool isRenamed =
        name.IsShortEnough() && ReadPolicies(index, policies, kRenameTexts) &&
        Check(WriteScheme(index, name, description, policies.power),
              L"SetPwrSchemeNameDesc: ::WritePwrScheme failed") &&
        Check(WriteProcessorPwrScheme(static_cast<UINT>(index), &policies.processor) != FALSE,
              L"SetPwrSchemeNameDesc: ::WriteProcessorPwrScheme failed");
    return isRenamed ? index : -1;
}
