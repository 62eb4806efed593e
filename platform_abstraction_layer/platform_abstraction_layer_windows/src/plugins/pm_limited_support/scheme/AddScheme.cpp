// scheme/AddScheme.cpp
//
// New schemes as copies of existing ones, and new names for schemes. Both generations take the tests of the
// name; the rest is the XP path's alone. An addition isn't atomic, and nothing is undone.

#include "foundation/Owners.h"
#include "scheme/PolicyStore.h"
#include "scheme/SchemeEx.h"
#include "scheme/SchemeMapping.h"
#include "scheme/SchemeName.h"
#include "scheme/WholeScheme.h"
#include "scheme/Wrapping.h"
#include "scheme/XpPolicies.h"

#include <algorithm>

namespace
{

constexpr int kNameTaken = -2;

// The stored variables that a copy takes along. The others start out without a value.
struct CopiedVariable
{
    const wchar_t* name;
    bool forBattery;
};

constexpr CopiedVariable kCopiedVariables[] = {
    {L"BacklightLevel", true}, {L"LANStatus", true}, {L"LanSpeed", true},
    {L"LUMS", false},          {L"Wifi", true},      {L"3G", true},
};

void CopyVariable(CSchemeEx& engine, int from, int to, int ifAC, const wchar_t* name) noexcept
{
    engine.SetPwrVariable(to, ifAC, name, engine.GetPwrVariable(from, ifAC, name));
}

void CopyStoredVariables(CSchemeEx& engine, int from, int to) noexcept
{
    for (const CopiedVariable& variable : kCopiedVariables)
    {
        CopyVariable(engine, from, to, 1, variable.name);
        if (variable.forBattery)
        {
            CopyVariable(engine, from, to, 0, variable.name);
        }
    }
}

// Leaves the number where the operating system's own control panel keeps the last one it gave.
void RecordLastId(int number) noexcept
{
    owners::Key key;
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, policy_store::kMachineKey, 0, KEY_ALL_ACCESS, key.Receive()) !=
        ERROR_SUCCESS)
    {
        return;
    }
    wchar_t digits[20];
    const std::size_t length = text::Format(digits, L"%d", number);
    RegSetValueExW(key.Get(), L"LastID", 0, REG_SZ, reinterpret_cast<const BYTE*>(digits),
                   static_cast<DWORD>((length + 1) * sizeof(wchar_t)));
}

// The operating system takes the texts by pointers to characters that it doesn't change.
bool WriteScheme(int number, SchemeName& name, const wchar_t* description, POWER_POLICY& policy) noexcept
{
    auto scheme = static_cast<UINT>(number);
    return WritePwrScheme(&scheme, name.Text(), const_cast<wchar_t*>(description), &policy) != FALSE;
}

// A copy of scheme `from` in the operating system; its number, or -1.
int CreateCopy(CSchemeEx& engine, SchemeName& name, const wchar_t* description, int from) noexcept
{
    if (!name.IsShortEnough(engine.m_bVista != 0) || engine.m_bVista != 0)
    {
        return -1;
    }
    const int highest = engine.GetPwrSchemeMaxIndex();
    xp::Policies policies;
    if (!xp::ReadPolicies(from, policies, xp::kReadTexts))
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

// The tests and the copy of an addition for a user; its number, -1 or -2.
int CreateUserCopy(CSchemeEx& engine, SchemeName& name, const wchar_t* description, int from,
                   const wchar_t* user) noexcept
{
    if (engine.FindPwrScheme(name.Text(), user) != -1)
    {
        return kNameTaken;
    }
    if (!mapping::SchemeExists(engine, from))
    {
        CORVLBase::DBGOUT(L"Find copy from scheme failed: %ld", from);
        return -1;
    }
    return CreateCopy(engine, name, description, from);
}

constexpr xp::ReadTexts kRenameTexts{L"CSchemeEx::SetPwrSchemeNameDesc: Can't read pwr scheme: %ld",
                                     L"CSchemeEx::SetPwrSchemeNameDesc: Can't read cpu scheme: %ld"};

} // namespace

int CSchemeEx::AddPwrScheme(const wchar_t* name, const wchar_t* desc, int from, const wchar_t* user) noexcept
{
    SchemeName trimmed;
    if (!trimmed.Take(name))
    {
        return -1;
    }
    const int number = CreateUserCopy(*this, trimmed, desc, from, user);
    if (number < 0)
    {
        return number;
    }
    CopyStoredVariables(*this, from, number);
    AddtoUserScheme(name, user, number);
    return number;
}

int CSchemeEx::AddPwrScheme(const wchar_t* name, const wchar_t* desc, int from) noexcept
{
    SchemeName trimmed;
    if (!trimmed.Take(name))
    {
        return -1;
    }
    if (FindPwrScheme(trimmed.Text()) != -1)
    {
        return kNameTaken;
    }
    if (FindPwrScheme(from) == 0)
    {
        return -1;
    }
    const int number = CreateCopy(*this, trimmed, desc, from);
    if (number >= 0)
    {
        CopyStoredVariables(*this, from, number);
    }
    return number;
}

int CSchemeEx::AddPwrScheme(PWRSET& set, const wchar_t* user) noexcept
{
    DBGOUT(L"enter AddPwrScheme all infor");
    // The record's texts may fill their fields whole.
    wchar_t name[kSchemeTextCapacity + 1] = {};
    wchar_t description[kSchemeTextCapacity + 1] = {};
    std::copy_n(set.name, kSchemeTextCapacity, name);
    std::copy_n(set.desc, kSchemeTextCapacity, description);

    SchemeName trimmed;
    if (!trimmed.Take(name))
    {
        return -1;
    }
    const int number = CreateUserCopy(*this, trimmed, description, static_cast<int>(set.schemeID), user);
    if (number < 0)
    {
        return number;
    }
    set.schemeID = number;
    // Without a hibernate time the standby times that follow are free.
    SetPwrVariable(number, 1, L"HibernateTimeOut", 0);
    SetPwrVariable(number, 0, L"HibernateTimeOut", 0);
    WriteWholeScheme(*this, set);
    SetPwrCfgVariable(set);
    AddtoUserScheme(trimmed.Text(), user, number);
    return number;
}

int CSchemeEx::SetPwrSchemeNameDesc(int index, const wchar_t* name, const wchar_t* desc) noexcept
{
    SchemeName trimmed;
    if (!trimmed.Take(name))
    {
        return -1;
    }
    if (FindPwrScheme(index) == 0)
    {
        DBGOUT(L"CSchemeEx::SetPwrSchemeNameDesc: Can't Find pwr scheme: %ld", index);
        return -1;
    }
    if (!trimmed.IsShortEnough(m_bVista != 0) || m_bVista != 0)
    {
        return -1;
    }
    xp::Policies policies;
    if (!xp::ReadPolicies(index, policies, kRenameTexts))
    {
        return -1;
    }
    if (!WriteScheme(index, trimmed, desc, policies.power))
    {
        DBGOUT(L"SetPwrSchemeNameDesc: ::WritePwrScheme failed");
        return -1;
    }
    if (!WriteProcessorPwrScheme(static_cast<UINT>(index), &policies.processor))
    {
        DBGOUT(L"SetPwrSchemeNameDesc: ::WriteProcessorPwrScheme failed");
        return -1;
    }
    return index;
}
