// scheme/AddScheme.cpp
//
// New schemes as copies of existing ones.

#include "scheme/Operations.h"

#include "scheme/SchemeName.h"
#include "scheme/Variables.h"

#include <algorithm>

namespace
{

constexpr int kNameTaken = -2;

// The stored variables that a copy takes along. The others start out without a value.
constexpr VariableNumber kCopied[] = {kBacklightLevel, kLanStatus, kLanSpeed, kLums, kWifi, kThreeG};

void CopyStoredVariables(const PowerBackend& backend, int from, int to) noexcept
{
    for (const VariableNumber number : kCopied)
    {
        const Variable& variable = VariableOf(number);
        variables::Write(backend, to, true, variable, variables::Read(backend, from, true, variable));
        if (variable.isPacked)
        {
            variables::Write(backend, to, false, variable, variables::Read(backend, from, false, variable));
        }
    }
}

// The tests and the copy of an addition for a user; its number, -1 or -2.
int CreateUserCopy(CSchemeEx& engine, SchemeName& name, const wchar_t* description, int from,
                   const wchar_t* user) noexcept
{
    if (engine.FindPwrScheme(name.Text(), user) != -1)
    {
        return kNameTaken;
    }
    const PowerBackend& backend = BackendOf(engine);
    if (!backend.exists(from))
    {
        CORVLBase::DBGOUT(L"Find copy from scheme failed: %ld", from);
        return -1;
    }
    return backend.copy(name, description, from);
}

} // namespace

int add::Copy(CSchemeEx& engine, const wchar_t* name, const wchar_t* description, int from) noexcept
{
    SchemeName trimmed;
    if (!trimmed.Take(name))
    {
        return -1;
    }
    if (engine.FindPwrScheme(trimmed.Text()) != -1)
    {
        return kNameTaken;
    }
    const PowerBackend& backend = BackendOf(engine);
    const int number = backend.exists(from) ? backend.copy(trimmed, description, from) : -1;
    if (number >= 0)
    {
        CopyStoredVariables(backend, from, number);
    }
    return number;
}

int add::CopyForUser(CSchemeEx& engine, const wchar_t* name, const wchar_t* description, int from,
                     const wchar_t* user) noexcept
{
    SchemeName trimmed;
    if (!trimmed.Take(name))
    {
        return -1;
    }
    const int number = CreateUserCopy(engine, trimmed, description, from, user);
    if (number >= 0)
    {
        CopyStoredVariables(BackendOf(engine), from, number);
        engine.AddtoUserScheme(name, user, number);
    }
    return number;
}

int add::WholeForUser(CSchemeEx& engine, PWRSET& set, const wchar_t* user) noexcept
{
    CORVLBase::DBGOUT(L"enter AddPwrScheme all infor");
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
    const int number = CreateUserCopy(engine, trimmed, description, static_cast<int>(set.schemeID), user);
    if (number < 0)
    {
        return number;
    }
    set.schemeID = number;
    // Without a hibernate time the standby times that follow are free.
    const PowerBackend& backend = BackendOf(engine);
    variables::Write(backend, number, true, VariableOf(kHibernateTimeOut), 0);
    variables::Write(backend, number, false, VariableOf(kHibernateTimeOut), 0);
    engine.SetPwrVariable(set);
    engine.AddtoUserScheme(trimmed.Text(), user, number);
    return number;
}
